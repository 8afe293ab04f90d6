// Running, halting, stepping and breaking the emulated CPUs, and what the
// executing CPU sees of memory written from outside.
#include <atomic>

#include "CpuTestSupport.h"

namespace vxt::test {
namespace {

constexpr uint64_t kCode = 0x20000;
constexpr uint64_t kData = 0x3000;

// mov rax, imm64; mov [0x3000], rax; jmp $
std::vector<uint8_t> StoreProgram(uint64_t value) {
  std::vector<uint8_t> code = {0x48, 0xB8};
  for (int byte = 0; byte < 8; ++byte) code.push_back(static_cast<uint8_t>(value >> (8 * byte)));
  code.insert(code.end(), {0x48, 0x89, 0x04, 0x25, 0x00, 0x30, 0x00, 0x00, 0xEB, 0xFE});
  return code;
}
// 0: inc rcx; 3: inc rcx; 6: jmp 0
const std::vector<uint8_t> kCountProgram = {0x48, 0xFF, 0xC1, 0x48, 0xFF, 0xC1, 0xEB, 0xF8};
// 0: mov [0x3000], rcx; 8: inc rcx; 11: jmp 0
const std::vector<uint8_t> kStoreCountProgram = {0x48, 0x89, 0x0C, 0x25, 0x00, 0x30, 0x00,
                                                 0x00, 0x48, 0xFF, 0xC1, 0xEB, 0xF3};

// Thread 0 halted with its rip at `program`, rcx 0; the others run on.
void RunOnThreadZero(const CpuTarget& target, const std::vector<uint8_t>& program, bool go) {
  target.WaitForFirmwareLoop();
  ASSERT_EQ(target.Cpus().Halt(0), CpuResult::Ok);
  target.Write(kCode, program);
  target.SetRegister(0, "rip", kCode);
  target.SetRegister(0, "rcx", 0);
  if (go) {
    ASSERT_EQ(target.Cpus().Go(0), CpuResult::Ok);
  }
}

TEST(CpuRunControlTest, CodeWrittenFromOutsideIsWhatTheCpuExecutes) {
  CpuTarget target;
  RunOnThreadZero(target, StoreProgram(0x1111), true);
  EXPECT_TRUE(WaitForCondition([&] { return target.ReadQword(kData) == 0x1111; }));
  // Rewriting code already translated: the old translation must not run.
  ASSERT_EQ(target.Cpus().Halt(0), CpuResult::Ok);
  target.Write(kCode, StoreProgram(0x2222));
  target.SetRegister(0, "rip", kCode);
  ASSERT_EQ(target.Cpus().Go(0), CpuResult::Ok);
  EXPECT_TRUE(WaitForCondition([&] { return target.ReadQword(kData) == 0x2222; })) << target.ReadQword(kData);
}

// HLT: the thread waits, as a CPU waits for an interrupt, through halts,
// resumes and steps, until it is given a new rip.
TEST(CpuRunControlTest, AThreadInHltWaitsUntilItIsSentElsewhere) {
  CpuTarget target;
  // 0: mov [0x3000], rcx; 8: hlt; 9: mov qword [0x3000], 0; 21: jmp $
  const std::vector<uint8_t> program = {0x48, 0x89, 0x0C, 0x25, 0x00, 0x30, 0x00, 0x00, 0xF4, 0x48, 0xC7, 0x04,
                                        0x25, 0x00, 0x30, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xEB, 0xFE};
  RunOnThreadZero(target, program, false);
  target.SetRegister(0, "rcx", 7);
  ASSERT_EQ(target.Cpus().Go(0), CpuResult::Ok);
  ASSERT_TRUE(WaitForCondition([&] { return target.ReadQword(kData) == 7 && target.Register(0, "rip") == kCode + 9; }));
  RunState state = RunState::Halted;
  EXPECT_EQ(target.Cpus().GetRunState(0, state), CpuResult::Ok);
  EXPECT_EQ(state, RunState::Running);
  ASSERT_EQ(target.Cpus().Halt(0), CpuResult::Ok);
  ASSERT_EQ(target.Cpus().Step(0), CpuResult::Ok);
  ASSERT_EQ(target.Cpus().Go(0), CpuResult::Ok);
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(target.ReadQword(kData), 7u) << "a waiting thread ran on";
  EXPECT_EQ(target.Register(0, "rip"), kCode + 9);
  target.SetRegister(0, "rip", kCode + 9);
  EXPECT_TRUE(WaitForCondition([&] { return target.ReadQword(kData) == 0; }));
}

// Every firmware iteration adds 1 to the thread's own counter, then 1 to the
// shared one: a halt between the two leaves the first ahead by one, a halt
// that replays or drops a store leaves them apart for good.
TEST(CpuRunControlTest, HaltsArePreciseAndResumable) {
  CpuTarget target;
  target.WaitForFirmwareLoop();
  const uint32_t threads = target.Cpus().ThreadCount();
  auto ahead = [&] {
    uint64_t own = 0;
    for (uint32_t apicId = 0; apicId < threads; ++apicId) own += target.ReadQword(ThreadCounter(apicId));
    return static_cast<int64_t>(own - target.ReadQword(kSharedCounter));
  };
  uint64_t last = 0;
  for (int cycle = 0; cycle < 40; ++cycle) {
    ASSERT_EQ(target.Cpus().HaltAll(), CpuResult::Ok);
    const int64_t difference = ahead();
    EXPECT_GE(difference, 0) << cycle;
    EXPECT_LE(difference, static_cast<int64_t>(threads)) << cycle;
    const uint64_t shared = target.ReadQword(kSharedCounter);
    EXPECT_GE(shared, last);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(target.ReadQword(kSharedCounter), shared) << "a halted domain moved";
    last = shared;
    ASSERT_EQ(target.Cpus().GoAll(), CpuResult::Ok);
  }
  EXPECT_TRUE(WaitForCondition([&] { return target.ReadQword(kSharedCounter) > last; }));
}

// Halted and resumed far more often than a thread's turn lasts, the domain
// still gives every thread its turn: each one counts on.
TEST(CpuRunControlTest, EveryThreadRunsThroughFrequentHaltsAndGoes) {
  CpuTarget target;
  target.WaitForFirmwareLoop();
  const uint32_t threads = target.Cpus().ThreadCount();
  ASSERT_EQ(target.Cpus().HaltAll(), CpuResult::Ok);
  std::vector<uint64_t> before;
  for (uint32_t apicId = 0; apicId < threads; ++apicId) before.push_back(target.ReadQword(ThreadCounter(apicId)));
  auto everyThreadCounted = [&] {
    for (uint32_t apicId = 0; apicId < threads; ++apicId)
      if (target.ReadQword(ThreadCounter(apicId)) == before[apicId]) return false;
    return true;
  };
  // Each go lasts a few thousand loop iterations, a small part of a turn.
  for (int cycle = 0; cycle < 400 && !everyThreadCounted(); ++cycle) {
    const uint64_t shared = target.ReadQword(kSharedCounter);
    ASSERT_EQ(target.Cpus().GoAll(), CpuResult::Ok);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (target.ReadQword(kSharedCounter) < shared + 2000) ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    ASSERT_EQ(target.Cpus().HaltAll(), CpuResult::Ok);
  }
  for (uint32_t apicId = 0; apicId < threads; ++apicId)
    EXPECT_GT(target.ReadQword(ThreadCounter(apicId)), before[apicId]) << "thread " << apicId << " never ran";
}

// A halt that comes between a reset and the first instructions shows each
// thread where it stands in the firmware, which runs from ROM alone; the
// first stop in a fresh engine must not leave rip 0.
TEST(CpuRunControlTest, AHaltRightAfterAResetShowsWhereTheThreadsStand) {
  CpuTarget target;
  for (int round = 0; round < 100; ++round) {
    ASSERT_EQ(target.Cpus().Reset(round % 2 ? ResetMode::Run : ResetMode::HaltAfterReset), CpuResult::Ok);
    if (round % 2 == 0) {
      ASSERT_EQ(target.Cpus().GoAll(), CpuResult::Ok);
    }
    if (round % 3 == 0) std::this_thread::sleep_for(std::chrono::microseconds(10 * round));
    ASSERT_EQ(target.Cpus().HaltAll(), CpuResult::Ok);
    for (uint32_t thread = 0; thread < target.Cpus().ThreadCount(); ++thread)
      EXPECT_GE(target.Register(thread, "rip") + target.Register(thread, "cs_base"), 0xFFFF0000u)
          << "round " << round << ", thread " << thread;
  }
}

TEST(CpuRunControlTest, StepsAndBreakpointsStopWhereTheySay) {
  CpuTarget target;
  StopLog log(target.Cpus());
  RunOnThreadZero(target, kCountProgram, false);
  struct Expected {
    uint64_t rip;
    uint64_t rcx;
  };
  for (Expected expected : {Expected{3, 1}, Expected{6, 2}, Expected{0, 2}, Expected{3, 3}}) {
    log.Clear();
    ASSERT_EQ(target.Cpus().Step(0), CpuResult::Ok);
    EXPECT_EQ(target.Register(0, "rip"), kCode + expected.rip);
    EXPECT_EQ(target.Register(0, "rcx"), expected.rcx);
    ASSERT_EQ(log.Events().size(), 1u);
    EXPECT_EQ(log.Events()[0].reason, StopReason::Step);
    EXPECT_EQ(log.Events()[0].address, kCode + expected.rip);
  }
  // Resumed at the breakpoint, the thread executes its instruction first and
  // comes back to it one round later.
  uint32_t id = 0;
  ASSERT_EQ(target.Cpus().AddBreakpoint({BreakpointKind::Execution, kCode + 3, DataAccess::Write, 1, 0}, id),
            CpuResult::Ok);
  for (uint64_t rcx : {5u, 7u}) {
    log.Clear();
    ASSERT_EQ(target.Cpus().Go(0), CpuResult::Ok);
    const auto hit = log.WaitFor(StopReason::ExecutionBreakpoint);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->address, kCode + 3);
    EXPECT_EQ(hit->breakpointId, id);
    EXPECT_EQ(target.Register(0, "rcx"), rcx);
  }
  ASSERT_EQ(target.Cpus().RemoveBreakpoint(id), CpuResult::Ok);
  // A data breakpoint stops after the access, before the next instruction.
  target.Write(kCode, kStoreCountProgram);
  target.SetRegister(0, "rip", kCode);
  ASSERT_EQ(target.Cpus().AddBreakpoint({BreakpointKind::Data, kData, DataAccess::Write, 8, 0}, id), CpuResult::Ok);
  log.Clear();
  ASSERT_EQ(target.Cpus().Go(0), CpuResult::Ok);
  const auto hit = log.WaitFor(StopReason::DataBreakpoint);
  ASSERT_TRUE(hit);
  EXPECT_EQ(hit->dataAddress, kData);
  EXPECT_EQ(hit->address, kCode + 8);
  EXPECT_EQ(target.Register(0, "rip"), kCode + 8);
  EXPECT_EQ(target.ReadQword(kData), target.Register(0, "rcx"));
}

// A halt that arrives as a running thread comes back to an execution
// breakpoint must not take the hit's place: resumed there, the thread would
// step over the breakpoint it never reported.
TEST(CpuRunControlTest, AHaltMeetingABreakpointReportsTheBreakpoint) {
  // 0: inc r8; 3: jmp 5; 5: cpuid, 400 times: a block slow enough that
  // most halts arrive while it runs and land at the next one, 0; 805: jmp 0
  constexpr int kCpuids = 400;
  std::vector<uint8_t> program = {0x49, 0xFF, 0xC0, 0xEB, 0x00};
  for (int i = 0; i < kCpuids; ++i) program.insert(program.end(), {0x0F, 0xA2});
  const int32_t back = -static_cast<int32_t>(program.size() + 5);
  program.push_back(0xE9);
  for (int byte = 0; byte < 4; ++byte) program.push_back(static_cast<uint8_t>(back >> (8 * byte)));
  CpuTarget target;
  StopLog log(target.Cpus());
  RunOnThreadZero(target, program, false);
  target.SetRegister(0, "r8", 0);
  uint32_t id = 0;
  ASSERT_EQ(target.Cpus().AddBreakpoint({BreakpointKind::Execution, kCode, DataAccess::Write, 1, 0}, id),
            CpuResult::Ok);
  for (int round = 0; round < 100; ++round) {
    const uint64_t before = target.Register(0, "r8");
    log.Clear();
    ASSERT_EQ(target.Cpus().Go(0), CpuResult::Ok);
    // A growing delay sweeps the halt across the loop's iteration.
    const auto until = std::chrono::steady_clock::now() + std::chrono::nanoseconds(100 * round);
    while (std::chrono::steady_clock::now() < until) {
    }
    ASSERT_EQ(target.Cpus().Halt(0), CpuResult::Ok);
    // Halted before it ran, or on its way back to the breakpoint
    if (target.Register(0, "r8") == before || target.Register(0, "rip") != kCode) continue;
    const std::vector<StopEvent> events = log.Events();
    ASSERT_EQ(events.size(), 1u) << "round " << round;
    EXPECT_EQ(events[0].reason, StopReason::ExecutionBreakpoint) << "round " << round;
  }
}

// All threads run the same locked loop; thread 0 stops at its end and its
// listener halts the others at once. Started twice from the same state (a
// reset, and the firmware run until the bootstrap thread first counts), the
// domain ends in the same state, whatever its clients ask meanwhile.
TEST(CpuRunControlTest, ThreadsOfADomainRunDeterministically) {
  // 0: inc qword [rbx+0x3000]; 7: lock inc qword [0x3100]; 16: inc rcx;
  // 19: cmp rcx, 50000; 26: jne 0; 28: hlt
  const std::vector<uint8_t> program = {0x48, 0xFF, 0x83, 0x00, 0x30, 0x00, 0x00, 0xF0, 0x48, 0xFF,
                                        0x04, 0x25, 0x00, 0x31, 0x00, 0x00, 0x48, 0xFF, 0xC1, 0x48,
                                        0x81, 0xF9, 0x50, 0xC3, 0x00, 0x00, 0x75, 0xE4, 0xF4};
  auto run = [&] {
    CpuTarget target;
    uint32_t id = 0;
    {
      StopLog counted(target.Cpus(), [&](const StopEvent& event) {
        if (event.reason == StopReason::DataBreakpoint) target.Cpus().HaltAll();
      });
      EXPECT_EQ(target.Cpus().Reset(ResetMode::HaltAfterReset), CpuResult::Ok);
      EXPECT_EQ(target.Cpus().AddBreakpoint({BreakpointKind::Data, ThreadCounter(0), DataAccess::Write, 8, 0}, id),
                CpuResult::Ok);
      EXPECT_EQ(target.Cpus().GoAll(), CpuResult::Ok);
      EXPECT_TRUE(counted.WaitFor(StopReason::DataBreakpoint));
      EXPECT_EQ(target.Cpus().RemoveBreakpoint(id), CpuResult::Ok);
    }
    target.Write(kCode, program);
    target.Write(kData, std::vector<uint8_t>(0x108, 0));
    for (uint32_t thread = 0; thread < target.Cpus().ThreadCount(); ++thread) {
      target.SetRegister(thread, "rip", kCode);
      target.SetRegister(thread, "rbx", 8 * thread);
      target.SetRegister(thread, "rcx", 0);
    }
    EXPECT_EQ(target.Cpus().AddBreakpoint({BreakpointKind::Execution, kCode + 28, DataAccess::Write, 1, 0}, id),
              CpuResult::Ok);
    StopLog log(target.Cpus(), [&](const StopEvent& event) {
      if (event.reason == StopReason::ExecutionBreakpoint) target.Cpus().HaltAll();
    });
    EXPECT_EQ(target.Cpus().GoAll(), CpuResult::Ok);
    // Requests meanwhile cut the threads' turns short at other places in
    // each run; they must not change what runs.
    EXPECT_TRUE(WaitForCondition([&] {
      target.ReadQword(kData + 0x100);
      for (const StopEvent& event : log.Events())
        if (event.reason == StopReason::ExecutionBreakpoint) return true;
      return false;
    }));
    std::vector<uint64_t> state;
    for (uint32_t thread = 0; thread < target.Cpus().ThreadCount(); ++thread) {
      state.push_back(target.ReadQword(kData + 8 * thread));
      state.push_back(target.Register(thread, "rip"));
    }
    state.push_back(target.ReadQword(kData + 0x100));
    return state;
  };
  const std::vector<uint64_t> first = run();
  EXPECT_EQ(first[0], 50000u);
  EXPECT_EQ(run(), first);
}

// Stepped from the reset vector, instruction by instruction through real,
// protected and long mode, the bootstrap thread boots as when it runs: every
// stop on the way resumes where it stopped.
TEST(CpuRunControlTest, StepsFromResetThroughEveryModeIntoTheLoop) {
  CpuTarget target;
  StopLog log(target.Cpus());
  ASSERT_EQ(target.Cpus().Reset(ResetMode::HaltAfterReset), CpuResult::Ok);
  target.Write(ThreadCounter(0), std::vector<uint8_t>(8, 0));
  EXPECT_EQ(target.Register(0, "rip"), 0xFFF0u);
  EXPECT_EQ(target.Register(0, "cs_base"), 0xFFFF0000u);
  int steps = 0;
  while (target.ReadQword(ThreadCounter(0)) == 0 && steps < 5000) {
    ASSERT_EQ(target.Cpus().Step(0), CpuResult::Ok);
    ++steps;
  }
  EXPECT_EQ(target.ReadQword(ThreadCounter(0)), 1u) << steps << " steps";
  for (const StopEvent& event : log.Events()) EXPECT_NE(event.reason, StopReason::Shutdown);
  EXPECT_EQ(target.Register(0, "efer") & 0x500, 0x500u);
}

// Several client threads at once, each on its own thread of the domain,
// while the others run: every call is served, and the halts stay precise.
TEST(CpuRunControlTest, ClientsCallFromManyThreadsWhileTheDomainRuns) {
  CpuTarget target;
  target.WaitForFirmwareLoop();
  std::vector<std::thread> clients;
  std::atomic<int> failures{0};
  for (uint32_t thread = 0; thread < target.Cpus().ThreadCount(); ++thread)
    clients.emplace_back([&, thread] {
      for (int round = 0; round < 50; ++round) {
        uint64_t counter = 0, rip = 0;
        std::vector<uint8_t> page(4096);
        const bool ok =
            target.Cpus().Halt(thread) == CpuResult::Ok &&
            target.Cpus().ReadRegister(thread, "rip", {reinterpret_cast<uint8_t*>(&rip), 8}) == CpuResult::Ok &&
            target.Cpus().ReadPhysical(ThreadCounter(thread), {reinterpret_cast<uint8_t*>(&counter), 8}) ==
                CpuResult::Ok &&
            target.Cpus().ReadPhysical(0x1000, page) == CpuResult::Ok && target.Cpus().Go(thread) == CpuResult::Ok;
        if (!ok || rip < 0xFFFF0000u) ++failures;
      }
    });
  for (std::thread& client : clients) client.join();
  EXPECT_EQ(failures.load(), 0);
  ASSERT_EQ(target.Cpus().HaltAll(), CpuResult::Ok);
  uint64_t own = 0;
  for (uint32_t apicId = 0; apicId < target.Cpus().ThreadCount(); ++apicId)
    own += target.ReadQword(ThreadCounter(apicId));
  const uint64_t shared = target.ReadQword(kSharedCounter);
  EXPECT_GE(own, shared);
  EXPECT_LE(own, shared + target.Cpus().ThreadCount());
}

}  // namespace
}  // namespace vxt::test
