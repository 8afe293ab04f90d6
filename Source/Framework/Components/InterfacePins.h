// The InterfacePins component: the sideband signals of a pins interface or
// debug port (VXT_PinsSignal). Every entry returns an internal code. The
// pins are wired to the target where that means something: Reset restarts
// the domain's CPUs, PREQ halts them, PRDY reads asserted while a thread is
// halted, and PWRGOOD reads asserted while the target runs. A pulse's
// width is in microseconds.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "VXT_Enumerations.h"

struct InterfacePinsComponent {
  uint32_t (*GetPinState)(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal, VXT_PinsState* pinsState);
  uint32_t (*SetPinState)(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal, VXT_PinsState pinsState);
  uint32_t (*PulsePinState)(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal, VXT_PinsState pinsState,
                            uint32_t pulseWidth);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetInterfacePins(const InterfacePinsComponent** table);
