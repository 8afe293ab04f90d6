// The framing of GDB's Remote Serial Protocol: "$payload#cs" packets with a
// modulo-256 checksum, '+' / '-' acknowledgements, the interrupt byte 0x03,
// and the escaping of binary data ('}' followed by the byte xor 0x20).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vxt::gdb {

// One thing the debugger sent.
struct Incoming {
  enum class Kind {
    Packet,     // A whole packet with a right checksum: `payload` holds it, still escaped
    BadPacket,  // A wrong checksum, a checksum that is no hex, or a payload over the limit
    Interrupt,  // 0x03 outside a packet
    Ack,
    Nak,
  };
  Kind kind;
  std::string payload;
};

// Turns the bytes of a connection into packets, however they are cut.
// Bytes outside a packet other than '+', '-' and 0x03 are dropped; a '$'
// inside a packet starts a new one (the debugger gave up on the first).
class PacketReader {
 public:
  explicit PacketReader(size_t maxPayload) : maxPayload_(maxPayload) {}
  void Feed(std::string_view bytes, std::vector<Incoming>& out);

 private:
  enum class State { Outside, Payload, Checksum };
  State state_ = State::Outside;
  size_t maxPayload_;
  std::string payload_;
  uint8_t sum_ = 0;
  std::string checksum_;
  bool overlong_ = false;
};

// "$payload#cs", with '$', '#', '}' and '*' escaped so that no reply can be
// read as a frame or as run-length encoding.
std::string Frame(std::string_view payload);

// The bytes of binary data as sent ('}' escapes undone); nullopt when the
// data ends inside an escape.
std::optional<std::string> Unescape(std::string_view data);

// Two lower-case hex digits per byte.
std::string ToHex(std::string_view bytes);
std::string ToHex(const std::vector<uint8_t>& bytes);
// nullopt unless an even number of hex digits.
std::optional<std::vector<uint8_t>> FromHex(std::string_view text);
// Lower-case hex digits, no leading zeros.
std::string HexNumber(uint64_t value);
// A number in hex digits alone (1 to 16 of them).
std::optional<uint64_t> ParseHexNumber(std::string_view text);
// A register's value as its bytes, least significant first (x86's order):
// the first 8 bytes, and 8 bytes.
uint64_t LittleEndianValue(const std::vector<uint8_t>& bytes);
std::vector<uint8_t> LittleEndianBytes(uint64_t value);

}  // namespace vxt::gdb
