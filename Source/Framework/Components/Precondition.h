// The Precondition component: the named preconditions of each device, their
// states and suppression, and the work that brings one about.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "VXT_Enumerations.h"

struct PreconditionComponent {
  uint32_t (*GetNumPreconditions)(uint32_t deviceId, uint32_t* count);
  // Fills at most maxNumPreconditions 64-byte fields of `names`.
  uint32_t (*GetPreconditions)(uint32_t deviceId, uint32_t maxNumPreconditions, char* names);
  uint32_t (*GetPreconditionId)(uint32_t deviceId, const char* name, uint32_t* id);
  uint32_t (*Require)(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state, uint64_t* token);
  uint32_t (*GetCurrentState)(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState* state);
  uint32_t (*SetCurrentState)(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state);
  uint32_t (*GetDefaultState)(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState* state);
  uint32_t (*SetDefaultState)(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state);
  uint32_t (*IsSuppressed)(uint32_t deviceId, uint32_t preconditionId, uint8_t* suppressed);
  uint32_t (*SetSuppressed)(uint32_t deviceId, uint32_t preconditionId, bool suppressed);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetPrecondition(const PreconditionComponent** table);
