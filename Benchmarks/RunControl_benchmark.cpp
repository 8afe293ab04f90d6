// Run control through the services on the default target: from Go to the
// breakpoint's "RunControl" event in a subscriber, single steps per second,
// how long a halt of a running thread takes, and the firmware's emulated
// speed with 0 and 64 execution breakpoints set where it never runs.
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "../Source/Platform/Cpu/CpuDomains.h"
#include "BenchmarkClient.h"
#include "InProc_Vxt.h"

namespace {

using namespace voxtrel::platform::cpu;
using Clock = std::chrono::steady_clock;

constexpr uint32_t kFirstThread = 0x03000000;
constexpr uint64_t kSharedCounter = 0x1000;  // Iterations of all threads (Firmware/Default.s)
constexpr uint64_t kInstructionsPerIteration = 5;
constexpr uint64_t kCode = 0x20000;
// 0: nop; 1: nop; 2: jmp 0
const std::vector<uint8_t> kLoop = {0x90, 0x90, 0xEB, 0xFC};

CpuBackend& Cpus() { return *CpuDomains::Instance().Domains().front()->backend; }

// The client with the target built and every thread halted; the first
// thread's rip in a small loop of its own.
struct Session {
  BenchmarkClient client{10, "runcontrol_10@localhost", BenchmarkClient::Target::kBuilt};
  IInternalService_RunControl* runControl = BenchmarkClient::Get<IInternalService_RunControl>(VXT_Service_RunControl);
  IInternalService_Breakpoint* breakpoints =
      BenchmarkClient::Get<IInternalService_Breakpoint>(VXT_Service_Breakpoint);
  IInternalService_Event* events = BenchmarkClient::Get<IInternalService_Event>(VXT_Service_Event);
  IInternalService_OperationReceipt* receipts =
      BenchmarkClient::Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);

  Session() {
    Cpus().WritePhysical(kCode, kLoop);
    const uint64_t rip = kCode;
    Cpus().WriteRegister(0, "rip", {reinterpret_cast<const uint8_t*>(&rip), 8});
  }
  // A run-changing call and its receipt.
  void Run(VXT_Result (IInternalService_RunControl::*call)(uint32_t, uint64_t*)) {
    uint64_t token = 0;
    if ((runControl->*call)(kFirstThread, &token) == 0) receipts->Destroy(token);
  }
  uint32_t BreakAt(uint64_t address) {
    VXT_Breakpoint breakpoint{};
    breakpoint.structureSize = VXT_BREAKPOINT_SIZE;
    breakpoint.threadDeviceId = kFirstThread;
    breakpoint.breakpointType = VXT_BreakpointType_HW_Exec;
    breakpoint.breakpointAddress = address;
    breakpoint.enabled = 1;
    breakpoints->CreateBreakpoint(&breakpoint);
    return breakpoint.breakpointId;
  }
};

std::atomic<uint64_t> breakpointEvents{0};
void CountBreakpointEvent(const VXT_RunControlEvent* event, void*) {
  if (event->breakpointId != 0) breakpointEvents.fetch_add(1, std::memory_order_release);
}

// Each Go runs the loop once round to the breakpoint on its second nop.
void BM_GoToBreakpointEvent(benchmark::State& state) {
  Session session;
  const uint32_t id = session.BreakAt(kCode + 1);
  session.events->SubscribeRunControlEvents(&CountBreakpointEvent, nullptr);
  for (auto _ : state) {
    const uint64_t seen = breakpointEvents.load(std::memory_order_acquire);
    const auto start = Clock::now();
    session.Run(&IInternalService_RunControl::Go);
    const auto deadline = start + std::chrono::seconds(5);
    while (breakpointEvents.load(std::memory_order_acquire) == seen && Clock::now() < deadline)
      std::this_thread::yield();
    if (Clock::now() >= deadline) {
      state.SkipWithError("no breakpoint event within 5 s");
      break;
    }
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
  }
  session.events->UnsubscribeRunControlEvents(&CountBreakpointEvent);
  session.breakpoints->RemoveBreakpointById(id);
}

void BM_StepInto(benchmark::State& state) {
  Session session;
  for (auto _ : state) {
    uint64_t token = 0;
    if (session.runControl->Step(kFirstThread, VXT_StepType_Into, 1, &token) == 0) session.receipts->Destroy(token);
  }
  state.counters["steps"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// The thread runs its loop between halts; only the halt is timed.
void BM_HaltWhileRunning(benchmark::State& state) {
  Session session;
  for (auto _ : state) {
    session.Run(&IInternalService_RunControl::Go);
    std::this_thread::sleep_for(std::chrono::microseconds(200));
    const auto start = Clock::now();
    session.Run(&IInternalService_RunControl::Halt);
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
  }
}

// Every thread runs the firmware; the breakpoints stand in RAM it never runs.
void BM_FirmwareSpeed(benchmark::State& state) {
  Session session;
  std::vector<uint32_t> ids;
  for (int64_t index = 0; index < state.range(0); ++index) ids.push_back(session.BreakAt(0x400000 + 0x100 * index));
  Cpus().Reset(ResetMode::Run);  // Every thread back into the firmware, from its reset vector
  auto iterations = [] {
    uint64_t value = 0;
    Cpus().ReadPhysical(kSharedCounter, {reinterpret_cast<uint8_t*>(&value), 8});
    return value;
  };
  const uint64_t booted = iterations();
  while (iterations() < booted + 100000) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  uint64_t instructions = 0;
  for (auto _ : state) {
    const uint64_t before = iterations();
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    instructions += (iterations() - before) * kInstructionsPerIteration;
  }
  state.counters["instructions"] = benchmark::Counter(static_cast<double>(instructions), benchmark::Counter::kIsRate);
  Cpus().HaltAll();
  for (const uint32_t id : ids) session.breakpoints->RemoveBreakpointById(id);
}

// Fixed counts: each run is one client session of its own.
BENCHMARK(BM_GoToBreakpointEvent)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(5000);
BENCHMARK(BM_StepInto)->UseRealTime()->Unit(benchmark::kMicrosecond)->Iterations(2000);
BENCHMARK(BM_HaltWhileRunning)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(1000);
BENCHMARK(BM_FirmwareSpeed)->Arg(0)->Arg(64)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(8);

}  // namespace
