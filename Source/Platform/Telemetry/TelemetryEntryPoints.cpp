// The Telemetry library's entry points. A null text counts as "". Every call
// is recorded for test control before it takes effect.
#include <string>

#include "Telemetry.h"
#include "Telemetry/TelemetryFile.h"
#include "Telemetry/TelemetryStore.h"

using voxtrel::platform::telemetry::TelemetryStore;

namespace {

std::string Text(const char* text) { return text != nullptr ? std::string(text) : std::string(); }
std::string_view View(const char* text) { return text != nullptr ? std::string_view(text) : std::string_view(); }

}  // namespace

void Telemetry_BeginSession(const char* session, const char* key, const char* value) {
  TelemetryStore& store = TelemetryStore::Instance();
  store.RecordCall("BeginSession", {Text(session), Text(key), Text(value)});
  store.BeginSession(Text(session), Text(key), Text(value));
}

// `reserved` is not recorded: it carries nothing.
void Telemetry_BuildDataSet(const char* event, const char* key, const char* value, int reserved) {
  TelemetryStore& store = TelemetryStore::Instance();
  store.RecordCall("BuildDataSet", {Text(event), Text(key), Text(value)});
  store.AddField(Text(event), Text(key), Text(value));
}

// A session need not have been begun: "Server_Lifespan", for one, never is.
void Telemetry_SendEvent(const char* session, const char* event) {
  TelemetryStore& store = TelemetryStore::Instance();
  store.RecordCall("SendEvent", {Text(session), Text(event)});
  voxtrel::platform::telemetry::AppendToTelemetryFile(store.Send(Text(session), Text(event)));
}

void Telemetry_EndSession(const char* session) {
  TelemetryStore& store = TelemetryStore::Instance();
  store.RecordCall("EndSession", {Text(session)});
  store.EndSession(Text(session));
}

void Telemetry_CountEvent(const char* session, const char* event, const char* key, const char* value) {
  TelemetryStore& store = TelemetryStore::Instance();
  store.CountAndRecord(View(session), View(event), View(key), View(value));
}
