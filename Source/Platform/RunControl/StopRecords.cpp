#include "StopRecords.h"

#include <mutex>
#include <unordered_map>

#include "../Events/RunControlEvent.h"
#include "BreakConditions.h"
#include "BreakpointRegistry.h"
#include "StepMethods.h"

namespace voxtrel::platform::run_control {
namespace {

// Written by the domains' execution threads, read by any caller.
std::mutex recordsMutex;
std::unordered_map<uint32_t, StopRecord> records;

}  // namespace

void AnnounceStop(const cpu::CpuDomain& domain, const cpu::StopEvent& stop) {
  const uint32_t threadDeviceId = domain.threadDeviceIds[stop.threadIndex];
  StopRecord record = MakeStopRecord(stop);
  if (stop.breakpointId != 0) record.breakpointId = ComponentBreakpointId(domain.targetDomainId, stop.breakpointId);
  {
    const std::lock_guard lock(recordsMutex);
    records[threadDeviceId] = record;
  }
  // Published with no lock held: a subscriber may call any operation.
  events::RunControlEventFields fields;
  fields.deviceId = threadDeviceId;
  fields.address = record.address;
  fields.breakpointId = record.breakpointId;
  fields.breakType = record.breakType;
  fields.breakSubType = record.breakSubtype;
  fields.extraValue = stop.dataAddress;
  events::PublishRunControlEvent(StopEventName(stop.reason), fields);
}

StopRecord MakeStopRecord(const cpu::StopEvent& stop) {
  StopRecord record;
  record.address = stop.address;
  record.breakpointId = stop.breakpointId;
  switch (stop.reason) {
    case cpu::StopReason::ExecutionBreakpoint:
      record.breakType = "Breakpoint";
      record.breakSubtype = "Execution";
      break;
    case cpu::StopReason::DataBreakpoint:
      record.breakType = "Breakpoint";
      record.breakSubtype = "Data";
      break;
    default:
      record.breakType = std::string(cpu::StopReasonText(stop.reason));
  }
  return record;
}

const char* StopEventName(cpu::StopReason reason) {
  switch (reason) {
    case cpu::StopReason::HaltRequest:
      return "Halt";
    case cpu::StopReason::ExecutionBreakpoint:
    case cpu::StopReason::DataBreakpoint:
      return "Breakpoint";
    case cpu::StopReason::Shutdown:
      return "Stop";
    case cpu::StopReason::Step:
    case cpu::StopReason::Reset:
    case cpu::StopReason::Hlt:
      break;
  }
  return "Break";
}

void ListenToStops() {
  {
    const std::lock_guard lock(recordsMutex);
    records.clear();
  }
  for (const auto& domain : cpu::CpuDomains::Instance().Domains()) {
    // The listener lives as long as the backend, which the domain owns: it
    // must not hold the domain itself.
    const cpu::CpuDomain* self = domain.get();
    domain->backend->AddStopListener([self](const cpu::StopEvent& stop) {
      // A compound step announces its own end; its inner stops stay quiet.
      // A shutdown that resets the board is no stop of the thread.
      if (stop.threadIndex >= self->threadDeviceIds.size() || IsQuietStop(*self, stop)) return;
      if (!ResetOnShutdown(*self, stop)) AnnounceStop(*self, stop);
    });
  }
}

bool LastStop(uint32_t threadDeviceId, StopRecord& record) {
  const std::lock_guard lock(recordsMutex);
  const auto found = records.find(threadDeviceId);
  if (found == records.end()) return false;
  record = found->second;
  return true;
}

}  // namespace voxtrel::platform::run_control
