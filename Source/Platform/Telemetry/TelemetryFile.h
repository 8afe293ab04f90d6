// Sent events as JSON lines, appended to the file VXT_TELEMETRY_FILE names.
// One object per line, members in this order: "time" (UTC, ISO 8601 with
// milliseconds), "session", "sessionData" (an object holding the session's
// identifying pair, when the session was begun), "event", "fields" (an
// object, in the order the fields were built).
#pragma once

#include <optional>
#include <string>

#include "Telemetry/TelemetryStore.h"

namespace voxtrel::platform::telemetry {

// Reads VXT_TELEMETRY_FILE again; no file when it is unset or empty.
void ConfigureTelemetryFile();
// Appends the event; nothing without a file.
void AppendToTelemetryFile(const TelemetryStore::Sent& sent);

}  // namespace voxtrel::platform::telemetry
