#include "StepMethods.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>
#include <utility>

#include "../Assembler/ControlFlow.h"
#include "MemoryAccess.h"
#include "RunControlCodes.h"
#include "StopRecords.h"
#include "ThreadAddressing.h"

namespace voxtrel::platform::run_control {
namespace {

using assembler::FlowKind;
using assembler::InstructionFlow;
using target::Failure;
using target::Outcome;
using Clock = std::chrono::steady_clock;

// Threads in a compound step, and the breakpoints their steps set.
std::mutex quietMutex;
std::set<std::pair<const cpu::CpuBackend*, uint32_t>> quietThreads;
std::set<std::pair<const cpu::CpuBackend*, uint32_t>> stepBreakpoints;

// The thread's stops while its step runs, heard from the backend.
class StopWatch {
 public:
  explicit StopWatch(const CpuThread& cpu) : cpu_(cpu) {
    {
      const std::lock_guard lock(quietMutex);
      quietThreads.insert({&cpu.backend(), cpu.thread});
    }
    listener_ = cpu.backend().AddStopListener([this](const cpu::StopEvent& stop) {
      if (stop.threadIndex != cpu_.thread) return;
      const std::lock_guard lock(mutex_);
      last_ = stop;
      arrived_.notify_all();
    });
  }
  ~StopWatch() {
    cpu_.backend().RemoveStopListener(listener_);
    const std::lock_guard lock(quietMutex);
    quietThreads.erase({&cpu_.backend(), cpu_.thread});
  }
  StopWatch(const StopWatch&) = delete;
  StopWatch& operator=(const StopWatch&) = delete;

  void Forget() {
    const std::lock_guard lock(mutex_);
    last_.reset();
  }
  // The stop heard since Forget, waited for until `deadline`.
  std::optional<cpu::StopEvent> Wait(Clock::time_point deadline) {
    std::unique_lock lock(mutex_);
    arrived_.wait_until(lock, deadline, [&] { return last_.has_value(); });
    return last_;
  }

 private:
  const CpuThread& cpu_;
  uint32_t listener_ = 0;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::optional<cpu::StopEvent> last_;
};

struct Step {
  const CpuThread& cpu;
  StopWatch watch;
  Clock::time_point deadline = Clock::now() + kStepTimeLimit;
  std::optional<cpu::StopEvent> ended;  // A stop of another kind that ended the step, announced already

  explicit Step(const CpuThread& thread) : cpu(thread), watch(thread) {}

  Outcome Register(const char* name, uint64_t& value) {
    return ThreadAddressing(cpu.backend(), cpu.thread).Register(name, value);
  }

  // Where the thread stands, as the linear address breakpoints and stops use.
  Outcome LinearRip(uint64_t& linear) {
    uint64_t base = 0;
    if (auto refused = Register("rip", linear)) return refused;
    if (auto refused = Register("cs_base", base)) return refused;
    linear += base;
    return std::nullopt;
  }

  bool AfterHlt(uint64_t linear) {
    uint8_t previous = 0;
    const VXT_Address address{VXT_ADDRESS_SIZE, 0, 0, linear - 1, VXT_AddressType_Linear};
    return !ReadMemoryAt(cpu.backend(), cpu.thread, address, std::span(&previous, 1)) && previous == 0xF4;
  }

  Outcome Instruction(uint64_t& rip, InstructionFlow& flow) {
    uint32_t bits = 64;
    if (auto refused = LinearRip(rip)) return refused;
    if (auto refused = ThreadAddressing(cpu.backend(), cpu.thread).CodeBits(bits)) return refused;
    const auto mode = bits == 16   ? assembler::InstructionMode::Bits16
                      : bits == 32 ? assembler::InstructionMode::Bits32
                                   : assembler::InstructionMode::Bits64;
    uint8_t bytes[15] = {};
    // Shorter reads for an instruction at the very end of a region.
    for (uint32_t length = sizeof bytes; length > 0; length -= 5) {
      const VXT_Address address{VXT_ADDRESS_SIZE, 0, 0, rip, VXT_AddressType_Linear};
      if (ReadMemoryAt(cpu.backend(), cpu.thread, address, std::span(bytes, length))) continue;
      flow = assembler::ClassifyFlow(mode, std::span<const uint8_t>(bytes, length));
      if (flow.kind != FlowKind::Invalid) return std::nullopt;
    }
    return Failure{kNotSupported, "no instruction decodes at " + HexText(rip) + "; only a step into can execute it"};
  }

  // One instruction; false when a stop of another kind ended it.
  Outcome Into(bool& stepped) {
    watch.Forget();
    if (const auto result = cpu.backend().Step(cpu.thread); result != cpu::CpuResult::Ok)
      return CpuFailure(result, "stepping thread " + std::to_string(cpu.thread));
    const auto stop = watch.Wait(Clock::now());
    stepped = !stop || stop->reason == cpu::StopReason::Step;
    if (!stepped) ended = stop;
    return TimeLeft();
  }

  Outcome TimeLeft() {
    if (Clock::now() < deadline) return std::nullopt;
    return Failure{kOperationFailed, "the step did not end within " + std::to_string(kStepTimeLimit.count()) + " s"};
  }

