#include "frame/TranslateErrorCode.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <thread>
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
