#include "Events/RunControlEvent.h"

#include "EventBroker/EventBrokerTable.h"
#include "Events/EventText.h"

namespace voxtrel::platform::events {

RunControlEventData MakeRunControlEventData(const RunControlEventFields& fields) {
  RunControlEventData data{};
  data.deviceId = fields.deviceId;
  data.address = fields.address;
  data.breakpointId = fields.breakpointId;
  CopyEventText(data.breakName, fields.breakName);
  CopyEventText(data.breakType, fields.breakType);
  CopyEventText(data.breakSubType, fields.breakSubType);
  CopyEventText(data.details, fields.details);
  data.extraValue = fields.extraValue;
  data.extraCount = fields.extraCount;
  return data;
}

uint32_t PublishRunControlEvent(const char* eventName, const RunControlEventFields& fields) {
  const RunControlEventData data = MakeRunControlEventData(fields);
  return event_broker::EventBrokerTable().Publish(kRunControlEventType, eventName, &data);
}

}  // namespace voxtrel::platform::events
