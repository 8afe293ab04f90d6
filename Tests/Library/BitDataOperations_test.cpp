// The BitDataOperations service: the checks of every operation and their
// messages, what each family computes, and the trace of representative
// operations.
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "BitDataTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::EmptyRecord;
using vxt::test::TraceWithLevels;

using BitDataOperationsTest = vxt::test::BitDataServiceTest;

// Every refusal of the service, each with its whole message. A refused call
// changes no record and no vector, and takes no handle.
TEST_F(BitDataOperationsTest, RefusalsNameTheOperationTheArgumentAndTheReason) {
  VXT_BitData good = Make(8, 0xa5);      // 2
  VXT_BitData other = Make(16, 0x3c3c);  // 3
  VXT_BitData empty = EmptyRecord();
  VXT_BitData unsized{0, 8, good.dataHandle};
  VXT_BitData unknown{VXT_BITDATA_SIZE, 8, 999};
  char text[8] = {};
  uint32_t u32 = 0;
  int32_t i32 = 0;
  constexpr auto kUnknownOperation = static_cast<BitwiseOperation>(3);

  struct Refusal {
    std::function<VXT_Result()> call;
    VXT_Result code;
    std::string message;
  };
  const std::string p = "InProc_BitDataOperations::";
  const Refusal refusals[] = {
      // Text
      {[&] { return ops->ToString(&good, nullptr, 8, nullptr); }, VXT_E_INVALID_ARGUMENT,
       p + "ToString() argument error (buffer and actualStringSize) : Null pointer"},
      {[&] { return ops->ToStringHexadecimal(&unsized, text, 8, nullptr); }, VXT_E_STRUCTURE_SIZE,
       p + "ToStringHexadecimal() argument error (bitData) : Structure size not initialized"},
      // Single bits: SetBitOn, SetBitOff and the tests check the offset before
      // the lookup, InvertBit after it.
      {[&] { return ops->SetBitOff(&unknown, 8); }, VXT_E_BITDATA_BIT_OFFSET_INVALID,
       p + "SetBitOff() argument error (bitOffset) : Invalid"},
      {[&] { return ops->InvertBit(&good, 8); }, VXT_E_BITDATA_BIT_OFFSET_INVALID,
       p + "InvertBit() argument error (bitData) : Bit offset invalid"},
      {[&] { return ops->IsBitOn(&good, 9, nullptr); }, VXT_E_INVALID_ARGUMENT,
       p + "IsBitOn() argument error (result) : Null pointer"},
      // Queries: the range before the lookup.
      {[&] { return ops->FindLastBitRange(&unknown, 4, 8, &u32); }, VXT_E_BITDATA_BIT_RANGE_INVALID,
       p + "FindLastBitRange() argument error (bitData) : Bit range invalid"},
      // Comparison
      {[&] { return ops->CompareBitRange(&good, 0, 9, &unknown, 0, 8, &i32); }, VXT_E_BITDATA_BIT_RANGE_INVALID,
       p + "CompareBitRange() argument error (left) : Bit range invalid"},
      {[&] { return ops->CompareBitRange(&good, 0, 8, &unknown, 0, 8, &i32); }, VXT_E_BITDATA_INVALID,
       p + "CompareBitRange() argument error (right) : Invalid"},
      // Arithmetic and rotation: checked, then not implemented; handles are
      // never looked up.
      {[&] { return ops->Add(&good, 1, &other); }, VXT_E_BITDATA_DESTINATION_EXISTS,
       p + "Add() argument error (result) : Destination exists"},
      {[&] { return ops->DivideBitRange(&unknown, 99, 99, &good, 0, 0, &good, 0, 0); }, VXT_E_NOT_IMPLEMENTED,
       "Not implemented"},
      // Logic
      {[&] { return ops->Xor(&good, nullptr, &empty); }, VXT_E_INVALID_ARGUMENT,
       p + "Xor() argument error (right) : Null pointer"},
      {[&] { return ops->BitwiseOp(&good, 4, 8, &other, 0, 8, &good, 0, 8, VXT_BitwiseOperation_AND); },
       VXT_E_BITDATA_BIT_RANGE_INVALID, p + "BitwiseOp() argument error (dest bit range) : Bit range invalid"},
      {[&] { return ops->BitwiseOp(&good, 0, 8, &other, 16, 1, &good, 0, 8, VXT_BitwiseOperation_AND); },
       VXT_E_BITDATA_BIT_OFFSET_INVALID, p + "BitwiseOp() argument error (left bit range) : Bit offset invalid"},
      // A bad range is told before an unknown operation...
      {[&] { return ops->BitwiseOp(&good, 0, 8, &other, 0, 8, &good, 1, 8, kUnknownOperation); },
       VXT_E_BITDATA_BIT_RANGE_INVALID, p + "BitwiseOp() argument error (right bit range) : Bit range invalid"},
      {[&] { return ops->BitwiseOp(&good, 0, 8, &unknown, 0, 8, &good, 0, 8, kUnknownOperation); },
       VXT_E_BITDATA_INVALID, p + "BitwiseOp() argument error (left) : Invalid"},
      // ...which comes last, told by its code alone.
      {[&] { return ops->BitwiseOp(&good, 0, 8, &other, 0, 8, &good, 0, 8, kUnknownOperation); },
       VXT_E_BITDATA_UNKNOWN_OPERATION, "Invalid bitwise operation"},
      // Changes
      {[&] { return ops->SetBitRangeToPattern(&good, 0, 9, 1); }, VXT_E_BITDATA_BIT_RANGE_INVALID,
       p + "SetBitRangeToPattern() argument error (bitData) : Bit range invalid"},
      // The lookup comes before the range here.
      {[&] { return ops->SetBitRangeToPattern(&unknown, 0, 9, 1); }, VXT_E_BITDATA_INVALID,
       p + "SetBitRangeToPattern() argument error (bitData) : Invalid"},
  };

  const std::vector<VXT_BitData> records{good, other, empty, unsized, unknown};
  for (const Refusal& refusal : refusals) {
    EXPECT_EQ(refusal.call(), refusal.code) << refusal.message;
    EXPECT_EQ(GetLastErrorMessage(), refusal.message);

    const std::vector<VXT_BitData> after{good, other, empty, unsized, unknown};
    for (size_t i = 0; i < records.size(); ++i) {
      EXPECT_EQ(after[i].bitSize, records[i].bitSize) << refusal.message;
      EXPECT_EQ(after[i].dataHandle, records[i].dataHandle) << refusal.message;
    }
    EXPECT_EQ(Hex(good) + " " + Hex(other), "0xa5 0x3c3c") << refusal.message;
  }
  EXPECT_EQ(Make(1).dataHandle, 4u);
}

