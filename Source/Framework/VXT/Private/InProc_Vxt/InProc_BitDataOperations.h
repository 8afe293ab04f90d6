// The BitDataOperations service object.
#pragma once

#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_BitDataOperations : public SingletonService<InProc_BitDataOperations> {
 public:
  static InProc_BitDataOperations& Instance();

  frame::ServiceLogger logger;
};

}  // namespace vxt
