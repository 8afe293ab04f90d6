// The AsmDasm service object.
#pragma once

#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_AsmDasm : public SingletonService<InProc_AsmDasm> {
 public:
  static InProc_AsmDasm& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
};

}  // namespace vxt
