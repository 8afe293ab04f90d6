#include "TargetManager/TopologyEvents.h"

#include "EventBroker.h"

namespace voxtrel::platform::target_manager {

uint32_t PublishTopologyEvent(const char* eventName) {
  const EventBrokerComponent* broker = nullptr;
  if (const uint32_t code = Voxtrel_GetEventBroker(&broker); code != 0 || !broker) return code;
  return broker->Publish(kTopologyEventType, eventName, nullptr);
}

}  // namespace voxtrel::platform::target_manager
