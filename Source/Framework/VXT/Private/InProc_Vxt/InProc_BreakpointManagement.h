// The BreakpointManagement service object.
#pragma once

#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_BreakpointManagement : public SingletonService<InProc_BreakpointManagement> {
 public:
  static InProc_BreakpointManagement& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
};

}  // namespace vxt
