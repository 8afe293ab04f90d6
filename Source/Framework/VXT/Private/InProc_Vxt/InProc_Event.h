// The Event service object.
#pragma once

#include <cstdint>

#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

// Registered with the InterfacePort component by FinishInitialization: turns
// the component's event record into an interface port event.
uint32_t InterfacePortEventCallback(const void* record);

class InProc_Event : public SingletonService<InProc_Event> {
 public:
  static InProc_Event& Instance();

  frame::ServiceLogger logger;
};

}  // namespace vxt
