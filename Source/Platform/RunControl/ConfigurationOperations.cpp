// The settings of each core group, kept from a client's change until the
// target is built again. The emulated CPUs enter probe mode one way (the
// halt flag their code hook reads), leave it one way and are seen in it one
// way (the backend's stop listener), so each method list has one name; a
// step moves the targeted thread alone, and nothing redirects probe mode.
#include "ConfigurationOperations.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "CpuThreads.h"
#include "MemoryAccess.h"
#include "OperationResult.h"
#include "RunControlCodes.h"
#include "Support/ComponentCall.h"
#include "TargetManager.h"

namespace voxtrel::platform::run_control {
namespace {

using target::Failure;
using target::Outcome;

enum class MethodKind { Entry, Exit, Detect };

const char* KindText(MethodKind kind) {
  return kind == MethodKind::Entry ? "entry" : kind == MethodKind::Exit ? "exit" : "detect";
}
const char* MethodOf(MethodKind kind) {
  return kind == MethodKind::Entry ? "HaltFlag" : kind == MethodKind::Exit ? "Resume" : "StopListener";
}

struct GroupSettings {
  bool interestingSet = false;
  std::vector<uint32_t> interesting;  // When set; else every thread of the group
  uint32_t stepIntoException = 0;
  uint32_t runControlEnabled = 1;
};

std::mutex settingsMutex;
std::map<uint32_t, GroupSettings> settings;

// The group's threads, refused for a device that is no core group.
Outcome FindGroup(uint32_t coreGroupId, cpu::CpuSelection& selection) {
  const TargetManagerComponent* targetManager = nullptr;
  VXT_NodeType type = VXT_NodeType_Unknown;
  if (Voxtrel_GetTargetManager(&targetManager) != 0 || targetManager->GetNodeType(coreGroupId, &type) != 0)
    return Failure{kUnknownDevice, "there is no device " + HexText(coreGroupId)};
  if (type != VXT_NodeType_LogicalGroupCore)
    return Failure{kWrongDeviceType, "device " + HexText(coreGroupId) + " is no core group"};
  return FindThreads(coreGroupId, selection);
}

// The group's settings (its defaults until a client changes one).
Outcome Read(uint32_t coreGroupId, GroupSettings& found) {
  cpu::CpuSelection selection;
  if (auto refused = FindGroup(coreGroupId, selection)) return refused;
  const std::lock_guard lock(settingsMutex);
  const auto entry = settings.find(coreGroupId);
  found = entry == settings.end() ? GroupSettings{} : entry->second;
  if (!found.interestingSet) {
    found.interesting.clear();
    for (const uint32_t index : selection.threadIndices) found.interesting.push_back(selection.domain->threadDeviceIds[index]);
  }
  return std::nullopt;
}

template <class Change>
Outcome Write(uint32_t coreGroupId, const Change& change) {
  cpu::CpuSelection selection;
  if (auto refused = FindGroup(coreGroupId, selection)) return refused;
  const std::lock_guard lock(settingsMutex);
  change(settings[coreGroupId]);
  return std::nullopt;
}

void CopyName(const char* name, char* buffer) {
  std::strncpy(buffer, name, kMethodNameSize - 1);
  buffer[kMethodNameSize - 1] = '\0';
}

Outcome NumMethods(uint32_t coreGroupId, uint32_t* methodCount) {
  GroupSettings found;
  if (auto refused = CheckNotNull(methodCount, "methodCount")) return refused;
  if (auto refused = Read(coreGroupId, found)) return refused;
  *methodCount = 1;
  return std::nullopt;
}

Outcome Methods(MethodKind kind, uint32_t coreGroupId, uint32_t maxMethodCount, char (*methodNames)[64]) {
  GroupSettings found;
  if (auto refused = CheckNotNull(methodNames, "methodNames")) return refused;
  if (auto refused = Read(coreGroupId, found)) return refused;
  if (maxMethodCount < 1) return Failure{kBufferTooSmall, "there is 1 probe mode " + std::string(KindText(kind)) +
                                                              " method, room was made for 0"};
  CopyName(MethodOf(kind), methodNames[0]);
  return std::nullopt;
}

Outcome Method(MethodKind kind, uint32_t coreGroupId, char* methodName) {
  GroupSettings found;
  if (auto refused = CheckNotNull(methodName, "methodName")) return refused;
  if (auto refused = Read(coreGroupId, found)) return refused;
  CopyName(MethodOf(kind), methodName);
  return std::nullopt;
}

Outcome ChooseMethod(MethodKind kind, uint32_t coreGroupId, const char* methodName) {
  GroupSettings found;
  if (auto refused = CheckNotNull(methodName, "methodName")) return refused;
  if (auto refused = Read(coreGroupId, found)) return refused;
  const std::string name(methodName, strnlen(methodName, kMethodNameSize));
  if (name != MethodOf(kind))
    return Failure{kValueOutOfRange, "'" + name + "' is no probe mode " + KindText(kind) +
                                         " method of the emulated CPUs (" + MethodOf(kind) + ")"};
  return std::nullopt;
}

Outcome SetInteresting(uint32_t coreGroupId, uint32_t threadCount, const uint32_t* threadIds) {
  cpu::CpuSelection group;
  if (auto refused = CheckNotNull(threadIds, "threadIds")) return refused;
  if (auto refused = FindGroup(coreGroupId, group)) return refused;
  if (threadCount > group.threadIndices.size())
    return Failure{kValueOutOfRange, "the core group has " + std::to_string(group.threadIndices.size()) +
                                         " threads, " + std::to_string(threadCount) + " were given"};
  std::vector<uint32_t> chosen(threadIds, threadIds + threadCount);
  for (const uint32_t thread : chosen) {
    const auto& ids = group.domain->threadDeviceIds;
    const bool inGroup = std::any_of(group.threadIndices.begin(), group.threadIndices.end(),
                                     [&](uint32_t index) { return ids[index] == thread; });
    if (!inGroup) return Failure{kValueOutOfRange, "thread " + HexText(thread) + " is not in the core group"};
  }
  const std::lock_guard lock(settingsMutex);
  settings[coreGroupId].interesting = std::move(chosen);
  settings[coreGroupId].interestingSet = true;
  return std::nullopt;
}

template <class T, class Get>
Outcome ReadValue(uint32_t coreGroupId, T* value, const char* argument, const Get& get) {
  GroupSettings found;
  if (auto refused = CheckNotNull(value, argument)) return refused;
  if (auto refused = Read(coreGroupId, found)) return refused;
  *value = get(found);
  return std::nullopt;
}

}  // namespace

uint32_t GetStepMode(uint32_t coreGroupId, VXT_StepMode* stepMode) {
  VOXTREL_COMPONENT_CALL("RunControl.GetStepMode", "coreGroupId=", HexText(coreGroupId));
  return VOXTREL_ANSWER(ReadValue(coreGroupId, stepMode, "stepMode",
                                  [](const GroupSettings&) { return VXT_StepMode_ReleaseTargetedThread; }));
}

uint32_t SetStepMode(uint32_t coreGroupId, VXT_StepMode stepMode) {
  VOXTREL_COMPONENT_CALL("RunControl.SetStepMode", "coreGroupId=", HexText(coreGroupId), ", stepMode=", stepMode);
  GroupSettings found;
  if (const uint32_t refused = VOXTREL_ANSWER(Read(coreGroupId, found))) return refused;
  if (stepMode == VXT_StepMode_ReleaseTargetedThread) return 0;
  return VOXTREL_ANSWER(Outcome(Failure{
      stepMode == VXT_StepMode_ReleaseAllThreads ? kNotSupported : kValueOutOfRange,
      stepMode == VXT_StepMode_ReleaseAllThreads
          ? std::string("the emulated CPUs step the targeted thread alone (ReleaseTargetedThread)")
          : "step mode " + std::to_string(stepMode) + " is unknown (0 ReleaseTargetedThread, 1 ReleaseAllThreads)"}));
}

#define VOXTREL_METHOD_OPERATIONS(Kind)                                                                            \
  uint32_t GetNumProbeMode##Kind##Methods(uint32_t coreGroupId, uint32_t* methodCount) {                          \
    VOXTREL_COMPONENT_CALL("RunControl.GetNumProbeMode" #Kind "Methods", "coreGroupId=", HexText(coreGroupId));    \
    return VOXTREL_ANSWER(NumMethods(coreGroupId, methodCount));                                                  \
  }                                                                                                               \
  uint32_t GetProbeMode##Kind##Methods(uint32_t coreGroupId, uint32_t maxMethodCount, char (*methodNames)[64]) { \
    VOXTREL_COMPONENT_CALL("RunControl.GetProbeMode" #Kind "Methods", "coreGroupId=", HexText(coreGroupId),       \
                           ", maxMethodCount=", maxMethodCount);                                                  \
    return VOXTREL_ANSWER(Methods(MethodKind::Kind, coreGroupId, maxMethodCount, methodNames));                   \
  }                                                                                                               \
  uint32_t GetProbeMode##Kind##Method(uint32_t coreGroupId, char* methodName) {                                   \
    VOXTREL_COMPONENT_CALL("RunControl.GetProbeMode" #Kind "Method", "coreGroupId=", HexText(coreGroupId));       \
    return VOXTREL_ANSWER(Method(MethodKind::Kind, coreGroupId, methodName));                                     \
  }                                                                                                               \
  uint32_t SetProbeMode##Kind##Method(uint32_t coreGroupId, const char* methodName) {                             \
    VOXTREL_COMPONENT_CALL("RunControl.SetProbeMode" #Kind "Method", "coreGroupId=", HexText(coreGroupId));       \
    return VOXTREL_ANSWER(ChooseMethod(MethodKind::Kind, coreGroupId, methodName));                               \
  }

