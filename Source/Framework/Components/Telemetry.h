// The Telemetry library: sessions, data sets, events and counters.
#pragma once

#include "PlatformApi.h"

VOXTREL_PLATFORM_API void Telemetry_BeginSession(const char* session, const char* key, const char* value);
// Adds a field to the event being built under that name. `reserved` is always 0.
VOXTREL_PLATFORM_API void Telemetry_BuildDataSet(const char* event, const char* key, const char* value,
                                                 int reserved);
VOXTREL_PLATFORM_API void Telemetry_SendEvent(const char* session, const char* event);
VOXTREL_PLATFORM_API void Telemetry_EndSession(const char* session);
// Adds one to the counter `event` keyed by key=value in `session`.
VOXTREL_PLATFORM_API void Telemetry_CountEvent(const char* session, const char* event, const char* key,
                                               const char* value);