// ---- Text -------------------------------------------------------------------

TEST_F(BitDataOperationsTest, TextFormsOfAVector) {
  using TextOperation =
      VXT_Result (IInternalService_BitDataOperations::*)(const VXT_BitData*, char*, uint32_t, uint32_t*);
  const TextOperation general = &IInternalService_BitDataOperations::ToString;
  const TextOperation decimal = &IInternalService_BitDataOperations::ToStringDecimal;
  const TextOperation hexadecimal = &IInternalService_BitDataOperations::ToStringHexadecimal;
  const TextOperation binary = &IInternalService_BitDataOperations::ToStringBinary;
  struct Case {
    const char* vector;
    TextOperation operation;
    std::string text;
  };
  const Case cases[] = {
      {"12'habc", general, "12'habc"},       {"12'habc", decimal, "2748"}, {"12'habc", hexadecimal, "0xabc"},
      {"12'habc", binary, "0b101010111100"}, {"0x", binary, "0b"},
  };
  for (const Case& c : cases) {
    const VXT_BitData record = Parse(c.vector);
    char buffer[64];
    uint32_t size = 0;
    ASSERT_EQ((ops->*c.operation)(&record, buffer, sizeof buffer, &size), VXT_SUCCESS) << c.vector;
    EXPECT_EQ(std::string(buffer), c.text) << c.vector;
    EXPECT_EQ(size, c.text.size()) << c.vector;
    // Without a place for the length the text is written all the same.
    std::fill(std::begin(buffer), std::end(buffer), 'x');
    ASSERT_EQ((ops->*c.operation)(&record, buffer, sizeof buffer, nullptr), VXT_SUCCESS) << c.vector;
    EXPECT_EQ(std::string(buffer), c.text) << c.vector;
  }
}

