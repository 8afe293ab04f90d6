// The Precondition service object.
#pragma once

#include "Precondition.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Precondition : public SingletonService<InProc_Precondition> {
 public:
  static InProc_Precondition& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const PreconditionComponent* precondition = nullptr;
};

}  // namespace vxt
