// Power-cycling and resetting the target behind a debug port, and its power
// status. Both actions run as a receipt's work on a worker thread:
// - "ResetTarget" announces the reset ("Asserted", then "Deasserted" when it
//   is done) and restarts every thread of the port's target domain from its
//   reset vector; RAM keeps its contents, IO devices are reset. The threads
//   halt at their reset state where the reset break or "Init" says so.
// - "PowerCycleTarget" announces "Off", reads as unpowered, halts the
//   threads and clears RAM (what a real power loss does to DRAM), restarts
//   the threads from their reset vector and announces "On". What keeps its
//   contents without power (an I2C EEPROM, the firmware ROM) keeps it.
// A domain whose threads are not emulated goes through the same events and
// power states.
#include <algorithm>
#include <cstring>
#include <mutex>
#include <set>
#include <vector>

#include "Cpu/CpuBackend.h"
#include "Cpu/CpuDomains.h"
#include "Events/TargetEvents.h"
#include "OperationReceipt/Receipts.h"
#include "PlatformControl/PlatformControlOperations.h"
#include "PlatformControlTestControl.h"
#include "RunControl/BreakConditions.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::platform_control {
namespace {

using receipts::ReceiptOutcome;
using target_manager::HexId;
using target_manager::Request;

constexpr uint64_t kClearChunk = 1u << 20;

// The target domains that are powered off, and a reading that test control
// forces.
struct PowerState {
  std::mutex mutex;
  std::set<uint32_t> off;
  std::optional<uint32_t> forced;
};

PowerState& Power() {
  static PowerState state;
  return state;
}

void SetPowered(uint32_t targetDomainId, bool powered) {
  PowerState& power = Power();
  std::lock_guard lock(power.mutex);
  if (powered) {
    power.off.erase(targetDomainId);
  } else {
    power.off.insert(targetDomainId);
  }
}

std::shared_ptr<const cpu::CpuDomain> DomainOf(uint32_t targetDomainId) {
  const cpu::CpuSelection selection = cpu::CpuDomains::Instance().Find(targetDomainId);
  return selection.result == cpu::LookupResult::Ok ? selection.domain : nullptr;
}

ReceiptOutcome CpuFailed(cpu::CpuResult result, const std::string& what) {
  return ReceiptOutcome::Failure(kActionFailed, what + " failed: " + std::string(cpu::CpuResultText(result)));
}

bool ClearRam(cpu::CpuBackend& backend) {
  const std::vector<uint8_t> zeros(kClearChunk, 0);
  for (const cpu::MemoryRegion& region : backend.MemoryMap()) {
    if (region.kind != cpu::RegionKind::Ram) continue;
    for (uint64_t offset = 0; offset < region.size; offset += kClearChunk) {
      const uint64_t count = std::min(kClearChunk, region.size - offset);
      if (backend.WritePhysical(region.base + offset, {zeros.data(), count}) != cpu::CpuResult::Ok) return false;
    }
  }
  return true;
}

ReceiptOutcome ResetWork(uint32_t debugPortId, uint32_t targetDomainId) {
  events::PublishTargetResetEvent("Asserted", debugPortId);
  if (const auto domain = DomainOf(targetDomainId)) {
    if (const auto result = run_control::ResetAsConfigured(*domain); result != cpu::CpuResult::Ok)
      return CpuFailed(result, "resetting target domain " + HexId(targetDomainId));
  }
  events::PublishTargetResetEvent("Deasserted", debugPortId);
  return ReceiptOutcome::Success();
}

ReceiptOutcome PowerCycleWork(uint32_t debugPortId, uint32_t targetDomainId) {
  SetPowered(targetDomainId, false);
  events::PublishTargetPowerEvent("Off", debugPortId);
  if (const auto domain = DomainOf(targetDomainId)) {
    cpu::CpuBackend* backend = domain->backend.get();
    if (const auto result = backend->HaltAll(); result != cpu::CpuResult::Ok)
      return CpuFailed(result, "powering off target domain " + HexId(targetDomainId));
    if (!ClearRam(*backend))
      return ReceiptOutcome::Failure(kActionFailed, "clearing the RAM of target domain " + HexId(targetDomainId) + " failed");
    if (const auto result = run_control::ResetAsConfigured(*domain); result != cpu::CpuResult::Ok)
      return CpuFailed(result, "powering on target domain " + HexId(targetDomainId));
  }
  SetPowered(targetDomainId, true);
  events::PublishTargetPowerEvent("On", debugPortId);
  return ReceiptOutcome::Success();
}

}  // namespace

uint32_t ExecuteAction(uint32_t debugPortId, const char* actionName, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("PlatformControl.ExecuteAction", "debugPortId=", HexId(debugPortId), ",actionName=",
                         actionName != nullptr ? std::string(actionName, strnlen(actionName, kPlatformControlNameSize)) : "<NULL>");
  Request request("PlatformControl.ExecuteAction");
  const auto name = FieldName(request.NotNull(operationToken, "operationToken"), actionName, "actionName");
  const target::Node* port = request.DeviceOfType(debugPortId, target::NodeType::Debugport);
  if (port == nullptr) return request.code();
  const uint32_t domainId = port->targetDomainId;
  if (*name == "ResetTarget") {
    *operationToken = receipts::RunReceipt([=](std::stop_token) { return ResetWork(debugPortId, domainId); });
  } else if (*name == "PowerCycleTarget") {
    *operationToken = receipts::RunReceipt([=](std::stop_token) { return PowerCycleWork(debugPortId, domainId); });
  } else {
    return request.Refuse(kUnknownName, ": no action \"" + *name + "\"; the actions are PowerCycleTarget and ResetTarget");
  }
  return 0;
}

uint32_t ReadStatus(uint32_t debugPortId, const char* statusName, uint32_t* value) {
  VOXTREL_COMPONENT_CALL("PlatformControl.ReadStatus", "debugPortId=", HexId(debugPortId));
  Request request("PlatformControl.ReadStatus");
  const auto name = FieldName(request.NotNull(value, "value"), statusName, "statusName");
  const target::Node* port = request.DeviceOfType(debugPortId, target::NodeType::Debugport);
  if (port == nullptr) return request.code();
  if (*name != "Power") return request.Refuse(kUnknownName, ": no status \"" + *name + "\"; the status is Power");
  PowerState& power = Power();
  std::lock_guard lock(power.mutex);
  *value = power.forced ? *power.forced : (power.off.contains(port->targetDomainId) ? 0 : 1);
  return 0;
}

void ForcePowerReading(std::optional<uint32_t> value) {
  PowerState& power = Power();
  std::lock_guard lock(power.mutex);
  power.forced = value;
}

}  // namespace voxtrel::platform::platform_control

namespace voxtrel::testing {

void ForcePowerStatusReading(std::optional<uint32_t> value) { platform::platform_control::ForcePowerReading(value); }

}  // namespace voxtrel::testing
