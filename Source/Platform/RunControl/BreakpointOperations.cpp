// RunControl's breakpoints. A record becomes one backend breakpoint while it
// is enabled: software and hardware execution breakpoints stop before the
// instruction, write and access breakpoints after the access. Ids are the
// component's own, from 1, unique for the process.
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "BreakpointRegistry.h"
#include "CpuThreads.h"
#include "MemoryAccess.h"
#include "OperationResult.h"
#include "RunControlCodes.h"
#include "RunOperations.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::run_control {
namespace {

using target::Failure;
using target::Outcome;

struct Entry {
  VXT_Breakpoint record{};
  std::shared_ptr<const cpu::CpuDomain> domain;
  cpu::Breakpoint target;
  uint32_t backendId = 0;  // 0 while disabled, or while being set
};

// Guards the maps only; released before every backend call.
std::mutex registryMutex;
std::map<uint32_t, Entry> entries;
std::map<uint32_t, VXT_BreakAllSetting> breakAll;
uint32_t nextId = 1;

// The address a record names: the full one when the long record carries it.
Outcome AddressOf(const VXT_Breakpoint& record, uint64_t& address) {
  address = record.breakpointAddress;
  if (record.structureSize != VXT_BREAKPOINT_SIZE || record.fullBreakpointAddress.structureSize == 0)
    return std::nullopt;
  const VXT_AddressType type = record.fullBreakpointAddress.addressType;
  if (type != VXT_AddressType_Linear && type != VXT_AddressType_Physical)
    return Failure{kAddressTypeNotSupported, "a breakpoint takes a linear or physical address"};
  address = record.fullBreakpointAddress.offset;
  return std::nullopt;
}

// What the backend is to watch for the record, on which domain.
Outcome TargetOf(const VXT_Breakpoint& record, Entry& entry) {
  cpu::CpuSelection selection;
  if (auto refused = FindThreads(record.threadDeviceId, selection)) return refused;
  entry.domain = selection.domain;
  entry.target.threadIndex = selection.threadIndices.size() == 1 ? selection.threadIndices.front() : cpu::kAllThreads;
  if (auto refused = AddressOf(record, entry.target.address)) return refused;
  switch (record.breakpointType) {
    case VXT_BreakpointType_SW:
    case VXT_BreakpointType_HW_Exec:
    case VXT_BreakpointType_Default:
      entry.target.kind = cpu::BreakpointKind::Execution;
      entry.target.length = 1;
      return std::nullopt;
    case VXT_BreakpointType_HW_Write:
    case VXT_BreakpointType_HW_Access:
      if (record.dataSize > VXT_BreakpointDataSize_Data_Size_8)
        return Failure{kValueOutOfRange, "data size " + std::to_string(record.dataSize) + " is unknown"};
      entry.target.kind = cpu::BreakpointKind::Data;
      entry.target.length = 1u << record.dataSize;
      entry.target.access =
          record.breakpointType == VXT_BreakpointType_HW_Write ? cpu::DataAccess::Write : cpu::DataAccess::ReadWrite;
      return std::nullopt;
    default:
      return Failure{kNotSupported, "breakpoint type " + std::to_string(record.breakpointType) +
                                        " is not supported on the emulated CPUs"};
  }
}

// Sets the entry's backend breakpoint, unless the entry was removed,
// disabled or set again while the backend was busy.
Outcome Arm(uint32_t id, const Entry& entry) {
  uint32_t backendId = 0;
  if (const auto result = entry.domain->backend->AddBreakpoint(entry.target, backendId); result != cpu::CpuResult::Ok)
    return CpuFailure(result, "setting breakpoint " + std::to_string(id));
  {
    const std::lock_guard lock(registryMutex);
    const auto found = entries.find(id);
    if (found != entries.end() && found->second.record.enabled && found->second.backendId == 0) {
      found->second.backendId = backendId;
      return std::nullopt;
    }
  }
  entry.domain->backend->RemoveBreakpoint(backendId);
  return std::nullopt;
}

void Disarm(const Entry& entry) {
  if (entry.backendId != 0) entry.domain->backend->RemoveBreakpoint(entry.backendId);
}

Outcome UnknownId(uint32_t id) { return Failure{kValueOutOfRange, "there is no breakpoint " + std::to_string(id)}; }

Outcome CreateWork(VXT_Breakpoint& record) {
  Entry entry;
  if (auto refused = TargetOf(record, entry)) return refused;
  uint32_t id = 0;
  {
    const std::lock_guard lock(registryMutex);
    id = nextId++;
    record.breakpointId = id;
    entry.record = record;
    entry.record.structureSize = VXT_BREAKPOINT_SIZE;
    if (record.structureSize != VXT_BREAKPOINT_SIZE) entry.record.fullBreakpointAddress = VXT_Address{};
    entries[id] = entry;
  }
  if (!record.enabled) return std::nullopt;
  if (auto refused = Arm(id, entry)) {
    const std::lock_guard lock(registryMutex);
    entries.erase(id);
    return refused;
  }
  return std::nullopt;
}

Outcome RemoveWork(uint32_t id) {
  Entry entry;
  {
    const std::lock_guard lock(registryMutex);
    const auto found = entries.find(id);
    if (found == entries.end()) return UnknownId(id);
    entry = std::move(found->second);
    entries.erase(found);
  }
  Disarm(entry);
  return std::nullopt;
}

Outcome SetEnabled(uint32_t id, bool enabled) {
  Entry entry;
  {
    const std::lock_guard lock(registryMutex);
    const auto found = entries.find(id);
    if (found == entries.end()) return UnknownId(id);
    if ((found->second.record.enabled != 0) == enabled) return std::nullopt;
    entry = found->second;
    found->second.record.enabled = enabled ? 1 : 0;
    found->second.backendId = 0;
  }
  if (!enabled) {
    Disarm(entry);
    return std::nullopt;
  }
  entry.backendId = 0;
  return Arm(id, entry);
}

Outcome ChangeWork(VXT_Breakpoint& record) {
  Entry changed;
  Entry old;
  if (auto refused = TargetOf(record, changed)) return refused;
  {
    const std::lock_guard lock(registryMutex);
    const auto found = entries.find(record.breakpointId);
    if (found == entries.end()) return UnknownId(record.breakpointId);
    old = found->second;
    changed.record = record;
    changed.record.structureSize = VXT_BREAKPOINT_SIZE;
    if (record.structureSize != VXT_BREAKPOINT_SIZE) changed.record.fullBreakpointAddress = VXT_Address{};
    found->second = changed;
  }
  Disarm(old);
  return record.enabled ? Arm(record.breakpointId, changed) : std::nullopt;
}

// The ids set on the domain, ascending.
std::vector<uint32_t> IdsOf(uint32_t targetDomainId) {
  const std::lock_guard lock(registryMutex);
  std::vector<uint32_t> ids;
  for (const auto& [id, entry] : entries) {
    if (entry.domain->targetDomainId == targetDomainId) ids.push_back(id);
  }
  return ids;
}

Outcome SetAllEnabled(uint32_t targetDomainId, bool enabled) {
  for (const uint32_t id : IdsOf(targetDomainId)) {
    if (auto refused = SetEnabled(id, enabled)) return refused;
  }
  return std::nullopt;
}

// Each record in turn, `stride` bytes apart; the first refusal ends the walk.
template <class Record, class Work>
Outcome EachRecord(uint32_t count, Record* records, const Work& work) {
  if (count == 0) return std::nullopt;
  if (auto refused = CheckNotNull(records, "breakpoints")) return refused;
  using Byte = std::conditional_t<std::is_const_v<Record>, const uint8_t, uint8_t>;
  const size_t stride = records->structureSize == VXT_BREAKPOINT_SHORT_SIZE ? VXT_BREAKPOINT_SHORT_SIZE : VXT_BREAKPOINT_SIZE;
  auto* bytes = reinterpret_cast<Byte*>(records);
  for (uint32_t i = 0; i < count; ++i) {
    if (auto refused = work(*reinterpret_cast<Record*>(bytes + i * stride))) return refused;
  }
  return std::nullopt;
}

Outcome GetWork(uint32_t id, VXT_Breakpoint* breakpoint) {
  if (auto refused = CheckNotNull(breakpoint, "breakpoint")) return refused;
  const std::lock_guard lock(registryMutex);
  const auto found = entries.find(id);
  if (found == entries.end()) return UnknownId(id);
  const uint32_t size = breakpoint->structureSize == VXT_BREAKPOINT_SHORT_SIZE ? VXT_BREAKPOINT_SHORT_SIZE : VXT_BREAKPOINT_SIZE;
  std::memcpy(breakpoint, &found->second.record, size);
  breakpoint->structureSize = size;
  return std::nullopt;
}

Outcome DomainOf(uint32_t targetDomainId) {
  std::shared_ptr<const cpu::CpuDomain> domain;
  return FindDomain(targetDomainId, domain);
}

}  // namespace

