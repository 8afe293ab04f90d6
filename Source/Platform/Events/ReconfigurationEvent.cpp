#include "Events/ReconfigurationEvent.h"

#include "EventBroker/EventBrokerTable.h"

namespace voxtrel::platform::events {

ReconfigurationEventData MakeReconfigurationEventData(bool devicesHaveChanged) {
  return ReconfigurationEventData{static_cast<uint8_t>(devicesHaveChanged ? 1 : 0)};
}

uint32_t PublishReconfigurationEvent(const char* phase, bool devicesHaveChanged) {
  const ReconfigurationEventData data = MakeReconfigurationEventData(devicesHaveChanged);
  return event_broker::EventBrokerTable().Publish(kReconfigurationEventType, phase, &data);
}

}  // namespace voxtrel::platform::events
