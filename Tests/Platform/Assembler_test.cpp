// The assembler and disassembler of the RunControl component: what the
// disassembler writes, the assembler reads back to an instruction with the
// same text, in every mode and at any address.
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../../Source/Platform/Assembler/Assembler.h"
#include "../../Source/Platform/Assembler/Disassembler.h"

namespace {

using voxtrel::platform::assembler::Assemble;
using voxtrel::platform::assembler::Disassemble;
using voxtrel::platform::assembler::InstructionMode;
using Bytes = std::vector<uint8_t>;

constexpr InstructionMode kModes[] = {InstructionMode::Bits16, InstructionMode::Bits32, InstructionMode::Bits64};

// Instructions of every kind the decoder accepts: the first instruction of
// random bytes, each at a random address, so that branches reach across the
// ends of the address space too.
struct Sample {
  Bytes bytes;
  uint64_t address;
};
std::vector<Sample> RandomInstructions(InstructionMode mode, size_t count) {
  std::mt19937_64 random(20261124 + static_cast<int>(mode));
  std::vector<Sample> samples;
  while (samples.size() < count) {
    Bytes bytes(15);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    const uint64_t address = random() >> (random() % 64);
    const auto disassembly = Disassemble(mode, bytes, address);
    if (!disassembly.ok) continue;
    bytes.resize(disassembly.length);
    samples.push_back({bytes, address});
  }
  return samples;
}

class AssemblerRoundTrip : public ::testing::TestWithParam<InstructionMode> {};

TEST_P(AssemblerRoundTrip, DisassemblyAssemblesToTheSameText) {
  const InstructionMode mode = GetParam();
  std::vector<std::string> failures;
  for (const auto& [bytes, address] : RandomInstructions(mode, 600)) {
    const std::string text = Disassemble(mode, bytes, address).text;
    const auto assembly = Assemble(mode, text, address);
    const auto again = assembly.ok ? Disassemble(mode, assembly.bytes, address)
                                   : voxtrel::platform::assembler::Disassembly{false, assembly.error, 0};
    if (again.text != text || again.length != assembly.bytes.size()) failures.push_back(text + " -> " + again.text);
  }
  EXPECT_EQ(failures, std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(EveryMode, AssemblerRoundTrip, ::testing::ValuesIn(kModes));

struct Encoding {
  InstructionMode mode;
  uint64_t address;
  const char* text;
  Bytes bytes;
};

TEST(Assembler, EncodesWhatTheTextSays) {
  const Encoding encodings[] = {
      {InstructionMode::Bits64, 0x1000, "jmp 0x0000000000001000", {0xEB, 0xFE}},
      {InstructionMode::Bits64, 0x1000, "JNO 0x1082", {0x0F, 0x81, 0x7C, 0x00, 0x00, 0x00}},
      {InstructionMode::Bits64, 0, "lock xadd qword ptr [rbx], rax", {0xF0, 0x48, 0x0F, 0xC1, 0x03}},
      {InstructionMode::Bits64, 0, "mov rax, qword ptr [rip+0x10]", {0x48, 0x8B, 0x05, 0x10, 0x00, 0x00, 0x00}},
      {InstructionMode::Bits64, 0, "mov eax, dword ptr fs:[rax]", {0x64, 0x8B, 0x00}},
      {InstructionMode::Bits64, 0, "mov eax, [rax+0x7FFFFFFFFFFFFFFF+0x7FFFFFFFFFFFFFFF]", {0x8B, 0x40, 0xFE}},
      {InstructionMode::Bits32, 0x1000, "call 0x00001005", {0xE8, 0x00, 0x00, 0x00, 0x00}},
      {InstructionMode::Bits32, 0x10, "jmp 0xFFFFFFF0", {0xEB, 0xDE}},
      {InstructionMode::Bits32, 0, "mov eax, dword ptr [ebx+ecx*4-0x04]", {0x8B, 0x44, 0x8B, 0xFC}},
      {InstructionMode::Bits32, 0, "add al, 0xEB", {0x04, 0xEB}},
      {InstructionMode::Bits16, 0xFFFE, "jmp 0x0010", {0xEB, 0x10}},
      {InstructionMode::Bits16, 0xFFFF0, "jmp far 0xF000:0xE05B", {0xEA, 0x5B, 0xE0, 0x00, 0xF0}},
      {InstructionMode::Bits16, 0, "out 0x80, al", {0xE6, 0x80}},
  };
  for (const auto& [mode, address, text, bytes] : encodings) {
    const auto assembly = Assemble(mode, text, address);
    EXPECT_TRUE(assembly.ok) << text << ": " << assembly.error;
    EXPECT_EQ(assembly.bytes, bytes) << text;
  }
}

TEST(Assembler, RefusesTextThatIsNoInstruction) {
  const std::pair<InstructionMode, const char*> texts[] = {
      {InstructionMode::Bits64, ""},
      {InstructionMode::Bits64, "frobnicate eax"},
      {InstructionMode::Bits64, "mov eax,"},
      {InstructionMode::Bits64, "mov eax, dword ptr [eax"},
      {InstructionMode::Bits64, "mov eax, huge ptr [rax]"},
      {InstructionMode::Bits64, "mov eax, dword ptr xs:[rax]"},
      {InstructionMode::Bits64, "mov eax, [rax-rbx]"},
      {InstructionMode::Bits64, "vaddps zmm0 {k9}, zmm1, zmm2"},
      {InstructionMode::Bits32, "mov rax, rbx"},
      {InstructionMode::Bits16, "jmp far 0x10000:0x0"},
      {InstructionMode::Bits64, "nop, nop, nop, nop, nop, nop"},
  };
  for (const auto& [mode, text] : texts) {
    const auto assembly = Assemble(mode, text, 0);
    EXPECT_FALSE(assembly.ok) << text;
    EXPECT_FALSE(assembly.error.empty()) << text;
    EXPECT_TRUE(assembly.bytes.empty()) << text;
  }
}

TEST(Disassembler, RefusesBytesThatAreNoWholeInstruction) {
  for (const Bytes& bytes : {Bytes{}, Bytes{0xB8, 0x01}, Bytes{0x0F, 0xFF}}) {
    const auto disassembly = Disassemble(InstructionMode::Bits32, bytes, 0);
    EXPECT_FALSE(disassembly.ok);
    EXPECT_EQ(disassembly.length, 0u);
  }
}

}  // namespace
