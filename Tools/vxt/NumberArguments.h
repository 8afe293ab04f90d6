// Numbers and bytes as a user writes them on the command line: decimal,
// 0x-prefixed hexadecimal or 0-prefixed octal.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vxt::cli {

// Throws std::runtime_error ("'x' is no <what>") for text that is no
// number or a value above `max`.
uint64_t ParseNumber(const std::string& text, uint64_t max, const char* what);

// values[from..] as bytes.
std::vector<uint8_t> ParseBytes(const std::vector<std::string>& values, size_t from);

// Lines of up to 16 bytes in two hexadecimal digits each, separated by blanks.
std::string HexBytes(const std::vector<uint8_t>& bytes);

}  // namespace vxt::cli
