// The RunControl service: run-changing requests, run status, break causes,
// probe-mode instructions and operating modes.
#include "InProc_RunControl.h"

#include "InProc_Device.h"
#include "TargetManager.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_RunControl instance;

using frame::AddressText;
using frame::BareOut;
using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::Quoted;
using frame::RunStatusName;
using frame::StepTypeName;
using frame::TraceArgs;
using frame::WithDetail;
using Table = RunControlComponent;

constexpr uint32_t kNoCoreGroup = 0xFFFFFFFFu;

// The core group a device belongs to; a core group is its own. None when
// the target manager cannot tell.
uint32_t CoreGroupOf(uint32_t deviceId) {
  const TargetManagerComponent* targetManager = nullptr;
  if (Voxtrel_GetTargetManager(&targetManager) != 0 || targetManager == nullptr) return kNoCoreGroup;
  VXT_NodeType nodeType{};
  if (targetManager->GetNodeType(deviceId, &nodeType) != 0) return kNoCoreGroup;
  if (nodeType == VXT_NodeType_LogicalGroupCore) return deviceId;
  uint32_t coreGroupId = kNoCoreGroup;
  targetManager->GetCoreGroupIdForDevice(deviceId, &coreGroupId);
  return coreGroupId;
}

// A run-changing call on one device: its token is checked, then the
// component does the work.
template <class Core>
VXT_Result RunOnDevice(const frame::OperationSite& site, uint32_t deviceId, uint64_t* operationToken,
                       const Core& core) {
  InProc_RunControl& service = InProc_RunControl::Instance();
  return RunOperation(service.logger, site, TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)),
                      WithDetail([deviceId] { return InProc_RunControl::DeviceDetail(deviceId); }), [&](Call& call) {
                        return call.NotNull(operationToken, "operationToken").Core(service.runControl, core);
                      });
}

// A run-changing call on every thread or one domain's.
template <class InArgs, class Core>
VXT_Result RunOnMany(const frame::OperationSite& site, const InArgs& in, uint64_t* operationToken, const Core& core) {
  InProc_RunControl& service = InProc_RunControl::Instance();
  return RunOperation(service.logger, site.Counted(), in, TraceArgs("operationToken", Out<Hex16>(operationToken)),
                      [&](Call& call) {
                        return call.NotNull(operationToken, "operationToken").Core(service.runControl, core);
                      });
}

}  // namespace

InProc_RunControl& InProc_RunControl::Instance() { return instance; }

std::string InProc_RunControl::DeviceDetail(uint32_t deviceId) {
  InProc_Device& devices = InProc_Device::Instance();
  std::string detail = "device=" + devices.IdentifierOf(deviceId);
  return detail + ",coreGroup=" + devices.IdentifierOf(CoreGroupOf(deviceId));
}

VXT_Result InProc_RunControl::Halt(uint32_t deviceId, uint64_t* operationToken) {
  return RunOnDevice(VXT_OPERATION(RunControl, Halt), deviceId, operationToken,
                     [&](const Table& t) { return t.Halt(deviceId, operationToken); });
}

VXT_Result InProc_RunControl::Go(uint32_t deviceId, uint64_t* operationToken) {
  return RunOnDevice(VXT_OPERATION(RunControl, Go), deviceId, operationToken,
                     [&](const Table& t) { return t.Go(deviceId, operationToken); });
}

VXT_Result InProc_RunControl::HaltAll(uint64_t* operationToken) {
  return RunOnMany(VXT_OPERATION(RunControl, HaltAll), TraceArgs(), operationToken,
                   [&](const Table& t) { return t.HaltAll(operationToken); });
}

VXT_Result InProc_RunControl::GoAll(uint64_t* operationToken) {
  return RunOnMany(VXT_OPERATION(RunControl, GoAll), TraceArgs(), operationToken,
                   [&](const Table& t) { return t.GoAll(operationToken); });
}

VXT_Result InProc_RunControl::GetRunStatus(uint32_t deviceId, VXT_RunStatus* status) {
  return RunOperation(logger, VXT_OPERATION(RunControl, GetRunStatus), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("status", Out<Enum<&RunStatusName>>(status)), [&](Call& call) {
                        return call.NotNull(status, "status").Core(runControl, [&](const Table& t) {
                          return t.GetRunStatus(deviceId, status);
                        });
                      });
}

VXT_Result InProc_RunControl::GetRunStatusManyThreads(const uint32_t* deviceIds, VXT_RunStatus* status,
                                                      int32_t numStatus) {
  return RunOperation(logger, VXT_OPERATION(RunControl, GetRunStatusManyThreads),
                      TraceArgs("deviceIds", List<Hex8>(deviceIds, numStatus), "numStatus", Dec{numStatus}),
                      TraceArgs("status", List<Enum<&RunStatusName>>(status, numStatus)), [&](Call& call) {
                        return call.NotNull(deviceIds, "deviceIds")
                            .NotNull(status, "status")
                            .Core(runControl,
                                  [&](const Table& t) { return t.GetRunStatusManyThreads(deviceIds, status, numStatus); });
                      });
}

VXT_Result InProc_RunControl::GetAllRunStatus(uint32_t targetDomainId, VXT_RunStatus* status) {
  return RunOperation(logger, VXT_OPERATION(RunControl, GetAllRunStatus),
                      TraceArgs("targetDomainId", Hex8{targetDomainId}),
                      TraceArgs("status", Out<Enum<&RunStatusName>>(status)), [&](Call& call) {
                        return call.NotNull(status, "status").Core(runControl, [&](const Table& t) {
                          return t.GetAllRunStatus(targetDomainId, status);
                        });
                      });
}

