// The Dma service object.
#pragma once

#include "Dma.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Dma : public SingletonService<InProc_Dma> {
 public:
  static InProc_Dma& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const DmaComponent* dma = nullptr;
};

}  // namespace vxt
