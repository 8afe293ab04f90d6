// The seed sequences, and every input the fuzzer once failed on, replayed
// through the same decoder: each must run to its end with every call
// returning a public code and no client left connected.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "CallSequence.h"
#include "Seeds.h"

namespace vxt::fuzz {
namespace {

using Input = std::pair<std::string, std::vector<uint8_t>>;

std::vector<Input> Inputs() {
  std::vector<Input> inputs;
  const std::vector<std::vector<uint8_t>> seeds = SeedSequences();
  for (size_t index = 0; index < seeds.size(); ++index) inputs.emplace_back("seed" + std::to_string(index), seeds[index]);
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(VXT_FUZZ_REGRESSIONS_DIR, error)) {
    std::ifstream file(entry.path(), std::ios::binary);
    inputs.emplace_back(entry.path().filename().string(),
                        std::vector<uint8_t>{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()});
  }
  return inputs;
}

class FuzzInput : public ::testing::TestWithParam<Input> {};

TEST_P(FuzzInput, RunsToItsEndWithPublicCodes) {
  const std::vector<uint8_t>& bytes = GetParam().second;
  ASSERT_FALSE(bytes.empty());
  const SequenceOutcome outcome = RunCallSequence(bytes.data(), bytes.size());
  EXPECT_GT(outcome.calls, 0u);
  EXPECT_EQ(outcome.problems, std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Replayed, FuzzInput, ::testing::ValuesIn(Inputs()),
                         [](const ::testing::TestParamInfo<Input>& info) {
                           std::string name = info.param.first;
                           for (char& c : name)
                             if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                           return name;
                         });

}  // namespace
}  // namespace vxt::fuzz
