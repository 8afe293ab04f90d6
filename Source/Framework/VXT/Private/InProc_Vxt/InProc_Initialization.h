// The Initialization service object.
#pragma once

#include "SingletonService.h"
#include "TargetManager.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Initialization : public SingletonService<InProc_Initialization> {
 public:
  InProc_Initialization();
  static InProc_Initialization& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const TargetManagerComponent* targetManager = nullptr;
};

}  // namespace vxt
