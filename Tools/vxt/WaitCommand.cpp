// vxt wait: waits for a thread to stop and shows why, where, and the
// instruction there.
//
//   vxt -e 'break add 0xffff0100; go; wait'
//   Thread0_0 Breakpoint Execution at 0x00000000ffff0100: inc qword ptr [...]
//
// The "RunControl" subscription is made before the threads are looked at,
// so a stop between an earlier `go` and this command is not missed: a
// thread that is halted already is shown at once.
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"
#include "ThreadView.h"

namespace vxt::cli {
namespace {

// The first stop that arrives. It lives as long as the process: a delivery
// that began before the subscription ended may still reach it.
struct FirstStop {
  std::mutex mutex;
  std::condition_variable arrived;
  bool seen = false;
  uint32_t deviceId = 0;

  static void Receive(const VXT_RunControlEvent* event, void* userData) {
    if (event->eventType == VXT_RunControlEvent_Resume) return;
    auto* self = static_cast<FirstStop*>(userData);
    const std::lock_guard lock(self->mutex);
    if (self->seen) return;
    self->seen = true;
    self->deviceId = event->deviceId;
    self->arrived.notify_all();
  }
};

FirstStop firstStop;

// A halted thread that stopped for a reason of its own rather than a halt
// request, else any halted thread; 0 when every thread runs.
uint32_t HaltedAlready(IInternalService_Device& devices) {
  auto& runControl = Session::Get<IInternalService_RunControl>(VXT_Service_RunControl);
  uint32_t anyHalted = 0;
  for (const uint32_t thread : AllThreads(devices)) {
    VXT_RunStatus status = VXT_RunStatus_Running;
    Check(runControl.GetRunStatus(thread, &status), "GetRunStatus");
    if (status != VXT_RunStatus_Halted) continue;
    char breakType[VXT_BREAK_TYPE_TEXT_SIZE] = "";
    Check(runControl.GetBreakType(thread, breakType), "GetBreakType");
    if (std::string(breakType) != "Halt") return thread;
    if (anyHalted == 0) anyHalted = thread;
  }
  return anyHalted;
}

int Wait(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const uint64_t seconds = arguments.numbers.at("timeout");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& events = session.Get<IInternalService_Event>(VXT_Service_Event);
  {
    const std::lock_guard lock(firstStop.mutex);
    firstStop.seen = false;
  }
  Check(events.SubscribeRunControlEvents(&FirstStop::Receive, &firstStop), "SubscribeRunControlEvents");
  uint32_t thread = 0;
  try {
    thread = HaltedAlready(devices);
  } catch (...) {
    events.UnsubscribeRunControlEvents(&FirstStop::Receive);
    throw;
  }
  if (thread == 0) {
    std::unique_lock lock(firstStop.mutex);
    firstStop.arrived.wait_for(lock, std::chrono::seconds(seconds), [] { return firstStop.seen; });
    if (firstStop.seen) thread = firstStop.deviceId;
  }
  Check(events.UnsubscribeRunControlEvents(&FirstStop::Receive), "UnsubscribeRunControlEvents");
  if (thread == 0) {
    out << "no thread stopped within " << seconds << " s\n";
    return 1;
  }
  out << StopLine(devices, thread) << '\n';
  return 0;
}

const bool registered = RegisterCommand(
    {"wait", "Wait for a thread to stop; show why, where and the instruction there",
     [](CLI::App& command, CommandArguments& arguments) {
       arguments.numbers["timeout"] = 30;
       command.add_option("--timeout", arguments.numbers["timeout"], "Seconds to wait (30 by default)");
     },
     &ReportingUserErrors<&Wait>});

}  // namespace
}  // namespace vxt::cli
