#include "BreakConditions.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "../Components/ResetBreaks.h"
#include "CpuThreads.h"
#include "RunControl.h"
#include "MemoryAccess.h"
#include "OperationResult.h"
#include "RunControlCodes.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::run_control {
namespace {

using target::Failure;
using target::Outcome;

enum Condition : size_t { kHlt, kInit, kShutdown, kConditionCount };
constexpr std::array<const char*, kConditionCount> kNames = {"Hlt", "Init", "Shutdown"};
constexpr std::array<uint32_t, kConditionCount> kDefaults = {0, 0, 1};

using Values = std::array<uint32_t, kConditionCount>;

// By thread device id; a thread not here has the defaults.
std::mutex conditionsMutex;
std::map<uint32_t, Values> conditions;

Values ValuesOf(uint32_t threadDeviceId) {
  const std::lock_guard lock(conditionsMutex);
  const auto found = conditions.find(threadDeviceId);
  return found == conditions.end() ? kDefaults : found->second;
}

Outcome ConditionNamed(const char* breakName, size_t& condition) {
  const std::string name(breakName, strnlen(breakName, kBreakNameSize));
  const auto found = std::find(kNames.begin(), kNames.end(), name);
  if (found == kNames.end())
    return Failure{kValueOutOfRange, "'" + name + "' is no break condition of the emulated CPUs (Hlt, Init, Shutdown)"};
  condition = static_cast<size_t>(found - kNames.begin());
  return std::nullopt;
}

Outcome ListWork(uint32_t deviceId, uint32_t numBreakNames, char (*breakNames)[260]) {
  cpu::CpuSelection selection;
  if (auto refused = CheckNotNull(breakNames, "breakNames")) return refused;
  if (auto refused = FindThreads(deviceId, selection)) return refused;
  for (uint32_t i = 0; i < std::min<uint32_t>(numBreakNames, kConditionCount); ++i)
    std::strcpy(breakNames[i], kNames[i]);
  if (numBreakNames < kConditionCount)
    return Failure{kBufferTooSmall, "the emulated CPUs have " + std::to_string(kConditionCount) +
                                        " break conditions, room was made for " + std::to_string(numBreakNames)};
  return std::nullopt;
}

Outcome ReadWork(uint32_t deviceId, const char* breakName, uint32_t* value) {
  cpu::CpuSelection selection;
  size_t condition = 0;
  if (auto refused = CheckNotNull(breakName, "breakName")) return refused;
  if (auto refused = CheckNotNull(value, "value")) return refused;
  if (auto refused = ConditionNamed(breakName, condition)) return refused;
  if (auto refused = FindThreads(deviceId, selection)) return refused;
  *value = ValuesOf(selection.domain->threadDeviceIds[selection.threadIndices.front()])[condition];
  return std::nullopt;
}

Outcome WriteWork(uint32_t deviceId, const char* breakName, uint32_t value) {
  cpu::CpuSelection selection;
  size_t condition = 0;
  if (auto refused = CheckNotNull(breakName, "breakName")) return refused;
  if (auto refused = ConditionNamed(breakName, condition)) return refused;
  if (value > 1) return Failure{kValueOutOfRange, "a break condition is 0 or 1, not " + std::to_string(value)};
  if (auto refused = FindThreads(deviceId, selection)) return refused;
  for (const uint32_t index : selection.threadIndices) {
    if (condition == kHlt) {
      if (const auto result = selection.domain->backend->SetBreakOnHlt(index, value != 0); result != cpu::CpuResult::Ok)
        return CpuFailure(result, "breaking on HLT of thread " + std::to_string(index));
    }
    const std::lock_guard lock(conditionsMutex);
    const uint32_t thread = selection.domain->threadDeviceIds[index];
    conditions.try_emplace(thread, kDefaults).first->second[condition] = value;
  }
  return std::nullopt;
}

}  // namespace

uint32_t GetNumBreakConditions(uint32_t deviceId, uint32_t* numBreakNames) {
  VOXTREL_COMPONENT_CALL("RunControl.GetNumBreakConditions", "deviceId=", HexText(deviceId));
  cpu::CpuSelection selection;
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(numBreakNames, "numBreakNames"))) return refused;
  if (const uint32_t refused = VOXTREL_ANSWER(FindThreads(deviceId, selection))) return refused;
  *numBreakNames = kConditionCount;
  return 0;
}

uint32_t GetBreakConditions(uint32_t deviceId, uint32_t numBreakNames, char (*breakNames)[260]) {
  VOXTREL_COMPONENT_CALL("RunControl.GetBreakConditions", "deviceId=", HexText(deviceId),
                         ", numBreakNames=", numBreakNames);
  return VOXTREL_ANSWER(ListWork(deviceId, numBreakNames, breakNames));
}

uint32_t GetBreakCondition(uint32_t deviceId, const char* breakName, uint32_t* value) {
  VOXTREL_COMPONENT_CALL("RunControl.GetBreakCondition", "deviceId=", HexText(deviceId));
  return VOXTREL_ANSWER(ReadWork(deviceId, breakName, value));
}

uint32_t SetBreakCondition(uint32_t deviceId, const char* breakName, uint32_t value) {
  VOXTREL_COMPONENT_CALL("RunControl.SetBreakCondition", "deviceId=", HexText(deviceId), ", value=", value);
  return VOXTREL_ANSWER(WriteWork(deviceId, breakName, value));
}

void ForgetBreakConditions() {
  const std::lock_guard lock(conditionsMutex);
  conditions.clear();
}

cpu::CpuResult ResetAsConfigured(const cpu::CpuDomain& domain) {
  // The reset break of the domain or its debug port halts every thread,
  // "Init" the threads that have it.
  const bool resetBreak = platform_control::ConsumeResetBreak(domain.targetDomainId);
  std::vector<bool> halts(domain.threadDeviceIds.size(), resetBreak);
  bool anyHalts = resetBreak;
  for (size_t i = 0; i < halts.size(); ++i)
    if (ValuesOf(domain.threadDeviceIds[i])[kInit] != 0) anyHalts = halts[i] = true;
  if (!anyHalts) return domain.backend->Reset(cpu::ResetMode::Run);
  const cpu::CpuResult result = domain.backend->Reset(cpu::ResetMode::HaltAfterReset);
  for (uint32_t i = 0; i < halts.size() && result == cpu::CpuResult::Ok; ++i)
    if (!halts[i]) domain.backend->Go(i);
  return result;
}

bool ResetOnShutdown(const cpu::CpuDomain& domain, const cpu::StopEvent& stop) {
  if (stop.reason != cpu::StopReason::Shutdown) return false;
  if (ValuesOf(domain.threadDeviceIds[stop.threadIndex])[kShutdown] != 0) return false;
  ResetAsConfigured(domain);
  return true;
}

}  // namespace voxtrel::platform::run_control