uint32_t ComponentBreakpointId(uint32_t targetDomainId, uint32_t backendId) {
  const std::lock_guard lock(registryMutex);
  for (const auto& [id, entry] : entries) {
    if (entry.backendId == backendId && entry.domain->targetDomainId == targetDomainId) return id;
  }
  return 0;
}

bool BreaksAll(uint32_t targetDomainId) {
  const std::lock_guard lock(registryMutex);
  const auto found = breakAll.find(targetDomainId);
  return found != breakAll.end() && found->second == VXT_BreakAllSetting_Enabled;
}

void ForgetBreakpoints() {
  const std::lock_guard lock(registryMutex);
  entries.clear();
  breakAll.clear();
}

uint32_t CreateBreakpoint(VXT_Breakpoint* breakpoint) {
  VOXTREL_COMPONENT_CALL("RunControl.CreateBreakpoint");
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(breakpoint, "breakpoint"))) return refused;
  return VOXTREL_ANSWER(CreateWork(*breakpoint));
}

uint32_t CreateBreakpoints(uint32_t numBreakpoints, VXT_Breakpoint* breakpoints) {
  VOXTREL_COMPONENT_CALL("RunControl.CreateBreakpoints", "numBreakpoints=", numBreakpoints);
  return VOXTREL_ANSWER(EachRecord(numBreakpoints, breakpoints, [](VXT_Breakpoint& record) { return CreateWork(record); }));
}

