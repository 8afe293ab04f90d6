#include "TopologySubscription.h"

#include <utility>

namespace vxt {

TopologySubscription::TopologySubscription(Callback callback) : callback_(std::move(callback)) {
  Voxtrel_GetEventBroker(&broker_);
  if (broker_ != nullptr && broker_->Subscribe(typeName_.c_str(), &Trampoline, this, "InProc_StartStop") != 0)
    broker_ = nullptr;  // Refused: there is nothing to end
}

TopologySubscription::~TopologySubscription() { Unsubscribe(); }

bool TopologySubscription::Unsubscribe() noexcept {
  if (broker_ == nullptr) return true;
  uint32_t code = 0;
  try {
    code = broker_->Unsubscribe(typeName_.c_str(), &Trampoline, this);
  } catch (...) {
    return false;
  }
  if (code != 0) return false;
  broker_ = nullptr;
  return true;
}

// The broker calls in on a thread of its own; nothing may be thrown back at it.
void TopologySubscription::Trampoline(void* self, const char* eventName, const void* eventData) {
  try {
    static_cast<TopologySubscription*>(self)->callback_(eventName, eventData);
  } catch (...) {
  }
}

void RetireTopologySubscription(std::unique_ptr<TopologySubscription> former) noexcept {
  if (former != nullptr && !former->Unsubscribe()) static_cast<void>(former.release());
}

}  // namespace vxt
