#include "Events/StatePortEvent.h"

#include "EventBroker/EventBrokerTable.h"
#include "Events/EventText.h"

namespace voxtrel::platform::events {

StatePortEventData MakeStatePortEventData(uint32_t deviceId, std::string_view portName, uint32_t portValue,
                                          uint64_t firstValue, uint64_t secondValue) {
  StatePortEventData data{};
  data.deviceId = deviceId;
  CopyEventText(data.portName, portName);
  data.portValue = portValue;
  data.firstValue = firstValue;
  data.secondValue = secondValue;
  return data;
}

uint32_t PublishStatePortEvent(const char* eventName, uint32_t deviceId, std::string_view portName, uint32_t portValue,
                               uint64_t firstValue, uint64_t secondValue) {
  const StatePortEventData data = MakeStatePortEventData(deviceId, portName, portValue, firstValue, secondValue);
  return event_broker::EventBrokerTable().Publish(kStatePortEventType, eventName, &data);
}

}  // namespace voxtrel::platform::events
