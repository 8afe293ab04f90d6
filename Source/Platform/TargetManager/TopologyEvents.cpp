#include "TargetManager/TopologyEvents.h"

#include "EventBroker.h"

namespace voxtrel::platform::target_manager {

namespace {

// The TargetManager binds its peer's table once, when the platform is
// loaded, as the library binds its own tables: publishing is then no getter
// call of its own.
const EventBrokerComponent* BindBroker() {
  const EventBrokerComponent* broker = nullptr;
  return Voxtrel_GetEventBroker(&broker) == 0 ? broker : nullptr;
}

const EventBrokerComponent* const eventBroker = BindBroker();

}  // namespace

uint32_t PublishTopologyEvent(const char* eventName) {
  return eventBroker ? eventBroker->Publish(kTopologyEventType, eventName, nullptr) : 0;
}

}  // namespace voxtrel::platform::target_manager
