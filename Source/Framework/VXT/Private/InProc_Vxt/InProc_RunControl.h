// The RunControl service object.
#pragma once

#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_RunControl : public SingletonService<InProc_RunControl> {
 public:
  static InProc_RunControl& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
  // RunControl.Initialize has succeeded since the last client left.
  bool isComponentInitialized = false;
};

}  // namespace vxt
