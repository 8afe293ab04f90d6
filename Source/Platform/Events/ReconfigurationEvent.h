// The "Reconfiguration" event: the target's topology is being built again.
// Its name is "Started" or "Completed".
#pragma once

#include <cstddef>
#include <cstdint>

#include "PlatformApi.h"

namespace voxtrel::platform::events {

inline constexpr char kReconfigurationEventType[] = "Reconfiguration";

struct ReconfigurationEventData {
  uint8_t devicesHaveChanged;  // Offset 0: 1 when the set of devices changed
};
static_assert(sizeof(ReconfigurationEventData) == 1);

VOXTREL_PLATFORM_API ReconfigurationEventData MakeReconfigurationEventData(bool devicesHaveChanged);

// Publishes through the EventBroker; its code.
VOXTREL_PLATFORM_API uint32_t PublishReconfigurationEvent(const char* phase, bool devicesHaveChanged);

}  // namespace voxtrel::platform::events