uint32_t RemoveBreakpoint(uint32_t breakpointId) {
  VOXTREL_COMPONENT_CALL("RunControl.RemoveBreakpoint", "breakpointId=", breakpointId);
  return VOXTREL_ANSWER(RemoveWork(breakpointId));
}

uint32_t RemoveBreakpoints(uint32_t numBreakpoints, const VXT_Breakpoint* breakpoints) {
  VOXTREL_COMPONENT_CALL("RunControl.RemoveBreakpoints", "numBreakpoints=", numBreakpoints);
  return VOXTREL_ANSWER(EachRecord(numBreakpoints, breakpoints,
                                   [](const VXT_Breakpoint& record) { return RemoveWork(record.breakpointId); }));
}

uint32_t RemoveBreakpointsById(uint32_t numBreakpointIds, const uint32_t* breakpointIds) {
  VOXTREL_COMPONENT_CALL("RunControl.RemoveBreakpointsById", "numBreakpointIds=", numBreakpointIds);
  if (numBreakpointIds == 0) return 0;
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(breakpointIds, "breakpointIds"))) return refused;
  for (uint32_t i = 0; i < numBreakpointIds; ++i) {
    if (const uint32_t refused = VOXTREL_ANSWER(RemoveWork(breakpointIds[i]))) return refused;
  }
  return 0;
}

uint32_t GetBreakAllSetting(uint32_t targetDomainId, VXT_BreakAllSetting* breakAllSetting) {
  VOXTREL_COMPONENT_CALL("RunControl.GetBreakAllSetting", "targetDomainId=", HexText(targetDomainId));
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(breakAllSetting, "breakAllSetting"))) return refused;
  if (const uint32_t refused = VOXTREL_ANSWER(DomainOf(targetDomainId))) return refused;
  *breakAllSetting = BreaksAll(targetDomainId) ? VXT_BreakAllSetting_Enabled : VXT_BreakAllSetting_Disabled;
  return 0;
}

