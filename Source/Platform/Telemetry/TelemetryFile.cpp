#include "Telemetry/TelemetryFile.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <mutex>

#include <nlohmann/json.hpp>

namespace voxtrel::platform::telemetry {
namespace {

struct FileSetting {
  std::mutex mutex;
  bool configured = false;
  std::optional<std::string> path;
};

FileSetting& TheFileSetting() {
  static FileSetting& setting = *new FileSetting;
  return setting;
}

std::optional<std::string> PathFromEnvironment() {
  const char* path = std::getenv("VXT_TELEMETRY_FILE");
  if (path == nullptr || *path == '\0') return std::nullopt;
  return std::string(path);
}

std::string UtcTimestamp() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto millis =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  char text[40];
  const size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
  std::snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(millis));
  return text;
}

nlohmann::ordered_json ToJson(const TelemetryStore::Sent& sent) {
  nlohmann::ordered_json line;
  line["time"] = UtcTimestamp();
  line["session"] = sent.event.session;
  if (sent.sessionKey) line["sessionData"] = {{sent.sessionKey->first, sent.sessionKey->second}};
  line["event"] = sent.event.event;
  nlohmann::ordered_json fields = nlohmann::ordered_json::object();
  for (const auto& [key, value] : sent.event.fields) fields[key] = value;
  line["fields"] = std::move(fields);
  return line;
}

}  // namespace

void ConfigureTelemetryFile() {
  FileSetting& setting = TheFileSetting();
  std::lock_guard lock(setting.mutex);
  setting.path = PathFromEnvironment();
  setting.configured = true;
}

void AppendToTelemetryFile(const TelemetryStore::Sent& sent) {
  FileSetting& setting = TheFileSetting();
  std::lock_guard lock(setting.mutex);
  if (!setting.configured) {
    setting.path = PathFromEnvironment();
    setting.configured = true;
  }
  if (!setting.path) return;
  // Texts from clients need not be UTF-8; replace what is not rather than throw.
  const std::string text = ToJson(sent).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  std::ofstream(*setting.path, std::ios::app) << text << '\n';
}

}  // namespace voxtrel::platform::telemetry
