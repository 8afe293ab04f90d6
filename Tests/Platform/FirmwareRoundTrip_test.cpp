// Every instruction the shipped firmware executes, from the reset vector
// through real, protected and long mode, its loop and a tick it prints,
// disassembles to text that assembles back to the same instruction.
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "../../Source/Platform/Assembler/Assembler.h"
#include "../../Source/Platform/Assembler/Disassembler.h"
#include "../../Source/Platform/RunControl/ThreadAddressing.h"
#include "CpuTestSupport.h"

namespace vxt::test {
namespace {

using voxtrel::platform::assembler::Assemble;
using voxtrel::platform::assembler::Disassemble;
using voxtrel::platform::assembler::InstructionMode;

constexpr uint64_t kTickMask = 0xFFFF;

InstructionMode ModeOf(uint32_t bits) {
  return bits == 16 ? InstructionMode::Bits16 : bits == 32 ? InstructionMode::Bits32 : InstructionMode::Bits64;
}

// The bytes at a linear address of the firmware (identity-mapped), fewer
// where the ROM ends.
std::vector<uint8_t> CodeAt(const CpuTarget& target, uint64_t linear) {
  for (size_t size = 15; size > 0; --size) {
    std::vector<uint8_t> bytes(size);
    if (target.Cpus().ReadPhysical(linear, bytes) == CpuResult::Ok) return bytes;
  }
  return {};
}

TEST(FirmwareRoundTrip, EveryExecutedInstructionAssemblesBackToItself) {
  CpuTarget target;
  ASSERT_EQ(target.Cpus().Reset(ResetMode::HaltAfterReset), CpuResult::Ok);
  target.Write(ThreadCounter(0), std::vector<uint8_t>(8, 0));
  // (linear address, mode) -> text, each instruction once.
  std::map<std::pair<uint64_t, InstructionMode>, std::string> executed;
  std::vector<std::string> failures;
  bool tickForced = false;
  for (int step = 0; step < 20000; ++step) {
    uint32_t bits = 0;
    ASSERT_FALSE(voxtrel::platform::run_control::ThreadAddressing(target.Cpus(), 0).CodeBits(bits).has_value());
    const InstructionMode mode = ModeOf(bits);
    const uint64_t rip = target.Register(0, "rip");
    const uint64_t linear = (bits == 64 ? 0 : target.Register(0, "cs_base")) + rip;
    if (!executed.contains({linear, mode})) {
      const std::vector<uint8_t> bytes = CodeAt(target, linear);
      const auto disassembly = Disassemble(mode, bytes, rip);
      ASSERT_TRUE(disassembly.ok) << std::hex << linear;
      const auto assembly = Assemble(mode, disassembly.text, rip);
      const auto again = Disassemble(mode, assembly.bytes, rip);
      if (!assembly.ok || again.text != disassembly.text || again.length != assembly.bytes.size())
        failures.push_back(disassembly.text + " -> " + (assembly.ok ? again.text : assembly.error));
      executed[{linear, mode}] = disassembly.text;
    }
    // In the loop: the next iteration ticks, which prints through the UART.
    const uint64_t count = target.ReadQword(ThreadCounter(0));
    if (count > 0 && !tickForced) {
      std::vector<uint8_t> nearTick(8, 0);
      nearTick[0] = nearTick[1] = 0xFF;
      target.Write(ThreadCounter(0), nearTick);
      tickForced = true;
    }
    if (tickForced && count == kTickMask + 2) break;
    ASSERT_EQ(target.Cpus().Step(0), CpuResult::Ok);
  }
  EXPECT_EQ(target.ReadQword(ThreadCounter(0)), kTickMask + 2) << "the firmware did not reach its second tick iteration";
  EXPECT_GT(executed.size(), 100u);
  EXPECT_EQ(failures, std::vector<std::string>{});
}

}  // namespace
}  // namespace vxt::test