VOXTREL_METHOD_OPERATIONS(Entry)
VOXTREL_METHOD_OPERATIONS(Exit)
VOXTREL_METHOD_OPERATIONS(Detect)
#undef VOXTREL_METHOD_OPERATIONS

uint32_t GetNumInterestingThreads(uint32_t coreGroupId, uint32_t* threadCount) {
  VOXTREL_COMPONENT_CALL("RunControl.GetNumInterestingThreads", "coreGroupId=", HexText(coreGroupId));
  return VOXTREL_ANSWER(ReadValue(coreGroupId, threadCount, "threadCount", [](const GroupSettings& found) {
    return static_cast<uint32_t>(found.interesting.size());
  }));
}

uint32_t GetInterestingThreads(uint32_t coreGroupId, uint32_t threadCount, uint32_t* threadIds) {
  VOXTREL_COMPONENT_CALL("RunControl.GetInterestingThreads", "coreGroupId=", HexText(coreGroupId),
                         ", threadCount=", threadCount);
  GroupSettings found;
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(threadIds, "threadIds"))) return refused;
  if (const uint32_t refused = VOXTREL_ANSWER(Read(coreGroupId, found))) return refused;
  std::copy_n(found.interesting.begin(), std::min<size_t>(threadCount, found.interesting.size()), threadIds);
  if (threadCount >= found.interesting.size()) return 0;
  return VOXTREL_ANSWER(Outcome(Failure{kBufferTooSmall, "the core group has " +
                                                             std::to_string(found.interesting.size()) +
                                                             " interesting threads, room was made for " +
                                                             std::to_string(threadCount)}));
}

