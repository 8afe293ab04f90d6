// The topology the StatePort component works on, from its Initialize to its
// Uninitialize; the state ports are the "statePorts" of its devices.
#pragma once

#include "../Target/TopologyBinding.h"
#include "PlatformApi.h"

namespace voxtrel::platform::state_port {

VOXTREL_PLATFORM_API target::TopologyBinding& StatePortTopology();

}  // namespace voxtrel::platform::state_port
