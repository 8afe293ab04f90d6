// One client of the library for a whole benchmark run, as a tool would hold
// it, and the services it calls.
#pragma once

#include <cstdint>
#include <cstdio>

#include "InProc_Vxt.h"

class BenchmarkClient {
 public:
  enum class Target { kNotBuilt, kBuilt };

  // `configurationFile`: a target description to build instead of the default.
  BenchmarkClient(uint32_t clientId, const char* identifier, Target target = Target::kNotBuilt,
                  const char* configurationFile = nullptr) {
    client_.structureSize = VXT_CLIENT_SIZE;
    client_.clientId = clientId;
    std::snprintf(client_.identifier, sizeof client_.identifier, "%s", identifier);
    StartNewInstance(&client_, 1, VXT_ServerHostingType_In_Process, nullptr);
    if (configurationFile != nullptr) SelectConfigurationByFileName(configurationFile);
    if (target == Target::kBuilt) {
      FinishInitialization();
      // The target's emulated CPUs would run their firmware on a core of
      // their own beside the benchmark: halt them, so that only what is
      // measured runs.
      uint64_t token = 0;
      Get<IInternalService_RunControl>(VXT_Service_RunControl)->HaltAll(&token);
    }
  }
  ~BenchmarkClient() { Disconnect(client_.clientId); }
  BenchmarkClient(const BenchmarkClient&) = delete;
  BenchmarkClient& operator=(const BenchmarkClient&) = delete;

  template <class Service>
  static Service* Get(uint32_t serviceId) {
    void* service = nullptr;
    GetService(nullptr, serviceId, &service);
    return static_cast<Service*>(service);
  }

 private:
  VXT_Client client_{};
};
