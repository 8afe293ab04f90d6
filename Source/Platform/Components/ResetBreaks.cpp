#include "ResetBreaks.h"

#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "Cpu/CpuDomains.h"
#include "Events/SystemStallEvent.h"
#include "RunControl/RunControlCodes.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"
#include "Target/PostFailure.h"
#include "TargetManager.h"

namespace voxtrel::platform::platform_control {
namespace {

using run_control::HexText;
using target::Failure;
using target::Outcome;

constexpr char kStall[] = "CpuStall";

std::mutex valuesMutex;
std::map<uint32_t, uint32_t> resetBreaks;  // By target domain or debug port
std::map<uint32_t, uint32_t> stalls;

uint32_t Answer(const Outcome& outcome, const char* file, uint32_t line) {
  return outcome ? target::PostFailure(*outcome, file, line) : 0;
}
#define VOXTREL_STALL_ANSWER(outcome) Answer((outcome), __FILE__, __LINE__)

Outcome NotNull(const void* pointer, const char* argument) {
  if (pointer != nullptr) return std::nullopt;
  return Failure{run_control::kInvalidArgument, std::string(argument) + " is a null pointer"};
}

Outcome NodeTypeOf(uint32_t deviceId, VXT_NodeType& type) {
  const TargetManagerComponent* targetManager = nullptr;
  if (Voxtrel_GetTargetManager(&targetManager) != 0 || targetManager->GetNodeType(deviceId, &type) != 0)
    return Failure{run_control::kUnknownDevice, "there is no device " + HexText(deviceId)};
  return std::nullopt;
}

// The device's target domain when it is a target domain or a debug port;
// `holds` false for any other device.
Outcome DomainOf(uint32_t deviceId, bool& holds, uint32_t& domainId) {
  VXT_NodeType type = VXT_NodeType_Unknown;
  if (auto refused = NodeTypeOf(deviceId, type)) return refused;
  holds = type == VXT_NodeType_TargetDomain || type == VXT_NodeType_Debugport;
  domainId = deviceId;
  const TargetManagerComponent* targetManager = nullptr;
  Voxtrel_GetTargetManager(&targetManager);
  if (type == VXT_NodeType_Debugport && targetManager->GetAncestorIdForType(deviceId, VXT_NodeType_TargetDomain, &domainId) != 0)
    return Failure{run_control::kUnknownDevice, "debug port " + HexText(deviceId) + " is in no target domain"};
  return std::nullopt;
}

Outcome StallDevice(uint32_t deviceId, uint32_t& domainId) {
  bool holds = false;
  if (auto refused = DomainOf(deviceId, holds, domainId)) return refused;
  if (!holds)
    return Failure{run_control::kWrongDeviceType, "device " + HexText(deviceId) + " is no debug port or target domain"};
  return std::nullopt;
}

Outcome StallNamed(const char* stallName) {
  if (auto refused = NotNull(stallName, "stallName")) return refused;
  const std::string name(stallName, strnlen(stallName, 260));
  if (name != kStall) return Failure{run_control::kValueOutOfRange, "'" + name + "' is no system stall (CpuStall)"};
  return std::nullopt;
}

// Every thread of the domain stopped or let go, then the event.
Outcome Stall(uint32_t deviceId, uint32_t domainId, uint32_t value) {
  for (const auto& domain : cpu::CpuDomains::Instance().Domains()) {
    if (domain->targetDomainId != domainId) continue;
    const auto result = value != 0 ? domain->backend->HaltAll() : domain->backend->GoAll();
    if (result != cpu::CpuResult::Ok)
      return run_control::CpuFailure(result, std::string(value != 0 ? "stalling" : "releasing") + " target domain " +
                                                 HexText(domainId));
  }
  {
    const std::lock_guard lock(valuesMutex);
    stalls[deviceId] = value;
  }
  events::PublishSystemStallEvent(value != 0 ? "Hit" : "Released", kStall, value, true);
  return std::nullopt;
}

}  // namespace

uint32_t GetNumSystemStalls(uint32_t debugportOrTargetDomainId, uint32_t* numStallNames) {
  VOXTREL_COMPONENT_CALL("PlatformControl.GetNumSystemStalls", "deviceId=", HexText(debugportOrTargetDomainId));
  uint32_t domainId = 0;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(NotNull(numStallNames, "numStallNames"))) return refused;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(StallDevice(debugportOrTargetDomainId, domainId))) return refused;
  *numStallNames = 1;
  return 0;
}

