// The PlatformControl component. Its operations are declared as the services that
// call them are built; the getter answers from library load on.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "VXT_Enumerations.h"

struct PlatformControlComponent {
  // 0 when the board lets a probe drive the signal of that pins interface
  // or debug port; else the refusal's code, its message posted.
  uint32_t (*CheckPinChange)(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetPlatformControl(const PlatformControlComponent** table);
