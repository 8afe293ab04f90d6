// The RunControl component: run control, memory and registers of the target.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

struct RunControlComponent {
  uint32_t (*Initialize)();
  uint32_t (*Uninitialize)();
  // Whether run control events are to be delivered now: `active` 1 or 0.
  uint32_t (*IsEventDeliveryActive)(uint32_t* active);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetRunControl(const RunControlComponent** table);
