// vxt info: what the library and the target say about themselves.
#include <iomanip>
#include <ostream>
#include <string>
#include <vector>

#include "CommandRegistry.h"

namespace vxt::cli {
namespace {

std::vector<std::string> LoggingPresets(IInternalService_General& general) {
  uint32_t count = 0;
  Check(general.GetLoggingPresetNamesCount(&count), "GetLoggingPresetNamesCount");
  std::vector<std::vector<char>> buffers(count, std::vector<char>(VXT_LOGGING_PRESET_NAME_SIZE, '\0'));
  std::vector<char*> names;
  for (auto& buffer : buffers) names.push_back(buffer.data());
  Check(general.GetLoggingPresetNames(count, names.data()), "GetLoggingPresetNames");
  return {names.begin(), names.end()};
}

// "packages: 2, cores: 4, threads: 8, ...": what the domain holds.
std::string DomainContents(IInternalService_Device& device, uint32_t domainId) {
  struct Kind {
    VXT_NodeType type;
    const char* name;
  };
  const Kind kinds[] = {{VXT_NodeType_LogicalPackage, "packages"},
                        {VXT_NodeType_LogicalCore, "cores"},
                        {VXT_NodeType_LogicalThread, "threads"},
                        {VXT_NodeType_TAPController, "TAP controllers"}};
  std::string contents;
  for (const Kind& kind : kinds) {
    uint32_t count = 0;
    Check(device.GetNumDescendantIdsForType(domainId, kind.type, 0, &count), "GetNumDescendantIdsForType");
    contents += (contents.empty() ? "" : ", ") + std::string(kind.name) + ": " + std::to_string(count);
  }
  return contents;
}

void ShowTarget(Session& session, std::ostream& out) {
  auto& device = session.Get<IInternalService_Device>(VXT_Service_Device);
  uint32_t count = 0;
  Check(device.GetNumTargetDomainDeviceIds(&count), "GetNumTargetDomainDeviceIds");
  std::vector<uint32_t> domains(count);
  if (count > 0) Check(device.GetTargetDomainDeviceIds(count, domains.data()), "GetTargetDomainDeviceIds");
  out << "Target domains:   " << count << '\n';
  for (const uint32_t domainId : domains) {
    char identifier[VXT_DEVICE_IDENTIFIER_SIZE] = "";
    Check(device.GetIdentifierForDeviceId(domainId, identifier), "GetIdentifierForDeviceId");
    out << "  0x" << std::hex << std::setw(8) << std::setfill('0') << domainId << std::setfill(' ') << std::dec << "  "
        << identifier << "  (" << DomainContents(device, domainId) << ")\n";
  }
}

void ShowInfo(Session& session, std::ostream& out) {
  IInternalService_General& general = session.general();

  VXT_Version version{};
  version.structureSize = VXT_VERSION_SIZE;
  Check(general.GetImplementationVersion(&version), "GetImplementationVersion");
  char identifier[VXT_IMPLEMENTATION_IDENTIFIER_SIZE];
  Check(general.GetImplementationIdentifier(identifier), "GetImplementationIdentifier");
  out << "Library:          InProc_Vxt " << version.major << '.' << version.minor << '.' << version.build
      << " (classification " << version.classification << ")\n";
  out << "Implementation:   " << identifier << '\n';

  char loaded[VXT_LOGGING_PRESET_NAME_SIZE] = "";
  Check(general.GetLoadedLoggingPreset(loaded), "GetLoadedLoggingPreset");
  out << "Logging presets: ";
  for (const std::string& preset : LoggingPresets(general)) out << ' ' << preset << (preset == loaded ? "*" : "");
  out << "  (* loaded)\n";

  uint32_t numClients = 0;
  Check(general.GetNumConnectedClients(&numClients), "GetNumConnectedClients");
  std::vector<VXT_Client> clients(numClients);
  for (VXT_Client& client : clients) client.structureSize = VXT_CLIENT_SIZE;
  if (numClients > 0)
    Check(general.GetConnectedClients(numClients, &numClients, clients.data()), "GetConnectedClients");
  out << "Connected clients: " << numClients << '\n';
  for (uint32_t i = 0; i < numClients && i < clients.size(); ++i) {
    const VXT_Client& client = clients[i];
    out << "  " << client.clientId << "  " << client.identifier << "  " << (client.isLocal ? "local" : "remote")
        << "  since " << client.startTime << " UTC" << (client.clientId == session.clientId() ? "  (this)" : "")
        << '\n';
  }
}

const bool registered =
    RegisterCommand({"info", "Connect and show what the library and the target say about themselves",
                     [](CLI::App&, CommandArguments&) {},
                     [](const CommandArguments&, const SessionOptions& options, std::ostream& out) {
                       Session session(options);
                       ShowInfo(session, out);
                       ShowTarget(session, out);
                       return 0;
                     }});

}  // namespace
}  // namespace vxt::cli
