// The Logging library's entry points for trace and usage lines.
#include <string_view>

#include "Logging.h"
#include "Logging/LogLevels.h"
#include "Logging/LogSink.h"
#include "Logging/LoggingSetup.h"
#include "Logging/Nesting.h"
#include "Logging/TraceCapture.h"

using namespace voxtrel::platform::logging;

namespace {

std::string_view TextOrEmpty(const char* text) { return text != nullptr ? std::string_view(text) : std::string_view(); }

}  // namespace

Voxtrel_LoggerHandle Voxtrel_LoggingGetLogger(uint32_t stream) {
  EnsureLoggingSetUp();
  return &LoggerOf(stream);
}

// Asked twice by every call of the interface library: the common case is a
// leaf that saves no register.
[[gnu::noinline]] static bool StreamZeroWrites(uint32_t level) { return LoggerOf(uint32_t{0}).Writes(level); }

bool Voxtrel_LoggingIsLogEnabled(Voxtrel_LoggerHandle logger, uint32_t level) {
  if (logger == nullptr) [[unlikely]]
    return StreamZeroWrites(level);
  return static_cast<const StreamLogger*>(logger)->Writes(level);
}

bool Voxtrel_LoggingIsLoggingSuppressed() { return IsSuppressed(); }

void Voxtrel_LoggingLog(Voxtrel_LoggerHandle logger, uint32_t level, const char* text, int32_t nesting) {
  EnsureLoggingSetUp();
  // The depth moves even for a line that is not written, so that opening and
  // closing lines stay paired when levels change in between.
  const int depth = DepthForLine(nesting);
  const StreamLogger& streamLogger = LoggerOf(logger);
  if (!streamLogger.Writes(level) || IsSuppressed()) return;
  const std::string_view line = TextOrEmpty(text);
  const bool captured = TraceCapture::Instance().AddTrace(streamLogger.stream, level, line, nesting);
  LogSink::Instance().WriteTrace(streamLogger.stream, level, line, depth, captured);
}

bool Voxtrel_LoggingIsLoggingUsage() {
  EnsureLoggingSetUp();
  return IsUsageOn();
}

// Usage lines do not depend on levels or suppression, only on the usage switch.
void Voxtrel_LoggingLogUsage(const char* streamName, const char* event, const char* text) {
  EnsureLoggingSetUp();
  if (!IsUsageOn()) return;
  const std::string_view stream = TextOrEmpty(streamName);
  const bool captured = TraceCapture::Instance().AddUsage(stream, TextOrEmpty(event), TextOrEmpty(text));
  LogSink::Instance().WriteUsage(stream, TextOrEmpty(event), TextOrEmpty(text), captured);
}
