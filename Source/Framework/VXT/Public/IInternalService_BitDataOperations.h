// Service 16: operations on the bit vectors of service 1: text forms, single
// bits, searches, comparison, logic, shifts, random fill, counts and growth.
//
// Operations without a range work on the whole vector. A range is a field
// (bitOffset, bitSize) that must lie inside the record's bitSize. Operations
// that make a vector (And, Or, Xor, Reverse, Randomize) write it into an
// empty `result` record. Arithmetic and rotation are checked but not
// implemented: they fail with VXT_E_NOT_IMPLEMENTED.
#pragma once

#include <cstdint>

#include "IInternalService_BitData.h"
#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

class IInternalService_BitDataOperations {
 public:
  virtual ~IInternalService_BitDataOperations() = default;

  // The vector as text, terminated within maxBufferSize characters (cut to
  // fit). With a null buffer, actualStringSize receives the size to ask for;
  // with a buffer, the length of the text written.
  // "12'h0a5": the length and the hexadecimal digits.
  virtual VXT_Result ToString(const VXT_BitData* bitData, char* buffer, uint32_t maxBufferSize,
                              uint32_t* actualStringSize) = 0;
  // "165": without leading zeros.
  virtual VXT_Result ToStringDecimal(const VXT_BitData* bitData, char* buffer, uint32_t maxBufferSize,
                                     uint32_t* actualStringSize) = 0;
  // "0x0a5": one digit for every four bits.
  virtual VXT_Result ToStringHexadecimal(const VXT_BitData* bitData, char* buffer, uint32_t maxBufferSize,
                                         uint32_t* actualStringSize) = 0;
  // "0b000010100101": one digit for every bit, the highest first.
  virtual VXT_Result ToStringBinary(const VXT_BitData* bitData, char* buffer, uint32_t maxBufferSize,
                                    uint32_t* actualStringSize) = 0;

  virtual VXT_Result SetBitOn(const VXT_BitData* bitData, uint32_t bitOffset) = 0;
  virtual VXT_Result SetBitOff(const VXT_BitData* bitData, uint32_t bitOffset) = 0;
  virtual VXT_Result InvertBit(const VXT_BitData* bitData, uint32_t bitOffset) = 0;
  // `result` is 1 or 0.
  virtual VXT_Result IsBitOn(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t* result) = 0;
  virtual VXT_Result IsBitOff(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t* result) = 0;

  // The position of the first or last set bit in the vector, or 0xffffffff
  // when no bit of the field is set.
  virtual VXT_Result FindFirst(const VXT_BitData* bitData, uint32_t* bitFoundIndex) = 0;
  virtual VXT_Result FindFirstBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                       uint32_t* bitFoundIndex) = 0;
  virtual VXT_Result FindLast(const VXT_BitData* bitData, uint32_t* bitFoundIndex) = 0;
  virtual VXT_Result FindLastBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                      uint32_t* bitFoundIndex) = 0;
  // `result` is 1 when the field, read as a number, equals `pattern`.
  virtual VXT_Result IsValue(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, uint32_t pattern,
                             uint32_t* result) = 0;
  // -1, 0 or 1 as left is below, equal to or above right, both read as
  // unsigned numbers over the shorter of the two lengths.
  virtual VXT_Result BitData_Compare(const VXT_BitData* left, const VXT_BitData* right, int32_t* result) = 0;
  virtual VXT_Result CompareBitRange(const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                                     const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize,
                                     int32_t* result) = 0;

  // Not implemented after their checks.
  virtual VXT_Result Add(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) = 0;
  virtual VXT_Result AddBitRange(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize,
                                 const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                                 const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize) = 0;
  virtual VXT_Result Subtract(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) = 0;
  virtual VXT_Result SubtractBitRange(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize,
                                      const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                                      const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize) = 0;
  virtual VXT_Result Multiply(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) = 0;
  virtual VXT_Result MultiplyBitRange(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize,
                                      const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                                      const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize) = 0;
  virtual VXT_Result Divide(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) = 0;
  virtual VXT_Result DivideBitRange(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize,
                                    const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                                    const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize) = 0;
  virtual VXT_Result Modulo(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) = 0;

  // A new vector as long as the longer operand; the shorter counts as
  // filled with zeros.
  virtual VXT_Result And(const VXT_BitData* left, const VXT_BitData* right, VXT_BitData* result) = 0;
  virtual VXT_Result Or(const VXT_BitData* left, const VXT_BitData* right, VXT_BitData* result) = 0;
  virtual VXT_Result Xor(const VXT_BitData* left, const VXT_BitData* right, VXT_BitData* result) = 0;
  // Inverts every bit of the field; `value` takes no part.
  virtual VXT_Result Invert(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, uint32_t value) = 0;
  // A new vector with the bits in reverse order; the source stays.
  virtual VXT_Result Reverse(const VXT_BitData* bitData, VXT_BitData* result) = 0;
  virtual VXT_Result ReverseBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize) = 0;
  // dest field = left field <operation> right field, destBitSize bits long.
  virtual VXT_Result BitwiseOp(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize,
                               const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                               const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize,
                               BitwiseOperation operation) = 0;

  // Left moves bits towards the high end, right towards bit 0; zeros come
  // in. A negative numBits shifts the other way.
  virtual VXT_Result ShiftLeft(const VXT_BitData* bitData, int32_t numBits) = 0;
  virtual VXT_Result ShiftLeftBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                       int32_t numBits) = 0;
  virtual VXT_Result ShiftRight(const VXT_BitData* bitData, int32_t numBits) = 0;
  virtual VXT_Result ShiftRightBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                        int32_t numBits) = 0;
  // Not implemented after their checks.
  virtual VXT_Result RotateLeft(const VXT_BitData* bitData, int32_t numBits) = 0;
  virtual VXT_Result RotateLeftBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                        int32_t numBits) = 0;
  virtual VXT_Result RotateRight(const VXT_BitData* bitData, int32_t numBits) = 0;
  virtual VXT_Result RotateRightBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                         int32_t numBits) = 0;

  // Seeds the process's random generator, which Randomize draws from.
  virtual VXT_Result SetRandomSeed(const VXT_BitData* bitData, uint32_t seedValue) = 0;
  // A new random vector as long as bitData; bitData stays.
  virtual VXT_Result Randomize(const VXT_BitData* bitData, VXT_BitData* result) = 0;
  virtual VXT_Result RandomizeBits(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize) = 0;

  // 1 when an odd number of bits is set, else 0.
  virtual VXT_Result Parity(const VXT_BitData* bitData, uint32_t* parity) = 0;
  virtual VXT_Result ParityBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                    uint32_t* parity) = 0;
  virtual VXT_Result PopCount(const VXT_BitData* bitData, uint32_t* count) = 0;
  virtual VXT_Result PopCountBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                      uint32_t* count) = 0;

  // Adds zero bits at the high end; the record's bitSize follows.
  virtual VXT_Result GrowSize(VXT_BitData* bitData, uint32_t bitsToAdd) = 0;
  // Repeats the 32-bit value over the field from its bit 0; a last piece
  // shorter than 32 bits takes the value's low bits.
  virtual VXT_Result SetBitRangeToPattern(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                          uint32_t value) = 0;
};
