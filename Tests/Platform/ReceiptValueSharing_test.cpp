// A large receipt value is handed out without a copy of its storage: each
// vector handed out must still behave as a copy of its own, whichever is
// written and whichever lets go first.
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "BitData.h"
#include "OperationReceipt.h"
#include "PlatformTestControl.h"
#include "TargetTestSupport.h"

namespace {

namespace tc = voxtrel::testing;

const OperationReceiptComponent& Receipts() { return vxt::test::Get(&Voxtrel_GetOperationReceipt); }

constexpr uint64_t kBits = uint64_t{1} << 21;  // 256 KiB: large enough to be shared

std::vector<uint8_t> BytesOf(const BitData* value) {
  std::vector<uint8_t> bytes((value->bitSize + 7) / 8);
  BitData_GetBuffer(value, 0, bytes.data(), bytes.size());
  return bytes;
}

BitData* Handed(uint64_t token) {
  BitData* value = nullptr;
  EXPECT_EQ(Receipts().GetValue(token, &value), 0u);
  return value;
}

TEST(ReceiptValueSharing, EveryWriteToAHandedOutValueLeavesTheOthersAsTheyWere) {
  std::vector<uint8_t> pattern(kBits / 8);
  for (size_t i = 0; i < pattern.size(); ++i) pattern[i] = static_cast<uint8_t>(i * 7 + 1);
  const uint64_t token = tc::StartCompletedReceipt({pattern, kBits});
  BitData* zeros = BitData_CreateManaged(kBits);

  struct Write {
    const char* name;
    std::function<uint32_t(BitData*)> apply;
  };
  const Write writes[] = {
      {"SetBit", [](BitData* v) { return BitData_SetBit(v, 0, false); }},
      {"SetUpToUInt64", [](BitData* v) { return BitData_SetUpToUInt64(v, 100, 64, 0); }},
      {"Copy from another", [&](BitData* v) { return BitData_Copy(zeros, 0, v, 3, 5000); }},
      {"Copy within", [](BitData* v) { return BitData_Copy(v, 0, v, 1, kBits - 1); }},
      {"BitwiseAnd", [&](BitData* v) { return BitData_BitwiseAnd(v, 0, v, 0, zeros, 0, kBits); }},
      {"BitwiseOr", [&](BitData* v) { return BitData_BitwiseOr(v, 0, zeros, 0, v, 1, kBits - 1); }},
      {"BitwiseXor", [&](BitData* v) { return BitData_BitwiseXor(v, 0, v, 0, v, 8, 64); }},
      {"XorValue", [](BitData* v) { return BitData_XorValue(v, 0, kBits, 0xff); }},
      {"Reverse", [](BitData* v) { return BitData_Reverse(v, 0, kBits); }},
      {"ShiftLeft", [](BitData* v) { return BitData_ShiftLeft(v, 0, kBits, 3); }},
      {"ShiftRight", [](BitData* v) { return BitData_ShiftRight(v, 0, kBits, 3); }},
      {"Randomize", [](BitData* v) { return BitData_Randomize(v, 0, kBits); }},
      {"Resize", [](BitData* v) { return BitData_Resize(v, kBits - 9); }},
  };
  for (size_t i = 0; i < std::size(writes); ++i) {
    SCOPED_TRACE(writes[i].name);
    BitData* written = Handed(token);
    BitData* other = Handed(token);
    ASSERT_EQ(writes[i].apply(written), 0u);
    EXPECT_NE(BytesOf(written), pattern) << "the write did nothing";
    EXPECT_EQ(BytesOf(other), pattern);
    BitData* later = Handed(token);
    EXPECT_EQ(BytesOf(later), pattern);
    // Let go in either order: what stays reads as it did.
    BitData* first = written;
    BitData* last = other;
    if (i % 2 == 0) std::swap(first, last);
    const std::vector<uint8_t> lastBytes = BytesOf(last);
    BitData_FreeManaged(first);
    BitData_FreeManaged(later);
    EXPECT_EQ(BytesOf(last), lastBytes);
    BitData_FreeManaged(last);
  }

  // A value outlives its receipt, and can still be written.
  BitData* kept = Handed(token);
  EXPECT_EQ(Receipts().Destroy(token), 0u);
  EXPECT_EQ(BytesOf(kept), pattern);
  EXPECT_EQ(BitData_XorValue(kept, 0, kBits, 1), 0u);
  BitData_FreeManaged(kept);
  BitData_FreeManaged(zeros);
}

}  // namespace
