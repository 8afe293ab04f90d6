// The fuzzer's seed corpus: the sequences of the golden traces and of the
// tests' typical sessions, with operations named so that they follow the
// operation list as it grows.
#pragma once

#include <cstdint>
#include <vector>

namespace vxt::fuzz {

std::vector<std::vector<uint8_t>> SeedSequences();

}  // namespace vxt::fuzz
