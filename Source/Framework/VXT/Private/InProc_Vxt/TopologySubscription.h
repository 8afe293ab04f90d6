// One EventBroker subscription, owned for the life of the object.
#pragma once

#include <functional>
#include <string>

#include "EventBroker.h"

namespace vxt {

class TopologySubscription {
 public:
  using Callback = std::function<void(const char* eventName, const void* eventData)>;

  // Subscribes to "DeviceTopology" events; a broker that cannot be had
  // leaves the object without a subscription.
  explicit TopologySubscription(Callback callback);
  ~TopologySubscription();
  TopologySubscription(const TopologySubscription&) = delete;
  TopologySubscription& operator=(const TopologySubscription&) = delete;

 private:
  static void Trampoline(void* self, const char* eventName, const void* eventData);

  Callback callback_;
  const EventBrokerComponent* broker_ = nullptr;
  std::string typeName_ = "DeviceTopology";
};

}  // namespace vxt
