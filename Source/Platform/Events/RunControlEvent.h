// The "RunControl" event: a thread of the target broke, hit a breakpoint,
// halted, stopped or resumed; that is the event's name ("Break",
// "Breakpoint", "Halt", "Stop", "Resume").
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "PlatformApi.h"

namespace voxtrel::platform::events {

inline constexpr char kRunControlEventType[] = "RunControl";

struct RunControlEventData {
  uint32_t deviceId;       // Offset 0
  uint64_t address;        // Offset 8
  uint32_t breakpointId;   // Offset 16
  char breakName[64];      // Offset 20
  char breakType[64];      // Offset 84
  char breakSubType[64];   // Offset 148
  char details[132];       // Offset 212
  uint64_t extraValue;     // Offset 344
  uint32_t extraCount;     // Offset 352
};
static_assert(offsetof(RunControlEventData, address) == 8);
static_assert(offsetof(RunControlEventData, breakpointId) == 16);
static_assert(offsetof(RunControlEventData, breakName) == 20);
static_assert(offsetof(RunControlEventData, breakType) == 84);
static_assert(offsetof(RunControlEventData, breakSubType) == 148);
static_assert(offsetof(RunControlEventData, details) == 212);
static_assert(offsetof(RunControlEventData, extraValue) == 344);
static_assert(offsetof(RunControlEventData, extraCount) == 352);

// What a run control event tells, as the component knows it.
struct RunControlEventFields {
  uint32_t deviceId = 0;
  uint64_t address = 0;
  uint32_t breakpointId = 0;
  std::string_view breakName;
  std::string_view breakType;
  std::string_view breakSubType;
  std::string_view details;
  uint64_t extraValue = 0;
  uint32_t extraCount = 0;
};

// The record, texts cut to their fields and terminated.
VOXTREL_PLATFORM_API RunControlEventData MakeRunControlEventData(const RunControlEventFields& fields);

// Publishes through the EventBroker; its code.
VOXTREL_PLATFORM_API uint32_t PublishRunControlEvent(const char* eventName, const RunControlEventFields& fields);

}  // namespace voxtrel::platform::events
