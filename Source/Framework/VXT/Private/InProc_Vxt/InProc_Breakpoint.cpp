// The Breakpoint service: records checked, then handed to the component.
#include "InProc_Breakpoint.h"

#include "BreakpointRecords.h"

namespace vxt {
namespace {

InProc_Breakpoint instance;

using frame::BreakAllSettingName;
using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::TraceArgs;
using Table = RunControlComponent;

}  // namespace

InProc_Breakpoint& InProc_Breakpoint::Instance() { return instance; }

VXT_Result InProc_Breakpoint::CreateBreakpoint(VXT_Breakpoint* breakpoint) {
  return RunOperation(logger, VXT_OPERATION(Breakpoint, CreateBreakpoint).Counted(),
                      TraceArgs("breakpoint", BreakpointText{breakpoint}),
                      TraceArgs("breakpoint", BreakpointText{breakpoint}), [&](Call& call) {
                        return CheckBreakpoint(call, breakpoint, "breakpoint")
                            .Core(runControl, [&](const Table& t) { return t.CreateBreakpoint(breakpoint); });
                      });
}

VXT_Result InProc_Breakpoint::CreateBreakpoints(uint32_t numBreakpoints, VXT_Breakpoint* breakpoints) {
  return RunOperation(logger, VXT_OPERATION(Breakpoint, CreateBreakpoints).Counted(),
                      TraceArgs("numBreakpoints", Dec{numBreakpoints}, "breakpoints",
                                BreakpointsText{breakpoints, numBreakpoints}),
                      TraceArgs("breakpoints", BreakpointsText{breakpoints, numBreakpoints}), [&](Call& call) {
                        return CheckBreakpoints(call, breakpoints, numBreakpoints).Core(runControl, [&](const Table& t) {
                          return t.CreateBreakpoints(numBreakpoints, breakpoints);
                        });
                      });
}

VXT_Result InProc_Breakpoint::RemoveBreakpoint(const VXT_Breakpoint* breakpoint) {
  return RunOperation(logger, VXT_OPERATION(Breakpoint, RemoveBreakpoint),
                      TraceArgs("breakpoint", BreakpointText{breakpoint}), TraceArgs(), [&](Call& call) {
                        return CheckBreakpoint(call, breakpoint, "breakpoint").Core(runControl, [&](const Table& t) {
                          return t.RemoveBreakpoint(breakpoint->breakpointId);
                        });
                      });
}

VXT_Result InProc_Breakpoint::RemoveBreakpointById(uint32_t breakpointId) {
  return RunOperation(logger, VXT_OPERATION(Breakpoint, RemoveBreakpointById),
                      TraceArgs("breakpointId", Dec{breakpointId}), TraceArgs(), [&](Call& call) {
                        return call.Core(runControl, [&](const Table& t) { return t.RemoveBreakpoint(breakpointId); });
                      });
}

VXT_Result InProc_Breakpoint::RemoveBreakpoints(uint32_t numBreakpoints, const VXT_Breakpoint* breakpoints) {
  return RunOperation(logger, VXT_OPERATION(Breakpoint, RemoveBreakpoints),
                      TraceArgs("numBreakpoints", Dec{numBreakpoints}, "breakpoints",
                                BreakpointsText{breakpoints, numBreakpoints}),
                      TraceArgs(), [&](Call& call) {
                        return CheckBreakpoints(call, breakpoints, numBreakpoints).Core(runControl, [&](const Table& t) {
                          return t.RemoveBreakpoints(numBreakpoints, breakpoints);
                        });
                      });
}

VXT_Result InProc_Breakpoint::RemoveBreakpointsById(uint32_t numBreakpointIds, const uint32_t* breakpointIds) {
  return RunOperation(logger, VXT_OPERATION(Breakpoint, RemoveBreakpointsById),
                      TraceArgs("numBreakpointIds", Dec{numBreakpointIds}, "breakpointIds",
                                List<Hex8>(breakpointIds, numBreakpointIds)),
                      TraceArgs(), [&](Call& call) {
                        return call.NotNull(breakpointIds, "breakpointIds").Core(runControl, [&](const Table& t) {
                          return t.RemoveBreakpointsById(numBreakpointIds, breakpointIds);
                        });
                      });
}

VXT_Result InProc_Breakpoint::GetBreakAllSetting(uint32_t targetDomainId, VXT_BreakAllSetting* breakAllSetting) {
  return RunOperation(logger, VXT_OPERATION(Breakpoint, GetBreakAllSetting),
                      TraceArgs("targetDomainId", Hex8{targetDomainId}),
                      TraceArgs("breakAllSetting", Out<Enum<&BreakAllSettingName>>(breakAllSetting)), [&](Call& call) {
                        return call.NotNull(breakAllSetting, "breakAllSetting").Core(runControl, [&](const Table& t) {
                          return t.GetBreakAllSetting(targetDomainId, breakAllSetting);
                        });
                      });
}

VXT_Result InProc_Breakpoint::SetBreakAllSetting(uint32_t targetDomainId, VXT_BreakAllSetting breakAllSetting) {
  return RunOperation(logger, VXT_OPERATION(Breakpoint, SetBreakAllSetting).Counted(),
                      TraceArgs("targetDomainId", Hex8{targetDomainId}, "breakAllSetting",
                                Enum<&BreakAllSettingName>{breakAllSetting}),
                      TraceArgs(), [&](Call& call) {
                        return call.Core(runControl, [&](const Table& t) {
                          return t.SetBreakAllSetting(targetDomainId, breakAllSetting);
                        });
                      });
}

}  // namespace vxt
