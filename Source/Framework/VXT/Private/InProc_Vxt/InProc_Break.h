// The Break service object.
#pragma once

#include "PlatformControl.h"
#include "RunControl.h"
#include "SingletonService.h"
#include "TargetManager.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Break : public SingletonService<InProc_Break> {
 public:
  static InProc_Break& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const PlatformControlComponent* platformControl = nullptr;
  const RunControlComponent* runControl = nullptr;
  const TargetManagerComponent* targetManager = nullptr;
};

}  // namespace vxt
