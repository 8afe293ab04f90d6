// Test control of the Telemetry library.
#include "PlatformTestControl.h"
#include "Telemetry/TelemetryStore.h"

namespace voxtrel::testing {

using platform::telemetry::TelemetryStore;

std::vector<TelemetryCall> TelemetryCalls() { return TelemetryStore::Instance().Calls(); }

void ClearTelemetryCalls() { TelemetryStore::Instance().ClearCalls(); }

std::vector<TelemetryEvent> SentTelemetryEvents() { return TelemetryStore::Instance().SentEvents(); }

uint64_t TelemetryCounter(const std::string& session, const std::string& event, const std::string& key,
                          const std::string& value) {
  return TelemetryStore::Instance().Counter(session, event, key, value);
}

}  // namespace voxtrel::testing
