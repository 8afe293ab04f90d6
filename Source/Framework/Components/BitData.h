// The BitData library: bit vectors of any length, 0 included.
//
// Bit 0 of a vector is the least significant bit of its byte 0, and a field
// of a vector, read as a number, has its lowest-numbered bit as its least
// significant bit. Lengths, offsets and sizes count bits.
//
// Every function checks its arguments against the vector's own length. A
// field (offset, size) is valid when it lies inside the vector; a field of
// size 0 is valid at any offset up to the length. Functions that return a
// code give 0 on success and one of the codes below otherwise, and change
// nothing when they fail. Functions that return a value give a neutral value
// (null, 0, false) for an argument they cannot use. Allocation failures throw
// std::bad_alloc; nothing else throws.
//
// A vector may be read from several threads at once. Writing a field while
// another thread touches the same vector is the caller's to prevent.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

// The vector object. Only the library writes it; callers may read `bitSize`.
struct BitData {
  // Length in bits.
  uint64_t bitSize;
  // 64-bit words of storage behind `words`.
  uint64_t wordCapacity;
  // The vector's bytes, in order, held as little-endian 64-bit words. Every
  // stored bit at or past `bitSize` is zero.
  uint64_t* words;
};

inline constexpr uint32_t BITDATA_NULL_ARGUMENT = 0x20000;
// A value the function cannot take, or text cut to the caller's buffer.
inline constexpr uint32_t BITDATA_VALUE_OUT_OF_RANGE = 0x20001;
// The field runs past the end of the vector.
inline constexpr uint32_t BITDATA_BIT_RANGE_INVALID = 0x140002;
// The offset lies behind the end of the vector.
inline constexpr uint32_t BITDATA_BIT_OFFSET_INVALID = 0x140003;

// What BitData_FindFirst and BitData_FindLast store when no bit is set.
inline constexpr uint64_t BITDATA_NOT_FOUND = UINT64_MAX;

// --- Creation and release ----------------------------------------------------
// Every object comes back with its bits zero unless filled, and is released
// with BitData_FreeManaged.

VOXTREL_PLATFORM_API BitData* BitData_CreateManaged(uint64_t bitSize);
// The low bits of `value`; bits beyond 64 are zero.
VOXTREL_PLATFORM_API BitData* BitData_CreateManagedFromUInt64(uint64_t bitSize, uint64_t value);
// Reads (bitSize + 7) / 8 bytes; the bits of the last byte beyond bitSize are
// ignored. Null when `buffer` is null and bitSize is not 0.
VOXTREL_PLATFORM_API BitData* BitData_CreateManagedFromBuffer(uint64_t bitSize, const uint8_t* buffer);
// Reads any text that the text functions below write, with ASCII blanks
// around it allowed:
//   "0b0110"    binary; one bit for each digit, the first digit the highest.
//   "0x1f"      hexadecimal; four bits for each digit.
//   "31"        decimal; as many bits as the value needs, at least 1.
//   "5'h1f", "5'b11111", "5'd31"
//               the length, then the value in any of the three bases; the
//               value must fit the length, and the length must not exceed
//               4294967295.
// Prefixes and hexadecimal digits may be upper or lower case. Null for text
// it cannot read, or for a null `text`.
VOXTREL_PLATFORM_API BitData* BitData_CreateManagedFromString(const char* text);
VOXTREL_PLATFORM_API BitData* BitData_CreateManagedFromBitData(const BitData* source);
// Accepts null.
VOXTREL_PLATFORM_API void BitData_FreeManaged(BitData* object);
// New bits are zero; the object keeps its address.
VOXTREL_PLATFORM_API uint32_t BitData_Resize(BitData* object, uint64_t newBitSize);

// --- Fields ------------------------------------------------------------------

// 0 when the field lies within the vector; otherwise the code every field
// function gives for it. Lets a caller refuse a field before it sets aside
// room for a copy of it.
VOXTREL_PLATFORM_API uint32_t BitData_CheckField(const BitData* object, uint64_t bitOffset, uint64_t bitSize);
// Copies a field; source and destination may be the same vector, with the
// two fields overlapping.
VOXTREL_PLATFORM_API uint32_t BitData_Copy(const BitData* source, uint64_t sourceOffset, BitData* destination,
                                           uint64_t destinationOffset, uint64_t bitSize);
// Fills all `bufferSize` bytes: the bits from `bitOffset` to the end, then
// zeros. Gives BITDATA_VALUE_OUT_OF_RANGE, with the bytes that fit written,
// when the bits need more than `bufferSize` bytes.
VOXTREL_PLATFORM_API uint32_t BitData_GetBuffer(const BitData* object, uint64_t bitOffset, uint8_t* buffer,
                                                uint64_t bufferSize);
