// The InterfacePort service object.
#pragma once

#include "InterfacePort.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_InterfacePort : public SingletonService<InProc_InterfacePort> {
 public:
  static InProc_InterfacePort& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const InterfacePortComponent* interfacePort = nullptr;
};

}  // namespace vxt
