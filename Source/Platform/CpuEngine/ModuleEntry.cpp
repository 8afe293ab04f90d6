// The module's one exported function: the platform finds it with dlsym.
#include <exception>
#include <string>

#include "Cpu/EngineSetup.h"
#include "CpuEngine/UnicornDomain.h"

extern "C" __attribute__((visibility("default"))) voxtrel::platform::cpu::CpuBackend* VoxtrelCpuEngine_CreateBackend(
    const voxtrel::platform::cpu::EngineSetup& setup, std::string& error) {
  try {
    return new voxtrel::platform::cpu_engine::UnicornDomain(setup);
  } catch (const std::exception& failure) {
    error = failure.what();
    return nullptr;
  }
}
