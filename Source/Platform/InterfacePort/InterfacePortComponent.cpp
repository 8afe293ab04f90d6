// The InterfacePort component: the target's interface ports.
#include <atomic>

#include "InterfacePort/InterfacePortState.h"
#include "Support/ComponentCall.h"
#include "Target/PostFailure.h"

namespace voxtrel::platform::interface_port {

namespace {

// Read by the port's own threads while a client may replace it.
std::atomic<InterfacePortEventCallbackFn> eventCallback{nullptr};

uint32_t Initialize() {
  VOXTREL_COMPONENT_CALL("InterfacePort.Initialize");
  if (target::Outcome refused = InterfacePortTopology().Bind()) return VOXTREL_POST_FAILURE(*refused);
  return 0;
}

// A null callback stops the delivery of events.
uint32_t SetEventCallback(InterfacePortEventCallbackFn callback) {
  VOXTREL_COMPONENT_CALL("InterfacePort.SetEventCallback", "callback=", reinterpret_cast<const void*>(callback));
  eventCallback.store(callback, std::memory_order_release);
  return 0;
}

constexpr InterfacePortComponent kInterfacePort{&Initialize, &SetEventCallback};

}  // namespace

target::TopologyBinding& InterfacePortTopology() {
  static target::TopologyBinding binding("InterfacePort");
  return binding;
}

uint32_t DeliverInterfacePortEvent(const void* record) {
  const InterfacePortEventCallbackFn callback = eventCallback.load(std::memory_order_acquire);
  return callback ? callback(record) : 0;
}

}  // namespace voxtrel::platform::interface_port

uint32_t Voxtrel_GetInterfacePort(const InterfacePortComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetInterfacePort");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &voxtrel::platform::interface_port::kInterfacePort;
  return 0;
}
