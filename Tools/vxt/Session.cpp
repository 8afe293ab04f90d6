#include "Session.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <sstream>
#include <stdexcept>

namespace vxt::cli {
namespace {

std::string Describe(const std::string& call, VXT_Result code) {
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%08x", static_cast<uint32_t>(code));
  std::string text = call + " failed with " + hex;
  const char* message = GetLastErrorMessage();
  if (message != nullptr && *message != '\0') text += ": " + std::string(message);
  return text;
}

bool LooksLikeAPath(const std::string& configuration) {
  return configuration.find('/') != std::string::npos ||
         (configuration.size() > 5 && configuration.compare(configuration.size() - 5, 5, ".json") == 0);
}

}  // namespace

CallFailed::CallFailed(const std::string& call, VXT_Result code)
    : std::runtime_error(Describe(call, code)), code_(code) {}

void Check(VXT_Result code, const std::string& call) {
  if (code != VXT_SUCCESS) throw CallFailed(call, code);
}

std::vector<std::string> AvailableConfigurations() {
  uint32_t count = 0;
  Check(GetAvailableConfigurationCount(&count), "GetAvailableConfigurationCount");
  std::vector<VXT_ConfigurationName> names(count);
  if (count > 0) Check(GetAvailableConfigurations(count, names.data()), "GetAvailableConfigurations");
  std::vector<std::string> texts;
  for (const VXT_ConfigurationName& name : names) texts.emplace_back(name.name);
  return texts;
}

void SelectConfiguration(const std::string& configuration) {
  if (configuration.empty()) return;
  if (LooksLikeAPath(configuration)) {
    Check(SelectConfigurationByFileName(configuration.c_str()), "SelectConfigurationByFileName");
  } else {
    Check(SelectConfigurationByName(configuration.c_str()), "SelectConfigurationByName");
  }
}

Connection::Connection(const SessionOptions& options) {
  client_.structureSize = VXT_CLIENT_SIZE;
  client_.clientId = static_cast<uint32_t>(getpid());
  char host[64] = "localhost";
  gethostname(host, sizeof host - 1);
  std::snprintf(client_.identifier, sizeof client_.identifier, "vxt_%u@%s", client_.clientId, host);

  Check(StartNewInstance(&client_, 1, VXT_ServerHostingType_In_Process, nullptr), "StartNewInstance");
  try {
    if (!options.loggingPreset.empty())
      Check(Session::general().LoadLoggingPreset(options.loggingPreset.c_str()), "LoadLoggingPreset");
    SelectConfiguration(options.configuration);
    Check(FinishInitialization(), "FinishInitialization");
  } catch (...) {
    Disconnect(client_.clientId);
    throw;
  }
}

Connection::~Connection() { Disconnect(client_.clientId); }

Connection& LastingConnection::Use(const SessionOptions& commandOptions) {
  if (!connection_) {
    SessionOptions options = sessionOptions_;
    if (!commandOptions.configuration.empty()) options.configuration = commandOptions.configuration;
    connection_ = std::make_unique<Connection>(options);
    sessionOptions_ = options;
    loadedPreset_ = options.loggingPreset;
  }
  if (!commandOptions.configuration.empty() && commandOptions.configuration != sessionOptions_.configuration)
    throw std::runtime_error("this session's target is " +
                             (sessionOptions_.configuration.empty() ? "the default one"
                                                                     : "'" + sessionOptions_.configuration + "'") +
                             "; start another session for '" + commandOptions.configuration + "'");
  if (!commandOptions.loggingPreset.empty() && commandOptions.loggingPreset != loadedPreset_) {
    Check(Session::general().LoadLoggingPreset(commandOptions.loggingPreset.c_str()), "LoadLoggingPreset");
    loadedPreset_ = commandOptions.loggingPreset;
  }
  return *connection_;
}

Session::Session(const SessionOptions& options)
    : own_(options.lasting ? nullptr : std::make_unique<Connection>(options)),
      connection_(options.lasting ? &options.lasting->Use(options) : own_.get()) {}

}  // namespace vxt::cli
