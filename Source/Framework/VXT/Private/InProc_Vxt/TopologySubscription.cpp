#include "TopologySubscription.h"

#include "ConnectionState.h"

namespace vxt {
namespace {
constexpr const char* kTopologyEventType = "DeviceTopology";
}  // namespace

TopologySubscription::TopologySubscription() {
  try {
    Voxtrel_GetEventBroker(&broker_);
    if (broker_ != nullptr && broker_->Subscribe(kTopologyEventType, &OnTopologyEvent, nullptr, "InProc_StartStop") != 0)
      broker_ = nullptr;  // Refused: there is nothing to end
  } catch (...) {
    broker_ = nullptr;
  }
}

TopologySubscription::~TopologySubscription() {
  if (broker_ == nullptr) return;
  try {
    broker_->Unsubscribe(kTopologyEventType, &OnTopologyEvent, nullptr);
  } catch (...) {
  }
}

// The broker calls in on a thread of its own; nothing may be thrown back at it.
void TopologySubscription::OnTopologyEvent(void*, const char*, const void*) {
  try {
    EnsureRunControlInitialized();
  } catch (...) {
  }
}

}  // namespace vxt
