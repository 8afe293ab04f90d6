// Test control of the events the components raise outside the EventBroker.
#include "Events/InterfacePortEvent.h"
#include "PlatformTestControl.h"
#include "RunControl/RunControlState.h"

namespace voxtrel::testing {

using namespace voxtrel::platform;

uint32_t RaiseInterfacePortError(uint32_t interfacePortId, uint64_t errorValue) {
  return events::RaiseInterfacePortEvent(events::MakeInterfacePortErrorData(interfacePortId, errorValue));
}

uint32_t RaiseInterfacePortStateChange(uint32_t interfacePortId, uint32_t firstState, uint32_t secondState) {
  return events::RaiseInterfacePortEvent(
      events::MakeInterfacePortStateChangeData(interfacePortId, firstState, secondState));
}

uint32_t RaiseInterfacePortEvent(uint32_t kind, uint32_t interfacePortId, uint64_t value) {
  events::InterfacePortEventData data = events::MakeInterfacePortErrorData(interfacePortId, value);
  data.kind = kind;
  return events::RaiseInterfacePortEvent(data);
}

void HoldRunControlEvents(bool held) { run_control::SetEventDeliveryHeld(held); }

}  // namespace voxtrel::testing