  // Runs the call at `rip` to `returnAddress`, with the stack back where it
  // stands now (a recursive call returns to the same address deeper down).
  Outcome OverCall(uint64_t returnAddress, bool& returned) {
    uint64_t stack = 0;
    if (auto refused = Register("rsp", stack)) return refused;
    uint32_t id = 0;
    cpu::Breakpoint breakpoint;
    breakpoint.address = returnAddress;
    breakpoint.threadIndex = cpu.thread;
    // The breakpoint is the thread's own and the thread is halted: it cannot
    // hit before it is known as the step's. No lock is held over a backend
    // call: the backend's thread takes this one in its listeners.
    if (const auto result = cpu.backend().AddBreakpoint(breakpoint, id); result != cpu::CpuResult::Ok)
      return CpuFailure(result, "setting the return breakpoint at " + HexText(returnAddress));
    {
      const std::lock_guard lock(quietMutex);
      stepBreakpoints.insert({&cpu.backend(), id});
    }
    Outcome outcome = RunUntilReturned(stack, id, returned);
    cpu.backend().RemoveBreakpoint(id);
    {
      const std::lock_guard lock(quietMutex);
      stepBreakpoints.erase({&cpu.backend(), id});
    }
    return outcome;
  }

  Outcome RunUntilReturned(uint64_t stack, uint32_t breakpointId, bool& returned) {
    for (;;) {
      watch.Forget();
      if (const auto result = cpu.backend().Go(cpu.thread); result != cpu::CpuResult::Ok)
        return CpuFailure(result, "resuming thread " + std::to_string(cpu.thread));
      const auto stop = watch.Wait(deadline);
      if (!stop) {
        cpu.backend().Halt(cpu.thread);
        return Failure{kOperationFailed, "the call did not return within " + std::to_string(kStepTimeLimit.count()) +
                                             " s; the thread was halted where it ran"};
      }
      if (stop->breakpointId != breakpointId) {
        returned = false;
        ended = stop;
        return std::nullopt;
      }
      uint64_t now = 0;
      if (auto refused = Register("rsp", now)) return refused;
      if (now >= stack) {
        returned = true;
        return std::nullopt;
      }
    }
  }

  // One step of the kind; `done` when the kind's goal is reached or another
  // stop ended it, else the caller steps again.
  Outcome Once(VXT_StepType type, bool& done) {
    uint64_t rip = 0;
    InstructionFlow flow;
    if (auto refused = Instruction(rip, flow)) return refused;
    bool went = false;
    if (flow.kind == FlowKind::Call && type != VXT_StepType_Branch) {
      if (auto refused = OverCall(rip + flow.length, went)) return refused;
      done = !went || type == VXT_StepType_Over;
      return std::nullopt;
    }
    if (auto refused = Into(went)) return refused;
    uint64_t now = 0;
    if (auto refused = LinearRip(now)) return refused;
    // A thread waiting in HLT completes no instruction. (A REP string
    // instruction stays in place for one iteration a step, and goes on.)
    if (went && now == rip && AfterHlt(rip))
      return Failure{kNotSupported, "the thread waits at " + HexText(rip) +
                                        " and completes no instruction; only a step into can be made"};
    if (!went || type == VXT_StepType_Over) {
      done = true;
      return std::nullopt;
    }
    if (type == VXT_StepType_Out) {
      done = flow.kind == FlowKind::Return;
      return std::nullopt;
    }
    done = flow.kind != FlowKind::Sequential && now != rip + flow.length;
    return std::nullopt;
  }
};

}  // namespace

Outcome StepThread(const CpuThread& cpu, VXT_StepType type, bool& interrupted) {
  interrupted = false;
  if (type == VXT_StepType_Into) {
    if (const auto result = cpu.backend().Step(cpu.thread); result != cpu::CpuResult::Ok)
      return CpuFailure(result, "stepping thread " + std::to_string(cpu.thread));
    return std::nullopt;
  }
  if (type != VXT_StepType_Over && type != VXT_StepType_Out && type != VXT_StepType_Branch)
    return Failure{kValueOutOfRange, "step type " + std::to_string(type) +
                                         " is unknown (1 Into, 2 Over, 3 Out, 4 Branch)"};
  cpu::RunState state = cpu::RunState::Running;
  if (const auto result = cpu.backend().GetRunState(cpu.thread, state); result != cpu::CpuResult::Ok)
    return CpuFailure(result, "reading the run state of thread " + std::to_string(cpu.thread));
  if (state != cpu::RunState::Halted) return CpuFailure(cpu::CpuResult::NotHalted, "stepping");
  Step step(cpu);
  bool done = false;
  while (!done) {
    if (auto refused = step.Once(type, done)) return refused;
  }
  interrupted = step.ended.has_value();
  if (interrupted) return std::nullopt;  // That stop was announced as it came
  uint64_t rip = 0;
  if (auto refused = step.LinearRip(rip)) return refused;
  AnnounceStop(*cpu.domain, cpu::StopEvent{cpu.thread, cpu::StopReason::Step, rip, 0, 0});
  return std::nullopt;
}

bool IsQuietStop(const cpu::CpuDomain& domain, const cpu::StopEvent& stop) {
  const std::lock_guard lock(quietMutex);
  if (!quietThreads.count({domain.backend.get(), stop.threadIndex})) return false;
  return stop.reason == cpu::StopReason::Step ||
         (stop.breakpointId != 0 && stepBreakpoints.count({domain.backend.get(), stop.breakpointId}));
}

}  // namespace voxtrel::platform::run_control
