// A connection of the command-line client to the library, for the life of
// one command or of a shell session.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

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

class LastingConnection;

struct SessionOptions {
  std::string configuration;  // A configuration name, or a description file's path; empty: the default
  std::string loggingPreset;  // Loaded right after connecting; empty: none
  // Set for the commands of a shell session: the connection they all share.
  LastingConnection* lasting = nullptr;
};

// One client connected to the library, from construction to destruction.
class Connection {
 public:
  explicit Connection(const SessionOptions& options);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  uint32_t clientId() const { return client_.clientId; }

 private:
  VXT_Client client_{};
};

// The connection the commands of a shell session share, and with it one
// target: opened by the first command that connects, with the session's
// options, and kept until the session ends. A command's logging preset is
// loaded on it and stays loaded; a command that names another
// configuration than the target's is refused.
class LastingConnection {
 public:
  explicit LastingConnection(SessionOptions sessionOptions) : sessionOptions_(std::move(sessionOptions)) {}
  Connection& Use(const SessionOptions& commandOptions);

 private:
  SessionOptions sessionOptions_;
  std::unique_ptr<Connection> connection_;
  std::string loadedPreset_;
};

// A command's connection: its own for the life of the command, or the
// session's when it runs in one.
class Session {
 public:
  explicit Session(const SessionOptions& options);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  uint32_t clientId() const { return connection_->clientId(); }

  // The services are the process's, whichever connection asks.
  template <class Service>
  static Service& Get(uint32_t serviceId) {
    void* service = nullptr;
    Check(GetService(nullptr, serviceId, &service), "GetService(" + std::to_string(serviceId) + ")");
    return *static_cast<Service*>(service);
  }

  static IInternalService_General& general() { return Get<IInternalService_General>(VXT_Service_General); }

 private:
  std::unique_ptr<Connection> own_;
  Connection* connection_;
};

// The names of the configurations on offer; no connection needed.
std::vector<std::string> AvailableConfigurations();

// Selects a configuration by name, or by file when it looks like a path.
void SelectConfiguration(const std::string& configuration);

}  // namespace vxt::cli
