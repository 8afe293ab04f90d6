// The library's one EventBroker subscription to "DeviceTopology" events,
// owned for the life of the object.
#pragma once

#include "EventBroker.h"

namespace vxt {

// The first "DeviceTopology" event after a client arrives starts the
// RunControl component early.
//
// The broker may still be delivering to a subscription on another thread
// when this object unsubscribes and is destroyed, so what the broker holds
// never points into the object: the handler is static and the user data
// null. Two live objects thus hold equal subscriptions, and ending either
// one ends one of the two, which is all the count of them needs.
class TopologySubscription {
 public:
  // Subscribes; a broker that cannot be had or refuses leaves the object
  // without a subscription.
  TopologySubscription();
  // Unsubscribes. A broker that refuses or throws keeps the subscription,
  // which does no harm beyond a spare start of the RunControl component.
  ~TopologySubscription();
  TopologySubscription(const TopologySubscription&) = delete;
  TopologySubscription& operator=(const TopologySubscription&) = delete;

 private:
  static void OnTopologyEvent(void* userData, const char* eventName, const void* eventData);

  // The broker that holds the subscription; null when there is none.
  const EventBrokerComponent* broker_ = nullptr;
};

}  // namespace vxt
