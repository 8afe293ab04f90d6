// The Breakpoint service object.
#pragma once

#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Breakpoint : public SingletonService<InProc_Breakpoint> {
 public:
  static InProc_Breakpoint& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
};

}  // namespace vxt
