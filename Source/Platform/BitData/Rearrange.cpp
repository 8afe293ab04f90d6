// Changes that move or replace a field's bits: reversal, shifts, random fill.
#include <cstdlib>

#include "ObjectStorage.h"

namespace voxtrel::bitdata {
namespace {

uint64_t ReverseWord(uint64_t value) {
  value = __builtin_bswap64(value);
  value = ((value >> 4) & 0x0F0F0F0F0F0F0F0FULL) | ((value & 0x0F0F0F0F0F0F0F0FULL) << 4);
  value = ((value >> 2) & 0x3333333333333333ULL) | ((value & 0x3333333333333333ULL) << 2);
  value = ((value >> 1) & 0x5555555555555555ULL) | ((value & 0x5555555555555555ULL) << 1);
  return value;
}

// Moves the field's bits `distance` places towards its top (upwards) or its
// bottom, clearing the places they leave.
void ShiftField(BitData& object, uint64_t offset, uint64_t size, uint64_t distance, bool upwards) {
  uint64_t* words = WritableWords(object);
  if (distance >= size) {
    ClearField(words, offset, size);
    return;
  }
  const uint64_t kept = size - distance;
  if (upwards) {
    CopyBits(words, offset + distance, words, offset, kept);
    ClearField(words, offset, distance);
  } else {
    CopyBits(words, offset, words, offset + distance, kept);
    ClearField(words, offset + kept, distance);
  }
}

uint64_t Magnitude(int64_t value) { return value < 0 ? 0 - static_cast<uint64_t>(value) : value; }

// rand() gives this many random low bits per call.
constexpr unsigned kRandomBits = std::bit_width(static_cast<unsigned>(RAND_MAX));
static_assert(std::has_single_bit(static_cast<unsigned>(RAND_MAX) + 1u), "rand() must fill its bits evenly");

uint64_t RandomWord() {
  uint64_t value = 0;
  for (unsigned filled = 0; filled < kWordBits; filled += kRandomBits)
    value = (value << kRandomBits) ^ static_cast<uint64_t>(std::rand());
  return value;
}

}  // namespace
}  // namespace voxtrel::bitdata

using namespace voxtrel::bitdata;

uint32_t BitData_Reverse(BitData* object, uint64_t bitOffset, uint64_t bitSize) {
  if (uint32_t code = CheckField(object, bitOffset, bitSize)) return code;
  uint64_t* words = WritableWords(*object);
  uint64_t low = bitOffset;
  uint64_t high = bitOffset + bitSize;
  // Swap mirrored 64-bit windows from both ends inwards.
  while (high - low >= 2 * kWordBits) {
    const uint64_t bottom = LoadBits(words, low);
    const uint64_t top = LoadBits(words, high - kWordBits);
    StoreBits(words, low, ReverseWord(top), kWordBits);
    StoreBits(words, high - kWordBits, ReverseWord(bottom), kWordBits);
    low += kWordBits;
    high -= kWordBits;
  }
  // Fewer than 128 bits remain: reverse them as one 128-bit number.
  const uint64_t rest = high - low;
  if (rest < 2) return 0;
  using u128 = unsigned __int128;
  u128 value = LoadBits(words, low);
  if (rest > kWordBits) value |= static_cast<u128>(LoadBits(words, low + kWordBits)) << kWordBits;
  value &= (static_cast<u128>(1) << rest) - 1;
  const u128 reversed =
      ((static_cast<u128>(ReverseWord(static_cast<uint64_t>(value))) << kWordBits) |
       ReverseWord(static_cast<uint64_t>(value >> kWordBits))) >> (2 * kWordBits - rest);
  StoreBits(words, low, static_cast<uint64_t>(reversed), std::min(rest, kWordBits));
  if (rest > kWordBits) StoreBits(words, low + kWordBits, static_cast<uint64_t>(reversed >> kWordBits), rest - kWordBits);
  return 0;
}

uint32_t BitData_ShiftLeft(BitData* object, uint64_t bitOffset, uint64_t bitSize, int64_t numBits) {
  if (uint32_t code = CheckField(object, bitOffset, bitSize)) return code;
  ShiftField(*object, bitOffset, bitSize, Magnitude(numBits), numBits >= 0);
  return 0;
}

uint32_t BitData_ShiftRight(BitData* object, uint64_t bitOffset, uint64_t bitSize, int64_t numBits) {
  if (uint32_t code = CheckField(object, bitOffset, bitSize)) return code;
  ShiftField(*object, bitOffset, bitSize, Magnitude(numBits), numBits < 0);
  return 0;
}

uint32_t BitData_Randomize(BitData* object, uint64_t bitOffset, uint64_t bitSize) {
  if (uint32_t code = CheckField(object, bitOffset, bitSize)) return code;
  WriteField(WritableWords(*object), bitOffset, bitSize, false, [](uint64_t) { return RandomWord(); });
  return 0;
}
