#include "Events/ClientEvent.h"

#include "EventBroker/EventBrokerTable.h"

namespace voxtrel::platform::events {

VXT_Client ClientEventData(const VXT_Client& client) {
  VXT_Client data = client;
  data.structureSize = VXT_CLIENT_SIZE;
  return data;
}

uint32_t PublishClientEvent(const char* eventName, const VXT_Client& client) {
  const VXT_Client data = ClientEventData(client);
  return event_broker::EventBrokerTable().Publish(kClientEventType, eventName, &data);
}

}  // namespace voxtrel::platform::events