// What a caller does with a size query: a buffer of the estimate and one
// more for the terminating zero holds the whole text of a vector of any
// length with every bit set. The decimal, hexadecimal and binary estimates
// can equal the text's length, so the one more is needed.
TEST_F(BitDataOperationsTest, TheEstimateAndOneMoreHoldTheWholeText) {
  using TextOperation =
      VXT_Result (IInternalService_BitDataOperations::*)(const VXT_BitData*, char*, uint32_t, uint32_t*);
  struct Form {
    const char* name;
    TextOperation operation;
  };
  const Form forms[] = {
      {"general", &IInternalService_BitDataOperations::ToString},
      {"decimal", &IInternalService_BitDataOperations::ToStringDecimal},
      {"hexadecimal", &IInternalService_BitDataOperations::ToStringHexadecimal},
      {"binary", &IInternalService_BitDataOperations::ToStringBinary},
  };
  std::vector<std::string> filled;
  for (const uint32_t bitSize : {1u, 4u, 65u, 1000u}) {
    VXT_BitData ones = Make(bitSize);
    ASSERT_EQ(ops->Invert(&ones, 0, bitSize, 0), VXT_SUCCESS);
    for (const Form& form : forms) {
      uint32_t estimate = 0;
      ASSERT_EQ((ops->*form.operation)(&ones, nullptr, 0, &estimate), VXT_SUCCESS);
      std::vector<char> roomy(estimate + 64, 'x');
      uint32_t length = 0;
      ASSERT_EQ((ops->*form.operation)(&ones, roomy.data(), estimate + 64, &length), VXT_SUCCESS);
      std::vector<char> exact(estimate + 1, 'x');
      uint32_t written = 0;
      ASSERT_EQ((ops->*form.operation)(&ones, exact.data(), estimate + 1, &written), VXT_SUCCESS);
      EXPECT_EQ(std::string(exact.data(), written), std::string(roomy.data(), length)) << form.name << " " << bitSize;
      EXPECT_LE(length, estimate) << form.name << " " << bitSize;
      if (length == estimate) filled.push_back(std::string(form.name) + " " + std::to_string(bitSize));
    }
  }
  // The general form always has room to spare.
  EXPECT_EQ(filled,
            (std::vector<std::string>{"decimal 1", "hexadecimal 1", "binary 1", "decimal 4", "hexadecimal 4",
                                      "binary 4", "hexadecimal 65", "binary 65", "hexadecimal 1000", "binary 1000"}));
}

// ---- Bits and queries ---------------------------------------------------------

TEST_F(BitDataOperationsTest, QueriesAnswerOverTheWholeVectorOrTheirField) {
  using Query = std::function<VXT_Result(const VXT_BitData&, uint32_t*)>;
  struct Case {
    const char* vector;
    const char* what;
    Query query;
    uint32_t answer;
  };
  const Case cases[] = {
      {"0b00101000", "first", [&](auto& r, uint32_t* a) { return ops->FindFirst(&r, a); }, 3},
      {"0b00101000", "first in field", [&](auto& r, uint32_t* a) { return ops->FindFirstBitRange(&r, 4, 4, a); }, 5},
      {"0b00101000", "last in field", [&](auto& r, uint32_t* a) { return ops->FindLastBitRange(&r, 0, 4, a); }, 3},
      {"0b10100101", "is value", [&](auto& r, uint32_t* a) { return ops->IsValue(&r, 4, 4, 0xa, a); }, 1},
      {"0b10100101", "odd field", [&](auto& r, uint32_t* a) { return ops->ParityBitRange(&r, 0, 1, a); }, 1},
      {"0b10100101", "count field", [&](auto& r, uint32_t* a) { return ops->PopCountBitRange(&r, 4, 4, a); }, 2},
  };
  for (const Case& c : cases) {
    const VXT_BitData record = Parse(c.vector);
    uint32_t answer = 12345;
    ASSERT_EQ(c.query(record, &answer), VXT_SUCCESS) << c.what << ": " << GetLastErrorMessage();
    EXPECT_EQ(answer, c.answer) << c.what;
  }
}

