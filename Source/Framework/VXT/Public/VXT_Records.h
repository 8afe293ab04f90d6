// Public records shared by several services: the bit vector record and the
// target address.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VXT_Enumerations.h"

inline constexpr uint32_t VXT_BITDATA_SIZE = 16;
inline constexpr uint32_t VXT_ADDRESS_SIZE = 24;
// Characters an address takes as text (Memory service's AddressToString),
// terminating zero included.
inline constexpr uint32_t VXT_ADDRESS_TEXT_SIZE = 64;
// Characters one disassembled instruction takes as text (AsmDasm service's
// Disassemble), terminating zero included.
inline constexpr uint32_t VXT_DISASSEMBLY_TEXT_SIZE = 256;

// A client's reference to a bit vector held by the library. The client
// allocates the record; the library fills it.
struct VXT_BitData {
  uint32_t structureSize;  // VXT_BITDATA_SIZE, set by the client
  uint32_t bitSize;        // Length in bits, written by the library; leave it as written
  uint64_t dataHandle;     // Handle in the calling client's table; 0 holds no vector
};

static_assert(sizeof(VXT_BitData) == VXT_BITDATA_SIZE);
static_assert(offsetof(VXT_BitData, bitSize) == 4);
static_assert(offsetof(VXT_BitData, dataHandle) == 8);

// An address on the target, plain or logical.
struct VXT_Address {
  uint32_t structureSize;       // VXT_ADDRESS_SIZE, set by the caller
  uint16_t ldtsel;              // LDT selector of a logical address
  uint16_t segsel;              // Segment selector of a logical address
  uint64_t offset;              // The address, or the offset of a logical one
  VXT_AddressType addressType;  // How the fields above are to be read
};

static_assert(sizeof(VXT_Address) == VXT_ADDRESS_SIZE);
static_assert(offsetof(VXT_Address, ldtsel) == 4);
static_assert(offsetof(VXT_Address, segsel) == 6);
static_assert(offsetof(VXT_Address, offset) == 8);
static_assert(offsetof(VXT_Address, addressType) == 16);
static_assert(sizeof(VXT_AddressType) == 4);

// How an interface port's window is opened, and what GetInterfacePortConfiguration reports.
inline constexpr uint32_t VXT_INTERFACE_PORT_CONFIGURATION_SIZE = 532;
inline constexpr uint32_t VXT_INTERFACE_PORT_FILE_TEXT_SIZE = 260;  // Characters, terminating zero included

struct VXT_InterfacePortConfiguration {
  uint32_t structureSize;  // VXT_INTERFACE_PORT_CONFIGURATION_SIZE, set by the caller
  VXT_InterfacePortDataCaptureType dataCaptureType;
  char fileName[VXT_INTERFACE_PORT_FILE_TEXT_SIZE];  // The capture file's name
  char filePath[VXT_INTERFACE_PORT_FILE_TEXT_SIZE];  // The directory it is in; empty for the working directory
  VXT_InterfacePortAccessMode accessMode;
};

static_assert(sizeof(VXT_InterfacePortConfiguration) == VXT_INTERFACE_PORT_CONFIGURATION_SIZE);
static_assert(offsetof(VXT_InterfacePortConfiguration, fileName) == 8);
static_assert(offsetof(VXT_InterfacePortConfiguration, filePath) == 268);
static_assert(offsetof(VXT_InterfacePortConfiguration, accessMode) == 528);
