// Reading vectors back from text.
#include <array>
#include <cstring>
#include <optional>
#include <string_view>

#include "DecimalText.h"
#include "ObjectStorage.h"

namespace voxtrel::bitdata {
namespace {

constexpr uint64_t kMaxTextLength = 0xFFFFFFFF;

// The value of every character as a hexadecimal digit; 255 for a character
// that is no digit.
constexpr auto kDigitValues = [] {
  std::array<uint8_t, 256> values{};
  values.fill(255);
  for (int c = '0'; c <= '9'; ++c) values[c] = static_cast<uint8_t>(c - '0');
  for (int c = 'a'; c <= 'f'; ++c) values[c] = static_cast<uint8_t>(c - 'a' + 10);
  for (int c = 'A'; c <= 'F'; ++c) values[c] = static_cast<uint8_t>(c - 'A' + 10);
  return values;
}();

unsigned DigitValue(char c) { return kDigitValues[static_cast<unsigned char>(c)]; }

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; }

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool AllDigitsBelow(std::string_view digits, unsigned base) {
  for (char c : digits)
    if (DigitValue(c) >= base) return false;
  return true;
}

// Binary or hexadecimal digits, the last one lowest, into whole words: one
// word's worth of digits at a time, checked as they are read.
bool ReadPowerOfTwoDigits(std::string_view digits, unsigned bitsPerDigit, std::vector<uint64_t>& words) {
  const unsigned base = 1u << bitsPerDigit;
  const size_t digitsPerWord = kWordBits / bitsPerDigit;
  words.assign(WordsFor(digits.size() * bitsPerDigit), 0);
  size_t end = digits.size();
  for (uint64_t& word : words) {
    const size_t begin = end > digitsPerWord ? end - digitsPerWord : 0;
    uint64_t value = 0;
    bool bad = false;
    for (size_t i = begin; i < end; ++i) {
      const unsigned digit = DigitValue(digits[i]);
      bad |= digit >= base;
      value = (value << bitsPerDigit) | digit;
    }
    if (bad) return false;
    word = value;
    end = begin;
  }
  return true;
}

// A number read from digits, least significant word first, with the count
// of bits that its digits span (4 per hexadecimal digit, 1 per binary one).
struct Number {
  std::vector<uint64_t> words;
  uint64_t digitBits = 0;
};

// Digits in base 2, 10 or 16; decimal needs at least one digit.
std::optional<Number> ReadNumber(std::string_view digits, unsigned base) {
  Number number;
  if (base == 10) {
    if (digits.empty() || !AllDigitsBelow(digits, 10)) return std::nullopt;
    number.words = DecimalToWords(digits);
    return number;
  }
  const unsigned bitsPerDigit = base == 16 ? 4 : 1;
  if (!ReadPowerOfTwoDigits(digits, bitsPerDigit, number.words)) return std::nullopt;
  number.digitBits = digits.size() * bitsPerDigit;
  return number;
}

uint64_t SignificantBits(const std::vector<uint64_t>& words) {
  for (size_t i = words.size(); i-- > 0;)
    if (words[i] != 0) return i * kWordBits + std::bit_width(words[i]);
  return 0;
}

unsigned BaseOfLetter(char letter) {
  switch (letter) {
    case 'b': case 'B': return 2;
    case 'd': case 'D': return 10;
    case 'h': case 'H': return 16;
    default: return 0;
  }
}

BitData* NewObjectHolding(uint64_t bitSize, const Number& number) {
  BitData* object = NewObject(bitSize);
  const uint64_t words = std::min<uint64_t>(number.words.size(), WordsFor(bitSize));
  if (words != 0) std::memcpy(object->words, number.words.data(), words * sizeof(uint64_t));
  return object;
}

// "<length>'<base letter><digits>".
BitData* ReadSized(std::string_view text, size_t quote) {
  const std::string_view length = text.substr(0, quote);
  if (length.empty() || length.size() > 10 || !AllDigitsBelow(length, 10) || quote + 1 >= text.size())
    return nullptr;
  uint64_t bitSize = 0;
  for (char c : length) bitSize = bitSize * 10 + static_cast<uint64_t>(c - '0');
  const unsigned base = BaseOfLetter(text[quote + 1]);
  if (bitSize > kMaxTextLength || base == 0) return nullptr;
  const auto number = ReadNumber(text.substr(quote + 2), base);
  if (!number || SignificantBits(number->words) > bitSize) return nullptr;
  return NewObjectHolding(bitSize, *number);
}

}  // namespace
}  // namespace voxtrel::bitdata

using namespace voxtrel::bitdata;

BitData* BitData_CreateManagedFromString(const char* text) {
  if (text == nullptr) return nullptr;
  const std::string_view trimmed = TrimBlanks(text);
  if (const size_t quote = trimmed.find('\''); quote != std::string_view::npos) return ReadSized(trimmed, quote);
  if (trimmed.size() >= 2 && trimmed[0] == '0') {
    const char prefix = trimmed[1];
    const unsigned base = prefix == 'x' || prefix == 'X' ? 16 : prefix == 'b' || prefix == 'B' ? 2 : 0;
    if (base != 0) {
      const auto number = ReadNumber(trimmed.substr(2), base);
      if (!number || number->digitBits > kMaxTextLength) return nullptr;
      return NewObjectHolding(number->digitBits, *number);
    }
  }
  const auto number = ReadNumber(trimmed, 10);
  if (!number) return nullptr;
  return NewObjectHolding(std::max<uint64_t>(1, SignificantBits(number->words)), *number);
}
