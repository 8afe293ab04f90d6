// Logging presets: named sets of stream levels that a client can load.
//
//   Default         every stream at level 3
//   Trace           every stream at level 1
//   InterfaceTrace  stream 1 ("VxtInterface") at level 1, the others at 3
//   Errors          every stream at level 2
//   Off             nothing is written
//
// The loaded preset is "Default" in a fresh process, or "Environment" when
// VXT_LOG_LEVEL chose the levels; "Environment" cannot be loaded by name.
#pragma once

#include <string_view>

namespace voxtrel::platform::logging {

// Sets the levels of the named preset; false, and nothing changed, for an
// unknown name. Names are compared exactly.
bool LoadPreset(std::string_view name);
// Forgets which preset was loaded, after the environment set the levels.
void ResetLoadedPreset(bool levelFromEnvironment);

}  // namespace voxtrel::platform::logging
