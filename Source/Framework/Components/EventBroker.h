// The EventBroker component: publish and subscribe between components.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

// A subscriber: its userData, the event's name and the event's data record
// (whose layout depends on the type; it may be null).
using EventBrokerHandler = void (*)(void* userData, const char* eventName, const void* eventData);

struct EventBrokerComponent {
  uint32_t (*Initialize)();
  uint32_t (*Uninitialize)();
  uint32_t (*Subscribe)(const char* typeName, EventBrokerHandler handler, void* userData,
                        const char* subscriberName);
  uint32_t (*SubscribeWithMode)(const char* typeName, EventBrokerHandler handler, uint32_t mode, void* userData,
                                const char* subscriberName);
  uint32_t (*Unsubscribe)(const char* typeName, EventBrokerHandler handler, void* userData);
  // Delivers to the subscribers of typeName on the calling thread, in
  // subscription order, with no lock held while a handler runs.
  uint32_t (*Publish)(const char* typeName, const char* eventName, const void* eventData);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetEventBroker(const EventBrokerComponent** table);

// Publishes a "Message" event of the given kind with `text` as its name.
VOXTREL_PLATFORM_API uint32_t Voxtrel_PublishMessageEvent(uint32_t messageType, const char* text);
