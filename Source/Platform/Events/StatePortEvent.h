// The "StatePort" event: a state port's value changed ("ValueChanged").
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "PlatformApi.h"

namespace voxtrel::platform::events {

inline constexpr char kStatePortEventType[] = "StatePort";
inline constexpr char kStatePortValueChanged[] = "ValueChanged";

struct StatePortEventData {
  uint32_t deviceId;     // Offset 0
  char portName[64];     // Offset 4
  uint32_t portValue;    // Offset 68
  uint64_t firstValue;   // Offset 72
  uint64_t secondValue;  // Offset 80
};
static_assert(offsetof(StatePortEventData, portName) == 4);
static_assert(offsetof(StatePortEventData, portValue) == 68);
static_assert(offsetof(StatePortEventData, firstValue) == 72);
static_assert(offsetof(StatePortEventData, secondValue) == 80);

VOXTREL_PLATFORM_API StatePortEventData MakeStatePortEventData(uint32_t deviceId, std::string_view portName,
                                                              uint32_t portValue, uint64_t firstValue,
                                                              uint64_t secondValue);

// Publishes through the EventBroker; its code.
VOXTREL_PLATFORM_API uint32_t PublishStatePortEvent(const char* eventName, uint32_t deviceId, std::string_view portName,
                                                    uint32_t portValue, uint64_t firstValue, uint64_t secondValue);

}  // namespace voxtrel::platform::events
