// Service 1: bit vectors of any length, held by the library for the client
// and named by a VXT_BitData record.
//
// A record that is to receive a vector must hold none (dataHandle 0) and have
// its structureSize set to VXT_BITDATA_SIZE. The library writes bitSize and
// dataHandle; every range check reads the record's bitSize, so a client
// leaves both as written. A handle is valid only for the client that created
// it; what a client leaves behind is freed when it disconnects.
#pragma once

#include <cstdint>

#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

// Failures of the bit vector services.
inline constexpr VXT_Result VXT_E_BITDATA_FIELD_TOO_WIDE = static_cast<VXT_Result>(0x80010000u);  // Above 64 bits
inline constexpr VXT_Result VXT_E_BITDATA_DESTINATION_EXISTS = static_cast<VXT_Result>(0x80010002u);
inline constexpr VXT_Result VXT_E_BITDATA_INVALID = static_cast<VXT_Result>(0x80010003u);  // No such vector
inline constexpr VXT_Result VXT_E_BITDATA_BIT_OFFSET_INVALID = static_cast<VXT_Result>(0x80010004u);
inline constexpr VXT_Result VXT_E_BITDATA_BIT_RANGE_INVALID = static_cast<VXT_Result>(0x80010006u);
inline constexpr VXT_Result VXT_E_BITDATA_UNKNOWN_OPERATION = static_cast<VXT_Result>(0x80010009u);

class IInternalService_BitData {
 public:
  virtual ~IInternalService_BitData() = default;

  // A vector of bitSize bits holding the low bits of initialValue.
  virtual VXT_Result Create(VXT_BitData* bitData, uint32_t bitSize, uint64_t initialValue) = 0;
  // A vector filled from the bytes of `values`, bit 0 first; bits that
  // numValues bytes do not cover are zero. `values` may be null for bitSize 0.
  virtual VXT_Result CreateFromRawBits(VXT_BitData* bitData, uint32_t bitSize, const uint8_t* values,
                                       uint32_t numValues) = 0;
  // A vector read from text: "0b0110", "0x1f", "31", "5'h1f", "5'b11111", "5'd31".
  virtual VXT_Result CreateFromString(VXT_BitData* bitData, const char* value) = 0;
  virtual VXT_Result Copy(const VXT_BitData* src, VXT_BitData* dest) = 0;
  // Frees the vector and clears the record; a record holding none is left alone.
  virtual VXT_Result Destroy(VXT_BitData* bitData) = 0;
  // Destroys each record in turn; records holding no vector, or a handle the
  // client does not own, are cleared. Stops at the first other failure.
  virtual VXT_Result DestroyManyBitData(VXT_BitData* items, uint32_t numItems) = 0;

  // Up to 64 bits of the field, right-aligned.
  virtual VXT_Result Extract(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, uint64_t* value) = 0;
  // The field as a new vector in `value`.
  virtual VXT_Result ExtractAsBitData(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                      VXT_BitData* value) = 0;
  // The field's bytes, bit 0 first, into all maxValues bytes of `values`
  // (zero behind the field; cut when it needs more).
  virtual VXT_Result ExtractAsRawBits(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                      uint8_t* values, uint32_t maxValues) = 0;
  // The bits from bitOffset on; bits behind the end read as zero.
  virtual VXT_Result ToUInt64(const VXT_BitData* bitData, uint32_t bitOffset, uint64_t* value) = 0;
  virtual VXT_Result ToUInt32(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t* value) = 0;
  virtual VXT_Result ToUInt16(const VXT_BitData* bitData, uint32_t bitOffset, uint16_t* value) = 0;
  // Needs eight bits behind the offset.
  virtual VXT_Result ToUInt8(const VXT_BitData* bitData, uint32_t bitOffset, uint8_t* value) = 0;

  // Writes the low bitSize (at most 64) bits of value into the field.
  virtual VXT_Result Deposit(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, uint64_t value) = 0;
  // Copies destBitSize bits from the source field into the destination field.
  virtual VXT_Result DepositFromBitData(const VXT_BitData* destBitData, uint32_t destBitOffset, uint32_t destBitSize,
                                        const VXT_BitData* srcBitData, uint32_t srcBitOffset) = 0;
};
