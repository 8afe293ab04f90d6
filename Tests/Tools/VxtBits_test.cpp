// vxt bits, the bit vector calculator, run as a user runs it.
#include <gtest/gtest.h>

#include <string>

#include "VxtRun.h"

namespace {

using vxt::test::RunVxt;
using vxt::test::VxtRun;

TEST(VxtBits, AVectorIsShownInEveryTextForm) {
  const VxtRun run = RunVxt("bits 0xF0 and 0x3C");
  EXPECT_EQ(run.exitStatus, 0) << run.output;
  EXPECT_EQ(run.output,
            "general     8'h30\n"
            "hexadecimal 0x30\n"
            "binary      0b00110000\n"
            "decimal     48\n");
}

TEST(VxtBits, LinesOfTheGrammarGiveTheirResults) {
  struct Case {
    const char* line;
    const char* output;
  };
  const Case cases[] = {
      {"popcount 0b1011", "3\n"},
      {"shl 4 0x1 --as hex", "0x10\n"},
      // Left to right, the shorter operand filled with zeros.
      {"0x0f or 0x30 xor 0xff00 --as hex", "0xff3f\n"},
      {"not reverse 0b0001 --as binary", "0b0111\n"},
      {"field 4 8 0xabc --as hex", "0xab\n"},
      {"set 0 clear 3 flip 1 0b1000 --as binary", "0b0011\n"},
      {"grow 4 \"5'h1f\" --as general", "9'h01f\n"},
      {"last 0x0", "none\n"},
      {"compare 0x0f 0xf0", "-1\n"},
      {"POPCOUNT 18446744073709551615", "64\n"},
  };
  for (const Case& c : cases) {
    const VxtRun run = RunVxt(std::string("bits ") + c.line);
    EXPECT_EQ(run.exitStatus, 0) << c.line << "\n" << run.output;
    EXPECT_EQ(run.output, c.output) << c.line;
  }
}

TEST(VxtBits, ALineOutsideTheGrammarIsRefusedBeforeConnecting) {
  struct Case {
    const char* line;
    const char* message;
  };
  const Case cases[] = {
      {"0x1 and", "vxt bits: a vector is missing at the end\n"},
      {"0x1 0x2", "vxt bits: '0x2' follows a whole expression\n"},
  };
  for (const Case& c : cases) {
    const VxtRun run = RunVxt(std::string("bits ") + c.line);
    EXPECT_EQ(run.exitStatus, 2) << c.line;
    EXPECT_EQ(run.output, std::string(c.message) + "Run 'vxt bits --help' for the grammar.\n") << c.line;
  }
}

TEST(VxtBits, TheLibrarysRefusalIsShownWithItsMessage) {
  const VxtRun run = RunVxt("bits 0xZZ");
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(run.output,
            "vxt: CreateFromString('0xZZ') failed with 0x80000002: InProc_BitData::CreateFromString() argument error "
            "(value) : Cannot be read as a bit vector\n");
  const VxtRun beyond = RunVxt("bits set 4 0x1");
  EXPECT_EQ(beyond.exitStatus, 1);
  EXPECT_EQ(beyond.output,
            "vxt: SetBitOn failed with 0x80010004: InProc_BitDataOperations::SetBitOn() argument error (bitOffset) : "
            "Invalid\n");
}

}  // namespace