VXT_Result InProc_RunControl::Step(uint32_t deviceId, VXT_StepType stepType, int32_t numSteps,
                                   uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(RunControl, Step),
                      TraceArgs("deviceId", Hex8{deviceId}, "stepType", Enum<&StepTypeName>{stepType}, "numSteps",
                                Dec{numSteps}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)),
                      WithDetail([deviceId] { return DeviceDetail(deviceId); }), [&](Call& call) {
                        return call.NotNull(operationToken, "operationToken").Core(runControl, [&](const Table& t) {
                          return t.Step(deviceId, stepType, numSteps, operationToken);
                        });
                      });
}

VXT_Result InProc_RunControl::HaltAllInDomain(uint32_t targetDomainId, uint64_t* operationToken) {
  return RunOnMany(VXT_OPERATION(RunControl, HaltAllInDomain), TraceArgs("targetDomainId", Dec{targetDomainId}),
                   operationToken, [&](const Table& t) { return t.HaltAllInDomain(targetDomainId, operationToken); });
}

VXT_Result InProc_RunControl::GoAllInDomain(uint32_t targetDomainId, uint64_t* operationToken) {
  return RunOnMany(VXT_OPERATION(RunControl, GoAllInDomain), TraceArgs("targetDomainId", Dec{targetDomainId}),
                   operationToken, [&](const Table& t) { return t.GoAllInDomain(targetDomainId, operationToken); });
}

VXT_Result InProc_RunControl::GetBreakType(uint32_t threadId, char* breakType) {
  return RunOperation(logger, VXT_OPERATION(RunControl, GetBreakType), TraceArgs("threadId", Hex8{threadId}),
                      TraceArgs("breakType", Quoted{breakType, kBreakTextSize}), [&](Call& call) {
                        return call.NotNull(breakType, "breakType").Core(runControl, [&](const Table& t) {
                          return t.GetBreakType(threadId, breakType);
                        });
                      });
}

VXT_Result InProc_RunControl::GetBreakSubtype(uint32_t threadId, char* breakSubtype) {
  return RunOperation(logger, VXT_OPERATION(RunControl, GetBreakSubtype), TraceArgs("threadId", Hex8{threadId}),
                      TraceArgs("breakSubtype", Quoted{breakSubtype, kBreakTextSize}), [&](Call& call) {
                        return call.NotNull(breakSubtype, "breakSubtype").Core(runControl, [&](const Table& t) {
                          return t.GetBreakSubtype(threadId, breakSubtype);
                        });
                      });
}

VXT_Result InProc_RunControl::GetBreakAddress(uint32_t threadId, VXT_Address* breakAddress) {
  return RunOperation(logger, VXT_OPERATION(RunControl, GetBreakAddress), TraceArgs("threadId", Hex8{threadId}),
                      TraceArgs("breakAddress", AddressText{breakAddress}), [&](Call& call) {
                        return call.NotNull(breakAddress, "breakAddress").Core(runControl, [&](const Table& t) {
                          return t.GetBreakAddress(threadId, breakAddress);
                        });
                      });
}

VXT_Result InProc_RunControl::GetInstructionResult(uint32_t threadId, uint32_t offset, uint64_t* result) {
  return RunOperation(logger, VXT_OPERATION(RunControl, GetInstructionResult),
                      TraceArgs("threadId", Hex8{threadId}, "offset", Hex8{offset}),
                      TraceArgs("result", Out<Hex16>(result)), [&](Call& call) {
                        return call.NotNull(result, "result").Core(runControl, [&](const Table& t) {
                          return t.GetInstructionResult(threadId, offset, result);
                        });
                      });
}

VXT_Result InProc_RunControl::SubmitInstruction(uint32_t threadId, const char* instructionBuffer) {
  return RunOperation(logger, VXT_OPERATION(RunControl, SubmitInstruction).Counted(),
                      TraceArgs("threadId", Hex8{threadId}, "instructionBuffer", Quoted{instructionBuffer}),
                      TraceArgs(), [&](Call& call) {
                        return call.NotNull(instructionBuffer, "instructionBuffer")
                            .Core(runControl,
                                  [&](const Table& t) { return t.SubmitInstruction(threadId, instructionBuffer); });
                      });
}

VXT_Result InProc_RunControl::GetNumOperatingModes(uint32_t deviceId, uint32_t* numOperatingModes) {
  return RunOperation(logger, VXT_OPERATION(RunControl, GetNumOperatingModes).ContextFirst(),
                      TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("numOperatingModes", Out<Dec>(numOperatingModes)), [&](Call& call) {
                        // This operation's message has its own wording.
                        call.Require(numOperatingModes != nullptr, code::kInvalidArgument, call.prefix(),
                                     " argument voxTrelError (numOperatingModes) : Null pointer");
                        return call.Core(runControl, [&](const Table& t) {
                          return t.GetNumOperatingModes(deviceId, numOperatingModes);
                        });
                      });
}

VXT_Result InProc_RunControl::OperatingModes(uint32_t deviceId, uint32_t numOperatingModes, uint32_t* operatingModes) {
  return RunOperation(logger, VXT_OPERATION(RunControl, GetOperatingModes).InNamed("OperatingModes"),
                      TraceArgs("deviceId", Hex8{deviceId}), BareOut{}, [&](Call& call) {
                        return call.NotNull(operatingModes, "operatingModes").Core(runControl, [&](const Table& t) {
                          return t.GetOperatingModes(deviceId, numOperatingModes, operatingModes);
                        });
                      });
}

}  // namespace vxt
