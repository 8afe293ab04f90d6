// The RunControlConfiguration service. Its operations come in four shapes:
// read one value, set one value (counted), count the names of a kind, and
// fill a block of names.
#include "InProc_RunControlConfiguration.h"

#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_RunControlConfiguration instance;

using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::Quoted;
using frame::StepModeName;
using frame::TraceArgs;
using Table = RunControlComponent;
using MethodNames = char (*)[VXT_METHOD_NAME_SIZE];

InProc_RunControlConfiguration& Service() { return instance; }

// One value read into `value`, checked for null under `name` when `checked`.
template <class Render, class T, class Core>
VXT_Result ReadOne(const frame::OperationSite& site, uint32_t coreGroupId, const char* name, T* value, bool checked,
                   const Core& core) {
  return RunOperation(Service().logger, site, TraceArgs("coreGroupId", Hex8{coreGroupId}),
                      TraceArgs(name, Out<Render>(value)), [&](Call& call) {
                        if (checked) call.NotNull(value, name);
                        return call.Core(Service().runControl, core);
                      });
}

// A setter: counted before its checks, with its value in the In line.
template <class Value, class Core>
VXT_Result SetOne(const frame::OperationSite& site, uint32_t coreGroupId, const char* name, const Value& value,
                  const Core& core) {
  return RunOperation(Service().logger, site.Counted(), TraceArgs("coreGroupId", Hex8{coreGroupId}, name, value),
                      TraceArgs(), [&](Call& call) { return call.Core(Service().runControl, core); });
}

// A block of method names: the Out line at level 2, ending after the code.
template <class Core>
VXT_Result ReadNames(const frame::OperationSite& site, uint32_t coreGroupId, uint32_t maxMethodCount,
                     MethodNames methodNames, const Core& core) {
  return RunOperation(Service().logger, site.LargeOut(),
                      TraceArgs("coreGroupId", Hex8{coreGroupId}, "maxMethodCount", Dec{maxMethodCount}),
                      TraceArgs("methodNames", List<Quoted>(methodNames, maxMethodCount)), [&](Call& call) {
                        return call.NotNull(methodNames, "methodNames").Core(Service().runControl, core);
                      });
}

// The name of one method, into the caller's buffer of VXT_METHOD_NAME_SIZE.
template <class Core>
VXT_Result ReadName(const frame::OperationSite& site, uint32_t coreGroupId, char* methodName, const Core& core) {
  return RunOperation(Service().logger, site, TraceArgs("coreGroupId", Hex8{coreGroupId}),
                      TraceArgs("methodName", Quoted{methodName, VXT_METHOD_NAME_SIZE}), [&](Call& call) {
                        return call.NotNull(methodName, "methodName").Core(Service().runControl, core);
                      });
}

template <class Core>
VXT_Result SetName(const frame::OperationSite& site, uint32_t coreGroupId, const char* methodName, const Core& core) {
  return RunOperation(Service().logger, site.Counted(),
                      TraceArgs("coreGroupId", Hex8{coreGroupId}, "methodName", Quoted{methodName}), TraceArgs(),
                      [&](Call& call) {
                        return call.NotNull(methodName, "methodName").Core(Service().runControl, core);
                      });
}

}  // namespace

InProc_RunControlConfiguration& InProc_RunControlConfiguration::Instance() { return instance; }

VXT_Result InProc_RunControlConfiguration::GetStepMode(uint32_t coreGroupId, VXT_StepMode* stepMode) {
  return ReadOne<Enum<&StepModeName>>(VXT_OPERATION(RunControlConfiguration, GetStepMode), coreGroupId, "stepMode",
                                      stepMode, true,
                                      [&](const Table& t) { return t.GetStepMode(coreGroupId, stepMode); });
}

VXT_Result InProc_RunControlConfiguration::SetStepMode(uint32_t coreGroupId, VXT_StepMode stepMode) {
  return SetOne(VXT_OPERATION(RunControlConfiguration, SetStepMode), coreGroupId, "stepMode",
                      Enum<&StepModeName>{stepMode},
                      [&](const Table& t) { return t.SetStepMode(coreGroupId, stepMode); });
}

VXT_Result InProc_RunControlConfiguration::GetNumProbeModeEntryMethods(uint32_t coreGroupId, uint32_t* methodCount) {
  return ReadOne<Dec>(VXT_OPERATION(RunControlConfiguration, GetNumProbeModeEntryMethods), coreGroupId, "methodCount",
                      methodCount, true,
                      [&](const Table& t) { return t.GetNumProbeModeEntryMethods(coreGroupId, methodCount); });
}

