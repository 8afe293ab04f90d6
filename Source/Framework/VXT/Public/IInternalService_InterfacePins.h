// Service 26: the sideband signals of a pins interface or debug port. A
// change is first put to the platform's pin-change rule.
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"

class IInternalService_InterfacePins {
 public:
  virtual ~IInternalService_InterfacePins() = default;

  virtual VXT_Result GetPinState(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal,
                                 VXT_PinsState* pinsState) = 0;
  virtual VXT_Result SetPinState(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal,
                                 VXT_PinsState pinsState) = 0;
  // `pulseWidth` in microseconds.
  virtual VXT_Result PulsePinState(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal,
                                   VXT_PinsState pinsState, uint32_t pulseWidth) = 0;
};
