#include "Events/SystemStallEvent.h"

#include "EventBroker/EventBrokerTable.h"
#include "Events/EventText.h"

namespace voxtrel::platform::events {

SystemStallEventData MakeSystemStallEventData(std::string_view stallName, uint32_t stallValue, bool valid) {
  SystemStallEventData data{};
  CopyEventText(data.stallName, stallName);
  data.stallValue = stallValue;
  data.valid = valid ? 1 : 0;
  return data;
}

uint32_t PublishSystemStallEvent(const char* eventName, std::string_view stallName, uint32_t stallValue,
                                 bool valid) {
  const SystemStallEventData data = MakeSystemStallEventData(stallName, stallValue, valid);
  return event_broker::EventBrokerTable().Publish(kSystemStallEventType, eventName, &data);
}

}  // namespace voxtrel::platform::events
