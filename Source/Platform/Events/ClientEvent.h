// The "Client" event: a client's connection and disconnection. Its data is
// the client's full 1296-byte VXT_Client record.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "VXT_Client.h"

namespace voxtrel::platform::events {

inline constexpr char kClientEventType[] = "Client";
inline constexpr char kClientConnected[] = "Connected";
inline constexpr char kClientDisconnected[] = "Disconnected";

// The event's data: the record as given, with structureSize telling the
// full size that every subscriber may read.
VOXTREL_PLATFORM_API VXT_Client ClientEventData(const VXT_Client& client);

// Publishes through the EventBroker; its code.
VOXTREL_PLATFORM_API uint32_t PublishClientEvent(const char* eventName, const VXT_Client& client);

}  // namespace voxtrel::platform::events
