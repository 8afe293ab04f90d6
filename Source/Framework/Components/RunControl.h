// The RunControl component: run control, memory and registers of the target.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

struct RunControlComponent {
  uint32_t (*Initialize)();
  uint32_t (*Uninitialize)();
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetRunControl(const RunControlComponent** table);