TEST_F(BitDataOperationsTest, ComparisonCoversTheShorterLength) {
  struct Case {
    const char* left;
    const char* right;
    int32_t result;
  };
  // Over the shorter length: the upper bits of the longer do not count.
  for (const Case c : {Case{"0x0f", "0xf0", -1}, Case{"0x05", "0xff05", 0}, Case{"0xff06", "0x05", 1}}) {
    const VXT_BitData left = Parse(c.left);
    const VXT_BitData right = Parse(c.right);
    int32_t result = 9;
    ASSERT_EQ(ops->BitData_Compare(&left, &right, &result), VXT_SUCCESS);
    EXPECT_EQ(result, c.result) << c.left << " " << c.right;
  }

  const VXT_BitData left = Parse("0xab");
  const VXT_BitData right = Parse("0x0a");
  int32_t result = 9;
  ASSERT_EQ(ops->CompareBitRange(&left, 4, 4, &right, 0, 8, &result), VXT_SUCCESS);
  EXPECT_EQ(result, 0);
  ASSERT_EQ(ops->CompareBitRange(&left, 0, 4, &right, 0, 4, &result), VXT_SUCCESS);
  EXPECT_EQ(result, 1);
}

// ---- Logic -------------------------------------------------------------------

TEST_F(BitDataOperationsTest, CombiningVectorsOfTwoLengthsFillsTheShorterWithZeros) {
  using Combine =
      VXT_Result (IInternalService_BitDataOperations::*)(const VXT_BitData*, const VXT_BitData*, VXT_BitData*);
  struct Case {
    const char* name;
    Combine combine;
    std::string hex;  // Either way round
  };
  const Case cases[] = {
      {"and", &IInternalService_BitDataOperations::And, "0x00c0"},
      {"or", &IInternalService_BitDataOperations::Or, "0xabfc"},
      {"xor", &IInternalService_BitDataOperations::Xor, "0xab3c"},
  };
  const VXT_BitData narrow = Make(8, 0xf0);
  const VXT_BitData wide = Make(16, 0xabcc);
  for (const Case& c : cases) {
    VXT_BitData result = EmptyRecord();
    ASSERT_EQ((ops->*c.combine)(&narrow, &wide, &result), VXT_SUCCESS) << c.name;
    EXPECT_EQ(result.bitSize, 16u);
    EXPECT_EQ(Hex(result), c.hex) << c.name;
    VXT_BitData swapped = EmptyRecord();
    ASSERT_EQ((ops->*c.combine)(&wide, &narrow, &swapped), VXT_SUCCESS) << c.name;
    EXPECT_EQ(Hex(swapped), c.hex) << c.name;
  }
  EXPECT_EQ(Hex(narrow) + " " + Hex(wide), "0xf0 0xabcc");
}

TEST_F(BitDataOperationsTest, AnOperandFoundBadAfterTheResultIsMadeLeavesTheResultWithTheClient) {
  const VXT_BitData left = Make(8, 0xf0);
  const VXT_BitData unknown{VXT_BITDATA_SIZE, 12, 999};
  VXT_BitData result = EmptyRecord();
  EXPECT_EQ(ops->And(&left, &unknown, &result), VXT_E_BITDATA_INVALID);
  EXPECT_STREQ(GetLastErrorMessage(), "InProc_BitDataOperations::And() argument error (right) : Invalid");
  EXPECT_EQ(result.bitSize, 12u);
  EXPECT_EQ(result.dataHandle, 3u);
  EXPECT_EQ(Hex(result), "0x000");

  // Or and Xor start from a copy of the longer operand, so the bad handle
  // shows already while the result is being made.
  VXT_BitData copied = EmptyRecord();
  EXPECT_EQ(ops->Or(&left, &unknown, &copied), VXT_E_BITDATA_INVALID);
  EXPECT_STREQ(GetLastErrorMessage(), "InProc_BitDataOperations::Or() argument error (src) : Invalid");
  EXPECT_EQ(copied.dataHandle, 0u);
}

