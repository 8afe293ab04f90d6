// The StatePort service object.
#pragma once

#include <cstdint>
#include "StatePort.h"

#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_StatePort : public SingletonService<InProc_StatePort> {
 public:
  static InProc_StatePort& Instance();

  // Binds the component table and starts the component. Runs inside
  // FinishInitialization's error context; a non-zero result stops it.
  uint32_t Initialize();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const StatePortComponent* statePort = nullptr;
};

}  // namespace vxt
