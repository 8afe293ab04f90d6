#include "frame/TranslateErrorCode.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vxt::frame {
namespace {

struct Translation {
  uint32_t internalCode;
  uint32_t publicCode;
};

class TranslateErrorCodeTest : public ::testing::TestWithParam<Translation> {};

TEST_P(TranslateErrorCodeTest, GivesThePublicCodeOfItsRow) {
  EXPECT_EQ(static_cast<uint32_t>(TranslateErrorCode(GetParam().internalCode)), GetParam().publicCode);
}

INSTANTIATE_TEST_SUITE_P(Rows, TranslateErrorCodeTest,
                         ::testing::Values(Translation{0x0, 0x0},                // success stays success
                                           Translation{0xffffffff, 0xffffffff},  // the all-ones row maps to itself
                                           Translation{0x10000, 0x801c0000},     // first family
                                           Translation{0x2000d, 0x80040007},     // outside its neighbours' family
                                           Translation{0x40012, 0x80000002},     // into another family
                                           Translation{0x120009, 0x8000000e},    // many codes share one public code
                                           Translation{0x190002, 0x8000000e},    //
                                           Translation{0x1f0006, 0x80080005},    //
                                           Translation{0x260002, 0x8000001d},    // last family
                                           Translation{0x20009,
                                                       0x8000000f},  // the frame's own exception code has no row
                                           Translation{0x2000c, 0x8000000f},      // a gap inside a family
                                           Translation{0xe0000, 0x8000000f},      //
                                           Translation{0x270000, 0x8000000f},     // a family with no rows
                                           Translation{0x80000001, 0x8000000f}),  // a public code translated again
                         [](const ::testing::TestParamInfo<Translation>& info) {
                           char name[32];
                           std::snprintf(name, sizeof name, "Code0x%x", info.param.internalCode);
                           return std::string(name);
                         });

// The whole table, written as families of conditions so that it is kept
// apart from the table it checks. Families with no entry translate nothing.
struct Family {
  uint32_t family;
  std::vector<std::pair<uint32_t, uint32_t>> conditions;  // condition, public code
};

std::map<uint32_t, uint32_t> ExpectedRows() {
  // clang-format off
  const Family families[] = {
      {0x0001, {{0x0, 0x801c0000}, {0x1, 0x801c0001}, {0x2, 0x801c0002}}},
      {0x0002, {{0x0, 0x80000001}, {0x1, 0x80000002}, {0x2, 0x80000003}, {0x3, 0x80000004}, {0x4, 0x80000005}, {0x5, 0x80000009}, {0x6, 0x8000000a}, {0x7, 0x8000000b}, {0x8, 0x8000000c}, {0xa, 0x80000010}, {0xb, 0x80000013}, {0xd, 0x80040007}, {0xe, 0x80000011}, {0x10, 0x80000015}, {0x11, 0x80000016}, {0x12, 0x8000001b}, {0x13, 0x8000001c}, {0x17, 0x80000021}}},
      {0x0003, {{0x2, 0x80140000}, {0x3, 0x80140001}, {0x4, 0x80140002}, {0x5, 0x80140003}, {0x6, 0x80140004}, {0x7, 0x80140005}}},
      {0x0004, {{0x0, 0x800d0000}, {0x1, 0x800d0001}, {0x2, 0x800d0002}, {0x3, 0x800d0003}, {0x7, 0x800d0000}, {0x11, 0x800d0004}, {0x12, 0x80000002}, {0x14, 0x80120000}, {0x15, 0x800d000b}, {0x16, 0x800d0006}, {0x17, 0x800d0007}, {0x18, 0x800d0008}, {0x19, 0x800d0009}, {0x1a, 0x800d000a}}},
      {0x0005, {{0x0, 0x800e0000}, {0x1, 0x800e0001}, {0x2, 0x800e0002}}},
      {0x0007, {{0x2, 0x80000003}, {0x3, 0x800a0008}}},
      {0x000e, {{0x2, 0x80040004}, {0x3, 0x80040006}, {0x4, 0x80040000}, {0x5, 0x80040008}, {0x6, 0x8004000a}, {0x7, 0x8004000b}, {0x8, 0x8004000c}, {0x9, 0x8004000d}, {0xa, 0x8004000e}, {0xb, 0x8004000f}, {0xc, 0x80040010}, {0xd, 0x801f0000}, {0xe, 0x801f0001}, {0xf, 0x801f0002}, {0x10, 0x801f0003}, {0x11, 0x80040011}, {0x12, 0x80040012}, {0x13, 0x801f0005}, {0x14, 0x801f0006}}},
      {0x0011, {{0x0, 0x80170002}, {0x1, 0x80170003}, {0x2, 0x80170005}, {0x3, 0x80170000}, {0x4, 0x80170006}, {0x5, 0x80170004}, {0x6, 0x80170001}}},
      {0x0012, {{0x0, 0x8000000e}, {0x1, 0x8000000e}, {0x2, 0x8000000e}, {0x3, 0x8000000e}, {0x4, 0x8000000e}, {0x7, 0x8000000e}, {0x8, 0x8000000e}, {0x9, 0x8000000e}}},
      {0x0014, {{0x0, 0x80010003}, {0x1, 0x80010000}, {0x2, 0x80010006}, {0x3, 0x80010004}, {0x4, 0x80010002}, {0x5, 0x80010009}}},
      {0x0015, {{0x0, 0x80110001}, {0x1, 0x80110002}, {0x2, 0x80110002}, {0x3, 0x80110000}, {0x4, 0x80110000}, {0x5, 0x80110000}, {0x6, 0x80110002}, {0x7, 0x80110000}, {0x8, 0x80110003}}},
      {0x0016, {{0x11, 0x801f0004}, {0x14, 0x800d0005}, {0x26, 0x801a0002}}},
      {0x0018, {{0x0, 0x80040007}, {0x2, 0x801a0000}, {0x3, 0x801a0001}, {0x4, 0x801a0003}}},
      {0x0019, {{0x0, 0x80000018}, {0x1, 0x8000000e}, {0x2, 0x8000000e}}},
      {0x001a, {{0x2, 0x801b0000}, {0x3, 0x801b0001}, {0x4, 0x801b0002}, {0x6, 0x801b0003}, {0x7, 0x801b0004}, {0x9, 0x8004000e}}},
      {0x001b, {{0x0, 0x80040003}, {0x3, 0x800c0000}, {0x4, 0x800c0002}}},
      {0x001c, {{0x2, 0x800a0000}, {0x3, 0x800a0001}, {0x4, 0x800a0002}, {0x5, 0x800a0003}, {0x6, 0x800a0005}, {0x14, 0x80000003}, {0x17, 0x800a0004}}},
      {0x001d, {{0x0, 0x80090000}, {0x1, 0x80090001}, {0x2, 0x80090002}, {0x3, 0x80090003}}},
      {0x001e, {{0x0, 0x80160000}, {0x1, 0x80160001}, {0x4, 0x80020000}, {0x5, 0x80020001}, {0x6, 0x80020002}, {0x7, 0x80020003}, {0x8, 0x80020004}, {0x9, 0x80020005}, {0xa, 0x80020006}, {0xc, 0x80020007}, {0xd, 0x80020007}, {0xe, 0x80020007}, {0xf, 0x80020007}, {0x11, 0x80020008}}},
      {0x001f, {{0x0, 0x80080000}, {0x1, 0x80080001}, {0x2, 0x80080002}, {0x3, 0x80080003}, {0x5, 0x80080004}, {0x6, 0x80080005}, {0x7, 0x80080006}, {0x8, 0x80080007}, {0xa, 0x80080008}}},
      {0x0020, {{0x0, 0x80190000}, {0x1, 0x80190001}, {0x2, 0x80190002}}},
      {0x0025, {{0x1, 0x801e0000}, {0x2, 0x801e0001}, {0x3, 0x801e0002}, {0x4, 0x801e0003}, {0x5, 0x801e0004}, {0x6, 0x801e0005}, {0x7, 0x801e0006}, {0x8, 0x801e0007}}},
      {0x0026, {{0x0, 0x80000014}, {0x1, 0x8000001e}, {0x2, 0x8000001d}}},
  };
  // clang-format on
  std::map<uint32_t, uint32_t> rows{{0x0, 0x0}, {0xffffffff, 0xffffffff}};
  for (const Family& f : families)
    for (const auto& [condition, publicCode] : f.conditions) rows.emplace((f.family << 16) | condition, publicCode);
  return rows;
}

TEST(TranslateErrorCodeTable, HoldsEveryRowAndNothingElse) {
  const std::map<uint32_t, uint32_t> rows = ExpectedRows();
  ASSERT_EQ(rows.size(), 164u);
  EXPECT_EQ(static_cast<uint32_t>(TranslateErrorCode(0xffffffff)), 0xffffffffu);
  // Every condition below 0x100 of the families 0x0000 to 0x003f: a row
  // gives its public code, anything else the code of a missing row. A
  // mistyped, missing or extra row in that range shows here.
  size_t mismatches = 0;
  for (uint32_t code = 0; code < 0x400000; code += (code & 0xffff) == 0xff ? 0x10000 - 0xff : 1) {
    const auto row = rows.find(code);
    const uint32_t expected = row == rows.end() ? 0x8000000fu : row->second;
    const uint32_t actual = static_cast<uint32_t>(TranslateErrorCode(code));
    if (actual != expected && ++mismatches <= 10)
      ADD_FAILURE() << std::hex << "internal 0x" << code << " gives 0x" << actual << ", not 0x" << expected;
  }
  EXPECT_EQ(mismatches, 0u);
}

// Every thread that arrives while the table is first built sees the same rows.
TEST(TranslateErrorCodeConcurrency, ManyFirstCallersAgree) {
  std::vector<int32_t> results(8);
  std::vector<std::thread> threads;
  for (size_t i = 0; i < results.size(); ++i)
    threads.emplace_back([&results, i] { results[i] = TranslateErrorCode(0x140003); });
  for (auto& thread : threads) thread.join();
  for (int32_t result : results) EXPECT_EQ(static_cast<uint32_t>(result), 0x80010004u);
}

}  // namespace
}  // namespace vxt::frame