// The operands' sizes only pass their own fields; destBitSize bits are taken
// from each operand's offset, past its field as far as its vector reaches.
TEST_F(BitDataOperationsTest, BitwiseOpTakesDestBitSizeBitsOfEachOperand) {
  const VXT_BitData wideLeft = Make(16, 0x00f0);
  const VXT_BitData narrowLeft = Make(8, 0xff);
  const VXT_BitData zeros = Make(16);
  struct Case {
    const char* what;
    const VXT_BitData* left;
    uint32_t leftBitSize;
    uint32_t destBitSize;
    VXT_Result code;
    std::string hex;
  };
  const Case cases[] = {
      {"past the left field", &wideLeft, 4, 8, VXT_SUCCESS, "0x00f0"},
      {"past the left vector", &narrowLeft, 8, 16, VXT_E_BITDATA_BIT_RANGE_INVALID, "0x0000"},
  };
  for (const Case& c : cases) {
    const VXT_BitData dest = Make(16);
    EXPECT_EQ(ops->BitwiseOp(&dest, 0, c.destBitSize, c.left, 0, c.leftBitSize, &zeros, 0, 4, VXT_BitwiseOperation_OR),
              c.code)
        << c.what;
    EXPECT_EQ(Hex(dest), c.hex) << c.what;
  }
  EXPECT_STREQ(GetLastErrorMessage(), "Bit range invalid");
}

// ---- Changes -----------------------------------------------------------------

TEST_F(BitDataOperationsTest, ChangesWriteTheWholeVectorOrOnlyTheirFieldInPlace) {
  const VXT_BitData left = Make(8, 0xf0);
  const VXT_BitData right = Make(8, 0x3c);
  const auto bitwise = [&](BitwiseOperation operation) {
    return [&, operation](auto& r) { return ops->BitwiseOp(&r, 4, 8, &left, 0, 8, &right, 0, 8, operation); };
  };
  struct Case {
    const char* what;
    const char* vector;
    std::function<VXT_Result(VXT_BitData&)> change;
    std::string hex;
  };
  const Case cases[] = {
      {"shift", "0b00010110", [&](auto& r) { return ops->ShiftLeft(&r, 2); }, "0x58"},
      {"negative shift", "0b00010110", [&](auto& r) { return ops->ShiftLeft(&r, -2); }, "0x05"},
      {"shift field left", "0b00010110", [&](auto& r) { return ops->ShiftLeftBitRange(&r, 2, 4, 1); }, "0x2a"},
      {"shift field right", "0b00010110", [&](auto& r) { return ops->ShiftRightBitRange(&r, 1, 4, 1); }, "0x0a"},
      // OR comes first in the numbering of the operations.
      {"or", "20'hfffff", bitwise(VXT_BitwiseOperation_OR), "0xfffcf"},
      {"and", "20'hfffff", bitwise(VXT_BitwiseOperation_AND), "0xff30f"},
      {"xor", "20'hfffff", bitwise(VXT_BitwiseOperation_XOR), "0xffccf"},
      {"grow by nothing", "8'ha5", [&](auto& r) { return ops->GrowSize(&r, 0); }, "0xa5"},
      {"grow", "8'ha5", [&](auto& r) { return ops->GrowSize(&r, 60); }, "0x000000000000000a5"},
      // Bits 4 to 35 the whole pattern, 36 to 43 its low eight bits.
      {"pattern", "64'hffffffffffffffff", [&](auto& r) { return ops->SetBitRangeToPattern(&r, 4, 40, 0x89abcdef); },
       "0xfffffef89abcdeff"},
      {"pattern on nothing", "0x", [&](auto& r) { return ops->SetBitRangeToPattern(&r, 0, 0, 0x1); }, "0x"},
  };
  for (const Case& c : cases) {
    VXT_BitData record = Parse(c.vector);
    const uint64_t handle = record.dataHandle;
    ASSERT_EQ(c.change(record), VXT_SUCCESS) << c.what << ": " << GetLastErrorMessage();
    EXPECT_EQ(Hex(record), c.hex) << c.what;
    EXPECT_EQ(Binary(record).size() - 2, record.bitSize) << c.what;
    EXPECT_EQ(record.dataHandle, handle) << c.what;
  }
}

TEST_F(BitDataOperationsTest, TheSameSeedGivesTheSameRandomBitsInANewVector) {
  const VXT_BitData source = Make(200);
  VXT_BitData first = EmptyRecord();
  VXT_BitData second = EmptyRecord();
  ASSERT_EQ(ops->SetRandomSeed(&source, 42), VXT_SUCCESS);
  ASSERT_EQ(ops->Randomize(&source, &first), VXT_SUCCESS);
  ASSERT_EQ(ops->SetRandomSeed(&source, 42), VXT_SUCCESS);
  ASSERT_EQ(ops->Randomize(&source, &second), VXT_SUCCESS);
  EXPECT_EQ(first.bitSize, 200u);
  EXPECT_NE(first.dataHandle, second.dataHandle);
  EXPECT_EQ(Hex(first), Hex(second));
  EXPECT_NE(Hex(first), Hex(source));
  EXPECT_EQ(Hex(source), "0x" + std::string(50, '0'));
}

