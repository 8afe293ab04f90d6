// The I2cAccess service object.
#pragma once

#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_I2cAccess : public SingletonService<InProc_I2cAccess> {
 public:
  static InProc_I2cAccess& Instance();

  frame::ServiceLogger logger;
};

}  // namespace vxt