uint32_t SetBreakAllSetting(uint32_t targetDomainId, VXT_BreakAllSetting breakAllSetting) {
  VOXTREL_COMPONENT_CALL("RunControl.SetBreakAllSetting", "targetDomainId=", HexText(targetDomainId));
  if (const uint32_t refused = VOXTREL_ANSWER(DomainOf(targetDomainId))) return refused;
  if (breakAllSetting != VXT_BreakAllSetting_Disabled && breakAllSetting != VXT_BreakAllSetting_Enabled)
    return VOXTREL_ANSWER(
        (Outcome{Failure{kValueOutOfRange, "break-all setting " + std::to_string(breakAllSetting) + " is unknown"}}));
  const std::lock_guard lock(registryMutex);
  breakAll[targetDomainId] = breakAllSetting;
  return 0;
}

uint32_t GetNumBreakpoints(uint32_t targetDomainId, uint32_t* numBreakpoints) {
  VOXTREL_COMPONENT_CALL("RunControl.GetNumBreakpoints", "targetDomainId=", HexText(targetDomainId));
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(numBreakpoints, "numBreakpoints"))) return refused;
  *numBreakpoints = static_cast<uint32_t>(IdsOf(targetDomainId).size());
  return 0;
}

// As many ids as fit; the entries beyond the breakpoints set are 0.
uint32_t GetBreakpointIds(uint32_t targetDomainId, int32_t maxBreakpoints, uint32_t* breakpointIds) {
  VOXTREL_COMPONENT_CALL("RunControl.GetBreakpointIds", "targetDomainId=", HexText(targetDomainId));
  if (maxBreakpoints <= 0) return 0;
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(breakpointIds, "breakpointIds"))) return refused;
  const std::vector<uint32_t> ids = IdsOf(targetDomainId);
  for (int32_t i = 0; i < maxBreakpoints; ++i)
    breakpointIds[i] = static_cast<size_t>(i) < ids.size() ? ids[static_cast<size_t>(i)] : 0;
  return 0;
}

uint32_t GetBreakpoint(uint32_t breakpointId, VXT_Breakpoint* breakpoint) {
  VOXTREL_COMPONENT_CALL("RunControl.GetBreakpoint", "breakpointId=", breakpointId);
  return VOXTREL_ANSWER(GetWork(breakpointId, breakpoint));
}

uint32_t ChangeBreakpoint(VXT_Breakpoint* breakpoint) {
  VOXTREL_COMPONENT_CALL("RunControl.ChangeBreakpoint");
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(breakpoint, "breakpoint"))) return refused;
  return VOXTREL_ANSWER(ChangeWork(*breakpoint));
}

uint32_t EnableBreakpoint(uint32_t breakpointId) {
  VOXTREL_COMPONENT_CALL("RunControl.EnableBreakpoint", "breakpointId=", breakpointId);
  return VOXTREL_ANSWER(SetEnabled(breakpointId, true));
}

uint32_t EnableAllBreakpoints(uint32_t targetDomainId) {
  VOXTREL_COMPONENT_CALL("RunControl.EnableAllBreakpoints", "targetDomainId=", HexText(targetDomainId));
  return VOXTREL_ANSWER(SetAllEnabled(targetDomainId, true));
}

uint32_t DisableBreakpoint(uint32_t breakpointId) {
  VOXTREL_COMPONENT_CALL("RunControl.DisableBreakpoint", "breakpointId=", breakpointId);
  return VOXTREL_ANSWER(SetEnabled(breakpointId, false));
}

uint32_t DisableAllBreakpoints(uint32_t targetDomainId) {
  VOXTREL_COMPONENT_CALL("RunControl.DisableAllBreakpoints", "targetDomainId=", HexText(targetDomainId));
  return VOXTREL_ANSWER(SetAllEnabled(targetDomainId, false));
}

}  // namespace voxtrel::platform::run_control
