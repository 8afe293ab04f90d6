// Why each thread last stopped, as GetBreakType, GetBreakSubtype and
// GetBreakAddress tell it, and the "RunControl" event every stop publishes.
// The records are kept from the stop listeners that Listen installs on each
// running domain's backend.
#pragma once

#include <cstdint>
#include <string>

#include "../Cpu/CpuDomains.h"

namespace voxtrel::platform::run_control {

struct StopRecord {
  std::string breakType;     // "Halt", "Step", "Breakpoint", "Reset", "Shutdown"; empty before the first stop
  std::string breakSubtype;  // For a breakpoint "Execution" or "Data"; else empty
  uint64_t address = 0;      // Linear address of the next instruction
  uint32_t breakpointId = 0;
};

// Starts keeping the records of every running domain's threads (after the
// domains have started) and forgets those of an earlier start.
void ListenToStops();

// Keeps the stop as the thread's record and publishes its "RunControl"
// event, with no lock held.
void AnnounceStop(const cpu::CpuDomain& domain, const cpu::StopEvent& stop);

// The thread device's record; false for a device that never stopped.
bool LastStop(uint32_t threadDeviceId, StopRecord& record);

// The texts and event name of a stop.
StopRecord MakeStopRecord(const cpu::StopEvent& stop);
const char* StopEventName(cpu::StopReason reason);

}  // namespace voxtrel::platform::run_control
