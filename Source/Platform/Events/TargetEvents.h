// The target's own events: power, reset, features and power domains. Each
// broker type has a data record of its own; a device id of 0 names no
// device.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "PlatformApi.h"

namespace voxtrel::platform::events {

inline constexpr char kPowerDomainEventType[] = "PowerDomain";
inline constexpr char kTargetPowerEventType[] = "TargetPower";
inline constexpr char kTargetResetEventType[] = "TargetReset";
inline constexpr char kTargetFeatureEventType[] = "TargetFeature";

// A reset event of this name announces a break instead of a reset.
inline constexpr char kBreakHint[] = "BreakHint";

// "PowerDomain": a domain of a device changed its power state, which is the
// event's name.
struct PowerDomainEventData {
  char domainName[64];  // Offset 0
  uint32_t deviceId;    // Offset 64
};
static_assert(offsetof(PowerDomainEventData, deviceId) == 64);

// "TargetPower" and "TargetReset": the event's name is the new state.
struct TargetStateEventData {
  uint32_t deviceId;  // Offset 0
};
static_assert(sizeof(TargetStateEventData) == 4);

// "TargetFeature": a feature ("Transport" or "Trace") came or went; `text`
// says more about it.
struct TargetFeatureEventData {
  uint32_t deviceId;     // Offset 0
  char featureName[64];  // Offset 4
  char text[256];        // Offset 68
};
static_assert(offsetof(TargetFeatureEventData, featureName) == 4);
static_assert(offsetof(TargetFeatureEventData, text) == 68);

// The records, texts cut to their fields and terminated.
VOXTREL_PLATFORM_API PowerDomainEventData MakePowerDomainEventData(uint32_t deviceId, std::string_view domainName);
VOXTREL_PLATFORM_API TargetStateEventData MakeTargetStateEventData(uint32_t deviceId);
VOXTREL_PLATFORM_API TargetFeatureEventData MakeTargetFeatureEventData(uint32_t deviceId,
                                                                      std::string_view featureName,
                                                                      std::string_view text);

// Publish through the EventBroker; its code.
VOXTREL_PLATFORM_API uint32_t PublishPowerDomainEvent(const char* state, uint32_t deviceId,
                                                      std::string_view domainName);
VOXTREL_PLATFORM_API uint32_t PublishTargetPowerEvent(const char* state, uint32_t deviceId);
VOXTREL_PLATFORM_API uint32_t PublishTargetResetEvent(const char* state, uint32_t deviceId);
VOXTREL_PLATFORM_API uint32_t PublishTargetFeatureEvent(const char* state, uint32_t deviceId,
                                                        std::string_view featureName, std::string_view text);

}  // namespace voxtrel::platform::events
