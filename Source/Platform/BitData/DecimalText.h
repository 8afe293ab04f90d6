// Conversion between unsigned numbers of any size, held as little-endian
// 64-bit words, and decimal digits.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace voxtrel::bitdata {

// The number's decimal digits without leading zeros; "0" for zero.
std::string WordsToDecimal(const uint64_t* words, uint64_t wordCount);

// The number that `digits` (only '0' to '9', at least one) spell, without
// zero words at the top.
std::vector<uint64_t> DecimalToWords(std::string_view digits);

}  // namespace voxtrel::bitdata
