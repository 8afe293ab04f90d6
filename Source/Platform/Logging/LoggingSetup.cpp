#include "Logging/LoggingSetup.h"

#include "Logging/LogLevels.h"
#include "Logging/LogSink.h"
#include "Logging/LoggingSettings.h"
#include "Logging/Presets.h"

namespace voxtrel::platform::logging {

void ApplyLoggingEnvironment() {
  const LoggingSettings settings = ReadLoggingSettings();
  SetLowestLevelOfAllStreams(settings.lowestLevel);
  ResetLoadedPreset(settings.levelFromEnvironment);
  SetSuppressed(false);
  SetUsageOn(settings.usage);
  LogSink::Instance().Open(settings.file, settings.rawFormat);
}

void EnsureLoggingSetUp() {
  [[maybe_unused]] static const bool applied = (ApplyLoggingEnvironment(), true);
}

}  // namespace voxtrel::platform::logging
