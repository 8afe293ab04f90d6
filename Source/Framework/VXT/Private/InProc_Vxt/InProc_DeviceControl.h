// The DeviceControl service object.
#pragma once

#include "DeviceControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_DeviceControl : public SingletonService<InProc_DeviceControl> {
 public:
  InProc_DeviceControl();
  static InProc_DeviceControl& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const DeviceControlComponent* deviceControl = nullptr;
};

}  // namespace vxt
