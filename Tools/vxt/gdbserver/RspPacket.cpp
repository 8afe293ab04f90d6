#include "RspPacket.h"

#include <algorithm>

namespace vxt::gdb {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool NeedsEscape(char c) { return c == '$' || c == '#' || c == '}' || c == '*'; }

}  // namespace

void PacketReader::Feed(std::string_view bytes, std::vector<Incoming>& out) {
  for (const char c : bytes) {
    switch (state_) {
      case State::Outside:
        if (c == '$') {
          state_ = State::Payload;
          payload_.clear();
          sum_ = 0;
          overlong_ = false;
        } else if (c == '+') {
          out.push_back({Incoming::Kind::Ack, {}});
        } else if (c == '-') {
          out.push_back({Incoming::Kind::Nak, {}});
        } else if (c == '\x03') {
          out.push_back({Incoming::Kind::Interrupt, {}});
        }
        break;
      case State::Payload:
        if (c == '#') {
          state_ = State::Checksum;
          checksum_.clear();
        } else if (c == '$') {
          payload_.clear();
          sum_ = 0;
          overlong_ = false;
        } else {
          sum_ = static_cast<uint8_t>(sum_ + static_cast<uint8_t>(c));
          // Past the limit the bytes are only counted, never kept.
          if (payload_.size() < maxPayload_)
            payload_ += c;
          else
            overlong_ = true;
        }
        break;
      case State::Checksum:
        checksum_ += c;
        if (checksum_.size() == 2) {
          state_ = State::Outside;
          const int high = HexValue(checksum_[0]);
          const int low = HexValue(checksum_[1]);
          const bool good = high >= 0 && low >= 0 && (high << 4 | low) == sum_ && !overlong_;
          if (good)
            out.push_back({Incoming::Kind::Packet, std::move(payload_)});
          else
            out.push_back({Incoming::Kind::BadPacket, {}});
          payload_.clear();
        }
        break;
    }
  }
}

std::string Frame(std::string_view payload) {
  std::string frame = "$";
  uint8_t sum = 0;
  const auto put = [&](char c) {
    frame += c;
    sum = static_cast<uint8_t>(sum + static_cast<uint8_t>(c));
  };
  for (const char c : payload) {
    if (NeedsEscape(c)) {
      put('}');
      put(static_cast<char>(c ^ 0x20));
    } else {
      put(c);
    }
  }
  frame += '#';
  frame += kDigits[sum >> 4];
  frame += kDigits[sum & 0xf];
  return frame;
}

std::optional<std::string> Unescape(std::string_view data) {
  std::string bytes;
  bytes.reserve(data.size());
  for (size_t i = 0; i < data.size(); ++i) {
    if (data[i] != '}') {
      bytes += data[i];
      continue;
    }
    if (++i == data.size()) return std::nullopt;
    bytes += static_cast<char>(data[i] ^ 0x20);
  }
  return bytes;
}

std::string ToHex(std::string_view bytes) {
  std::string text;
  text.reserve(2 * bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<uint8_t>(c);
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xf];
  }
  return text;
}

std::string ToHex(const std::vector<uint8_t>& bytes) {
  return ToHex(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

std::optional<std::vector<uint8_t>> FromHex(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::vector<uint8_t> bytes(text.size() / 2);
  for (size_t i = 0; i < bytes.size(); ++i) {
    const int high = HexValue(text[2 * i]);
    const int low = HexValue(text[2 * i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes[i] = static_cast<uint8_t>(high << 4 | low);
  }
  return bytes;
}

std::string HexNumber(uint64_t value) {
  std::string text;
  do {
    text.insert(text.begin(), kDigits[value & 0xf]);
    value >>= 4;
  } while (value != 0);
  return text;
}

std::optional<uint64_t> ParseHexNumber(std::string_view text) {
  if (text.empty() || text.size() > 16) return std::nullopt;
  uint64_t value = 0;
  for (const char c : text) {
    const int digit = HexValue(c);
    if (digit < 0) return std::nullopt;
    value = value << 4 | static_cast<uint64_t>(digit);
  }
  return value;
}

uint64_t LittleEndianValue(const std::vector<uint8_t>& bytes) {
  uint64_t value = 0;
  for (size_t i = std::min<size_t>(bytes.size(), 8); i-- > 0;) value = value << 8 | bytes[i];
  return value;
}

std::vector<uint8_t> LittleEndianBytes(uint64_t value) {
  std::vector<uint8_t> bytes(8);
  for (size_t i = 0; i < 8; ++i) bytes[i] = static_cast<uint8_t>(value >> (8 * i));
  return bytes;
}

}  // namespace vxt::gdb
