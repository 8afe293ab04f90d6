// The StatePort component: named state ports of the target's devices.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

struct StatePortComponent {
  uint32_t (*Initialize)();  // Kept first: the library relies on it.
  uint32_t (*Uninitialize)();
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetStatePort(const StatePortComponent** table);
