#include "Events/MessageEvent.h"

#include "EventBroker.h"
#include "EventBroker/EventBrokerTable.h"
#include "Support/ComponentCall.h"
#include "Target/CallArguments.h"

namespace voxtrel::platform::events {

MessageEventData MakeMessageEventData(uint32_t kind) { return MessageEventData{kind}; }

uint32_t PublishMessageEvent(uint32_t kind, const char* text) {
  const MessageEventData data = MakeMessageEventData(kind);
  return event_broker::EventBrokerTable().Publish(kMessageEventType, text, &data);
}

}  // namespace voxtrel::platform::events

// The message type is the kind written into the event's data.
uint32_t Voxtrel_PublishMessageEvent(uint32_t messageType, const char* text) {
  VOXTREL_COMPONENT_CALL("Voxtrel_PublishMessageEvent", "messageType=", messageType,
                         ", text=", voxtrel::platform::target::QuotedArgument(text));
  return voxtrel::platform::events::PublishMessageEvent(messageType, text);
}
