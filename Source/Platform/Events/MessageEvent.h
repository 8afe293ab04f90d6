// The "Message" event: a text for the user. The event's name is the text;
// its data tells the kind of message.
#pragma once

#include <cstddef>
#include <cstdint>

#include "PlatformApi.h"

namespace voxtrel::platform::events {

inline constexpr char kMessageEventType[] = "Message";

struct MessageEventData {
  uint32_t kind;  // Offset 0
};
static_assert(offsetof(MessageEventData, kind) == 0 && sizeof(MessageEventData) == 4);

VOXTREL_PLATFORM_API MessageEventData MakeMessageEventData(uint32_t kind);

// Publishes through the EventBroker; its code.
VOXTREL_PLATFORM_API uint32_t PublishMessageEvent(uint32_t kind, const char* text);

}  // namespace voxtrel::platform::events