VXT_Result InProc_RunControlConfiguration::GetProbeModeEntryMethods(uint32_t coreGroupId, uint32_t maxMethodCount,
                                                                    MethodNames methodNames) {
  return ReadNames(VXT_OPERATION(RunControlConfiguration, GetProbeModeEntryMethods), coreGroupId, maxMethodCount,
                   methodNames, [&](const Table& t) {
                     return t.GetProbeModeEntryMethods(coreGroupId, maxMethodCount, methodNames);
                   });
}

VXT_Result InProc_RunControlConfiguration::GetProbeModeEntryMethod(uint32_t coreGroupId, char* methodName) {
  return ReadName(VXT_OPERATION(RunControlConfiguration, GetProbeModeEntryMethod), coreGroupId, methodName,
                  [&](const Table& t) { return t.GetProbeModeEntryMethod(coreGroupId, methodName); });
}

VXT_Result InProc_RunControlConfiguration::SetProbeModeEntryMethod(uint32_t coreGroupId, const char* methodName) {
  return SetName(VXT_OPERATION(RunControlConfiguration, SetProbeModeEntryMethod), coreGroupId, methodName,
                 [&](const Table& t) { return t.SetProbeModeEntryMethod(coreGroupId, methodName); });
}

VXT_Result InProc_RunControlConfiguration::GetNumProbeModeExitMethods(uint32_t coreGroupId, uint32_t* methodCount) {
  return ReadOne<Dec>(VXT_OPERATION(RunControlConfiguration, GetNumProbeModeExitMethods), coreGroupId, "methodCount",
                      methodCount, true,
                      [&](const Table& t) { return t.GetNumProbeModeExitMethods(coreGroupId, methodCount); });
}

VXT_Result InProc_RunControlConfiguration::GetProbeModeExitMethods(uint32_t coreGroupId, uint32_t maxMethodCount,
                                                                   MethodNames methodNames) {
  return ReadNames(VXT_OPERATION(RunControlConfiguration, GetProbeModeExitMethods), coreGroupId, maxMethodCount,
                   methodNames, [&](const Table& t) {
                     return t.GetProbeModeExitMethods(coreGroupId, maxMethodCount, methodNames);
                   });
}

VXT_Result InProc_RunControlConfiguration::GetProbeModeExitMethod(uint32_t coreGroupId, char* methodName) {
  return ReadName(VXT_OPERATION(RunControlConfiguration, GetProbeModeExitMethod), coreGroupId, methodName,
                  [&](const Table& t) { return t.GetProbeModeExitMethod(coreGroupId, methodName); });
}

VXT_Result InProc_RunControlConfiguration::SetProbeModeExitMethod(uint32_t coreGroupId, const char* methodName) {
  return SetName(VXT_OPERATION(RunControlConfiguration, SetProbeModeExitMethod), coreGroupId, methodName,
                 [&](const Table& t) { return t.SetProbeModeExitMethod(coreGroupId, methodName); });
}

VXT_Result InProc_RunControlConfiguration::GetNumProbeModeDetectMethods(uint32_t coreGroupId, uint32_t* methodCount) {
  return ReadOne<Dec>(VXT_OPERATION(RunControlConfiguration, GetNumProbeModeDetectMethods), coreGroupId,
                      "methodCount", methodCount, true,
                      [&](const Table& t) { return t.GetNumProbeModeDetectMethods(coreGroupId, methodCount); });
}

VXT_Result InProc_RunControlConfiguration::GetProbeModeDetectMethods(uint32_t coreGroupId, uint32_t maxMethodCount,
                                                                     MethodNames methodNames) {
  return ReadNames(VXT_OPERATION(RunControlConfiguration, GetProbeModeDetectMethods), coreGroupId, maxMethodCount,
                   methodNames, [&](const Table& t) {
                     return t.GetProbeModeDetectMethods(coreGroupId, maxMethodCount, methodNames);
                   });
}

VXT_Result InProc_RunControlConfiguration::GetProbeModeDetectMethod(uint32_t coreGroupId, char* methodName) {
  return ReadName(VXT_OPERATION(RunControlConfiguration, GetProbeModeDetectMethod), coreGroupId, methodName,
                  [&](const Table& t) { return t.GetProbeModeDetectMethod(coreGroupId, methodName); });
}

VXT_Result InProc_RunControlConfiguration::SetProbeModeDetectMethod(uint32_t coreGroupId, const char* methodName) {
  return SetName(VXT_OPERATION(RunControlConfiguration, SetProbeModeDetectMethod), coreGroupId, methodName,
                 [&](const Table& t) { return t.SetProbeModeDetectMethod(coreGroupId, methodName); });
}