// The Get functions read bits behind the end as zero, and give 0 for an
// offset behind the end or a null object.
VOXTREL_PLATFORM_API uint64_t BitData_GetUInt64(const BitData* object, uint64_t bitOffset);
VOXTREL_PLATFORM_API uint32_t BitData_GetUInt32(const BitData* object, uint64_t bitOffset);
// Right-aligned; a bitSize above 64 reads 64 bits.
VOXTREL_PLATFORM_API uint64_t BitData_GetUpToUInt64(const BitData* object, uint64_t bitOffset, uint64_t bitSize);
// Writes the low `bitSize` bits of `value`; a bitSize above 64 gives
// BITDATA_VALUE_OUT_OF_RANGE.
VOXTREL_PLATFORM_API uint32_t BitData_SetUpToUInt64(BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                                    uint64_t value);
VOXTREL_PLATFORM_API uint32_t BitData_SetBit(BitData* object, uint64_t bitOffset, bool value);
VOXTREL_PLATFORM_API bool BitData_GetBit(const BitData* object, uint64_t bitOffset);

// --- Text ----------------------------------------------------------------------
// Each writes the field's text, cut to fit and always terminated within
// `bufferSize` bytes; a cut text gives BITDATA_VALUE_OUT_OF_RANGE.

// The general form: the length in decimal, "'h", and the hexadecimal form's
// digits, as "12'h0a5". It keeps the length through BitData_CreateManagedFromString.
VOXTREL_PLATFORM_API uint32_t BitData_ToString(const BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                               char* buffer, uint64_t bufferSize);
// Without leading zeros; "0" for an empty field.
VOXTREL_PLATFORM_API uint32_t BitData_ToDecimal(const BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                                char* buffer, uint64_t bufferSize);
// "0x" and one lower-case digit for every four bits or part of them, leading
// zeros kept; "0x" alone for an empty field.
VOXTREL_PLATFORM_API uint32_t BitData_ToHex(const BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                            char* buffer, uint64_t bufferSize);
// "0b" and one digit for every bit, the highest first.
VOXTREL_PLATFORM_API uint32_t BitData_ToBinary(const BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                               char* buffer, uint64_t bufferSize);

// --- Queries -------------------------------------------------------------------

// `index` is the bit's position in the vector, not in the field, or
// BITDATA_NOT_FOUND.
VOXTREL_PLATFORM_API uint32_t BitData_FindFirst(const BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                                uint64_t* index);
VOXTREL_PLATFORM_API uint32_t BitData_FindLast(const BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                               uint64_t* index);
// 1 when the field, read as a number, equals `pattern`, else 0.
VOXTREL_PLATFORM_API uint32_t BitData_IsValue(const BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                              uint64_t pattern, uint8_t* matches);
// Compares the two fields as unsigned numbers: -1 when left is smaller, 0
// when equal, 1 when greater.
VOXTREL_PLATFORM_API uint32_t BitData_Compare(const BitData* left, uint64_t leftOffset, const BitData* right,
                                              uint64_t rightOffset, uint64_t bitSize, int32_t* result);
// 1 when the field has an odd number of set bits, else 0.
VOXTREL_PLATFORM_API uint32_t BitData_Parity(const BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                             uint8_t* parity);
VOXTREL_PLATFORM_API uint32_t BitData_PopCount(const BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                               uint64_t* count);

// --- Changes in place ----------------------------------------------------------

// Any of the three vectors may be the same, with fields overlapping.
VOXTREL_PLATFORM_API uint32_t BitData_BitwiseAnd(BitData* destination, uint64_t destinationOffset,
                                                 const BitData* left, uint64_t leftOffset, const BitData* right,
                                                 uint64_t rightOffset, uint64_t bitSize);
VOXTREL_PLATFORM_API uint32_t BitData_BitwiseOr(BitData* destination, uint64_t destinationOffset,
                                                const BitData* left, uint64_t leftOffset, const BitData* right,
                                                uint64_t rightOffset, uint64_t bitSize);
VOXTREL_PLATFORM_API uint32_t BitData_BitwiseXor(BitData* destination, uint64_t destinationOffset,
                                                 const BitData* left, uint64_t leftOffset, const BitData* right,
                                                 uint64_t rightOffset, uint64_t bitSize);
// `value` repeats every 64 bits over the field, from the field's bit 0, so
// all ones inverts a field of any size.
VOXTREL_PLATFORM_API uint32_t BitData_XorValue(BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                               uint64_t value);
VOXTREL_PLATFORM_API uint32_t BitData_Reverse(BitData* object, uint64_t bitOffset, uint64_t bitSize);
// Left moves bits towards the field's high end, right towards bit 0; bits
// that leave the field are lost and zeros come in. A negative numBits shifts
// the other way.
VOXTREL_PLATFORM_API uint32_t BitData_ShiftLeft(BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                                int64_t numBits);
VOXTREL_PLATFORM_API uint32_t BitData_ShiftRight(BitData* object, uint64_t bitOffset, uint64_t bitSize,
                                                 int64_t numBits);
// Draws from the C library's rand(), so that srand() makes the bits repeat.
VOXTREL_PLATFORM_API uint32_t BitData_Randomize(BitData* object, uint64_t bitOffset, uint64_t bitSize);
