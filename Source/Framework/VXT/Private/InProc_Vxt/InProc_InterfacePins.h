// The InterfacePins service: reads, drives and pulses the sideband signals
// through the InterfacePins component, and asks the PlatformControl
// component's pin-change rule before each change.
#pragma once

#include "IInternalService_InterfacePins.h"
#include "InterfacePins.h"
#include "PlatformControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_InterfacePins : public SingletonService<InProc_InterfacePins>, public IInternalService_InterfacePins {
 public:
  static InProc_InterfacePins& Instance();

  VXT_Result GetPinState(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal,
                         VXT_PinsState* pinsState) override;
  VXT_Result SetPinState(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal,
                         VXT_PinsState pinsState) override;
  VXT_Result PulsePinState(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal, VXT_PinsState pinsState,
                           uint32_t pulseWidth) override;

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const InterfacePinsComponent* interfacePins = nullptr;
  const PlatformControlComponent* platformControl = nullptr;
};

}  // namespace vxt
