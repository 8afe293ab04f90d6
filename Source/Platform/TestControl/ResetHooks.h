// How ResetTestControl reaches the parts of test control that live beside
// the libraries they watch.
#pragma once

namespace voxtrel::platform {

// Ends trace capture and usage capture, forgets captured lines, telemetry
// calls and counters, and gives logging back the levels of the environment.
void ResetTraceAndTelemetryControl();

}  // namespace voxtrel::platform
