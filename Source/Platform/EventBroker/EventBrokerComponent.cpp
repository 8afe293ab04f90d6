// The EventBroker component: publish and subscribe between the components
// and the interface library.
#include <string>

#include "EventBroker.h"
#include "EventBroker/Broker.h"
#include "EventBroker/EventBrokerTable.h"
#include "Support/ComponentCall.h"
#include "Target/CallArguments.h"
#include "Target/PostFailure.h"

namespace voxtrel::platform::event_broker {

namespace {

using target::QuotedArgument;

const void* HandlerAddress(EventBrokerHandler handler) { return reinterpret_cast<const void*>(handler); }

uint32_t NullArgument(const char* operation, const char* argument) {
  return VOXTREL_POST_FAILURE((target::Failure{kNullArgument, std::string(operation) + " was given a null " + argument}));
}

uint32_t Initialize() {
  VOXTREL_COMPONENT_CALL("EventBroker.Initialize");
  Broker::Instance().Start();
  return 0;
}

uint32_t Uninitialize() {
  VOXTREL_COMPONENT_CALL("EventBroker.Uninitialize");
  Broker::Instance().Stop();
  return 0;
}

uint32_t AddSubscription(const char* operation, const char* typeName, EventBrokerHandler handler, uint32_t mode,
                         void* userData, const char* subscriberName) {
  if (!typeName) return NullArgument(operation, "typeName");
  if (!handler) return NullArgument(operation, "handler");
  Broker::Instance().Subscribe(typeName, {handler, userData, mode, subscriberName ? subscriberName : ""});
  return 0;
}

// Delivery on the publishing thread is the only mode served.
constexpr uint32_t kDefaultMode = 0;

uint32_t Subscribe(const char* typeName, EventBrokerHandler handler, void* userData, const char* subscriberName) {
  VOXTREL_COMPONENT_CALL("EventBroker.Subscribe", "typeName=", QuotedArgument(typeName),
                         ", handler=", HandlerAddress(handler), ", userData=", userData,
                         ", subscriberName=", QuotedArgument(subscriberName));
  return AddSubscription("EventBroker.Subscribe", typeName, handler, kDefaultMode, userData, subscriberName);
}

uint32_t SubscribeWithMode(const char* typeName, EventBrokerHandler handler, uint32_t mode, void* userData,
                           const char* subscriberName) {
  VOXTREL_COMPONENT_CALL("EventBroker.SubscribeWithMode", "typeName=", QuotedArgument(typeName),
                         ", handler=", HandlerAddress(handler), ", mode=", mode, ", userData=", userData,
                         ", subscriberName=", QuotedArgument(subscriberName));
  return AddSubscription("EventBroker.SubscribeWithMode", typeName, handler, mode, userData, subscriberName);
}

uint32_t Unsubscribe(const char* typeName, EventBrokerHandler handler, void* userData) {
  VOXTREL_COMPONENT_CALL("EventBroker.Unsubscribe", "typeName=", QuotedArgument(typeName),
                         ", handler=", HandlerAddress(handler), ", userData=", userData);
  if (!typeName) return NullArgument("EventBroker.Unsubscribe", "typeName");
  if (!handler) return NullArgument("EventBroker.Unsubscribe", "handler");
  if (!Broker::Instance().Unsubscribe(typeName, handler, userData))
    return VOXTREL_POST_FAILURE((target::Failure{
        kUnknownSubscription, "EventBroker.Unsubscribe found no subscription to '" + std::string(typeName) + "'"}));
  return 0;
}

// A stopped broker refuses by code alone: publishers report events as a
// side effect of their own work, whose message must stand.
uint32_t Publish(const char* typeName, const char* eventName, const void* eventData) {
  VOXTREL_COMPONENT_CALL("EventBroker.Publish", "typeName=", QuotedArgument(typeName),
                         ", eventName=", QuotedArgument(eventName), ", eventData=", eventData);
  if (!typeName) return NullArgument("EventBroker.Publish", "typeName");
  if (!eventName) return NullArgument("EventBroker.Publish", "eventName");
  return Broker::Instance().Publish(typeName, eventName, eventData);
}

constexpr EventBrokerComponent kEventBroker{&Initialize, &Uninitialize, &Subscribe,
                                            &SubscribeWithMode, &Unsubscribe, &Publish};

}  // namespace

const EventBrokerComponent& EventBrokerTable() { return kEventBroker; }

}  // namespace voxtrel::platform::event_broker

uint32_t Voxtrel_GetEventBroker(const EventBrokerComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetEventBroker");
  if (!table) return voxtrel::platform::event_broker::kNullArgument;
  *table = &voxtrel::platform::event_broker::EventBrokerTable();
  return 0;
}
