#include "IntelHex.h"

#include <cstdio>

#include "RunControlCodes.h"

namespace voxtrel::platform::run_control {
namespace {

constexpr uint32_t kInvalidImage = kValueOutOfRange;

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

target::Failure BadRecord(size_t lineNumber, const char* what) {
  return {kInvalidImage, "Intel HEX line " + std::to_string(lineNumber) + ": " + what};
}

void AppendRecord(std::string& text, uint8_t type, uint16_t address, const uint8_t* data, size_t size) {
  char field[16];
  uint8_t sum = static_cast<uint8_t>(size + (address >> 8) + (address & 0xFF) + type);
  std::snprintf(field, sizeof field, ":%02X%04X%02X", static_cast<unsigned>(size), address, type);
  text += field;
  for (size_t i = 0; i < size; ++i) {
    std::snprintf(field, sizeof field, "%02X", data[i]);
    text += field;
    sum = static_cast<uint8_t>(sum + data[i]);
  }
  std::snprintf(field, sizeof field, "%02X\n", static_cast<uint8_t>(-sum));
  text += field;
}

}  // namespace

target::Outcome ParseIntelHex(std::string_view text, std::vector<HexChunk>& chunks) {
  chunks.clear();
  uint64_t base = 0;
  bool ended = false;
  size_t lineNumber = 0;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    ++lineNumber;
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
    if (line.empty()) continue;
    if (ended) return BadRecord(lineNumber, "a record follows the end-of-file record");
    if (line.front() != ':' || line.size() < 11 || line.size() % 2 == 0) return BadRecord(lineNumber, "not a record");
    std::vector<uint8_t> record;
    for (size_t i = 1; i < line.size(); i += 2) {
      const int high = HexDigit(line[i]);
      const int low = HexDigit(line[i + 1]);
      if (high < 0 || low < 0) return BadRecord(lineNumber, "not hexadecimal");
      record.push_back(static_cast<uint8_t>(high * 16 + low));
    }
    uint8_t sum = 0;
    for (const uint8_t byte : record) sum = static_cast<uint8_t>(sum + byte);
    if (sum != 0) return BadRecord(lineNumber, "wrong checksum");
    const size_t size = record[0];
    if (record.size() != size + 5) return BadRecord(lineNumber, "the length does not match the data");
    const uint16_t address = static_cast<uint16_t>(record[1] << 8 | record[2]);
    const uint8_t* data = record.data() + 4;
    switch (record[3]) {
      case 0x00:
        if (size > 0) chunks.push_back({base + address, std::vector<uint8_t>(data, data + size)});
        break;
      case 0x01:
        ended = true;
        break;
      case 0x02:
        if (size != 2) return BadRecord(lineNumber, "an extended segment address needs 2 bytes");
        base = uint64_t{static_cast<uint16_t>(data[0] << 8 | data[1])} << 4;
        break;
      case 0x04:
        if (size != 2) return BadRecord(lineNumber, "an extended linear address needs 2 bytes");
        base = uint64_t{static_cast<uint16_t>(data[0] << 8 | data[1])} << 16;
        break;
      case 0x03:
      case 0x05:
        break;  // Start addresses: no memory to fill
      default:
        return BadRecord(lineNumber, "unknown record type");
    }
  }
  if (!ended) return target::Failure{kInvalidImage, "Intel HEX without an end-of-file record"};
  return std::nullopt;
}

std::string WriteIntelHex(const std::vector<uint8_t>& bytes) {
  std::string text;
  uint64_t upper = 0;
  for (size_t offset = 0; offset < bytes.size(); offset += 16) {
    if ((offset >> 16) != upper || offset == 0) {
      upper = offset >> 16;
      const uint8_t high[2] = {static_cast<uint8_t>(upper >> 8), static_cast<uint8_t>(upper)};
      if (upper != 0) AppendRecord(text, 0x04, 0, high, 2);
    }
    const size_t size = std::min<size_t>(16, bytes.size() - offset);
    AppendRecord(text, 0x00, static_cast<uint16_t>(offset & 0xFFFF), bytes.data() + offset, size);
  }
  AppendRecord(text, 0x01, 0, nullptr, 0);
  return text;
}

}  // namespace voxtrel::platform::run_control
