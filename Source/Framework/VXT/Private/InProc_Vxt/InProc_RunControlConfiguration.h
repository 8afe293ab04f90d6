// The RunControlConfiguration service object.
#pragma once

#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_RunControlConfiguration : public SingletonService<InProc_RunControlConfiguration> {
 public:
  static InProc_RunControlConfiguration& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
};

}  // namespace vxt
