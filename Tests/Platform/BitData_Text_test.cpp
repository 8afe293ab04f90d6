// Text forms of fields, and vectors read back from text.
#include <string>

#include "BitData_Reference.h"

namespace bitdata_test {
namespace {

using TextFunction = uint32_t (*)(const BitData*, uint64_t, uint64_t, char*, uint64_t);

// The whole text of a field, with a buffer large enough for any form.
std::string Text(TextFunction function, const BitData* object, uint64_t offset, uint64_t size) {
  std::string buffer(size + 64, '\x7f');
  EXPECT_EQ(function(object, offset, size, buffer.data(), buffer.size()), 0u);
  return buffer.c_str();
}

std::string Text(TextFunction function, const BitData* object) {
  return Text(function, object, 0, object->bitSize);
}

Vector Parse(const std::string& text) { return Vector(BitData_CreateManagedFromString(text.c_str())); }

// The decimal digits of a vector's bits, worked out one bit at a time on a
// digit string: slow, but plainly right.
std::string ModelDecimal(const Bits& bits) {
  std::string digits = "0";  // least significant digit first
  for (size_t i = bits.size(); i-- > 0;) {
    int carry = bits[i];
    for (char& digit : digits) {
      const int value = (digit - '0') * 2 + carry;
      digit = static_cast<char>('0' + value % 10);
      carry = value / 10;
    }
    if (carry) digits.push_back('1');
  }
  return std::string(digits.rbegin(), digits.rend());
}

TEST(BitDataText, FormsOfKnownValues) {
  struct Case {
    uint64_t size;
    uint64_t value;
    const char* general;
    const char* decimal;
    const char* hex;
    const char* binary;
  };
  const Case cases[] = {
      {12, 0x0A5, "12'h0a5", "165", "0x0a5", "0b000010100101"},
      {16, 0, "16'h0000", "0", "0x0000", "0b0000000000000000"},
      {64, 10000000000000000000ULL, "64'h8ac7230489e80000", "10000000000000000000", "0x8ac7230489e80000",
       "0b1000101011000111001000110000010010001001111010000000000000000000"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.general);
    Vector object(BitData_CreateManagedFromUInt64(c.size, c.value));
    EXPECT_EQ(Text(BitData_ToString, object.get()), c.general);
    EXPECT_EQ(Text(BitData_ToDecimal, object.get()), c.decimal);
    EXPECT_EQ(Text(BitData_ToHex, object.get()), c.hex);
    EXPECT_EQ(Text(BitData_ToBinary, object.get()), c.binary);
  }
}

TEST(BitDataText, FieldsAreWrittenFromTheirOwnBitZero) {
  Vector object(BitData_CreateManagedFromUInt64(70, 0xABCD));
  EXPECT_EQ(Text(BitData_ToHex, object.get(), 4, 8), "0xbc");
  EXPECT_EQ(Text(BitData_ToBinary, object.get(), 1, 3), "0b110");
  EXPECT_EQ(Text(BitData_ToDecimal, object.get(), 8, 8), "171");
  EXPECT_EQ(Text(BitData_ToString, object.get(), 12, 58), "58'h00000000000000a");
  EXPECT_EQ(Text(BitData_ToString, object.get(), 70, 0), "0'h");
}

TEST(BitDataText, DecimalMatchesTheModel) {
  std::mt19937_64 random(51);
  for (uint64_t size : {1, 19, 63, 64, 65, 127, 128, 129, 300, 1217, 2000}) {
    for (int round = 0; round < 5; ++round) {
      const Bits bits = round == 0 ? Bits(size, true) : RandomBits(random, size);
      Vector object = FromBits(bits);
      SCOPED_TRACE(size);
      EXPECT_EQ(Text(BitData_ToDecimal, object.get()), ModelDecimal(bits));
    }
  }
}

TEST(BitDataText, EveryFormReadsBack) {
  std::mt19937_64 random(52);
  for (uint64_t size : PropertySizes(random)) {
    const Bits bits = RandomBits(random, size);
    Vector object = FromBits(bits);
    SCOPED_TRACE(size);

    Vector general = Parse(Text(BitData_ToString, object.get()));
    ASSERT_NE(general, nullptr);
    EXPECT_EQ(ToBits(general.get()), bits);

    Vector binary = Parse(Text(BitData_ToBinary, object.get()));
    ASSERT_NE(binary, nullptr);
    EXPECT_EQ(ToBits(binary.get()), bits);

    // Hexadecimal text keeps whole digits: the length rounds up to four.
    Vector hex = Parse(Text(BitData_ToHex, object.get()));
    ASSERT_NE(hex, nullptr);
    Bits padded = bits;
    padded.resize((size + 3) / 4 * 4, false);
    EXPECT_EQ(ToBits(hex.get()), padded);
    EXPECT_TRUE(TailIsClear(hex.get()));

    // Decimal text keeps the value: the length is what the value needs.
    Vector decimal = Parse(Text(BitData_ToDecimal, object.get()));
    ASSERT_NE(decimal, nullptr);
    uint64_t last = 0;
    ASSERT_EQ(BitData_FindLast(object.get(), 0, size, &last), 0u);
    const uint64_t needed = last == BITDATA_NOT_FOUND ? 1 : last + 1;
    ASSERT_EQ(decimal->bitSize, needed);
    Bits trimmed = bits;
    trimmed.resize(needed, false);
    EXPECT_EQ(ToBits(decimal.get()), trimmed);
  }
}

TEST(BitDataText, ReadsTheAcceptedSpellings) {
  struct Case {
    const char* text;
    uint64_t size;
    uint64_t value;
  };
  const Case cases[] = {
      {"0x1F", 8, 0x1F},     {"  0X1f\t\n", 8, 0x1F}, {"0b101", 3, 5},    {"0B0", 1, 0},
      {"0b", 0, 0},          {"0x", 0, 0},            {"0", 1, 0},        {"007", 3, 7},
      {"255", 8, 255},       {"256", 9, 256},         {"5'h1F", 5, 31},   {"5'H1f", 5, 31},
      {"5'b11111", 5, 31},   {"5'D31", 5, 31},        {"8'h000F", 8, 15}, {"0'h", 0, 0},
      {"0'b", 0, 0},         {"70'd0", 70, 0},        {"18446744073709551615", 64, 0xFFFFFFFFFFFFFFFF},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Vector object = Parse(c.text);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->bitSize, c.size);
    EXPECT_EQ(BitData_GetUInt64(object.get(), 0), c.value);
    EXPECT_TRUE(TailIsClear(object.get()));
  }
}

TEST(BitDataText, RefusesTextItCannotRead) {
  const char* texts[] = {
      "",         " ",     "0x1g",  "0b102",  "12a",        "-1",           "+1",          "1 0",
      "0x 1",     "x1",    "5'h20", "5'd32",  "5'b100000",  "'h1",          "5'",          "5'q1",
      "5'd",      "5''h1", "a'h1",  "5 'h1",  "4294967296'h0", "12345678901'h0", "0x1'h1", "1'h1'h1",
  };
  for (const char* text : texts) {
    SCOPED_TRACE(text);
    Vector object = Parse(text);
    EXPECT_EQ(object, nullptr);
  }
  EXPECT_EQ(BitData_CreateManagedFromString(nullptr), nullptr);
}

TEST(BitDataText, CutsTextToTheBufferAndSaysSo) {
  Vector object(BitData_CreateManagedFromUInt64(16, 0xBEEF));
  struct Case {
    TextFunction function;
    uint64_t bufferSize;
    const char* text;
    uint32_t code;
  };
  const Case cases[] = {
      {BitData_ToHex, 7, "0xbeef", 0},
      {BitData_ToHex, 6, "0xbee", BITDATA_VALUE_OUT_OF_RANGE},
      {BitData_ToHex, 1, "", BITDATA_VALUE_OUT_OF_RANGE},
      {BitData_ToDecimal, 3, "48", BITDATA_VALUE_OUT_OF_RANGE},
      {BitData_ToString, 5, "16'h", BITDATA_VALUE_OUT_OF_RANGE},
      {BitData_ToBinary, 10, "0b1011111", BITDATA_VALUE_OUT_OF_RANGE},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    char buffer[32];
    std::fill(std::begin(buffer), std::end(buffer), '\x7f');
    EXPECT_EQ(c.function(object.get(), 0, 16, buffer, c.bufferSize), c.code);
    EXPECT_STREQ(buffer, c.text);
    EXPECT_EQ(buffer[c.bufferSize], '\x7f');  // nothing written past the buffer
  }
  char untouched = '\x7f';
  EXPECT_EQ(BitData_ToHex(object.get(), 0, 16, &untouched, 0), BITDATA_VALUE_OUT_OF_RANGE);
  EXPECT_EQ(untouched, '\x7f');
}

TEST(BitDataText, RefusesBadArguments) {
  Vector object(BitData_CreateManaged(16));
  char buffer[32];
  for (TextFunction function : {BitData_ToString, BitData_ToDecimal, BitData_ToHex, BitData_ToBinary}) {
    EXPECT_EQ(function(object.get(), 17, 0, buffer, sizeof buffer), BITDATA_BIT_OFFSET_INVALID);
    EXPECT_EQ(function(object.get(), 8, 9, buffer, sizeof buffer), BITDATA_BIT_RANGE_INVALID);
    EXPECT_EQ(function(object.get(), 0, 16, nullptr, 8), BITDATA_NULL_ARGUMENT);
    EXPECT_EQ(function(nullptr, 0, 0, buffer, sizeof buffer), BITDATA_NULL_ARGUMENT);
  }
}

}  // namespace
}  // namespace bitdata_test
