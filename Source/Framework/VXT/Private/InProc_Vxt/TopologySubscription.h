// One EventBroker subscription, owned for the life of the object.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "EventBroker.h"

namespace vxt {

class TopologySubscription {
 public:
  using Callback = std::function<void(const char* eventName, const void* eventData)>;

  // Subscribes to "DeviceTopology" events; a broker that cannot be had or
  // refuses leaves the object without a subscription.
  explicit TopologySubscription(Callback callback);
  // Unsubscribes, unless Unsubscribe did so already.
  ~TopologySubscription();
  TopologySubscription(const TopologySubscription&) = delete;
  TopologySubscription& operator=(const TopologySubscription&) = delete;

  // Ends the subscription. False if the broker refused or threw, in which
  // case it may still call this object.
  bool Unsubscribe() noexcept;

 private:
  static void Trampoline(void* self, const char* eventName, const void* eventData);

  Callback callback_;
  // The broker that holds the subscription; null once there is none.
  const EventBrokerComponent* broker_ = nullptr;
  std::string typeName_ = "DeviceTopology";
};

// Ends a subscription that is being replaced or dropped. One the broker
// would not let go of is kept alive for good rather than freed under the
// broker's feet.
void RetireTopologySubscription(std::unique_ptr<TopologySubscription> former) noexcept;

}  // namespace vxt
