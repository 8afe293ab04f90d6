// The Breakpoint service: creating and removing breakpoints and the
// break-all setting, all done by the RunControl component. The service
// checks the records; it keeps no breakpoint list and takes no lock.
#pragma once

#include "IInternalService_Breakpoint.h"
#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Breakpoint : public SingletonService<InProc_Breakpoint>, public IInternalService_Breakpoint {
 public:
  static InProc_Breakpoint& Instance();

  VXT_Result CreateBreakpoint(VXT_Breakpoint* breakpoint) override;
  VXT_Result CreateBreakpoints(uint32_t numBreakpoints, VXT_Breakpoint* breakpoints) override;
  VXT_Result RemoveBreakpoint(const VXT_Breakpoint* breakpoint) override;
  VXT_Result RemoveBreakpointById(uint32_t breakpointId) override;
  VXT_Result RemoveBreakpoints(uint32_t numBreakpoints, const VXT_Breakpoint* breakpoints) override;
  VXT_Result RemoveBreakpointsById(uint32_t numBreakpointIds, const uint32_t* breakpointIds) override;
  VXT_Result GetBreakAllSetting(uint32_t targetDomainId, VXT_BreakAllSetting* breakAllSetting) override;
  VXT_Result SetBreakAllSetting(uint32_t targetDomainId, VXT_BreakAllSetting breakAllSetting) override;

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
};

}  // namespace vxt
