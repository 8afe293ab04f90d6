// The BreakpointManagement service: listing, reading, changing, enabling and
// disabling the breakpoints the RunControl component holds. It keeps no
// breakpoint list and takes no lock.
#pragma once

#include "IInternalService_Breakpoint.h"
#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_BreakpointManagement : public SingletonService<InProc_BreakpointManagement>,
                                    public IInternalService_BreakpointManagement {
 public:
  static InProc_BreakpointManagement& Instance();

  VXT_Result GetNumBreakpoints(uint32_t targetDomainId, uint32_t* numBreakpoints) override;
  VXT_Result GetBreakpointIds(uint32_t targetDomainId, int32_t maxBreakpoints, uint32_t* breakpointIds) override;
  VXT_Result GetBreakpoint(uint32_t breakpointId, VXT_Breakpoint* breakpoint) override;
  VXT_Result ChangeBreakpoint(VXT_Breakpoint* breakpoint) override;
  VXT_Result EnableBreakpoint(uint32_t breakpointId) override;
  VXT_Result EnableAllBreakpoints(uint32_t targetDomainId) override;
  VXT_Result DisableBreakpoint(uint32_t breakpointId) override;
  VXT_Result DisableAllBreakpoints(uint32_t targetDomainId) override;

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
};

}  // namespace vxt
