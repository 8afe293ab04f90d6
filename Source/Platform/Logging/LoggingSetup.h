// Bringing the Logging library to the state that the environment describes
// (see LoggingSettings.h).
#pragma once

namespace voxtrel::platform::logging {

// Levels, loaded preset, usage switch and log file from the environment;
// suppression off.
void ApplyLoggingEnvironment();
// Applies the environment once, on the first use of the library.
void EnsureLoggingSetUp();

}  // namespace voxtrel::platform::logging
