// Decimal conversion in chunks of 19 digits: one 128-by-64-bit division per
// word and chunk going out, one 64-by-64-bit multiplication per word and
// chunk coming in. The division multiplies by a precomputed reciprocal
// (Möller and Granlund, "Improved division by invariant integers", 2011),
// several times faster than a division instruction.
#include "DecimalText.h"

#include <array>
#include <charconv>

namespace voxtrel::bitdata {
namespace {

using u128 = unsigned __int128;

constexpr unsigned kChunkDigits = 19;

constexpr std::array<uint64_t, kChunkDigits + 1> kPowersOfTen = [] {
  std::array<uint64_t, kChunkDigits + 1> powers{};
  powers[0] = 1;
  for (unsigned i = 1; i <= kChunkDigits; ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

constexpr uint64_t kChunk = kPowersOfTen[kChunkDigits];
static_assert(kChunk >> 63 == 1, "the reciprocal method needs the divisor's top bit set");

// floor((2^128 - 1) / kChunk) - 2^64.
constexpr uint64_t kChunkReciprocal = static_cast<uint64_t>(~static_cast<u128>(0) / kChunk);

// (high * 2^64 + low) / kChunk, with the remainder; high must be below kChunk.
uint64_t DivideByChunk(uint64_t high, uint64_t low, uint64_t& remainder) {
  u128 estimate = static_cast<u128>(kChunkReciprocal) * high;
  estimate += (static_cast<u128>(high) << 64) | low;
  uint64_t quotient = static_cast<uint64_t>(estimate >> 64) + 1;
  uint64_t rest = low - quotient * kChunk;
  if (rest > static_cast<uint64_t>(estimate)) {
    --quotient;
    rest += kChunk;
  }
  if (rest >= kChunk) {
    ++quotient;
    rest -= kChunk;
  }
  remainder = rest;
  return quotient;
}

void TrimZeroWords(std::vector<uint64_t>& words) {
  while (!words.empty() && words.back() == 0) words.pop_back();
}

// Divides `words` by 10^19 in place and gives the remainder.
uint64_t DivideWordsByChunk(std::vector<uint64_t>& words) {
  uint64_t remainder = 0;
  for (size_t i = words.size(); i-- > 0;) {
    words[i] = DivideByChunk(remainder, words[i], remainder);
  }
  TrimZeroWords(words);
  return remainder;
}

}  // namespace

std::string WordsToDecimal(const uint64_t* words, uint64_t wordCount) {
  std::vector<uint64_t> number(words, words + wordCount);
  TrimZeroWords(number);
  if (number.empty()) return "0";
  std::vector<uint64_t> chunks;  // least significant first
  // 64 bits carry at most 19.27 digits, so about one chunk per word.
  chunks.reserve(number.size() + number.size() / 32 + 1);
  while (!number.empty()) chunks.push_back(DivideWordsByChunk(number));

  char digits[kChunkDigits + 1];
  auto [end, error] = std::to_chars(digits, digits + sizeof digits, chunks.back());
  std::string text(digits, end);
  text.reserve(text.size() + (chunks.size() - 1) * kChunkDigits);
  for (size_t i = chunks.size() - 1; i-- > 0;) {
    auto [chunkEnd, chunkError] = std::to_chars(digits, digits + sizeof digits, chunks[i]);
    text.append(kChunkDigits - (chunkEnd - digits), '0');
    text.append(digits, chunkEnd);
  }
  return text;
}

std::vector<uint64_t> DecimalToWords(std::string_view digits) {
  std::vector<uint64_t> words;
  words.reserve(digits.size() / kChunkDigits + 1);
  size_t length = digits.size() % kChunkDigits;
  if (length == 0) length = kChunkDigits;
  for (size_t position = 0; position < digits.size(); position += length, length = kChunkDigits) {
    uint64_t carry = 0;
    for (size_t i = 0; i < length; ++i) carry = carry * 10 + static_cast<uint64_t>(digits[position + i] - '0');
    const uint64_t multiplier = kPowersOfTen[length];
    for (uint64_t& word : words) {
      const u128 product = static_cast<u128>(word) * multiplier + carry;
      word = static_cast<uint64_t>(product);
      carry = static_cast<uint64_t>(product >> 64);
    }
    if (carry != 0) words.push_back(carry);
  }
  return words;
}

}  // namespace voxtrel::bitdata
