// The BitData library's main operations on 1 Mbit vectors, each beside
// boost::dynamic_bitset doing the same work, so that a run shows both side by
// side (names sort in pairs: BM_<Operation>_BitData, BM_<Operation>_DynamicBitset).
//
// dynamic_bitset has no hexadecimal text and no search from the top. Its
// hexadecimal benchmarks use a hand-written loop over its blocks (formatting
// from to_block_range, parsing into blocks then the block-range constructor);
// FindLast has no partner.
#include <benchmark/benchmark.h>

#include <boost/dynamic_bitset.hpp>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "BitData.h"

namespace {

constexpr uint64_t kBits = uint64_t{1} << 20;
constexpr int64_t kShift = 13;  // odd, so every word is split

using DynamicBitset = boost::dynamic_bitset<uint64_t>;

struct FreeBitData {
  void operator()(BitData* object) const { BitData_FreeManaged(object); }
};
using Vector = std::unique_ptr<BitData, FreeBitData>;

std::vector<uint64_t> RandomBlocks(uint64_t seed) {
  std::mt19937_64 random(seed);
  std::vector<uint64_t> blocks(kBits / 64);
  for (uint64_t& block : blocks) block = random();
  return blocks;
}

Vector RandomVector(uint64_t seed) {
  const std::vector<uint64_t> blocks = RandomBlocks(seed);
  return Vector(BitData_CreateManagedFromBuffer(kBits, reinterpret_cast<const uint8_t*>(blocks.data())));
}

DynamicBitset RandomBitset(uint64_t seed) {
  const std::vector<uint64_t> blocks = RandomBlocks(seed);
  return DynamicBitset(blocks.begin(), blocks.end());
}

// --- Counting and searching ----------------------------------------------------

void BM_PopCount_BitData(benchmark::State& state) {
  Vector vector = RandomVector(1);
  for (auto _ : state) {
    uint64_t count = 0;
    BitData_PopCount(vector.get(), 0, kBits, &count);
    benchmark::DoNotOptimize(count);
  }
}
BENCHMARK(BM_PopCount_BitData);

void BM_PopCount_DynamicBitset(benchmark::State& state) {
  DynamicBitset bits = RandomBitset(1);
  for (auto _ : state) benchmark::DoNotOptimize(bits.count());
}
BENCHMARK(BM_PopCount_DynamicBitset);

// Only the top bit is set: the search crosses the whole vector.
void BM_FindFirst_BitData(benchmark::State& state) {
  Vector vector(BitData_CreateManaged(kBits));
  BitData_SetBit(vector.get(), kBits - 1, true);
  for (auto _ : state) {
    uint64_t index = 0;
    BitData_FindFirst(vector.get(), 0, kBits, &index);
    benchmark::DoNotOptimize(index);
  }
}
BENCHMARK(BM_FindFirst_BitData);

void BM_FindFirst_DynamicBitset(benchmark::State& state) {
  DynamicBitset bits(kBits);
  bits.set(kBits - 1);
  for (auto _ : state) benchmark::DoNotOptimize(bits.find_first());
}
BENCHMARK(BM_FindFirst_DynamicBitset);

// Only bit 0 is set.
void BM_FindLast_BitData(benchmark::State& state) {
  Vector vector(BitData_CreateManaged(kBits));
  BitData_SetBit(vector.get(), 0, true);
  for (auto _ : state) {
    uint64_t index = 0;
    BitData_FindLast(vector.get(), 0, kBits, &index);
    benchmark::DoNotOptimize(index);
  }
}
BENCHMARK(BM_FindLast_BitData);

// --- Bitwise logic, in place ---------------------------------------------------

template <uint32_t (*Operation)(BitData*, uint64_t, const BitData*, uint64_t, const BitData*, uint64_t, uint64_t)>
void BitwiseBitData(benchmark::State& state) {
  Vector left = RandomVector(1);
  Vector right = RandomVector(2);
  for (auto _ : state) {
    Operation(left.get(), 0, left.get(), 0, right.get(), 0, kBits);
    benchmark::ClobberMemory();
  }
}

void BM_And_BitData(benchmark::State& state) { BitwiseBitData<BitData_BitwiseAnd>(state); }
BENCHMARK(BM_And_BitData);
void BM_Or_BitData(benchmark::State& state) { BitwiseBitData<BitData_BitwiseOr>(state); }
BENCHMARK(BM_Or_BitData);
void BM_Xor_BitData(benchmark::State& state) { BitwiseBitData<BitData_BitwiseXor>(state); }
BENCHMARK(BM_Xor_BitData);

void BM_And_DynamicBitset(benchmark::State& state) {
  DynamicBitset left = RandomBitset(1);
  const DynamicBitset right = RandomBitset(2);
  for (auto _ : state) {
    left &= right;
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_And_DynamicBitset);

void BM_Or_DynamicBitset(benchmark::State& state) {
  DynamicBitset left = RandomBitset(1);
  const DynamicBitset right = RandomBitset(2);
  for (auto _ : state) {
    left |= right;
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_Or_DynamicBitset);

void BM_Xor_DynamicBitset(benchmark::State& state) {
  DynamicBitset left = RandomBitset(1);
  const DynamicBitset right = RandomBitset(2);
  for (auto _ : state) {
    left ^= right;
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_Xor_DynamicBitset);

// --- Comparison of equal vectors: the whole length is read ---------------------

void BM_Compare_BitData(benchmark::State& state) {
  Vector left = RandomVector(1);
  Vector right = RandomVector(1);
  for (auto _ : state) {
    int32_t order = 0;
    BitData_Compare(left.get(), 0, right.get(), 0, kBits, &order);
    benchmark::DoNotOptimize(order);
  }
}
BENCHMARK(BM_Compare_BitData);

void BM_Compare_DynamicBitset(benchmark::State& state) {
  const DynamicBitset left = RandomBitset(1);
  const DynamicBitset right = RandomBitset(1);
  for (auto _ : state) benchmark::DoNotOptimize(left == right);
}
BENCHMARK(BM_Compare_DynamicBitset);

// --- Shifts in place -----------------------------------------------------------

void BM_ShiftLeft_BitData(benchmark::State& state) {
  Vector vector = RandomVector(1);
  for (auto _ : state) {
    BitData_ShiftLeft(vector.get(), 0, kBits, kShift);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ShiftLeft_BitData);

void BM_ShiftLeft_DynamicBitset(benchmark::State& state) {
  DynamicBitset bits = RandomBitset(1);
  for (auto _ : state) {
    bits <<= kShift;
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ShiftLeft_DynamicBitset);

void BM_ShiftRight_BitData(benchmark::State& state) {
  Vector vector = RandomVector(1);
  for (auto _ : state) {
    BitData_ShiftRight(vector.get(), 0, kBits, kShift);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ShiftRight_BitData);

void BM_ShiftRight_DynamicBitset(benchmark::State& state) {
  DynamicBitset bits = RandomBitset(1);
  for (auto _ : state) {
    bits >>= kShift;
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ShiftRight_DynamicBitset);

// --- Text ----------------------------------------------------------------------

constexpr char kHexDigits[] = "0123456789abcdef";

// Hexadecimal text of a dynamic_bitset, most significant digit first, from
// its blocks.
void DynamicBitsetToHex(const DynamicBitset& bits, std::vector<uint64_t>& blocks, std::string& text) {
  blocks.resize(bits.num_blocks());
  boost::to_block_range(bits, blocks.begin());
  text.resize(2 + blocks.size() * 16);
  text[0] = '0';
  text[1] = 'x';
  char* cursor = text.data() + text.size();
  for (uint64_t block : blocks)
    for (int digit = 0; digit < 16; ++digit, block >>= 4) *--cursor = kHexDigits[block & 15];
}

int HexValue(char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

DynamicBitset DynamicBitsetFromHex(const std::string& text, std::vector<uint64_t>& blocks) {
  const char* digits = text.data() + 2;
  const size_t count = text.size() - 2;
  blocks.assign((count + 15) / 16, 0);
  for (size_t i = 0; i < count; ++i)
    blocks[i / 16] |= static_cast<uint64_t>(HexValue(digits[count - 1 - i])) << (4 * (i % 16));
  return DynamicBitset(blocks.begin(), blocks.end());
}

void BM_ToHex_BitData(benchmark::State& state) {
  Vector vector = RandomVector(1);
  std::string buffer(kBits / 4 + 3, '\0');
  for (auto _ : state) {
    BitData_ToHex(vector.get(), 0, kBits, buffer.data(), buffer.size());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ToHex_BitData);

void BM_ToHex_DynamicBitset(benchmark::State& state) {
  const DynamicBitset bits = RandomBitset(1);
  std::vector<uint64_t> blocks;
  std::string text;
  for (auto _ : state) {
    DynamicBitsetToHex(bits, blocks, text);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ToHex_DynamicBitset);

std::string HexTextOf(uint64_t seed) {
  Vector vector = RandomVector(seed);
  std::string buffer(kBits / 4 + 3, '\0');
  BitData_ToHex(vector.get(), 0, kBits, buffer.data(), buffer.size());
  buffer.resize(kBits / 4 + 2);
  return buffer;
}

void BM_FromHex_BitData(benchmark::State& state) {
  const std::string text = HexTextOf(1);
  for (auto _ : state) {
    Vector vector(BitData_CreateManagedFromString(text.c_str()));
    benchmark::DoNotOptimize(vector.get());
  }
}
BENCHMARK(BM_FromHex_BitData);

void BM_FromHex_DynamicBitset(benchmark::State& state) {
  const std::string text = HexTextOf(1);
  std::vector<uint64_t> blocks;
  for (auto _ : state) {
    DynamicBitset bits = DynamicBitsetFromHex(text, blocks);
    benchmark::DoNotOptimize(bits.num_blocks());
  }
}
BENCHMARK(BM_FromHex_DynamicBitset);

// Binary text, which dynamic_bitset writes and reads itself.
void BM_ToBinary_BitData(benchmark::State& state) {
  Vector vector = RandomVector(1);
  std::string buffer(kBits + 3, '\0');
  for (auto _ : state) {
    BitData_ToBinary(vector.get(), 0, kBits, buffer.data(), buffer.size());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ToBinary_BitData);

void BM_ToBinary_DynamicBitset(benchmark::State& state) {
  const DynamicBitset bits = RandomBitset(1);
  std::string text;
  for (auto _ : state) {
    boost::to_string(bits, text);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ToBinary_DynamicBitset);

void BM_FromBinary_BitData(benchmark::State& state) {
  const DynamicBitset bits = RandomBitset(1);
  std::string text;
  boost::to_string(bits, text);
  text.insert(0, "0b");
  for (auto _ : state) {
    Vector vector(BitData_CreateManagedFromString(text.c_str()));
    benchmark::DoNotOptimize(vector.get());
  }
}
BENCHMARK(BM_FromBinary_BitData);

void BM_FromBinary_DynamicBitset(benchmark::State& state) {
  const DynamicBitset source = RandomBitset(1);
  std::string text;
  boost::to_string(source, text);
  for (auto _ : state) {
    DynamicBitset bits(text);
    benchmark::DoNotOptimize(bits.num_blocks());
  }
}
BENCHMARK(BM_FromBinary_DynamicBitset);

}  // namespace
