// A connection of the command-line client to the library, for the life of
// one command.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "InProc_Vxt.h"

namespace vxt::cli {

// A failed library call: what was called, its public code and the library's
// last error message on this thread.
class CallFailed : public std::runtime_error {
 public:
  CallFailed(const std::string& call, VXT_Result code);
  VXT_Result code() const { return code_; }

 private:
  VXT_Result code_;
};

// Throws CallFailed when `code` is not success.
void Check(VXT_Result code, const std::string& call);

struct SessionOptions {
  std::string configuration;  // A configuration name, or a description file's path; empty: the default
  std::string loggingPreset;  // Loaded right after connecting; empty: none
};

class Session {
 public:
  explicit Session(const SessionOptions& options);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  uint32_t clientId() const { return client_.clientId; }

  template <class Service>
  Service& Get(uint32_t serviceId) {
    void* service = nullptr;
    Check(GetService(nullptr, serviceId, &service), "GetService(" + std::to_string(serviceId) + ")");
    return *static_cast<Service*>(service);
  }

  IInternalService_General& general() { return Get<IInternalService_General>(VXT_Service_General); }

 private:
  VXT_Client client_{};
};

// Selects a configuration by name, or by file when it looks like a path.
void SelectConfiguration(const std::string& configuration);

}  // namespace vxt::cli
