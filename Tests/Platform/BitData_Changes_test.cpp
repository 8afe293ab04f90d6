// Changes in place: bitwise logic, exclusive or with a value, reversal,
// shifts and random fill.
#include <cstdlib>
#include <functional>

#include "BitData_Reference.h"

namespace bitdata_test {
namespace {

using BitwiseFunction = uint32_t (*)(BitData*, uint64_t, const BitData*, uint64_t, const BitData*, uint64_t,
                                     uint64_t);

struct Bitwise {
  const char* name;
  BitwiseFunction function;
  std::function<bool(bool, bool)> model;
};

const Bitwise kBitwise[] = {
    {"And", BitData_BitwiseAnd, std::logical_and<bool>()},
    {"Or", BitData_BitwiseOr, std::logical_or<bool>()},
    {"Xor", BitData_BitwiseXor, std::not_equal_to<bool>()},
};

TEST(BitDataChanges, BitwiseOfThreeVectorsMatchesTheModel) {
  std::mt19937_64 random(41);
  for (const Bitwise& operation : kBitwise) {
    for (uint64_t length : PropertySizes(random)) {
      for (int round = 0; round < RoundsFor(length); ++round) {
        const Bits left = RandomBits(random, length);
        const Bits right = RandomBits(random, length + 70);
        Bits model = RandomBits(random, length + 5);
        Vector leftObject = FromBits(left);
        Vector rightObject = FromBits(right);
        Vector destination = FromBits(model);
        // Aligned offsets take a faster path; make them common.
        const bool aligned = round % 3 == 0;
        const uint64_t size = Uniform(random, 0, length);
        const uint64_t leftOffset = aligned ? 0 : Uniform(random, 0, length - size);
        const uint64_t rightOffset = aligned ? 64 : Uniform(random, 0, length + 70 - size);
        const uint64_t destinationOffset = aligned ? 0 : Uniform(random, 0, length + 5 - size);
        SCOPED_TRACE(::testing::Message() << operation.name << " " << length << ": " << destinationOffset << " "
                                          << leftOffset << " " << rightOffset << " x " << size);
        ASSERT_EQ(operation.function(destination.get(), destinationOffset, leftObject.get(), leftOffset,
                                     rightObject.get(), rightOffset, size),
                  0u);
        for (uint64_t i = 0; i < size; ++i)
          model[destinationOffset + i] = operation.model(left[leftOffset + i], right[rightOffset + i]);
        EXPECT_EQ(ToBits(destination.get()), model);
        EXPECT_TRUE(TailIsClear(destination.get()));
      }
    }
  }
}

TEST(BitDataChanges, BitwiseWithinOneVectorReadsBeforeItWrites) {
  std::mt19937_64 random(42);
  for (const Bitwise& operation : kBitwise) {
    for (uint64_t length : {0, 1, 64, 65, 200, 1000, 4099}) {
      for (int round = 0; round < 60; ++round) {
        Bits model = RandomBits(random, length);
        Vector object = FromBits(model);
        Vector other = FromBits(RandomBits(random, length));
        const Bits otherBits = ToBits(other.get());
        const uint64_t size = Uniform(random, 0, length);
        auto offset = [&] { return round % 5 == 0 ? 64 * Uniform(random, 0, (length - size) / 64)
                                                  : Uniform(random, 0, length - size); };
        const uint64_t destinationOffset = offset();
        const uint64_t leftOffset = offset();
        const uint64_t rightOffset = offset();
        // Both operands in the destination's vector, or only one of them.
        const int shape = round % 3;
        const BitData* left = shape == 2 ? other.get() : object.get();
        const BitData* right = shape == 1 ? other.get() : object.get();
        const Bits before = model;
        const Bits& leftBits = shape == 2 ? otherBits : before;
        const Bits& rightBits = shape == 1 ? otherBits : before;
        SCOPED_TRACE(::testing::Message() << operation.name << " " << length << " shape " << shape << ": "
                                          << destinationOffset << " " << leftOffset << " " << rightOffset << " x "
                                          << size);
        ASSERT_EQ(operation.function(object.get(), destinationOffset, left, leftOffset, right, rightOffset, size),
                  0u);
        for (uint64_t i = 0; i < size; ++i)
          model[destinationOffset + i] = operation.model(leftBits[leftOffset + i], rightBits[rightOffset + i]);
        ASSERT_EQ(ToBits(object.get()), model);
      }
    }
  }
}

TEST(BitDataChanges, BitwiseRefusesAnyFieldPastItsEnd) {
  Vector small(BitData_CreateManagedFromUInt64(8, 0xFF));
  Vector large(BitData_CreateManaged(16));
  for (const Bitwise& operation : kBitwise) {
    SCOPED_TRACE(operation.name);
    EXPECT_EQ(operation.function(large.get(), 0, small.get(), 0, large.get(), 0, 9), BITDATA_BIT_RANGE_INVALID);
    EXPECT_EQ(operation.function(small.get(), 0, large.get(), 0, large.get(), 0, 9), BITDATA_BIT_RANGE_INVALID);
    EXPECT_EQ(operation.function(large.get(), 0, large.get(), 0, small.get(), 8, 1), BITDATA_BIT_OFFSET_INVALID);
    EXPECT_EQ(operation.function(large.get(), 0, large.get(), 0, nullptr, 0, 0), BITDATA_NULL_ARGUMENT);
    EXPECT_EQ(operation.function(nullptr, 0, large.get(), 0, large.get(), 0, 0), BITDATA_NULL_ARGUMENT);
    EXPECT_EQ(BitData_GetUInt64(small.get(), 0), 0xFFu);
    EXPECT_EQ(BitData_GetUInt64(large.get(), 0), 0u);
  }
}

TEST(BitDataChanges, XorValueRepeatsTheValueOverTheField) {
  std::mt19937_64 random(43);
  for (uint64_t length : PropertySizes(random)) {
    Bits model = RandomBits(random, length);
    Vector object = FromBits(model);
    for (int round = 0; round < RoundsFor(length); ++round) {
      const Field field = RandomField(random, length);
      const uint64_t value = round % 4 == 0 ? ~uint64_t{0} : random();
      SCOPED_TRACE(::testing::Message() << length << " at " << field.offset << " x " << field.size);
      ASSERT_EQ(BitData_XorValue(object.get(), field.offset, field.size, value), 0u);
      for (uint64_t i = 0; i < field.size; ++i) model[field.offset + i] = model[field.offset + i] ^ ((value >> (i % 64)) & 1);
      ASSERT_EQ(ToBits(object.get()), model);
    }
    EXPECT_TRUE(TailIsClear(object.get()));
  }
  EXPECT_EQ(BitData_XorValue(nullptr, 0, 0, 1), BITDATA_NULL_ARGUMENT);
}

TEST(BitDataChanges, ReverseTurnsTheFieldAround) {
  std::mt19937_64 random(44);
  for (uint64_t length : PropertySizes(random)) {
    Bits model = RandomBits(random, length);
    Vector object = FromBits(model);
    for (int round = 0; round < RoundsFor(length); ++round) {
      const Field field = RandomField(random, length);
      SCOPED_TRACE(::testing::Message() << length << " at " << field.offset << " x " << field.size);
      ASSERT_EQ(BitData_Reverse(object.get(), field.offset, field.size), 0u);
      std::reverse(model.begin() + field.offset, model.begin() + field.offset + field.size);
      ASSERT_EQ(ToBits(object.get()), model);
    }
  }
}

// The shifted field, for a shift towards the top when `upwards`.
Bits ModelShift(Bits bits, Field field, uint64_t distance, bool upwards) {
  const Bits old = Slice(bits, field.offset, field.size);
  for (uint64_t i = 0; i < field.size; ++i) {
    const uint64_t from = upwards ? i - distance : i + distance;
    const bool inside = upwards ? i >= distance : distance < field.size - i;
    bits[field.offset + i] = inside && old[from];
  }
  return bits;
}

TEST(BitDataChanges, ShiftsMoveBitsInsideTheField) {
  std::mt19937_64 random(45);
  for (uint64_t length : PropertySizes(random)) {
    Bits model = RandomBits(random, length);
    Vector object = FromBits(model);
    for (int round = 0; round < RoundsFor(length) * 2; ++round) {
      const Field field = RandomField(random, length);
      const int64_t distance = static_cast<int64_t>(Uniform(random, 0, field.size + 2)) * (round % 3 == 0 ? -1 : 1);
      const bool left = round % 2 == 0;
      SCOPED_TRACE(::testing::Message() << length << " at " << field.offset << " x " << field.size << " shift "
                                        << (left ? "left " : "right ") << distance);
      const uint64_t magnitude = distance < 0 ? -distance : distance;
      ASSERT_EQ(left ? BitData_ShiftLeft(object.get(), field.offset, field.size, distance)
                     : BitData_ShiftRight(object.get(), field.offset, field.size, distance),
                0u);
      model = ModelShift(model, field, magnitude, left == (distance >= 0));
      ASSERT_EQ(ToBits(object.get()), model);
    }
  }
}

TEST(BitDataChanges, ShiftEdges) {
  struct Case {
    bool left;
    int64_t distance;
    uint64_t result;
  };
  const Case cases[] = {
      {true, 6, 0xC00},  // bits leaving the 12-bit field are lost
      {false, -4, 0xF00},
      {false, INT64_MAX, 0},
      {true, INT64_MIN, 0},
      {false, INT64_MIN, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << (c.left ? "left " : "right ") << c.distance);
    // A 12-bit field in the middle of ones: the bits around it stay.
    Vector object(BitData_CreateManagedFromUInt64(32, 0xFFF0F0FF));
    ASSERT_EQ(c.left ? BitData_ShiftLeft(object.get(), 8, 12, c.distance)
                     : BitData_ShiftRight(object.get(), 8, 12, c.distance),
              0u);
    EXPECT_EQ(BitData_GetUInt32(object.get(), 0), 0xFFF000FFu | (c.result << 8));
  }
}

TEST(BitDataChanges, InPlaceChangesRefuseFieldsPastTheEnd) {
  Vector object(BitData_CreateManagedFromUInt64(10, 0x155));
  struct Case {
    uint64_t offset;
    uint64_t size;
    uint32_t code;
  };
  const Case cases[] = {
      {10, 0, 0},
      {11, 0, BITDATA_BIT_OFFSET_INVALID},
      {10, 1, BITDATA_BIT_OFFSET_INVALID},
      {5, 6, BITDATA_BIT_RANGE_INVALID},
      {5, UINT64_MAX, BITDATA_BIT_RANGE_INVALID},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.offset << " x " << c.size);
    EXPECT_EQ(BitData_XorValue(object.get(), c.offset, c.size, ~uint64_t{0}), c.code);
    EXPECT_EQ(BitData_Reverse(object.get(), c.offset, c.size), c.code);
    EXPECT_EQ(BitData_ShiftLeft(object.get(), c.offset, c.size, 1), c.code);
    EXPECT_EQ(BitData_ShiftRight(object.get(), c.offset, c.size, 1), c.code);
    EXPECT_EQ(BitData_Randomize(object.get(), c.offset, c.size), c.code);
    EXPECT_EQ(BitData_GetUInt32(object.get(), 0), 0x155u);
  }
  EXPECT_EQ(BitData_Reverse(nullptr, 0, 0), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_ShiftLeft(nullptr, 0, 0, 0), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_ShiftRight(nullptr, 0, 0, 0), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_Randomize(nullptr, 0, 0), BITDATA_NULL_ARGUMENT);
}

TEST(BitDataChanges, RandomizeFollowsTheSeedAndStaysInTheField) {
  const uint64_t length = 1000;
  auto fill = [&](unsigned seed) {
    Vector object(BitData_CreateManaged(length));
    BitData_XorValue(object.get(), 0, length, ~uint64_t{0});
    std::srand(seed);
    EXPECT_EQ(BitData_Randomize(object.get(), 37, 900), 0u);
    return ToBits(object.get());
  };
  const Bits first = fill(5);
  EXPECT_EQ(fill(5), first);
  EXPECT_NE(fill(6), first);
  // Outside the field every bit is still one; inside, about half are.
  EXPECT_TRUE(std::all_of(first.begin(), first.begin() + 37, [](bool bit) { return bit; }));
  EXPECT_TRUE(std::all_of(first.begin() + 937, first.end(), [](bool bit) { return bit; }));
  const auto ones = std::count(first.begin() + 37, first.begin() + 937, true);
  EXPECT_GT(ones, 350);
  EXPECT_LT(ones, 550);
}

}  // namespace
}  // namespace bitdata_test
