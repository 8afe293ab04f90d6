// The InterfacePins service object.
#pragma once

#include "InterfacePins.h"
#include "PlatformControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_InterfacePins : public SingletonService<InProc_InterfacePins> {
 public:
  static InProc_InterfacePins& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const InterfacePinsComponent* interfacePins = nullptr;
  const PlatformControlComponent* platformControl = nullptr;
};

}  // namespace vxt
