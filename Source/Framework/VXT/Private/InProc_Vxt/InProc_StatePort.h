// The StatePort service object.
#pragma once

#include "StatePort.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_StatePort : public SingletonService<InProc_StatePort> {
 public:
  static InProc_StatePort& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const StatePortComponent* statePort = nullptr;
};

}  // namespace vxt
