// The BitDataOperations service: text forms, single bits, searches,
// comparison, logic, shifts, random fill, counts and growth on the vectors
// of the BitData service. It keeps no state; the handle table's lock is taken
// inside the BitData service's internal operations, and the bit work runs
// outside it.
#pragma once

#include "IInternalService_BitDataOperations.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_BitDataOperations : public SingletonService<InProc_BitDataOperations>,
                                 public IInternalService_BitDataOperations {
 public:
  static InProc_BitDataOperations& Instance();

  VXT_Result ToString(const VXT_BitData* bitData, char* buffer, uint32_t maxBufferSize,
                      uint32_t* actualStringSize) override;
  VXT_Result ToStringDecimal(const VXT_BitData* bitData, char* buffer, uint32_t maxBufferSize,
                             uint32_t* actualStringSize) override;
  VXT_Result ToStringHexadecimal(const VXT_BitData* bitData, char* buffer, uint32_t maxBufferSize,
                                 uint32_t* actualStringSize) override;
  VXT_Result ToStringBinary(const VXT_BitData* bitData, char* buffer, uint32_t maxBufferSize,
                            uint32_t* actualStringSize) override;
  VXT_Result SetBitOn(const VXT_BitData* bitData, uint32_t bitOffset) override;
  VXT_Result SetBitOff(const VXT_BitData* bitData, uint32_t bitOffset) override;
  VXT_Result InvertBit(const VXT_BitData* bitData, uint32_t bitOffset) override;
  VXT_Result IsBitOn(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t* result) override;
  VXT_Result IsBitOff(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t* result) override;
  VXT_Result FindFirst(const VXT_BitData* bitData, uint32_t* bitFoundIndex) override;
  VXT_Result FindFirstBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                               uint32_t* bitFoundIndex) override;
  VXT_Result FindLast(const VXT_BitData* bitData, uint32_t* bitFoundIndex) override;
  VXT_Result FindLastBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                              uint32_t* bitFoundIndex) override;
  VXT_Result IsValue(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, uint32_t pattern,
                     uint32_t* result) override;
  VXT_Result BitData_Compare(const VXT_BitData* left, const VXT_BitData* right, int32_t* result) override;
  VXT_Result CompareBitRange(const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                             const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize,
                             int32_t* result) override;
  VXT_Result Add(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) override;
  VXT_Result AddBitRange(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize, const VXT_BitData* left,
                         uint32_t leftBitOffset, uint32_t leftBitSize, const VXT_BitData* right,
                         uint32_t rightBitOffset, uint32_t rightBitSize) override;
  VXT_Result Subtract(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) override;
  VXT_Result SubtractBitRange(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize,
                              const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                              const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize) override;
  VXT_Result Multiply(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) override;
  VXT_Result MultiplyBitRange(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize,
                              const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                              const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize) override;
  VXT_Result Divide(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) override;
  VXT_Result DivideBitRange(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize,
                            const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                            const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize) override;
  VXT_Result Modulo(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) override;
  VXT_Result And(const VXT_BitData* left, const VXT_BitData* right, VXT_BitData* result) override;
  VXT_Result Or(const VXT_BitData* left, const VXT_BitData* right, VXT_BitData* result) override;
  VXT_Result Xor(const VXT_BitData* left, const VXT_BitData* right, VXT_BitData* result) override;
  VXT_Result Invert(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, uint32_t value) override;
  VXT_Result Reverse(const VXT_BitData* bitData, VXT_BitData* result) override;
  VXT_Result ReverseBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize) override;
  VXT_Result BitwiseOp(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize, const VXT_BitData* left,
                       uint32_t leftBitOffset, uint32_t leftBitSize, const VXT_BitData* right, uint32_t rightBitOffset,
                       uint32_t rightBitSize, BitwiseOperation operation) override;
  VXT_Result ShiftLeft(const VXT_BitData* bitData, int32_t numBits) override;
  VXT_Result ShiftLeftBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                               int32_t numBits) override;
  VXT_Result ShiftRight(const VXT_BitData* bitData, int32_t numBits) override;
  VXT_Result ShiftRightBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                int32_t numBits) override;
  VXT_Result RotateLeft(const VXT_BitData* bitData, int32_t numBits) override;
  VXT_Result RotateLeftBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                int32_t numBits) override;
  VXT_Result RotateRight(const VXT_BitData* bitData, int32_t numBits) override;
  VXT_Result RotateRightBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                 int32_t numBits) override;
  VXT_Result SetRandomSeed(const VXT_BitData* bitData, uint32_t seedValue) override;
  VXT_Result Randomize(const VXT_BitData* bitData, VXT_BitData* result) override;
  VXT_Result RandomizeBits(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize) override;
  VXT_Result Parity(const VXT_BitData* bitData, uint32_t* parity) override;
  VXT_Result ParityBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                            uint32_t* parity) override;
  VXT_Result PopCount(const VXT_BitData* bitData, uint32_t* count) override;
  VXT_Result PopCountBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                              uint32_t* count) override;
  VXT_Result GrowSize(VXT_BitData* bitData, uint32_t bitsToAdd) override;
  VXT_Result SetBitRangeToPattern(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                  uint32_t value) override;

  frame::ServiceLogger logger;
};

}  // namespace vxt
