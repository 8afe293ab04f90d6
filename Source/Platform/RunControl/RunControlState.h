// The topology the RunControl component works on, from its Initialize to
// its Uninitialize. Its operations ask RunControlTopology() for the threads
// and cores they drive.
#pragma once

#include "../Target/TopologyBinding.h"
#include "PlatformApi.h"

namespace voxtrel::platform::run_control {

VOXTREL_PLATFORM_API target::TopologyBinding& RunControlTopology();

// RunControl.IsEventDeliveryActive: events are delivered while the component
// is initialized, unless test control holds them back.
uint32_t IsEventDeliveryActive(uint32_t* active);
VOXTREL_PLATFORM_API void SetEventDeliveryHeld(bool held);

}  // namespace voxtrel::platform::run_control