uint32_t GetSystemStalls(uint32_t debugportOrTargetDomainId, uint32_t numStallNames, char (*stallNames)[260]) {
  VOXTREL_COMPONENT_CALL("PlatformControl.GetSystemStalls", "deviceId=", HexText(debugportOrTargetDomainId),
                         ", numStallNames=", numStallNames);
  uint32_t domainId = 0;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(NotNull(stallNames, "stallNames"))) return refused;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(StallDevice(debugportOrTargetDomainId, domainId))) return refused;
  if (numStallNames == 0)
    return VOXTREL_STALL_ANSWER(
        Outcome(Failure{run_control::kBufferTooSmall, "there is 1 system stall, room was made for 0"}));
  std::strcpy(stallNames[0], kStall);
  return 0;
}

uint32_t GetSystemStall(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t* value) {
  VOXTREL_COMPONENT_CALL("PlatformControl.GetSystemStall", "deviceId=", HexText(debugportOrTargetDomainId));
  uint32_t domainId = 0;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(StallNamed(stallName))) return refused;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(NotNull(value, "value"))) return refused;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(StallDevice(debugportOrTargetDomainId, domainId))) return refused;
  const std::lock_guard lock(valuesMutex);
  const auto found = stalls.find(debugportOrTargetDomainId);
  *value = found == stalls.end() ? 0 : found->second;
  return 0;
}

uint32_t SetSystemStall(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t value) {
  VOXTREL_COMPONENT_CALL("PlatformControl.SetSystemStall", "deviceId=", HexText(debugportOrTargetDomainId),
                         ", value=", value);
  uint32_t domainId = 0;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(StallNamed(stallName))) return refused;
  if (value > 1)
    return VOXTREL_STALL_ANSWER(
        Outcome(Failure{run_control::kValueOutOfRange, "a system stall is 0 or 1, not " + std::to_string(value)}));
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(StallDevice(debugportOrTargetDomainId, domainId))) return refused;
  return VOXTREL_STALL_ANSWER(Stall(debugportOrTargetDomainId, domainId, value));
}

uint32_t GetResetBreakMode(uint32_t target, int32_t* mode) {
  VOXTREL_COMPONENT_CALL("PlatformControl.GetResetBreakMode", "target=", HexText(target));
  VXT_NodeType type = VXT_NodeType_Unknown;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(NotNull(mode, "mode"))) return refused;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(NodeTypeOf(target, type))) return refused;
  *mode = type == VXT_NodeType_TargetDomain ? 1 : 0;
  return 0;
}

uint32_t GetResetBreak(uint32_t target, uint32_t* value) {
  VOXTREL_COMPONENT_CALL("PlatformControl.GetResetBreak", "target=", HexText(target));
  uint32_t domainId = 0;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(NotNull(value, "value"))) return refused;
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(StallDevice(target, domainId))) return refused;
  const std::lock_guard lock(valuesMutex);
  const auto found = resetBreaks.find(target);
  *value = found == resetBreaks.end() ? 0 : found->second;
  return 0;
}

uint32_t SetResetBreak(uint32_t target, uint32_t value) {
  VOXTREL_COMPONENT_CALL("PlatformControl.SetResetBreak", "target=", HexText(target), ", value=", value);
  uint32_t domainId = 0;
  if (value > 2)
    return VOXTREL_STALL_ANSWER(Outcome(
        Failure{run_control::kValueOutOfRange, "a reset break is 0, 1 or 2, not " + std::to_string(value)}));
  if (const uint32_t refused = VOXTREL_STALL_ANSWER(StallDevice(target, domainId))) return refused;
  const std::lock_guard lock(valuesMutex);
  resetBreaks[target] = value;
  return 0;
}

bool ConsumeResetBreak(uint32_t targetDomainId) {
  std::vector<std::pair<uint32_t, uint32_t>> set;
  {
    const std::lock_guard lock(valuesMutex);
    set.assign(resetBreaks.begin(), resetBreaks.end());
  }
  bool halts = false;
  for (const auto& [target, value] : set) {
    bool holds = false;
    uint32_t domainId = 0;
    if (value == 0 || DomainOf(target, holds, domainId) || domainId != targetDomainId) continue;
    halts = true;
    if (value == 1) {
      const std::lock_guard lock(valuesMutex);
      resetBreaks[target] = 0;
    }
  }
  return halts;
}

void ForgetResetBreaksAndStalls() {
  const std::lock_guard lock(valuesMutex);
  resetBreaks.clear();
  stalls.clear();
}

}  // namespace voxtrel::platform::platform_control