uint32_t SetInterestingThreads(uint32_t coreGroupId, uint32_t threadCount, const uint32_t* threadIds) {
  VOXTREL_COMPONENT_CALL("RunControl.SetInterestingThreads", "coreGroupId=", HexText(coreGroupId),
                         ", threadCount=", threadCount);
  return VOXTREL_ANSWER(SetInteresting(coreGroupId, threadCount, threadIds));
}

uint32_t GetProbeModeRedirectionMode(uint32_t coreGroupId, int32_t* mode) {
  VOXTREL_COMPONENT_CALL("RunControl.GetProbeModeRedirectionMode", "coreGroupId=", HexText(coreGroupId));
  return VOXTREL_ANSWER(ReadValue(coreGroupId, mode, "mode", [](const GroupSettings&) { return 0; }));
}

uint32_t SetProbeModeRedirectionMode(uint32_t coreGroupId, int32_t mode) {
  VOXTREL_COMPONENT_CALL("RunControl.SetProbeModeRedirectionMode", "coreGroupId=", HexText(coreGroupId),
                         ", mode=", mode);
  GroupSettings found;
  if (const uint32_t refused = VOXTREL_ANSWER(Read(coreGroupId, found))) return refused;
  if (mode == 0) return 0;
  return VOXTREL_ANSWER(Outcome(Failure{kNotSupported, "the emulated CPUs have no probe mode redirection (mode 0)"}));
}

