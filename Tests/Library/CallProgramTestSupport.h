// A client on the emulated target whose first thread is halted with a small
// program of calls in its memory, for the tests of stepping and of a
// debugging session.
#pragma once

#include <initializer_list>
#include <vector>

#include "RunControlTestSupport.h"

namespace vxt::test {

constexpr uint64_t kCode = 0x20000;
// 00: call 10; 05: inc rcx; 08: jmp 00
// 10: inc rdx; 13: call 20; 18: inc rdx; 1b: ret
// 20: ret
// 30: jmp 30
const std::vector<uint8_t> kCalls = {
    0xE8, 0x0B, 0x00, 0x00, 0x00, 0x48, 0xFF, 0xC1, 0xEB, 0xF6, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90,
    0x48, 0xFF, 0xC2, 0xE8, 0x08, 0x00, 0x00, 0x00, 0x48, 0xFF, 0xC2, 0xC3, 0x90, 0x90, 0x90, 0x90,
    0xC3, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90, 0x90,
    0xEB, 0xFE};

class CallProgramTest : public RunControlTest {
 protected:
  void SetUp() override {
    RunControlTest::SetUp();
    uint64_t token = 0;
    Done(runControl->Halt(kFirstThread, &token), token);
    VXT_BitData code = Vector(kCalls);
    const VXT_Address where = Physical(kCode);
    ASSERT_EQ(memory->WriteMemory(kFirstThread, &where, static_cast<int32_t>(kCalls.size()), &code, &token), 0);
    receipts->Destroy(token);
    bitData->Destroy(&code);
    Set("rdx", 0);
  }
  void Set(const char* name, uint64_t value) {
    std::vector<uint8_t> bytes(8);
    for (int i = 0; i < 8; ++i) bytes[i] = static_cast<uint8_t>(value >> (8 * i));
    VXT_BitData vector = Vector(bytes);
    uint64_t token = 0;
    ASSERT_EQ(registers->WriteRegister(kFirstThread, name, &vector, &token), 0) << GetLastErrorMessage();
    receipts->Destroy(token);
    bitData->Destroy(&vector);
  }
  uint64_t Read(const char* name) {
    uint64_t token = 0;
    EXPECT_EQ(registers->ReadRegister(kFirstThread, name, &token), 0) << GetLastErrorMessage();
    return Number(token);
  }
  // An enabled execution breakpoint of the first thread in the program.
  VXT_Breakpoint BreakAt(uint64_t offset) {
    VXT_Breakpoint breakpoint{};
    breakpoint.structureSize = VXT_BREAKPOINT_SIZE;
    breakpoint.threadDeviceId = kFirstThread;
    breakpoint.breakpointType = VXT_BreakpointType_HW_Exec;
    breakpoint.breakpointAddress = kCode + offset;
    breakpoint.enabled = 1;
    EXPECT_EQ(breakpoints->CreateBreakpoint(&breakpoint), 0) << GetLastErrorMessage();
    return breakpoint;
  }
  // From `from`, steps of each type in turn: where the thread stands then.
  uint64_t StepFrom(uint64_t from, std::initializer_list<VXT_StepType> types) {
    Set("rip", kCode + from);
    for (const VXT_StepType type : types) {
      uint64_t token = 0;
      Done(runControl->Step(kFirstThread, type, 1, &token), token);
    }
    return Read("rip") - kCode;
  }
};

}  // namespace vxt::test
