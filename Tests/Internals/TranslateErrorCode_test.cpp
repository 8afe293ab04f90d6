#include "frame/TranslateErrorCode.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

namespace vxt::frame {
namespace {

uint32_t Translated(uint32_t internalCode) { return static_cast<uint32_t>(TranslateErrorCode(internalCode)); }

// Rows that are easy to get wrong, and codes that have no row.
TEST(TranslateErrorCodeTest, OddRowsAndMissingRows) {
  const struct {
    uint32_t internalCode;
    uint32_t publicCode;
  } rows[] = {
      {0x0, 0x0},                // success stays success
      {0xffffffff, 0xffffffff},  // the all-ones row maps to itself
      {0x10000, 0x801c0000},     // first family
      {0x2000d, 0x80040007},     // outside its neighbours' family
      {0x40012, 0x80000002},     // into another family
      {0x120009, 0x8000000e},    // many codes share one public code
      {0x190002, 0x8000000e},    //
      {0x260002, 0x8000001d},    // last family
      {0x20009, 0x8000000f},     // the frame's own exception code has no row
      {0x2000c, 0x8000000f},     // a gap inside a family
      {0x270000, 0x8000000f},    // a family with no rows
      {0x80000001, 0x8000000f},  // a public code translated again
  };
  for (const auto& row : rows) EXPECT_EQ(Translated(row.internalCode), row.publicCode) << std::hex << row.internalCode;
}

// Every condition below 0x100 of the families 0x0000 to 0x003f: apart from
// success, each gives a public code (0x8 prefix), and the number of rows
// stays what it is.
TEST(TranslateErrorCodeTest, EveryCodeGivesAPublicCode) {
  size_t rows = 0;
  for (uint32_t code = 1; code < 0x400000; code += (code & 0xffff) == 0xff ? 0x10000 - 0xff : 1) {
    const uint32_t publicCode = Translated(code);
    EXPECT_EQ(publicCode >> 28, 0x8u) << std::hex << code;
    if (publicCode != 0x8000000fu) ++rows;
  }
  EXPECT_EQ(rows, 162u);
}

// Every thread that arrives while the table is first built sees the same rows.
TEST(TranslateErrorCodeTest, ManyFirstCallersAgree) {
  std::vector<uint32_t> results(8);
  std::vector<std::thread> threads;
  for (size_t i = 0; i < results.size(); ++i)
    threads.emplace_back([&results, i] { results[i] = Translated(0x140003); });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(results, std::vector<uint32_t>(8, 0x80010004u));
}

}  // namespace
}  // namespace vxt::frame
