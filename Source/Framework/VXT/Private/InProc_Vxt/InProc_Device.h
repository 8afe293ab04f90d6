// The Device service object.
#pragma once

#include "SingletonService.h"
#include "TargetManager.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Device : public SingletonService<InProc_Device> {
 public:
  InProc_Device();
  static InProc_Device& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const TargetManagerComponent* targetManager = nullptr;
};

}  // namespace vxt
