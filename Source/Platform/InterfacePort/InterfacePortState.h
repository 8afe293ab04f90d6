// What the InterfacePort component keeps: the topology its ports belong to,
// and the callback through which it reports port events to the library.
#pragma once

#include <cstdint>

#include "../Target/TopologyBinding.h"
#include "InterfacePort.h"
#include "PlatformApi.h"

namespace voxtrel::platform::interface_port {

VOXTREL_PLATFORM_API target::TopologyBinding& InterfacePortTopology();

// Calls the callback SetEventCallback stored, on the calling thread, with the
// component's event record; its code comes back. Without a callback the
// event goes nowhere and the result is 0.
VOXTREL_PLATFORM_API uint32_t DeliverInterfacePortEvent(const void* record);

}  // namespace voxtrel::platform::interface_port
