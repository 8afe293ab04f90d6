// The BreakpointManagement service: checks, then the component's answer.
#include "InProc_BreakpointManagement.h"

#include "BreakpointRecords.h"

namespace vxt {
namespace {

InProc_BreakpointManagement instance;

using frame::Call;
using frame::Dec;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::TraceArgs;
using Table = RunControlComponent;

// An operation on one id or one domain with no check of its own.
template <class InArgs, class Core>
VXT_Result Plain(const frame::OperationSite& site, const InArgs& in, const Core& core) {
  InProc_BreakpointManagement& service = InProc_BreakpointManagement::Instance();
  return RunOperation(service.logger, site, in, TraceArgs(),
                      [&](Call& call) { return call.Core(service.runControl, core); });
}

}  // namespace

InProc_BreakpointManagement& InProc_BreakpointManagement::Instance() { return instance; }

VXT_Result InProc_BreakpointManagement::GetNumBreakpoints(uint32_t targetDomainId, uint32_t* numBreakpoints) {
  return RunOperation(logger, VXT_OPERATION(BreakpointManagement, GetNumBreakpoints),
                      TraceArgs("targetDomainId", Hex8{targetDomainId}),
                      TraceArgs("numBreakpoints", Out<Dec>(numBreakpoints)), [&](Call& call) {
                        return call.NotNull(numBreakpoints, "numBreakpoints").Core(runControl, [&](const Table& t) {
                          return t.GetNumBreakpoints(targetDomainId, numBreakpoints);
                        });
                      });
}

VXT_Result InProc_BreakpointManagement::GetBreakpointIds(uint32_t targetDomainId, int32_t maxBreakpoints,
                                                         uint32_t* breakpointIds) {
  return RunOperation(logger, VXT_OPERATION(BreakpointManagement, GetBreakpointIds),
                      TraceArgs("targetDomainId", Hex8{targetDomainId}, "maxBreakpoints", Dec{maxBreakpoints}),
                      TraceArgs("breakpointIds", List<Hex8>(breakpointIds, maxBreakpoints)), [&](Call& call) {
                        return call.NotNull(breakpointIds, "breakpointIds").Core(runControl, [&](const Table& t) {
                          return t.GetBreakpointIds(targetDomainId, maxBreakpoints, breakpointIds);
                        });
                      });
}

VXT_Result InProc_BreakpointManagement::GetBreakpoint(uint32_t breakpointId, VXT_Breakpoint* breakpoint) {
  return RunOperation(logger, VXT_OPERATION(BreakpointManagement, GetBreakpoint),
                      TraceArgs("breakpointId", Dec{breakpointId}, "breakpoint", BreakpointText{breakpoint}),
                      TraceArgs("breakpoint", BreakpointText{breakpoint}), [&](Call& call) {
                        return CheckBreakpoint(call, breakpoint, "breakpoint").Core(runControl, [&](const Table& t) {
                          return t.GetBreakpoint(breakpointId, breakpoint);
                        });
                      });
}

VXT_Result InProc_BreakpointManagement::ChangeBreakpoint(VXT_Breakpoint* breakpoint) {
  return RunOperation(logger, VXT_OPERATION(BreakpointManagement, ChangeBreakpoint).Counted(),
                      TraceArgs("breakpoint", BreakpointText{breakpoint}),
                      TraceArgs("breakpoint", BreakpointText{breakpoint}), [&](Call& call) {
                        return CheckBreakpoint(call, breakpoint, "breakpoint")
                            .Core(runControl, [&](const Table& t) { return t.ChangeBreakpoint(breakpoint); });
                      });
}

VXT_Result InProc_BreakpointManagement::EnableBreakpoint(uint32_t breakpointId) {
  return Plain(VXT_OPERATION(BreakpointManagement, EnableBreakpoint).Counted(),
               TraceArgs("breakpointId", Dec{breakpointId}),
               [&](const Table& t) { return t.EnableBreakpoint(breakpointId); });
}

VXT_Result InProc_BreakpointManagement::EnableAllBreakpoints(uint32_t targetDomainId) {
  return Plain(VXT_OPERATION(BreakpointManagement, EnableAllBreakpoints).Counted(),
               TraceArgs("targetDomainId", Hex8{targetDomainId}),
               [&](const Table& t) { return t.EnableAllBreakpoints(targetDomainId); });
}

VXT_Result InProc_BreakpointManagement::DisableBreakpoint(uint32_t breakpointId) {
  return Plain(VXT_OPERATION(BreakpointManagement, DisableBreakpoint), TraceArgs("breakpointId", Dec{breakpointId}),
               [&](const Table& t) { return t.DisableBreakpoint(breakpointId); });
}

VXT_Result InProc_BreakpointManagement::DisableAllBreakpoints(uint32_t targetDomainId) {
  return Plain(VXT_OPERATION(BreakpointManagement, DisableAllBreakpoints),
               TraceArgs("targetDomainId", Hex8{targetDomainId}),
               [&](const Table& t) { return t.DisableAllBreakpoints(targetDomainId); });
}

}  // namespace vxt
