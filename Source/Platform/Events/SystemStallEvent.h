// The "SystemStall" event: the target stalled ("Hit") or went on
// ("Released").
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "PlatformApi.h"

namespace voxtrel::platform::events {

inline constexpr char kSystemStallEventType[] = "SystemStall";

struct SystemStallEventData {
  char stallName[260];  // Offset 0
  uint32_t stallValue;  // Offset 260
  uint8_t valid;        // Offset 264: 0 when the stall could not be identified
};
static_assert(offsetof(SystemStallEventData, stallValue) == 260);
static_assert(offsetof(SystemStallEventData, valid) == 264);

VOXTREL_PLATFORM_API SystemStallEventData MakeSystemStallEventData(std::string_view stallName, uint32_t stallValue,
                                                                  bool valid);

// Publishes through the EventBroker; its code.
VOXTREL_PLATFORM_API uint32_t PublishSystemStallEvent(const char* eventName, std::string_view stallName,
                                                      uint32_t stallValue, bool valid);

}  // namespace voxtrel::platform::events
