// How logging is set up from the environment.
//
//   VXT_LOG_LEVEL   lowest level written on every stream, 1 to 5 (default 3)
//   VXT_LOG_FILE    file that trace and usage lines are appended to
//                   (default: none; lines then go to standard error)
//   VXT_LOG_FORMAT  "raw": each line's text alone; otherwise time stamp,
//                   thread, level and stream name before the indented text
//   VXT_LOG_USAGE   "1" turns usage lines on
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace voxtrel::platform::logging {

struct LoggingSettings {
  uint32_t lowestLevel = 3;
  bool levelFromEnvironment = false;  // VXT_LOG_LEVEL held a valid level
  std::optional<std::string> file;
  bool rawFormat = false;
  bool usage = false;
};

LoggingSettings ReadLoggingSettings();

}  // namespace voxtrel::platform::logging
