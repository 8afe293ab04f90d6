// Stepping one thread by one step of each kind. Into is the backend's own
// step. Over runs a call to its return through a breakpoint of the thread's
// own at the return address; Out steps to the return of the current
// function, running each call it meets to its return; Branch steps until an
// instruction sends the thread elsewhere than to the next one. None counts
// instructions: each stop is the backend's code hook.
//
// A compound step announces one stop, when it ends: its intermediate steps
// and its own breakpoints are kept from subscribers. A breakpoint, a halt
// request or a shutdown on the way ends the step there, as that stop.
#pragma once

#include <chrono>
#include <cstdint>

#include "../Cpu/CpuDomains.h"
#include "../Target/Failure.h"
#include "CpuThreads.h"
#include "RunControl.h"

namespace voxtrel::platform::run_control {

// How long a step may take before the thread is halted where it is and the
// step is refused (a call that never returns, a function that never does).
inline constexpr std::chrono::seconds kStepTimeLimit{10};

// One step of `type` of a halted thread; `interrupted` when a stop of
// another kind (a breakpoint, a halt request) ended it early.
target::Outcome StepThread(const CpuThread& cpu, VXT_StepType type, bool& interrupted);

// Whether the stop is one a compound step keeps to itself.
bool IsQuietStop(const cpu::CpuDomain& domain, const cpu::StopEvent& stop);

}  // namespace voxtrel::platform::run_control
