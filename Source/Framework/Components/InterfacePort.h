// The InterfacePort component: the target's interface ports.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

// Receives the component's event record (kind at offset 4, values at 8,
// port id at 16) and returns an internal code.
using InterfacePortEventCallbackFn = uint32_t (*)(const void* record);

struct InterfacePortComponent {
  uint32_t (*Initialize)();
  uint32_t (*SetEventCallback)(InterfacePortEventCallbackFn callback);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetInterfacePort(const InterfacePortComponent** table);
