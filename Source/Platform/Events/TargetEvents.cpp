#include "Events/TargetEvents.h"

#include "EventBroker/EventBrokerTable.h"
#include "Events/EventText.h"

namespace voxtrel::platform::events {

PowerDomainEventData MakePowerDomainEventData(uint32_t deviceId, std::string_view domainName) {
  PowerDomainEventData data{};
  CopyEventText(data.domainName, domainName);
  data.deviceId = deviceId;
  return data;
}

TargetStateEventData MakeTargetStateEventData(uint32_t deviceId) { return TargetStateEventData{deviceId}; }

TargetFeatureEventData MakeTargetFeatureEventData(uint32_t deviceId, std::string_view featureName,
                                                  std::string_view text) {
  TargetFeatureEventData data{};
  data.deviceId = deviceId;
  CopyEventText(data.featureName, featureName);
  CopyEventText(data.text, text);
  return data;
}

uint32_t PublishPowerDomainEvent(const char* state, uint32_t deviceId, std::string_view domainName) {
  const PowerDomainEventData data = MakePowerDomainEventData(deviceId, domainName);
  return event_broker::EventBrokerTable().Publish(kPowerDomainEventType, state, &data);
}

uint32_t PublishTargetPowerEvent(const char* state, uint32_t deviceId) {
  const TargetStateEventData data = MakeTargetStateEventData(deviceId);
  return event_broker::EventBrokerTable().Publish(kTargetPowerEventType, state, &data);
}

uint32_t PublishTargetResetEvent(const char* state, uint32_t deviceId) {
  const TargetStateEventData data = MakeTargetStateEventData(deviceId);
  return event_broker::EventBrokerTable().Publish(kTargetResetEventType, state, &data);
}

uint32_t PublishTargetFeatureEvent(const char* state, uint32_t deviceId, std::string_view featureName,
                                   std::string_view text) {
  const TargetFeatureEventData data = MakeTargetFeatureEventData(deviceId, featureName, text);
  return event_broker::EventBrokerTable().Publish(kTargetFeatureEventType, state, &data);
}

}  // namespace voxtrel::platform::events