// A client that changes bitSize in its record reaches no further than the
// vector's real length: an in-place change that would run past it is
// refused by the library with its own code, and the vector is left exactly
// as it was, also where the change is made of several library calls.
TEST_F(BitDataOperationsTest, AChangeRefusedOnAForgedLengthLeavesTheVectorAsItWas) {
  const VXT_BitData other = Make(16, 0xffff);
  const std::string offsetInvalid = "Bit offset invalid";
  const std::string rangeInvalid = "Bit range invalid";
  using Call = std::function<VXT_Result(const VXT_BitData&)>;
  struct Change {
    const char* what;
    Call call;
    VXT_Result code;
    std::string message;
  };
  const Change changes[] = {
      // Its first piece of 32 bits fits, the second does not.
      {"pattern", [&](auto& r) { return ops->SetBitRangeToPattern(&r, 0, 64, 0xffffffff); },
       VXT_E_BITDATA_BIT_RANGE_INVALID, rangeInvalid},
      {"pattern from inside", [&](auto& r) { return ops->SetBitRangeToPattern(&r, 8, 80, 0xffffffff); },
       VXT_E_BITDATA_BIT_OFFSET_INVALID, offsetInvalid},
      {"shift", [&](auto& r) { return ops->ShiftLeft(&r, 1); }, VXT_E_BITDATA_BIT_RANGE_INVALID, rangeInvalid},
      {"shift field", [&](auto& r) { return ops->ShiftRightBitRange(&r, 30, 20, 1); }, VXT_E_BITDATA_BIT_RANGE_INVALID,
       rangeInvalid},
      {"reverse field", [&](auto& r) { return ops->ReverseBitRange(&r, 0, 64); }, VXT_E_BITDATA_BIT_RANGE_INVALID,
       rangeInvalid},
      {"randomize field", [&](auto& r) { return ops->RandomizeBits(&r, 32, 16); }, VXT_E_BITDATA_BIT_RANGE_INVALID,
       rangeInvalid},
      {"invert", [&](auto& r) { return ops->Invert(&r, 36, 8, 0); }, VXT_E_BITDATA_BIT_RANGE_INVALID, rangeInvalid},
      {"invert bit", [&](auto& r) { return ops->InvertBit(&r, 50); }, VXT_E_BITDATA_BIT_OFFSET_INVALID, offsetInvalid},
      {"set bit", [&](auto& r) { return ops->SetBitOn(&r, 60); }, VXT_E_BITDATA_BIT_OFFSET_INVALID, offsetInvalid},
      {"bitwise",
       [&](auto& r) { return ops->BitwiseOp(&r, 32, 16, &other, 0, 16, &other, 0, 16, VXT_BitwiseOperation_XOR); },
       VXT_E_BITDATA_BIT_RANGE_INVALID, rangeInvalid},
  };
  for (const Change& change : changes) {
    VXT_BitData record = Make(40, 0x5a5a5a5a5a);
    record.bitSize = 100;
    EXPECT_EQ(change.call(record), change.code) << change.what;
    EXPECT_EQ(GetLastErrorMessage(), change.message) << change.what;
    record.bitSize = 40;
    EXPECT_EQ(Hex(record), "0x5a5a5a5a5a") << change.what;
  }
}

// ---- Trace -------------------------------------------------------------------