VXT_Result InProc_RunControlConfiguration::GetNumInterestingThreads(uint32_t coreGroupId, uint32_t* threadCount) {
  return ReadOne<Dec>(VXT_OPERATION(RunControlConfiguration, GetNumInterestingThreads), coreGroupId, "threadCount",
                      threadCount, true,
                      [&](const Table& t) { return t.GetNumInterestingThreads(coreGroupId, threadCount); });
}

VXT_Result InProc_RunControlConfiguration::GetInterestingThreads(uint32_t coreGroupId, uint32_t threadCount,
                                                                 uint32_t* threadIds) {
  return RunOperation(logger, VXT_OPERATION(RunControlConfiguration, GetInterestingThreads),
                      TraceArgs("coreGroupId", Hex8{coreGroupId}),
                      TraceArgs("threadIds", List<Hex8>(threadIds, threadCount)), [&](Call& call) {
                        return call.NotNull(threadIds, "threadIds").Core(runControl, [&](const Table& t) {
                          return t.GetInterestingThreads(coreGroupId, threadCount, threadIds);
                        });
                      });
}

VXT_Result InProc_RunControlConfiguration::SetInterestingThreads(uint32_t coreGroupId, uint32_t threadCount,
                                                                 const uint32_t* threadIds) {
  return RunOperation(logger, VXT_OPERATION(RunControlConfiguration, SetInterestingThreads).Counted(),
                      TraceArgs("coreGroupId", Hex8{coreGroupId}, "threadIds", List<Hex8>(threadIds, threadCount)),
                      TraceArgs(), [&](Call& call) {
                        return call.NotNull(threadIds, "threadIds").Core(runControl, [&](const Table& t) {
                          return t.SetInterestingThreads(coreGroupId, threadCount, threadIds);
                        });
                      });
}

VXT_Result InProc_RunControlConfiguration::GetProbeModeRedirectionMode(uint32_t coreGroupId, int32_t* mode) {
  return ReadOne<Dec>(VXT_OPERATION(RunControlConfiguration, GetProbeModeRedirectionMode), coreGroupId, "mode", mode,
                      true, [&](const Table& t) { return t.GetProbeModeRedirectionMode(coreGroupId, mode); });
}

VXT_Result InProc_RunControlConfiguration::SetProbeModeRedirectionMode(uint32_t coreGroupId, int32_t mode) {
  return SetOne(VXT_OPERATION(RunControlConfiguration, SetProbeModeRedirectionMode), coreGroupId, "mode",
                      Dec{mode},
                      [&](const Table& t) { return t.SetProbeModeRedirectionMode(coreGroupId, mode); });
}

VXT_Result InProc_RunControlConfiguration::GetStepIntoExceptionEnabled(uint32_t coreGroupId, uint32_t* enabled) {
  return ReadOne<Bool>(VXT_OPERATION(RunControlConfiguration, GetStepIntoExceptionEnabled), coreGroupId, "enabled",
                       enabled, true,
                       [&](const Table& t) { return t.GetStepIntoExceptionEnabled(coreGroupId, enabled); });
}

// Traced under its own name, counted as the setter it is.
VXT_Result InProc_RunControlConfiguration::StepIntoExceptionEnabled(uint32_t coreGroupId, uint32_t enabled) {
  frame::OperationSite site = VXT_OPERATION(RunControlConfiguration, StepIntoExceptionEnabled);
  site.method = "RunControlConfiguration::SetStepIntoExceptionEnabled";
  return SetOne(site, coreGroupId, "enabled", Bool{enabled},
                      [&](const Table& t) { return t.StepIntoExceptionEnabled(coreGroupId, enabled); });
}

VXT_Result InProc_RunControlConfiguration::SetRunControlEnabled(uint32_t coreGroupId, uint32_t enabled) {
  return SetOne(VXT_OPERATION(RunControlConfiguration, SetRunControlEnabled), coreGroupId, "enabled",
                      Bool{enabled},
                      [&](const Table& t) { return t.SetRunControlEnabled(coreGroupId, enabled); });
}

// No check: a null `enabled` goes to the component.
VXT_Result InProc_RunControlConfiguration::IsRunControlEnabled(uint32_t coreGroupId, uint32_t* enabled) {
  return ReadOne<Bool>(VXT_OPERATION(RunControlConfiguration, IsRunControlEnabled), coreGroupId, "enabled", enabled,
                       false, [&](const Table& t) { return t.IsRunControlEnabled(coreGroupId, enabled); });
}

}  // namespace vxt
