// The remote protocol's framing: packets however the bytes are cut, bad
// checksums and oversized packets refused, replies escaped so that no reply
// reads as a frame, hex and binary data decoded strictly.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RspPacket.h"

namespace {

using vxt::gdb::Incoming;
using Kind = vxt::gdb::Incoming::Kind;

std::string Describe(const std::vector<Incoming>& items) {
  std::string text;
  for (const Incoming& item : items) {
    switch (item.kind) {
      case Kind::Packet: text += "[" + item.payload + "]"; break;
      case Kind::BadPacket: text += "bad "; break;
      case Kind::Interrupt: text += "^C "; break;
      case Kind::Ack: text += "+ "; break;
      case Kind::Nak: text += "- "; break;
    }
  }
  return text;
}

TEST(GdbPacket, TheReaderFindsPacketsAndRefusesWhatIsWrong) {
  struct Case {
    std::string bytes;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {"$g#67", "[g]"},
      {"+$m0,4#fd-", "+ [m0,4]- "},
      {"\x03junk$?#3F", "^C [?]"},           // upper-case checksum digits, noise outside packets dropped
      {"$g#68", "bad "},                       // wrong checksum
      {"$g#zz$g#67", "bad [g]"},               // checksum that is no hex
      {"$abc$g#67", "[g]"},                    // a '$' inside a packet starts over
      {"$#00", "[]"},                          // the empty packet
      {"$0123456789#" "0d", "bad "},           // over the limit of 8 bytes, right checksum
      {"$01234567#" "9c", "[01234567]"},       // exactly the limit
  };
  for (const Case& item : cases) {
    vxt::gdb::PacketReader reader(8);
    std::vector<Incoming> out;
    reader.Feed(item.bytes, out);
    EXPECT_EQ(Describe(out), item.expected) << item.bytes;
    // Byte by byte, the same.
    vxt::gdb::PacketReader split(8);
    std::vector<Incoming> pieces;
    for (const char c : item.bytes) split.Feed(std::string(1, c), pieces);
    EXPECT_EQ(Describe(pieces), item.expected) << item.bytes;
  }
}

TEST(GdbPacket, FramesEscapeWhatWouldEndOrEncodeThem) {
  EXPECT_EQ(vxt::gdb::Frame("OK"), "$OK#9a");
  EXPECT_EQ(vxt::gdb::Frame(""), "$#00");
  const std::string awkward = std::string("a$b#c}d*e\0f", 11);
  const std::string framed = vxt::gdb::Frame(awkward);
  EXPECT_EQ(framed.find_first_of("$#*", 1), framed.size() - 3) << framed;
  // What the reader takes back and unescapes is what was framed.
  vxt::gdb::PacketReader reader(64);
  std::vector<Incoming> out;
  reader.Feed(framed, out);
  ASSERT_EQ(out.size(), 1u);
  ASSERT_EQ(out[0].kind, Kind::Packet);
  EXPECT_EQ(vxt::gdb::Unescape(out[0].payload), awkward);
  EXPECT_EQ(vxt::gdb::Unescape("ab}"), std::nullopt);
}

TEST(GdbPacket, HexIsDecodedStrictly) {
  EXPECT_EQ(vxt::gdb::FromHex("00ff7A"), (std::vector<uint8_t>{0x00, 0xff, 0x7a}));
  EXPECT_EQ(vxt::gdb::FromHex("abc"), std::nullopt);
  EXPECT_EQ(vxt::gdb::FromHex("zz"), std::nullopt);
  EXPECT_EQ(vxt::gdb::ToHex(std::vector<uint8_t>{0x0f, 0xa0}), "0fa0");
  EXPECT_EQ(vxt::gdb::ParseHexNumber("ffffffffffffffff"), UINT64_MAX);
  EXPECT_EQ(vxt::gdb::ParseHexNumber("10000000000000000"), std::nullopt);
  EXPECT_EQ(vxt::gdb::ParseHexNumber(""), std::nullopt);
  EXPECT_EQ(vxt::gdb::ParseHexNumber("-1"), std::nullopt);
  EXPECT_EQ(vxt::gdb::HexNumber(0), "0");
  EXPECT_EQ(vxt::gdb::HexNumber(0x3000000), "3000000");
}

}  // namespace
