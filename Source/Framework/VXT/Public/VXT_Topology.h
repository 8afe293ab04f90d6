// Records of the target's topology: a device as the Device service describes
// it, and a TAP controller as a client declares one on a JTAG chain.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VXT_Enumerations.h"

inline constexpr uint32_t VXT_DEVICE_SIZE = 76;
inline constexpr uint32_t VXT_TAP_CONTROLLER_SIZE = 392;

// Fixed text buffers of the Device service, terminator included.
inline constexpr uint32_t VXT_DEVICE_IDENTIFIER_SIZE = 64;
inline constexpr uint32_t VXT_PROPERTY_NAME_SIZE = 64;
inline constexpr uint32_t VXT_PROPERTY_VALUE_SIZE = 128;
inline constexpr uint32_t VXT_TAP_CONTROLLER_TEXT_SIZE = 128;
// GetLockingClient writes a client's identifier: VXT_CLIENT_TEXT_SIZE characters.

// A lock timeout that never expires.
inline constexpr uint32_t VXT_INFINITE_TIMEOUT = 0xFFFFFFFFu;

using VXT_PropertyName = char[VXT_PROPERTY_NAME_SIZE];
using VXT_PropertyValue = char[VXT_PROPERTY_VALUE_SIZE];

// One node of the topology.
struct VXT_Device {
  uint32_t structureSize;  // VXT_DEVICE_SIZE, set by the caller; never written
  uint32_t deviceId;
  VXT_NodeType nodeType;
  char identifier[VXT_DEVICE_IDENTIFIER_SIZE];
};

static_assert(sizeof(VXT_Device) == VXT_DEVICE_SIZE);
static_assert(offsetof(VXT_Device, identifier) == 12);

// One TAP controller of a JTAG chain.
struct VXT_TapController {
  uint32_t structureSize;  // VXT_TAP_CONTROLLER_SIZE in every record the library fills
  char deviceType[VXT_TAP_CONTROLLER_TEXT_SIZE];
  char deviceSubType[VXT_TAP_CONTROLLER_TEXT_SIZE];
  char stepping[VXT_TAP_CONTROLLER_TEXT_SIZE];
  uint32_t irLength;  // Bits of the instruction register
};

static_assert(sizeof(VXT_TapController) == VXT_TAP_CONTROLLER_SIZE);
static_assert(offsetof(VXT_TapController, irLength) == 388);
