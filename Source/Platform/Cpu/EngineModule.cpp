#include "Cpu/EngineModule.h"

#include <dlfcn.h>

#include <cstdlib>
#include <mutex>

namespace voxtrel::platform::cpu {

namespace {

std::string ModulePath() {
  if (const char* path = std::getenv("VXT_CPU_ENGINE_MODULE"); path && *path) return path;
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&LoadEngineModule), &info) && info.dli_fname) {
    std::string library = info.dli_fname;
    const size_t slash = library.rfind('/');
    if (slash != std::string::npos) return library.substr(0, slash + 1) + kEngineModuleName;
  }
  return kEngineModuleName;
}

}  // namespace

CreateBackendFunction LoadEngineModule(std::string& error) {
  static std::mutex mutex;
  static CreateBackendFunction create = nullptr;
  std::lock_guard lock(mutex);
  if (create) return create;
  const std::string path = ModulePath();
  void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!module) {
    const char* reason = dlerror();
    error = "the CPU engine module " + path + " cannot be loaded: " + (reason ? reason : "unknown reason");
    return nullptr;
  }
  create = reinterpret_cast<CreateBackendFunction>(dlsym(module, kCreateBackendSymbol));
  if (!create) error = "the CPU engine module " + path + " has no " + kCreateBackendSymbol;
  return create;
}

}  // namespace voxtrel::platform::cpu
