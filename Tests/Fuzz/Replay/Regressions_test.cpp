// Every input the fuzzer once failed on, replayed through the same decoder:
// each must now run to its end with every call returning a public code and
// no client left connected.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CallSequence.h"

namespace vxt::fuzz {
namespace {

std::vector<std::string> RegressionFiles() {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(VXT_FUZZ_REGRESSIONS_DIR))
    if (entry.is_regular_file()) paths.push_back(entry.path().string());
  return paths;
}

class FuzzRegression : public ::testing::TestWithParam<std::string> {};

TEST_P(FuzzRegression, RunsToItsEndWithPublicCodes) {
  std::ifstream file(GetParam(), std::ios::binary);
  const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  ASSERT_FALSE(bytes.empty());
  const SequenceOutcome outcome = RunCallSequence(bytes.data(), bytes.size());
  EXPECT_GT(outcome.calls, 0u);
  EXPECT_EQ(outcome.problems, std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Inputs, FuzzRegression, ::testing::ValuesIn(RegressionFiles()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           std::string name = std::filesystem::path(info.param).filename().string();
                           for (char& c : name)
                             if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                           return name;
                         });

}  // namespace
}  // namespace vxt::fuzz
