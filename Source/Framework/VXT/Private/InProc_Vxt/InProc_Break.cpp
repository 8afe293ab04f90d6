// The Break service: break conditions, with "Reset" routed to platform
// control where it keeps it, and system stalls.
#include "InProc_Break.h"

#include <cctype>
#include <cstring>
#include <locale>
#include <string_view>

#include "Error.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_Break instance;

using frame::Call;
using frame::Dec;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;
using Names = char (*)[VXT_BREAK_NAME_SIZE];

constexpr uint32_t kNoDevice = 0xFFFFFFFFu;
constexpr char kReset[] = "Reset";
constexpr char kResetBreakGroup[] = "GPC";

InProc_Break& Service() { return instance; }

// The device on which platform control keeps the reset break of `deviceId`:
// a thread's debug port, a core group's target domain, else the device.
uint32_t ResetBreakTarget(const TargetManagerComponent& targetManager, uint32_t deviceId, uint32_t& target) {
  VXT_NodeType type{};
  if (const uint32_t failed = targetManager.GetNodeType(deviceId, &type)) return failed;
  if (type == VXT_NodeType_LogicalThread) return targetManager.GetDebugportIdForDevice(deviceId, &target);
  if (type == VXT_NodeType_LogicalGroupCore)
    return targetManager.GetAncestorIdForType(deviceId, VXT_NodeType_TargetDomain, &target);
  target = deviceId;
  return 0;
}

// Whether the condition "Reset" of the device is platform control's.
uint32_t HasResetBreak(uint32_t deviceId, bool& result) {
  const InProc_Break& service = Service();
  result = false;
  uint32_t target = kNoDevice;
  if (const uint32_t failed = ResetBreakTarget(*service.targetManager, deviceId, target)) return failed;
  int32_t mode = 0;
  if (const uint32_t failed = service.platformControl->GetResetBreakMode(target, &mode)) return failed;
  if (mode != 1) return 0;
  VXT_NodeType type{};
  if (const uint32_t failed = service.targetManager->GetNodeType(deviceId, &type)) return failed;
  switch (type) {
    case VXT_NodeType_TargetDomain:
    case VXT_NodeType_Debugport:
      result = true;
      return 0;
    case VXT_NodeType_LogicalGroupCore: {
      char name[64] = {};
      if (const uint32_t failed = service.targetManager->GetCoreGroupName(deviceId, name)) return failed;
      result = std::strcmp(name, kResetBreakGroup) == 0;
      return 0;
    }
    case VXT_NodeType_LogicalThread: {
      char group[128] = {};
      if (const uint32_t failed = service.targetManager->GetDeviceProperty(deviceId, "CoreGroup", group)) return failed;
      result = std::strcmp(group, kResetBreakGroup) == 0;
      return 0;
    }
    default:
      return 0;
  }
}

// The same length, and each character the same upper-cased in the global
// locale.
bool IsResetName(const char* name) {
  const std::string_view text(name);
  if (text.size() != std::strlen(kReset)) return false;
  const std::locale locale;
  for (size_t i = 0; i < text.size(); ++i)
    if (std::toupper(text[i], locale) != std::toupper(kReset[i], locale)) return false;
  return true;
}

// Whether a read or write of `breakName` goes to platform control.
uint32_t RoutesToPlatformControl(uint32_t deviceId, const char* breakName, bool& routed) {
  bool hasResetBreak = false;
  if (const uint32_t failed = HasResetBreak(deviceId, hasResetBreak)) return failed;
  routed = hasResetBreak && IsResetName(breakName);
  return 0;
}

uint32_t ReadCondition(uint32_t deviceId, const char* breakName, uint32_t* value) {
  const InProc_Break& service = Service();
  bool routed = false;
  if (const uint32_t failed = RoutesToPlatformControl(deviceId, breakName, routed)) return failed;
  if (!routed) return service.runControl->GetBreakCondition(deviceId, breakName, value);
  uint32_t target = kNoDevice;
  if (const uint32_t failed = ResetBreakTarget(*service.targetManager, deviceId, target)) return failed;
  uint32_t local = 0;
  if (const uint32_t failed = service.platformControl->GetResetBreak(target, &local)) return failed;
  if (local <= 2) *value = local;
  return 0;
}