TEST_F(BitDataOperationsTest, TraceShowsEachFamilysArgumentsAndResults) {
  const VXT_BitData record = Parse("0b00101000");  // 2
  const std::string held = "{bitSize = 8 dataHandle = 0x0000000000000002}";
  uint32_t u32 = 0;
  VXT_BitData empty = EmptyRecord();
  const std::string none = "{bitSize = 0 dataHandle = 0x0000000000000000}";
  struct Case {
    std::function<void()> call;
    std::vector<std::pair<uint32_t, std::string>> lines;
  };
  char text[16];
  const std::string toHex = "In  InProc_BitDataOperations::ToStringHexadecimal(bitData = " + held + " maxBufferSize = ";
  const Case cases[] = {
      {[&] { ops->ToStringHexadecimal(&record, nullptr, 0, &u32); },
       {{1, toHex + "0) [ClientID: 3]"},
        {2,
         "Out InProc_BitDataOperations::ToStringHexadecimal(buffer = <NULL> actualStringSize = 4) "
         "ErrorCode = 0x00000000"}}},
      {[&] { ops->ToStringHexadecimal(&record, text, sizeof text, &u32); },
       {{1, toHex + "16) [ClientID: 3]"},
        {2,
         "Out InProc_BitDataOperations::ToStringHexadecimal(buffer = 0x28 actualStringSize = 4) "
         "ErrorCode = 0x00000000"}}},
      {[&] { ops->FindFirst(&record, &u32); },
       {{1, "In  InProc_BitDataOperations::FindFirst(bitData = " + held + ") [ClientID: 3]"},
        {2, "Out InProc_BitDataOperations::FindFirst(result = 3) ErrorCode = 0x00000000"}}},
      {[&] { ops->IsBitOn(&record, 5, &u32); },
       {{1, "In  InProc_BitDataOperations::IsBitOn(bitData = " + held + " bitOffset = 5) [ClientID: 3]"},
        {2, "Out InProc_BitDataOperations::IsBitOn(result = True) ErrorCode = 0x00000000"}}},
      {[&] { ops->ShiftLeft(&record, -2); },
       {{1, "In  InProc_BitDataOperations::ShiftLeft(bitData = " + held + " numBits = -2) [ClientID: 3]"},
        {1, "Out InProc_BitDataOperations::ShiftLeft(bitData = " + held + ") ErrorCode = 0x00000000 [ClientID: 3]"}}},
      {[&] { ops->BitwiseOp(&record, 0, 8, &record, 0, 8, &record, 0, 8, VXT_BitwiseOperation_XOR); },
       {{1, "In  InProc_BitDataOperations::BitwiseOp(dest = " + held + " destBitOffset = 0 destBitSize = 8 left = " +
                held + " leftBitOffset = 0 leftBitSize = 8 right = " + held +
                " rightBitOffset = 0 rightBitSize = 8 operation = XOR) [ClientID: 3]"},
        {1, "Out InProc_BitDataOperations::BitwiseOp(dest = ) ErrorCode = 0x00000000 [ClientID: 3]"}}},
      {[&] { ops->Add(&record, 0x10, &empty); },
       {{1, "In  InProc_BitDataOperations::Add(bitData = " + held + " value = 0x0000000000000010 result = " + none +
                ") [ClientID: 3]"},
        {2, "VXT Error = 'Not implemented' [ClientID: 3]"},
        {1, "In  InProc ReportErrorMessage(<NULL>'Not implemented')"},
        {1, "Out InProc ReportErrorMessage()"},
        {1, "Out InProc_BitDataOperations::Add(result = " + none + ") ErrorCode = 0x80000004 [ClientID: 3]"}}},
      {[&] { ops->Invert(&record, 0, 8, 0xabc); },
       {{1, "In  InProc_BitDataOperations::Invert(bitData = " + held +
                " bitOffset = 0 bitSize = 8 value = 0x00000abc) [ClientID: 3]"},
        {1, "Out InProc_BitDataOperations::Invert() ErrorCode = 0x00000000 [ClientID: 3]"}}},
  };
  for (const Case& c : cases) {
    ClearTrace();
    c.call();
    EXPECT_EQ(TraceWithLevels(), c.lines) << c.lines.front().second;
  }
}

TEST_F(BitDataOperationsTest, AnUnknownBitwiseOperationIsTracedByItsNumberlessName) {
  const VXT_BitData record = Make(8);
  ClearTrace();
  ops->BitwiseOp(&record, 0, 8, &record, 0, 8, &record, 0, 8, static_cast<BitwiseOperation>(7));
  const std::vector<std::string> trace = Trace();
  ASSERT_FALSE(trace.empty());
  EXPECT_NE(trace.front().find(" operation = <UNKNOWN>) [ClientID: 3]"), std::string::npos) << trace.front();
}

}  // namespace
