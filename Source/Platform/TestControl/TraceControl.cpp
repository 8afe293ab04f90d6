// Test control of the Logging library, and the reset of trace and telemetry.
#include "Logging/LogLevels.h"
#include "Logging/LoggingSetup.h"
#include "Logging/Nesting.h"
#include "Logging/TraceCapture.h"
#include "PlatformTestControl.h"
#include "ResetHooks.h"
#include "Telemetry/TelemetryFile.h"
#include "Telemetry/TelemetryStore.h"

namespace voxtrel::testing {

using platform::logging::TraceCapture;

void SetLogLevel(uint32_t lowestLevel) {
  platform::logging::EnsureLoggingSetUp();
  platform::logging::SetLowestLevelOfAllStreams(lowestLevel);
}

void SetLoggingSuppressed(bool suppressed) {
  platform::logging::EnsureLoggingSetUp();
  platform::logging::SetSuppressed(suppressed);
}

void SetUsageLogging(bool on) {
  platform::logging::EnsureLoggingSetUp();
  platform::logging::SetUsageOn(on);
}

void StartTraceCapture() { TraceCapture::Instance().Start(); }

std::vector<TraceLine> CapturedTrace() { return TraceCapture::Instance().Trace(); }

std::vector<std::string> CapturedTraceTexts() {
  std::vector<std::string> texts;
  for (TraceLine& line : TraceCapture::Instance().Trace()) texts.push_back(std::move(line.text));
  return texts;
}

void ClearCapturedTrace() { TraceCapture::Instance().Clear(); }

std::vector<UsageLine> CapturedUsage() { return TraceCapture::Instance().Usage(); }

}  // namespace voxtrel::testing

namespace voxtrel::platform {

void ResetTraceAndTelemetryControl() {
  logging::TraceCapture::Instance().Stop();
  logging::ResetNesting();
  // Applies the environment again, which also takes up a changed VXT_LOG_FILE.
  logging::EnsureLoggingSetUp();
  logging::ApplyLoggingEnvironment();
  telemetry::TelemetryStore::Instance().Reset();
  telemetry::ConfigureTelemetryFile();
}

}  // namespace voxtrel::platform
