// Copies between fields, byte buffers, values up to 64 bits and single bits.
#include <cstring>

#include "BitData_Reference.h"

namespace bitdata_test {
namespace {

TEST(BitDataFields, CopyBetweenVectorsMatchesTheModel) {
  std::mt19937_64 random(21);
  for (uint64_t sourceSize : PropertySizes(random)) {
    for (int round = 0; round < RoundsFor(sourceSize); ++round) {
      const uint64_t destinationSize = Uniform(random, 0, sourceSize + 130);
      const Bits sourceBits = RandomBits(random, sourceSize);
      Bits model = RandomBits(random, destinationSize);
      Vector source = FromBits(sourceBits);
      Vector destination = FromBits(model);
      const Field to = RandomField(random, destinationSize);
      const uint64_t size = std::min(to.size, sourceSize);
      const uint64_t from = Uniform(random, 0, sourceSize - size);
      SCOPED_TRACE(::testing::Message() << sourceSize << "[" << from << "] -> " << destinationSize << "["
                                        << to.offset << "] x " << size);
      ASSERT_EQ(BitData_Copy(source.get(), from, destination.get(), to.offset, size), 0u);
      std::copy_n(sourceBits.begin() + from, size, model.begin() + to.offset);
      EXPECT_EQ(ToBits(destination.get()), model);
      EXPECT_EQ(ToBits(source.get()), sourceBits);
      EXPECT_TRUE(TailIsClear(destination.get()));
    }
  }
}

TEST(BitDataFields, CopyWithinOneVectorHandlesOverlap) {
  std::mt19937_64 random(22);
  for (uint64_t length : PropertySizes(random)) {
    for (int round = 0; round < RoundsFor(length); ++round) {
      Bits model = RandomBits(random, length);
      Vector object = FromBits(model);
      const uint64_t size = Uniform(random, 0, length);
      // Close offsets overlap most of the time.
      const uint64_t from = Uniform(random, 0, length - size);
      const uint64_t to = Uniform(random, 0, length - size);
      SCOPED_TRACE(::testing::Message() << length << ": " << from << " -> " << to << " x " << size);
      ASSERT_EQ(BitData_Copy(object.get(), from, object.get(), to, size), 0u);
      const Bits moved = Slice(model, from, size);
      std::copy(moved.begin(), moved.end(), model.begin() + to);
      ASSERT_EQ(ToBits(object.get()), model);
    }
  }
}

TEST(BitDataFields, CopyRefusesFieldsPastTheEnd) {
  Vector source(BitData_CreateManagedFromUInt64(16, 0xFFFF));
  Vector destination(BitData_CreateManaged(16));
  struct Case {
    uint64_t sourceOffset;
    uint64_t destinationOffset;
    uint64_t size;
    uint32_t code;
  };
  const Case cases[] = {
      {0, 0, 16, 0},
      {16, 16, 0, 0},
      {17, 0, 0, BITDATA_BIT_OFFSET_INVALID},
      {0, 17, 0, BITDATA_BIT_OFFSET_INVALID},
      {16, 0, 1, BITDATA_BIT_OFFSET_INVALID},
      {1, 0, 16, BITDATA_BIT_RANGE_INVALID},
      {0, 1, 16, BITDATA_BIT_RANGE_INVALID},
      {0, 0, UINT64_MAX, BITDATA_BIT_RANGE_INVALID},
      {8, 0, UINT64_MAX - 4, BITDATA_BIT_RANGE_INVALID},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.sourceOffset << " " << c.destinationOffset << " " << c.size);
    BitData_SetUpToUInt64(destination.get(), 0, 16, 0);
    EXPECT_EQ(BitData_Copy(source.get(), c.sourceOffset, destination.get(), c.destinationOffset, c.size), c.code);
    // The check alone agrees with the copy on whichever side refuses.
    const uint32_t sourceCode = BitData_CheckField(source.get(), c.sourceOffset, c.size);
    EXPECT_EQ(sourceCode != 0 ? sourceCode : BitData_CheckField(destination.get(), c.destinationOffset, c.size),
              c.code);
    if (c.code != 0) {
      EXPECT_EQ(BitData_GetUInt64(destination.get(), 0), 0u);
    }
  }
  EXPECT_EQ(BitData_Copy(nullptr, 0, destination.get(), 0, 0), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_Copy(source.get(), 0, nullptr, 0, 0), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_CheckField(nullptr, 0, 0), BITDATA_NULL_ARGUMENT);
}

TEST(BitDataFields, GetBufferWritesTheBitsFromTheOffsetThenZeros) {
  std::mt19937_64 random(23);
  for (uint64_t size : PropertySizes(random)) {
    const Bits bits = RandomBits(random, size);
    Vector object = FromBits(bits);
    for (int round = 0; round < RoundsFor(size); ++round) {
      const uint64_t offset = Uniform(random, 0, size);
      const uint64_t needed = (size - offset + 7) / 8;
      const uint64_t bufferSize = needed + Uniform(random, 0, 9);
      SCOPED_TRACE(::testing::Message() << size << " from " << offset << " into " << bufferSize);
      std::vector<uint8_t> buffer(bufferSize, 0xA5);
      ASSERT_EQ(BitData_GetBuffer(object.get(), offset, buffer.data(), bufferSize), 0u);
      std::vector<uint8_t> expected = PackBits(Slice(bits, offset, size - offset));
      expected.resize(bufferSize, 0);
      EXPECT_EQ(buffer, expected);
    }
  }
}

TEST(BitDataFields, GetBufferTooSmallWritesWhatFitsAndSaysSo) {
  Vector object(BitData_CreateManagedFromUInt64(40, 0x1122334455));
  uint8_t buffer[4] = {0, 0, 0, 0};
  EXPECT_EQ(BitData_GetBuffer(object.get(), 4, buffer, 2), BITDATA_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(buffer[0], 0x45);
  EXPECT_EQ(buffer[1], 0x34);
  EXPECT_EQ(buffer[2], 0x00);
}

TEST(BitDataFields, GetBufferArgumentEdges) {
  Vector object(BitData_CreateManagedFromUInt64(8, 0xFF));
  uint8_t buffer[2] = {0x11, 0x11};
  EXPECT_EQ(BitData_GetBuffer(object.get(), 9, buffer, 2), BITDATA_BIT_OFFSET_INVALID);
  EXPECT_EQ(buffer[0], 0x11);
  EXPECT_EQ(BitData_GetBuffer(object.get(), 8, buffer, 2), 0u);
  EXPECT_EQ(buffer[0], 0x00);
  EXPECT_EQ(BitData_GetBuffer(object.get(), 0, nullptr, 0), BITDATA_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(BitData_GetBuffer(object.get(), 8, nullptr, 0), 0u);
  EXPECT_EQ(BitData_GetBuffer(object.get(), 0, nullptr, 1), BITDATA_NULL_ARGUMENT);
  EXPECT_EQ(BitData_GetBuffer(nullptr, 0, buffer, 2), BITDATA_NULL_ARGUMENT);
}

TEST(BitDataFields, ValuesUpTo64BitsReadAndWriteAtAnyOffset) {
  std::mt19937_64 random(24);
  for (uint64_t length : PropertySizes(random)) {
    Bits model = RandomBits(random, length);
    Vector object = FromBits(model);
    for (int round = 0; round < RoundsFor(length) * 4; ++round) {
      const uint64_t offset = Uniform(random, 0, length);
      const uint64_t size = Uniform(random, 0, std::min<uint64_t>(64, length - offset));
      const uint64_t value = random();
      SCOPED_TRACE(::testing::Message() << length << " at " << offset << " x " << size);
      ASSERT_EQ(BitData_SetUpToUInt64(object.get(), offset, size, value), 0u);
      for (uint64_t i = 0; i < size; ++i) model[offset + i] = (value >> i) & 1;
      EXPECT_EQ(BitData_GetUpToUInt64(object.get(), offset, size), ValueOf(model, offset, size));
      // The wide reads see zeros past the end.
      const uint64_t rest = length - offset;
      EXPECT_EQ(BitData_GetUInt64(object.get(), offset), ValueOf(model, offset, std::min<uint64_t>(64, rest)));
      EXPECT_EQ(BitData_GetUInt32(object.get(), offset), ValueOf(model, offset, std::min<uint64_t>(32, rest)));
    }
    EXPECT_EQ(ToBits(object.get()), model);
    EXPECT_TRUE(TailIsClear(object.get()));
  }
}

TEST(BitDataFields, ValueArgumentEdges) {
  Vector object(BitData_CreateManagedFromUInt64(70, 0xFFFFFFFFFFFFFFFF));
  struct Case {
    uint64_t offset;
    uint64_t size;
    uint32_t code;
  };
  const Case cases[] = {
      {0, 64, 0},
      {6, 64, 0},
      {70, 0, 0},
      {0, 65, BITDATA_VALUE_OUT_OF_RANGE},
      {7, 64, BITDATA_BIT_RANGE_INVALID},
      {70, 1, BITDATA_BIT_OFFSET_INVALID},
      {71, 0, BITDATA_BIT_OFFSET_INVALID},
      {UINT64_MAX, 1, BITDATA_BIT_OFFSET_INVALID},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.offset << " x " << c.size);
    EXPECT_EQ(BitData_SetUpToUInt64(object.get(), c.offset, c.size, 0), c.code);
    ASSERT_EQ(BitData_SetUpToUInt64(object.get(), 0, 64, 0xFFFFFFFFFFFFFFFF), 0u);
    ASSERT_EQ(BitData_SetUpToUInt64(object.get(), 64, 6, 0x3F), 0u);
  }
  EXPECT_EQ(BitData_SetUpToUInt64(nullptr, 0, 1, 1), BITDATA_NULL_ARGUMENT);
  // Reads clamp instead of failing.
  EXPECT_EQ(BitData_GetUpToUInt64(object.get(), 60, 100), 0x3FFu);
  EXPECT_EQ(BitData_GetUpToUInt64(object.get(), 0, 0), 0u);
  EXPECT_EQ(BitData_GetUInt64(object.get(), 70), 0u);
  EXPECT_EQ(BitData_GetUInt64(object.get(), UINT64_MAX), 0u);
  EXPECT_EQ(BitData_GetUInt64(nullptr, 0), 0u);
  EXPECT_EQ(BitData_GetUInt32(object.get(), 66), 0xFu);
}

// Setting bits in range is covered by every model test that resizes.
TEST(BitDataFields, SingleBitsPastTheEnd) {
  Vector object(BitData_CreateManaged(130));
  EXPECT_EQ(BitData_SetBit(object.get(), 130, true), BITDATA_BIT_OFFSET_INVALID);
  EXPECT_TRUE(TailIsClear(object.get()));
  EXPECT_FALSE(BitData_GetBit(object.get(), 130));
  EXPECT_FALSE(BitData_GetBit(nullptr, 0));
  EXPECT_EQ(BitData_SetBit(nullptr, 0, true), BITDATA_NULL_ARGUMENT);
}

}  // namespace
}  // namespace bitdata_test