uint32_t WriteCondition(uint32_t deviceId, const char* breakName, uint32_t value) {
  const InProc_Break& service = Service();
  bool routed = false;
  if (const uint32_t failed = RoutesToPlatformControl(deviceId, breakName, routed)) return failed;
  if (!routed) return service.runControl->SetBreakCondition(deviceId, breakName, value);
  uint32_t target = kNoDevice;
  if (const uint32_t failed = ResetBreakTarget(*service.targetManager, deviceId, target)) return failed;
  return service.platformControl->SetResetBreak(target, value == 1 || value == 2 ? value : 0);
}

// The common core of the system stall operations: the tables bound on
// first need, and a device that has to be a debug port or target domain.
template <class Forward>
uint32_t StallCore(const frame::OperationSite& site, uint32_t deviceId, const Forward& forward) {
  InProc_Break& service = Service();
  if (service.targetManager == nullptr) {
    if (const uint32_t failed = Voxtrel_GetTargetManager(&service.targetManager)) return failed;
  }
  if (service.platformControl == nullptr) {
    if (const uint32_t failed = Voxtrel_GetPlatformControl(&service.platformControl)) return failed;
  }
  if (service.targetManager == nullptr || service.platformControl == nullptr) return 0;
  VXT_NodeType type{};
  if (const uint32_t failed = service.targetManager->GetNodeType(deviceId, &type)) return failed;
  if (type != VXT_NodeType_TargetDomain && type != VXT_NodeType_Debugport) {
    // The code's own default text is the caller's message.
    Voxtrel_ErrorPostError(code::kWrongDeviceType, "", site.file, site.line);
    return code::kWrongDeviceType;
  }
  return forward(*service.platformControl);
}

// The component tables an operation on break conditions needs.
bool ConditionTablesBound(Call& call) {
  const InProc_Break& service = Service();
  if (service.runControl == nullptr || service.platformControl == nullptr || service.targetManager == nullptr)
    call.Fail(code::kException, call.prefix(), " Error no connection to component");
  return !call.failed();
}

}  // namespace

InProc_Break& InProc_Break::Instance() { return instance; }

VXT_Result InProc_Break::GetNumBreakConditions(uint32_t deviceId, uint32_t* numBreakNames) {
  return RunOperation(logger, VXT_OPERATION(Break, GetNumBreakConditions), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("numBreakNames", Out<Dec>(numBreakNames)), [&](Call& call) {
                        call.NotNull(numBreakNames, "numBreakNames");
                        if (call.failed() || !ConditionTablesBound(call)) return call.code();
                        return call.Core([&]() -> uint32_t {
                          if (const uint32_t failed = runControl->GetNumBreakConditions(deviceId, numBreakNames))
                            return failed;
                          bool hasResetBreak = false;
                          if (const uint32_t failed = HasResetBreak(deviceId, hasResetBreak)) return failed;
                          if (hasResetBreak) ++*numBreakNames;
                          return 0;
                        });
                      });
}

VXT_Result InProc_Break::GetBreakConditions(uint32_t deviceId, uint32_t numBreakNames, Names breakNames) {
  return RunOperation(logger, VXT_OPERATION(Break, GetBreakConditions),
                      TraceArgs("deviceId", Hex8{deviceId}, "numBreakNames", Dec{numBreakNames}),
                      TraceArgs("breakNames", List<Quoted>(breakNames, numBreakNames)), [&](Call& call) {
                        call.NotNull(breakNames, "breakNames");
                        if (call.failed() || !ConditionTablesBound(call)) return call.code();
                        return call.Core([&]() -> uint32_t {
                          if (const uint32_t failed = runControl->GetBreakConditions(deviceId, numBreakNames, breakNames))
                            return failed;
                          bool hasResetBreak = false;
                          if (const uint32_t failed = HasResetBreak(deviceId, hasResetBreak)) return failed;
                          if (!hasResetBreak) return 0;
                          // The first unused entry names it; with none, it is not listed.
                          for (uint32_t i = 0; i < numBreakNames; ++i) {
                            if (breakNames[i][0] != '\0') continue;
                            std::strncpy(breakNames[i], kReset, VXT_BREAK_NAME_SIZE - 1);
                            breakNames[i][VXT_BREAK_NAME_SIZE - 1] = '\0';
                            break;
                          }
                          return 0;
                        });
                      });
}

