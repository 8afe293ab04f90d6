// Creating, copying, resizing and releasing vectors.
#include <functional>

#include "BitData_Reference.h"

namespace bitdata_test {
namespace {

TEST(BitDataObjects, CreateManagedGivesZeroBitsOfTheLength) {
  for (uint64_t size : kEdgeSizes) {
    SCOPED_TRACE(size);
    Vector object(BitData_CreateManaged(size));
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->bitSize, size);
    EXPECT_EQ(ToBits(object.get()), Bits(size, false));
  }
}

TEST(BitDataObjects, CreateFromUInt64KeepsTheLowBitsOfTheValue) {
  struct Case {
    uint64_t size;
    uint64_t value;
    uint64_t stored;
  };
  const Case cases[] = {
      {0, 0xFFFFFFFFFFFFFFFF, 0},
      {63, 0xFFFFFFFFFFFFFFFF, 0x7FFFFFFFFFFFFFFF},
      {200, 0xFFFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF},  // bits above 64 stay zero
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.size);
    Vector object(BitData_CreateManagedFromUInt64(c.size, c.value));
    EXPECT_EQ(object->bitSize, c.size);
    EXPECT_EQ(BitData_GetUInt64(object.get(), 0), c.stored);
    uint64_t last = 0;
    ASSERT_EQ(BitData_FindLast(object.get(), 0, c.size, &last), 0u);
    EXPECT_TRUE(last == BITDATA_NOT_FOUND || last < 64) << last;
    EXPECT_TRUE(TailIsClear(object.get()));
  }
}

TEST(BitDataObjects, CreateFromBufferReadsBitZeroFromTheLowBitOfByteZero) {
  const uint8_t bytes[] = {0x01, 0x80, 0xFF};
  // 20 bits: the top four bits of the last byte lie outside and are dropped.
  Vector object(BitData_CreateManagedFromBuffer(20, bytes));
  EXPECT_EQ(object->bitSize, 20u);
  EXPECT_EQ(BitData_GetUInt32(object.get(), 0), 0x0F8001u);
  EXPECT_TRUE(TailIsClear(object.get()));
}

TEST(BitDataObjects, CreateFromBufferRefusesANullBufferUnlessEmpty) {
  EXPECT_EQ(BitData_CreateManagedFromBuffer(8, nullptr), nullptr);
  Vector empty(BitData_CreateManagedFromBuffer(0, nullptr));
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(empty->bitSize, 0u);
}

TEST(BitDataObjects, CreateFromBitDataCopiesAndStaysIndependent) {
  std::mt19937_64 random(12);
  for (uint64_t size : kEdgeSizes) {
    SCOPED_TRACE(size);
    const Bits bits = RandomBits(random, size);
    Vector source = FromBits(bits);
    Vector copy(BitData_CreateManagedFromBitData(source.get()));
    EXPECT_EQ(ToBits(copy.get()), bits);
    if (size != 0) {
      BitData_SetBit(source.get(), 0, !bits[0]);
      EXPECT_EQ(BitData_GetBit(copy.get(), 0), bits[0]);
    }
  }
  EXPECT_EQ(BitData_CreateManagedFromBitData(nullptr), nullptr);
}

TEST(BitDataObjects, FreeManagedAcceptsNull) {
  BitData_FreeManaged(nullptr);
  EXPECT_EQ(BitData_Resize(nullptr, 4), BITDATA_NULL_ARGUMENT);
}

TEST(BitDataObjects, ResizeKeepsBitsAndAddsZeros) {
  std::mt19937_64 random(13);
  for (uint64_t size : PropertySizes(random)) {
    Bits model = RandomBits(random, size);
    Vector object = FromBits(model);
    BitData* const address = object.get();
    for (int round = 0; round < 8; ++round) {
      const uint64_t newSize = Uniform(random, 0, size + 300);
      SCOPED_TRACE(::testing::Message() << size << " -> " << newSize);
      ASSERT_EQ(BitData_Resize(object.get(), newSize), 0u);
      model.resize(newSize, false);
      EXPECT_EQ(object.get(), address);
      ASSERT_EQ(object->bitSize, newSize);
      EXPECT_EQ(ToBits(object.get()), model);
      EXPECT_TRUE(TailIsClear(object.get()));
      // New bits must work like any others.
      if (newSize != 0) {
        const uint64_t bit = Uniform(random, 0, newSize - 1);
        BitData_SetBit(object.get(), bit, true);
        model[bit] = true;
      }
    }
  }
}

// Large storage is kept for reuse once released: what a new vector gets
// from it must read as a fresh one would, whichever way it is made.
TEST(BitDataObjects, LargeVectorsMadeFromReleasedStorageHoldNothingOfItsPast) {
  constexpr uint64_t kLarge = uint64_t{1} << 23;  // 1 MiB
  const std::vector<uint8_t> zeros(kLarge / 8 - 1, 0);
  struct Maker {
    const char* name;
    std::function<BitData*()> make;
    uint64_t size;
  };
  const Maker makers[] = {
      {"zero", [&] { return BitData_CreateManaged(kLarge - 5); }, kLarge - 5},
      {"number", [&] { return BitData_CreateManagedFromUInt64(kLarge, 0); }, kLarge},
      {"bytes", [&] { return BitData_CreateManagedFromBuffer(kLarge - 12, zeros.data()); }, kLarge - 12},
      {"copy",
       [&] {
         Vector source(BitData_CreateManaged(kLarge - 1));
         return BitData_CreateManagedFromBitData(source.get());
       },
       kLarge - 1},
      {"grown",
       [&] {
         BitData* grown = BitData_CreateManaged(64);
         BitData_Resize(grown, kLarge);
         return grown;
       },
       kLarge},
  };
  for (const Maker& maker : makers) {
    SCOPED_TRACE(maker.name);
    for (int round = 0; round < 3; ++round) {
      Vector used(BitData_CreateManaged(kLarge + 64 * round));
      ASSERT_EQ(BitData_XorValue(used.get(), 0, used->bitSize, ~uint64_t{0}), 0u);
    }
    Vector made(maker.make());
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->bitSize, maker.size);
    uint64_t ones = 1;
    ASSERT_EQ(BitData_PopCount(made.get(), 0, made->bitSize, &ones), 0u);
    EXPECT_EQ(ones, 0u);
    EXPECT_TRUE(TailIsClear(made.get()));
  }
}

}  // namespace
}  // namespace bitdata_test
