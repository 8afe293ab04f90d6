#include "Events/InterfacePortEvent.h"

#include "InterfacePort/InterfacePortState.h"

namespace voxtrel::platform::events {

InterfacePortEventData MakeInterfacePortErrorData(uint32_t interfacePortId, uint64_t errorValue) {
  InterfacePortEventData data{};
  data.kind = kInterfacePortError;
  data.errorValue = errorValue;
  data.interfacePortId = interfacePortId;
  return data;
}

InterfacePortEventData MakeInterfacePortStateChangeData(uint32_t interfacePortId, uint32_t firstState,
                                                        uint32_t secondState) {
  InterfacePortEventData data{};
  data.kind = kInterfacePortStateChange;
  data.stateValues[0] = firstState;
  data.stateValues[1] = secondState;
  data.interfacePortId = interfacePortId;
  return data;
}

uint32_t RaiseInterfacePortEvent(const InterfacePortEventData& data) {
  return interface_port::DeliverInterfacePortEvent(&data);
}

}  // namespace voxtrel::platform::events
