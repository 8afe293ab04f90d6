// The StatePort component: named state ports of the target's devices.
#include "StatePort.h"
#include "StatePort/StatePortState.h"
#include "Support/ComponentCall.h"
#include "Target/PostFailure.h"

namespace voxtrel::platform::state_port {

target::TopologyBinding& StatePortTopology() {
  static target::TopologyBinding binding("StatePort");
  return binding;
}

namespace {

uint32_t Initialize() {
  VOXTREL_COMPONENT_CALL("StatePort.Initialize");
  if (target::Outcome refused = StatePortTopology().Bind()) return VOXTREL_POST_FAILURE(*refused);
  return 0;
}

uint32_t Uninitialize() {
  VOXTREL_COMPONENT_CALL("StatePort.Uninitialize");
  StatePortTopology().Unbind();
  return 0;
}

constexpr StatePortComponent kStatePort{&Initialize, &Uninitialize};

}  // namespace

}  // namespace voxtrel::platform::state_port

uint32_t Voxtrel_GetStatePort(const StatePortComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetStatePort");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &voxtrel::platform::state_port::kStatePort;
  return 0;
}
