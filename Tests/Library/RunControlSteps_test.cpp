// Step Over, Out and Branch through the RunControl service, on a small
// program of calls written into the first thread's memory and on the
// firmware's own functions.
#include <cstdio>

#include "CallProgramTestSupport.h"

namespace vxt::test {
namespace {

TEST_F(CallProgramTest, EachKindStopsWhereItsGoalIs) {
  struct Case {
    const char* what;
    uint64_t from;
    std::initializer_list<VXT_StepType> steps;
    uint64_t to;
    uint64_t rdx;  // Increments the calls ran
  };
  const Case cases[] = {
      {"over a call runs it to its return", 0x00, {VXT_StepType_Over}, 0x05, 2},
      {"over a plain instruction steps it", 0x10, {VXT_StepType_Over}, 0x13, 1},
      {"into enters the call", 0x00, {VXT_StepType_Into}, 0x10, 0},
      {"out runs the rest of the function, over its own call", 0x00, {VXT_StepType_Into, VXT_StepType_Out}, 0x05, 2},
      {"out at a return returns", 0x00, {VXT_StepType_Into, VXT_StepType_Over, VXT_StepType_Into, VXT_StepType_Out},
       0x18, 1},
      {"branch passes plain instructions to a taken jump", 0x05, {VXT_StepType_Branch}, 0x00, 0},
      {"branch counts a call as taken", 0x00, {VXT_StepType_Branch}, 0x10, 0},
  };
  for (const Case& c : cases) {
    Set("rdx", 0);
    EXPECT_EQ(StepFrom(c.from, c.steps), c.to) << c.what;
    EXPECT_EQ(Read("rdx"), c.rdx) << c.what;
    EXPECT_EQ(BreakType(kFirstThread), "Step") << c.what;
  }
}

TEST_F(CallProgramTest, ACompoundStepAnnouncesOneStopAndABreakpointEndsIt) {
  Stops stops;
  ASSERT_EQ(events->SubscribeRunControlEvents(&Stops::Receive, &stops), 0);
  EXPECT_EQ(StepFrom(0x00, {VXT_StepType_Over}), 0x05);
  EXPECT_EQ(stops.First(), Line("RunControl size=72 type=1 device=", kFirstThread, " address=", kCode + 0x05,
                                " breakpoint=0 name='' breakType='Step' subType='' details='' extra=0/0"));

  const VXT_Breakpoint inside = BreakAt(0x18);
  EXPECT_EQ(StepFrom(0x00, {VXT_StepType_Over}), 0x18);
  EXPECT_EQ(BreakType(kFirstThread), "Breakpoint");
  EXPECT_EQ(stops.Wait(1), Line("RunControl size=72 type=32 device=", kFirstThread, " address=", kCode + 0x18,
                                " breakpoint=", inside.breakpointId,
                                " name='' breakType='Breakpoint' subType='Execution' details='' extra=0/0"));
  EXPECT_EQ(breakpoints->RemoveBreakpointById(inside.breakpointId), 0);
  events->UnsubscribeRunControlEvents(&Stops::Receive);
  {
    const std::lock_guard lock(stops.mutex);
    EXPECT_EQ(stops.seen.size(), 2u) << "the steps inside the compound ones stay quiet";
  }

  // A running thread cannot be stepped.
  uint64_t token = 0;
  Done(runControl->Go(kFirstThread, &token), token);
  EXPECT_NE(runControl->Step(kFirstThread, VXT_StepType_Over, 1, &token), 0);
  EXPECT_EQ(std::string(GetLastErrorMessage()), "stepping: the thread is not halted");
}

}  // namespace
}  // namespace vxt::test

namespace vxt::test {
namespace {

// The address of a symbol of the default firmware; 0 if it has none.
uint64_t FirmwareSymbol(const std::string& name) {
  FILE* pipe = popen(VXT_NM " " VXT_FIRMWARE_ELF, "r");
  if (pipe == nullptr) return 0;
  uint64_t found = 0;
  char line[256];
  while (std::fgets(line, sizeof line, pipe) != nullptr) {
    unsigned long long address = 0;
    char type = 0;
    char symbol[128] = {};
    if (std::sscanf(line, "%llx %c %127s", &address, &type, symbol) == 3 && name == symbol) found = address;
  }
  pclose(pipe);
  return found;
}

// The bootstrap thread prints "tick <n>\r\n" with uart_puts, uart_hex and
// uart_puts again: out of the first uart_puts it returns behind its call,
// and the second call, stepped over, prints its whole text.
TEST_F(CallProgramTest, StepsOutOfAndOverTheFirmwaresOwnCalls) {
  const uint64_t puts = FirmwareSymbol("uart_puts"), tick = FirmwareSymbol("tick");
  ASSERT_NE(puts, 0u);
  ASSERT_NE(tick, 0u);
  auto qword = [&](uint64_t address) {
    const VXT_Address where = Physical(address);
    uint64_t token = 0;
    EXPECT_EQ(memory->ReadMemory(kFirstThread, &where, 8, &token), 0) << GetLastErrorMessage();
    const std::vector<uint8_t> bytes = Bytes(token);
    uint64_t value = 0;
    for (size_t i = bytes.size(); i-- > 0;) value = value << 8 | bytes[i];
    return value;
  };
  auto step = [&](VXT_StepType type) {
    uint64_t token = 0;
    Done(runControl->Step(kFirstThread, type, 1, &token), token);
    EXPECT_EQ(BreakType(kFirstThread), "Step");
  };
  const VXT_Breakpoint entry = BreakAt(puts - kCode);
  // Until it enters uart_puts to print "tick ".
  for (int hits = 0; hits < 4 && !(Rip(kFirstThread) == puts && Read("rsi") == tick); ++hits) {
    uint64_t token = 0;
    Done(runControl->Go(kFirstThread, &token), token);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (Status(kFirstThread) != VXT_RunStatus_Halted && std::chrono::steady_clock::now() < deadline)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  ASSERT_EQ(Rip(kFirstThread), puts);
  ASSERT_EQ(Read("rsi"), tick);
  const uint64_t returnAddress = qword(Read("rsp"));
  ASSERT_EQ(breakpoints->RemoveBreakpointById(entry.breakpointId), 0);

  step(VXT_StepType_Out);
  EXPECT_EQ(Rip(kFirstThread), returnAddress);
  EXPECT_EQ(Read("rsi"), tick + sizeof("tick ")) << "the whole text was printed";
  step(VXT_StepType_Over);  // call uart_hex
  step(VXT_StepType_Over);  // lea newline(%rip), %rsi
  const uint64_t call = Rip(kFirstThread), text = Read("rsi");
  const uint64_t code = qword(call);
  ASSERT_EQ(code & 0xFF, 0xE8u) << "a call";
  EXPECT_EQ(call + 5 + static_cast<int32_t>(code >> 8), puts) << "of uart_puts";
  step(VXT_StepType_Over);
  EXPECT_EQ(Rip(kFirstThread), call + 5);
  EXPECT_EQ(Read("rsi"), text + sizeof("\r\n"));
  uint64_t token = 0;
  Done(runControl->Go(kFirstThread, &token), token);
}

}  // namespace
}  // namespace vxt::test
