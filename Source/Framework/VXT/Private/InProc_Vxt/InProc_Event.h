// The Event service object.
#pragma once

#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Event : public SingletonService<InProc_Event> {
 public:
  static InProc_Event& Instance();

  frame::ServiceLogger logger;
};

}  // namespace vxt