uint32_t GetStepIntoExceptionEnabled(uint32_t coreGroupId, uint32_t* enabled) {
  VOXTREL_COMPONENT_CALL("RunControl.GetStepIntoExceptionEnabled", "coreGroupId=", HexText(coreGroupId));
  return VOXTREL_ANSWER(
      ReadValue(coreGroupId, enabled, "enabled", [](const GroupSettings& found) { return found.stepIntoException; }));
}

uint32_t StepIntoExceptionEnabled(uint32_t coreGroupId, uint32_t enabled) {
  VOXTREL_COMPONENT_CALL("RunControl.StepIntoExceptionEnabled", "coreGroupId=", HexText(coreGroupId),
                         ", enabled=", enabled);
  return VOXTREL_ANSWER(Write(coreGroupId, [&](GroupSettings& group) { group.stepIntoException = enabled != 0; }));
}

uint32_t SetRunControlEnabled(uint32_t coreGroupId, uint32_t enabled) {
  VOXTREL_COMPONENT_CALL("RunControl.SetRunControlEnabled", "coreGroupId=", HexText(coreGroupId),
                         ", enabled=", enabled);
  return VOXTREL_ANSWER(Write(coreGroupId, [&](GroupSettings& group) { group.runControlEnabled = enabled != 0; }));
}

uint32_t IsRunControlEnabled(uint32_t coreGroupId, uint32_t* enabled) {
  VOXTREL_COMPONENT_CALL("RunControl.IsRunControlEnabled", "coreGroupId=", HexText(coreGroupId));
  return VOXTREL_ANSWER(
      ReadValue(coreGroupId, enabled, "enabled", [](const GroupSettings& found) { return found.runControlEnabled; }));
}

void ForgetConfiguration() {
  const std::lock_guard lock(settingsMutex);
  settings.clear();
}

Outcome CheckRunControlEnabled(const cpu::CpuSelection& selection) {
  std::vector<uint32_t> disabled;
  {
    const std::lock_guard lock(settingsMutex);
    for (const auto& [group, values] : settings)
      if (!values.runControlEnabled) disabled.push_back(group);
  }
  for (const uint32_t group : disabled) {
    cpu::CpuSelection threads;
    if (FindThreads(group, threads) || threads.domain != selection.domain) continue;
    for (const uint32_t index : selection.threadIndices) {
      if (std::find(threads.threadIndices.begin(), threads.threadIndices.end(), index) != threads.threadIndices.end())
        return Failure{kAccessDenied, "run control of core group " + HexText(group) +
                                          " is disabled (SetRunControlEnabled)"};
    }
  }
  return std::nullopt;
}

}  // namespace voxtrel::platform::run_control
