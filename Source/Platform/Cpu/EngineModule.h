// The emulating module, libVoxtrelCpuEngine.so, loaded on first need from
// the directory of the platform library itself (found with dladdr, so it
// works wherever the two are installed together), or from the path in
// VXT_CPU_ENGINE_MODULE when that is set. Loaded once and never unloaded.
#pragma once

#include <string>

#include "EngineSetup.h"

namespace voxtrel::platform::cpu {

// The module's entry point; null with `error` set when it cannot be loaded.
CreateBackendFunction LoadEngineModule(std::string& error);

}  // namespace voxtrel::platform::cpu
