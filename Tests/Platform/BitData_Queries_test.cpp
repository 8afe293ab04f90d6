// Searches, counts, parity, value tests and comparison of fields.
#include "BitData_Reference.h"

namespace bitdata_test {
namespace {

uint64_t ModelFindFirst(const Bits& bits, Field field) {
  for (uint64_t i = field.offset; i < field.offset + field.size; ++i)
    if (bits[i]) return i;
  return BITDATA_NOT_FOUND;
}

uint64_t ModelFindLast(const Bits& bits, Field field) {
  for (uint64_t i = field.offset + field.size; i-- > field.offset;)
    if (bits[i]) return i;
  return BITDATA_NOT_FOUND;
}

uint64_t ModelPopCount(const Bits& bits, Field field) {
  return std::count(bits.begin() + field.offset, bits.begin() + field.offset + field.size, true);
}

int32_t ModelCompare(const Bits& left, uint64_t leftOffset, const Bits& right, uint64_t rightOffset,
                     uint64_t size) {
  for (uint64_t i = size; i-- > 0;) {
    if (left[leftOffset + i] != right[rightOffset + i]) return left[leftOffset + i] ? 1 : -1;
  }
  return 0;
}

TEST(BitDataQueries, SearchesCountsAndParityMatchTheModel) {
  std::mt19937_64 random(31);
  for (uint64_t length : PropertySizes(random)) {
    for (double chance : {0.0, 0.001, 0.5}) {
      const Bits bits = SparseBits(random, length, chance);
      Vector object = FromBits(bits);
      for (int round = 0; round < RoundsFor(length); ++round) {
        const Field field = RandomField(random, length);
        SCOPED_TRACE(::testing::Message() << length << " (" << chance << ") at " << field.offset << " x "
                                          << field.size);
        uint64_t index = 0;
        ASSERT_EQ(BitData_FindFirst(object.get(), field.offset, field.size, &index), 0u);
        EXPECT_EQ(index, ModelFindFirst(bits, field));
        ASSERT_EQ(BitData_FindLast(object.get(), field.offset, field.size, &index), 0u);
        EXPECT_EQ(index, ModelFindLast(bits, field));
        uint64_t count = 0;
        ASSERT_EQ(BitData_PopCount(object.get(), field.offset, field.size, &count), 0u);
        EXPECT_EQ(count, ModelPopCount(bits, field));
        uint8_t parity = 2;
        ASSERT_EQ(BitData_Parity(object.get(), field.offset, field.size, &parity), 0u);
        EXPECT_EQ(parity, count % 2);
      }
    }
  }
}

TEST(BitDataQueries, ReadOnlyQueriesRefuseBadArguments) {
  Vector object(BitData_CreateManagedFromUInt64(16, 0x00F0));
  uint64_t index = 7;
  uint64_t count = 7;
  uint8_t byte = 7;
  int32_t order = 7;
  struct Case {
    uint64_t offset;
    uint64_t size;
    uint32_t code;
  };
  const Case cases[] = {
      {16, 1, BITDATA_BIT_OFFSET_INVALID},
      {17, 0, BITDATA_BIT_OFFSET_INVALID},
      {8, 9, BITDATA_BIT_RANGE_INVALID},
      {1, UINT64_MAX, BITDATA_BIT_RANGE_INVALID},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.offset << " x " << c.size);
    EXPECT_EQ(BitData_FindFirst(object.get(), c.offset, c.size, &index), c.code);
    EXPECT_EQ(BitData_FindLast(object.get(), c.offset, c.size, &index), c.code);
    EXPECT_EQ(BitData_PopCount(object.get(), c.offset, c.size, &count), c.code);
    EXPECT_EQ(BitData_Parity(object.get(), c.offset, c.size, &byte), c.code);
    EXPECT_EQ(BitData_IsValue(object.get(), c.offset, c.size, 0, &byte), c.code);
    EXPECT_EQ(BitData_Compare(object.get(), c.offset, object.get(), 0, c.size, &order), c.code);
    EXPECT_EQ(BitData_Compare(object.get(), 0, object.get(), c.offset, c.size, &order), c.code);
  }
  // A failed query leaves its output alone.
  EXPECT_EQ(index, 7u);
  EXPECT_EQ(count, 7u);
  EXPECT_EQ(byte, 7u);
  EXPECT_EQ(order, 7);
  EXPECT_EQ(BitData_FindFirst(object.get(), 0, 16, nullptr), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_FindLast(nullptr, 0, 0, &index), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_PopCount(object.get(), 0, 16, nullptr), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_Parity(object.get(), 0, 16, nullptr), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_IsValue(object.get(), 0, 16, 0, nullptr), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_Compare(object.get(), 0, nullptr, 0, 0, &order), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_Compare(object.get(), 0, object.get(), 0, 0, nullptr), BITDATA_NULL_ARGUMENT);
}

TEST(BitDataQueries, IsValueComparesTheFieldAsANumber) {
  // Bits 0..63 hold 0xF0, bit 100 is set.
  Vector object(BitData_CreateManagedFromUInt64(128, 0xF0));
  BitData_SetBit(object.get(), 100, true);
  struct Case {
    uint64_t offset;
    uint64_t size;
    uint64_t pattern;
    uint8_t matches;
  };
  const Case cases[] = {
      {0, 8, 0xF0, 1},
      {4, 4, 0xF, 1},
      {4, 4, 0x1F, 0},  // a pattern wider than the field cannot match
      {0, 64, 0xF0, 1},
      {0, 100, 0xF0, 1},
      {0, 101, 0xF0, 0},  // bit 100 lies above the pattern
      {100, 1, 1, 1},
      {101, 0, 0, 1},
      {101, 0, 1, 0},
      {36, 64, 0, 1},
      {36, 65, 0, 0},  // the field is 2^64
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.offset << " x " << c.size << " == " << c.pattern);
    uint8_t matches = 2;
    ASSERT_EQ(BitData_IsValue(object.get(), c.offset, c.size, c.pattern, &matches), 0u);
    EXPECT_EQ(matches, c.matches);
  }
}

TEST(BitDataQueries, CompareOrdersFieldsAsUnsignedNumbers) {
  std::mt19937_64 random(32);
  for (uint64_t length : PropertySizes(random)) {
    for (int round = 0; round < RoundsFor(length); ++round) {
      const uint64_t size = Uniform(random, 0, length);
      const uint64_t leftOffset = round % 3 == 0 ? 0 : Uniform(random, 0, length - size);
      const uint64_t rightOffset = round % 3 == 0 ? 0 : Uniform(random, 0, length - size);
      const Bits left = RandomBits(random, length);
      Bits right = RandomBits(random, length);
      // Mostly equal fields with one flipped bit, so the answer hangs on one place.
      std::copy_n(left.begin() + leftOffset, size, right.begin() + rightOffset);
      if (size != 0 && round % 4 != 0) {
        const uint64_t bit = Uniform(random, 0, size - 1);
        right[rightOffset + bit] = !right[rightOffset + bit];
      }
      Vector leftObject = FromBits(left);
      Vector rightObject = FromBits(right);
      SCOPED_TRACE(::testing::Message() << length << ": " << leftOffset << " vs " << rightOffset << " x " << size);
      int32_t order = 7;
      ASSERT_EQ(BitData_Compare(leftObject.get(), leftOffset, rightObject.get(), rightOffset, size, &order), 0u);
      EXPECT_EQ(order, ModelCompare(left, leftOffset, right, rightOffset, size));
    }
  }
}

}  // namespace
}  // namespace bitdata_test