VXT_Result InProc_Break::GetBreakCondition(uint32_t deviceId, const char* breakName, uint32_t* value) {
  return RunOperation(logger, VXT_OPERATION(Break, GetBreakCondition),
                      TraceArgs("deviceId", Hex8{deviceId}, "breakName", Quoted{breakName}),
                      TraceArgs("value", Out<Dec>(value)), [&](Call& call) {
                        call.NotNull(breakName, "breakName").NotNull(value, "value");
                        if (call.failed() || !ConditionTablesBound(call)) return call.code();
                        return call.Core([&] { return ReadCondition(deviceId, breakName, value); });
                      });
}

VXT_Result InProc_Break::SetBreakCondition(uint32_t deviceId, const char* breakName, uint32_t value) {
  return RunOperation(logger, VXT_OPERATION(Break, SetBreakCondition).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "breakName", Quoted{breakName}, "value", Hex8{value}),
                      TraceArgs(), [&](Call& call) {
                        call.NotNull(breakName, "breakName");
                        if (call.failed() || !ConditionTablesBound(call)) return call.code();
                        return call.Core([&] { return WriteCondition(deviceId, breakName, value); });
                      });
}

VXT_Result InProc_Break::GetNumSystemStalls(uint32_t debugportOrTargetDomainId, uint32_t* numStallNames) {
  const frame::OperationSite site = VXT_OPERATION(Break, GetNumSystemStalls);
  return RunOperation(logger, site, TraceArgs("debugportOrTargetDomainId", Hex8{debugportOrTargetDomainId}),
                      TraceArgs("numStallNames", Out<Dec>(numStallNames)), [&](Call& call) {
                        return call.NotNull(numStallNames, "numStallNames").Core([&] {
                          return StallCore(site, debugportOrTargetDomainId, [&](const PlatformControlComponent& p) {
                            return p.GetNumSystemStalls(debugportOrTargetDomainId, numStallNames);
                          });
                        });
                      });
}

VXT_Result InProc_Break::GetSystemStalls(uint32_t debugportOrTargetDomainId, uint32_t numStallNames, Names stallNames) {
  const frame::OperationSite site = VXT_OPERATION(Break, GetSystemStalls);
  return RunOperation(logger, site,
                      TraceArgs("debugportOrTargetDomainId", Hex8{debugportOrTargetDomainId}, "numStallNames",
                                Dec{numStallNames}),
                      TraceArgs("stallNames", List<Quoted>(stallNames, numStallNames)), [&](Call& call) {
                        return call.NotNull(stallNames, "stallNames").Core([&] {
                          return StallCore(site, debugportOrTargetDomainId, [&](const PlatformControlComponent& p) {
                            return p.GetSystemStalls(debugportOrTargetDomainId, numStallNames, stallNames);
                          });
                        });
                      });
}

VXT_Result InProc_Break::GetSystemStall(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t* value) {
  const frame::OperationSite site = VXT_OPERATION(Break, GetSystemStall);
  return RunOperation(logger, site,
                      TraceArgs("debugportOrTargetDomainId", Hex8{debugportOrTargetDomainId}, "stallName",
                                Quoted{stallName}),
                      TraceArgs("value", Out<Dec>(value)), [&](Call& call) {
                        return call.NotNull(stallName, "stallName").NotNull(value, "value").Core([&] {
                          return StallCore(site, debugportOrTargetDomainId, [&](const PlatformControlComponent& p) {
                            return p.GetSystemStall(debugportOrTargetDomainId, stallName, value);
                          });
                        });
                      });
}

VXT_Result InProc_Break::SetSystemStall(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t value) {
  const frame::OperationSite site = VXT_OPERATION(Break, SetSystemStall);
  return RunOperation(logger, site.Counted(),
                      TraceArgs("debugportOrTargetDomainId", Hex8{debugportOrTargetDomainId}, "stallName",
                                Quoted{stallName}, "value", Hex8{value}),
                      TraceArgs(), [&](Call& call) {
                        return call.NotNull(stallName, "stallName").Core([&] {
                          return StallCore(site, debugportOrTargetDomainId, [&](const PlatformControlComponent& p) {
                            return p.SetSystemStall(debugportOrTargetDomainId, stallName, value);
                          });
                        });
                      });
}

}  // namespace vxt
