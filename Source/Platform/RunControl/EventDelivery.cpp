// Whether the RunControl component's events are to reach the library's
// subscribers now.
#include <atomic>

#include "RunControl/RunControlState.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace voxtrel::platform::run_control {

namespace {
// Asked on every run control event, from any thread.
std::atomic<bool> deliveryHeld{false};
}  // namespace

uint32_t IsEventDeliveryActive(uint32_t* active) {
  VOXTREL_COMPONENT_CALL("RunControl.IsEventDeliveryActive");
  if (!active) return target::kNullArgument;
  *active = RunControlTopology().IsBound() && !deliveryHeld.load(std::memory_order_relaxed) ? 1 : 0;
  return 0;
}

void SetEventDeliveryHeld(bool held) { deliveryHeld.store(held, std::memory_order_relaxed); }

}  // namespace voxtrel::platform::run_control
