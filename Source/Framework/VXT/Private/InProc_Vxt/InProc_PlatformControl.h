// The PlatformControl service object.
#pragma once

#include "PlatformControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_PlatformControl : public SingletonService<InProc_PlatformControl> {
 public:
  static InProc_PlatformControl& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const PlatformControlComponent* platformControl = nullptr;
};

}  // namespace vxt
