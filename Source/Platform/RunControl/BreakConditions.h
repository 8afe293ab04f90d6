// RunControl's break conditions: named values of a device's threads that
// say on which events of the emulated CPU a thread breaks.
//   "Hlt"       1: a thread halts after it executes HLT; 0: it waits there (as a CPU waits)
//   "Init"      1: after a reset (an INIT of every thread) the threads halt at their reset state
//   "Shutdown"  1: a thread that cannot go on (triple fault, invalid instruction) halts;
//               0: the board resets the domain, as a chipset does on a shutdown cycle
// Set on a device, a condition is set on every thread it holds; read, it is
// its first thread's.
#pragma once

#include <cstdint>

#include "../Cpu/CpuDomains.h"

namespace voxtrel::platform::run_control {

uint32_t GetNumBreakConditions(uint32_t deviceId, uint32_t* numBreakNames);
uint32_t GetBreakConditions(uint32_t deviceId, uint32_t numBreakNames, char (*breakNames)[260]);
uint32_t GetBreakCondition(uint32_t deviceId, const char* breakName, uint32_t* value);
uint32_t SetBreakCondition(uint32_t deviceId, const char* breakName, uint32_t value);

// Every condition back to its default (a new target).
void ForgetBreakConditions();

// Resets the domain from its reset vector: every thread halts at its reset
// state if the reset break of the domain or its debug port says so (a break
// for the next reset only is used up), the threads with "Init" set halt
// there in any case, the others run.
cpu::CpuResult ResetAsConfigured(const cpu::CpuDomain& domain);

// A thread's shutdown that its conditions turn into a reset of its domain:
// the domain is reset (halting after it as "Init" and the reset break say)
// and true is given; the stop is then not announced. Called from the
// domain's stop listener.
bool ResetOnShutdown(const cpu::CpuDomain& domain, const cpu::StopEvent& stop);

}  // namespace voxtrel::platform::run_control
