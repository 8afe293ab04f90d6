// Shared pieces of the BitData library's tests: a plain std::vector<bool>
// model of a vector, conversion both ways, and seeded random vectors and
// fields.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "BitData.h"

namespace bitdata_test {

using Bits = std::vector<bool>;

struct FreeBitData {
  void operator()(BitData* object) const { BitData_FreeManaged(object); }
};
using Vector = std::unique_ptr<BitData, FreeBitData>;

// The lengths where word edges make mistakes likely, and one large length.
inline const std::vector<uint64_t> kEdgeSizes = {0, 1, 2, 7, 8, 31, 32, 33, 63, 64, 65, 127, 128, 129, 100003};

// Reads the vector through its byte pointer, so that the layout is checked
// too: bit i is bit i % 8 of byte i / 8.
inline Bits ToBits(const BitData* object) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(object->words);
  Bits bits(object->bitSize);
  for (uint64_t i = 0; i < object->bitSize; ++i) bits[i] = (bytes[i / 8] >> (i % 8)) & 1;
  return bits;
}

// True when every stored bit from the length to the end of its word is zero.
inline bool TailIsClear(const BitData* object) {
  if (object->bitSize % 64 == 0) return true;
  return (object->words[object->bitSize / 64] >> (object->bitSize % 64)) == 0;
}

inline std::vector<uint8_t> PackBits(const Bits& bits) {
  std::vector<uint8_t> bytes((bits.size() + 7) / 8, 0);
  for (size_t i = 0; i < bits.size(); ++i)
    if (bits[i]) bytes[i / 8] |= static_cast<uint8_t>(1u << (i % 8));
  return bytes;
}

inline Vector FromBits(const Bits& bits) {
  const std::vector<uint8_t> bytes = PackBits(bits);
  return Vector(BitData_CreateManagedFromBuffer(bits.size(), bytes.data()));
}

inline Bits RandomBits(std::mt19937_64& random, uint64_t size) {
  Bits bits(size);
  for (uint64_t i = 0; i < size; ++i) bits[i] = random() & 1;
  return bits;
}

// Bits set with the given chance, so that searches meet long zero runs.
inline Bits SparseBits(std::mt19937_64& random, uint64_t size, double chance) {
  std::bernoulli_distribution draw(chance);
  Bits bits(size);
  for (uint64_t i = 0; i < size; ++i) bits[i] = draw(random);
  return bits;
}

inline uint64_t Uniform(std::mt19937_64& random, uint64_t low, uint64_t high) {
  return std::uniform_int_distribution<uint64_t>(low, high)(random);
}

struct Field {
  uint64_t offset;
  uint64_t size;
};

// A valid field of a vector of `length` bits. One draw in four takes the
// whole rest of the vector, and one in eight starts at 0, so that both ends
// come up often.
inline Field RandomField(std::mt19937_64& random, uint64_t length) {
  const uint64_t kind = Uniform(random, 0, 7);
  const uint64_t offset = kind == 0 ? 0 : Uniform(random, 0, length);
  const uint64_t size = kind <= 2 ? length - offset : Uniform(random, 0, length - offset);
  return {offset, size};
}

inline Bits Slice(const Bits& bits, uint64_t offset, uint64_t size) {
  return Bits(bits.begin() + offset, bits.begin() + offset + size);
}

inline uint64_t ValueOf(const Bits& bits, uint64_t offset, uint64_t size) {
  uint64_t value = 0;
  for (uint64_t i = 0; i < size && i < 64; ++i)
    if (bits[offset + i]) value |= uint64_t{1} << i;
  return value;
}

// A length test: the sizes above plus a few random ones below 2000.
inline std::vector<uint64_t> PropertySizes(std::mt19937_64& random) {
  std::vector<uint64_t> sizes = kEdgeSizes;
  for (int i = 0; i < 6; ++i) sizes.push_back(Uniform(random, 0, 2000));
  return sizes;
}

// Fewer rounds for the large vector keep the suite fast in a Debug build.
inline int RoundsFor(uint64_t size) { return size > 10000 ? 3 : 40; }

}  // namespace bitdata_test
