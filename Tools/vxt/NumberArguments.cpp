#include "NumberArguments.h"

#include <cstdio>
#include <stdexcept>

namespace vxt::cli {

uint64_t ParseNumber(const std::string& text, uint64_t max, const char* what) {
  size_t used = 0;
  uint64_t value = 0;
  try {
    value = std::stoull(text, &used, 0);
  } catch (const std::logic_error&) {
    used = 0;
  }
  // stoull takes "-1" as the largest number; a user means no such thing.
  if (used == 0 || used != text.size() || text[0] == '-' || value > max) throw std::runtime_error("'" + text + "' is no " + what);
  return value;
}

std::vector<uint8_t> ParseBytes(const std::vector<std::string>& values, size_t from) {
  std::vector<uint8_t> bytes;
  for (size_t i = from; i < values.size(); ++i)
    bytes.push_back(static_cast<uint8_t>(ParseNumber(values[i], 0xff, "byte")));
  return bytes;
}

std::string HexBytes(const std::vector<uint8_t>& bytes) {
  std::string text;
  for (size_t i = 0; i < bytes.size(); ++i) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
    text += digits;
    text += (i % 16 == 15 || i + 1 == bytes.size()) ? '\n' : ' ';
  }
  return text;
}

}  // namespace vxt::cli
