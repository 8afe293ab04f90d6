// Service 8: target memory and IO ports of a thread.
//
// Reads and writes run in the background from the caller's point of view:
// each writes an operation token, and the data read comes back as the
// token's value (OperationReceipt service: GetValue, GetValueAsRawBytes).
// An address is a VXT_Address with structureSize VXT_ADDRESS_SIZE; its
// addressType says how it is read:
//
//   Physical, GuestPhysical      offset in the target domain's memory
//   Linear                       offset through the thread's page tables
//   OneField{Code,Data,Stack}Logical  offset through CS, DS or SS
//   TwoFieldLogical              segsel:offset
//   ThreeFieldLogical            ldtsel:segsel:offset
//
// As text (AddressToString / AddressFromString) an address reads
// "phys:0x1000", "lin:0x1000", "gphys:0x1000", "cs:0x1000", "ds:0x1000",
// "ss:0x1000", "0x0010:0x1000" or "0x0008:0x0010:0x1000"; fields an address
// type does not use are not written and read back as 0.
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

class IInternalService_Memory {
 public:
  virtual ~IInternalService_Memory() = default;

  // byteCount > 0. The value holds the bytes read, the first in bits 0-7.
  virtual VXT_Result ReadMemory(uint32_t deviceId, const VXT_Address* address, int32_t byteCount,
                                uint64_t* operationToken) = 0;
  // Writes the first byteCount bytes of `data`.
  virtual VXT_Result WriteMemory(uint32_t deviceId, const VXT_Address* address, int32_t byteCount,
                                 const VXT_BitData* data, uint64_t* operationToken) = 0;
  // portByteSize: 1, 2 or 4 (VXT_AccessWidth Byte, Word, DWord).
  virtual VXT_Result ReadIO(uint32_t deviceId, int32_t port, uint32_t portByteSize, uint64_t* operationToken) = 0;
  virtual VXT_Result WriteIO(uint32_t deviceId, int32_t port, uint32_t portByteSize, uint32_t value,
                             uint64_t* operationToken) = 0;
  // VMCS fields are not reachable on this target: always VXT_E_NOT_IMPLEMENTED.
  virtual VXT_Result VMCSRead32(uint32_t deviceId, uint32_t fieldOffset, uint64_t* operationToken) = 0;
  virtual VXT_Result VMCSRead64(uint32_t deviceId, uint64_t fieldOffset, uint64_t* operationToken) = 0;
  virtual VXT_Result VMCSWrite32(uint32_t deviceId, uint32_t fieldOffset, uint32_t value, uint64_t* operationToken) = 0;
  virtual VXT_Result VMCSWrite64(uint32_t deviceId, uint64_t fieldOffset, uint64_t value, uint64_t* operationToken) = 0;
  // `destAddress->structureSize` must be VXT_ADDRESS_SIZE.
  virtual VXT_Result ConvertAddress(uint32_t deviceId, const VXT_Address* sourceAddress,
                                    VXT_AddressType destAddressType, VXT_Address* destAddress) = 0;
  // `buffer` holds VXT_ADDRESS_TEXT_SIZE characters.
  virtual VXT_Result AddressToString(const VXT_Address* address, char* buffer) = 0;
  virtual VXT_Result AddressFromString(const char* addressAsString, VXT_Address* address) = 0;
  // Any non-zero writeModifiedCacheToMainMemory counts as true.
  virtual VXT_Result InvalidateCache(uint32_t deviceId, uint32_t writeModifiedCacheToMainMemory,
                                     uint64_t* operationToken) = 0;
  // count > 0 units of accessWidth bytes: 1, 2, 4 or 8 (VXT_AccessWidth).
  virtual VXT_Result ReadMemoryWithAccessWidth(uint32_t deviceId, const VXT_Address* address, int32_t count,
                                               uint32_t accessWidth, uint64_t* operationToken) = 0;
  virtual VXT_Result WriteMemoryWithAccessWidth(uint32_t deviceId, const VXT_Address* address, int32_t count,
                                                uint32_t accessWidth, const VXT_BitData* data,
                                                uint64_t* operationToken) = 0;
  // Loads a file into memory from fromAddress on; toAddress (may be null)
  // is the last byte it may fill. fileType "bin" (raw bytes) or "hex"
  // (Intel HEX, whose records carry their own addresses, taken relative to
  // fromAddress).
  virtual VXT_Result LoadMemory(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                                const VXT_Address* toAddress, const char* fileType, const char* loadOptions,
                                uint64_t* operationToken) = 0;
  // Saves the bytes fromAddress to toAddress, both included. An existing
  // file is replaced only with a non-zero overwriteFile.
  virtual VXT_Result SaveMemory(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                                const VXT_Address* toAddress, uint32_t overwriteFile, const char* fileType,
                                const char* saveOptions, uint64_t* operationToken) = 0;
};
