#include "Logging/LoggingSettings.h"

#include <cstdlib>
#include <string_view>

#include "Logging/LogLevels.h"

namespace voxtrel::platform::logging {
namespace {

std::optional<std::string_view> Variable(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') return std::nullopt;
  return std::string_view(value);
}

// A single digit from 1 to 5; anything else leaves the default.
std::optional<uint32_t> ParseLevel(std::string_view text) {
  if (text.size() != 1 || text[0] < '0') return std::nullopt;
  const auto level = static_cast<uint32_t>(text[0] - '0');
  if (level < kMostDetailedLevel || level > kSilentLevel) return std::nullopt;
  return level;
}

}  // namespace

LoggingSettings ReadLoggingSettings() {
  LoggingSettings settings;
  if (auto text = Variable("VXT_LOG_LEVEL")) {
    if (auto level = ParseLevel(*text)) {
      settings.lowestLevel = *level;
      settings.levelFromEnvironment = true;
    }
  }
  if (auto file = Variable("VXT_LOG_FILE")) settings.file = std::string(*file);
  settings.rawFormat = Variable("VXT_LOG_FORMAT") == std::string_view("raw");
  settings.usage = Variable("VXT_LOG_USAGE") == std::string_view("1");
  return settings;
}

}  // namespace voxtrel::platform::logging
