// The TargetManager component: the target's topology and its initialization.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

struct TargetManagerComponent {
  uint32_t (*StartInitialization)();
  // Builds the topology of the selected configuration and publishes
  // "DeviceTopology".
  uint32_t (*FinishInitialization)();
  uint32_t (*BeginDynamicInitialization)();
  uint32_t (*CancelDynamicInitialization)();
  uint32_t (*Uninitialize)();
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetTargetManager(const TargetManagerComponent** table);
