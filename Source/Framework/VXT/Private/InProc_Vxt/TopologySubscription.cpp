#include "TopologySubscription.h"

#include <utility>

namespace vxt {

TopologySubscription::TopologySubscription(Callback callback) : callback_(std::move(callback)) {
  Voxtrel_GetEventBroker(&broker_);
  if (broker_ != nullptr) broker_->Subscribe(typeName_.c_str(), &Trampoline, this, "InProc_StartStop");
}

TopologySubscription::~TopologySubscription() {
  if (broker_ != nullptr) broker_->Unsubscribe(typeName_.c_str(), &Trampoline, this);
}

void TopologySubscription::Trampoline(void* self, const char* eventName, const void* eventData) {
  static_cast<TopologySubscription*>(self)->callback_(eventName, eventData);
}

}  // namespace vxt
