// vxt mem, regs, reg, msr, asm and disasm on the emulated target.
#include <cstdio>
#include <regex>
#include <string>

#include <gtest/gtest.h>

#include "VxtRun.h"

namespace vxt::test {
namespace {

TEST(VxtCpu, MemoryWrittenAssembledSavedAndLoadedReadsBack) {
  const std::string file = testing::TempDir() + "vxt-cpu-mem.bin";
  std::remove(file.c_str());
  const VxtRun run = RunVxt("-e 'mem write phys:0x20000 1 2 0x41 0xff; asm 0x30000 \"inc rcx\" \"jmp 0x30000\"; "
                            "disasm 0x30000 2; mem save " + file + " phys:0x20000 4; mem load " + file +
                            " phys:0x20010; mem read phys:0x20000 20'");
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.output,
            "wrote 4 byte(s)\n"
            "00030000:  48 ff c1                      inc rcx\n"
            "00030003:  eb fb                         jmp 0x30000\n"
            "   00030000:  48 ff c1                      inc rcx\n"
            "   00030003:  eb fb                         jmp 0x0000000000030000\n"
            "saved 4 byte(s) to " + file + "\n"
            "loaded " + file + "\n"
            "00020000: 01 02 41 ff 00 00 00 00 00 00 00 00 00 00 00 00  ..A.............\n"
            "00020010: 01 02 41 ff                                      ..A.\n");
}

TEST(VxtCpu, RegistersAndTheCurrentInstruction) {
  const VxtRun regs = RunVxt("-e 'reg r15 0x1234; regs; msr 0x1b; disasm'");
  ASSERT_EQ(regs.exitStatus, 0) << regs.output;
  EXPECT_TRUE(std::regex_search(regs.output, std::regex("^r15 0x0000000000001234\nrax +0x[0-9a-f]{16}\n")))
      << regs.output;
  EXPECT_NE(regs.output.find("\nr15         0x0000000000001234\n"), std::string::npos) << regs.output;
  EXPECT_NE(regs.output.find("\nmsr 0x1b 0x00000000fee00900\n=> "), std::string::npos) << regs.output;
}

TEST(VxtCpu, MistakesAndRefusalsAreReported) {
  const struct {
    const char* command;
    const char* output;
  } cases[] = {
      {"mem read phys:0x1000 0",
       "vxt: ReadMemory failed with 0x80000011: InProc_Memory::ReadMemory() argument error (byteCount) : Byte count "
       "must be greater than zero.\n"},
      {"mem read phys:0xfffffff0 64",
       "vxt: ReadMemory failed with 0x80080007: reading 0x40 bytes at 0xfffffff0 (physical 0xfffffff0): the range is "
       "not mapped\n"},
      {"mem write 0x1000 256", "vxt: '256' is no byte\n"},
      {"mem copy 1 2", "vxt: unknown mem action 'copy' (read, write, load or save)\n"},
      {"reg nosuch", "vxt: ReadRegister failed with 0x80160000: the thread has no register 'nosuch'\n"},
      {"reg cs 0x10000", "vxt: '0x10000' is no value for the register\n"},
      {"msr 0x12345", "vxt: ReadMsr failed with 0x80160001: reading MSR 0x12345: general protection fault\n"},
      {"regs I2cBus0", "vxt: 'I2cBus0' is no LogicalThread\n"},
  };
  for (const auto& one : cases) {
    const VxtRun run = RunVxt(one.command);
    EXPECT_EQ(run.exitStatus, 1) << one.command;
    EXPECT_EQ(run.output, one.output) << one.command;
  }
}

}  // namespace
}  // namespace vxt::test
