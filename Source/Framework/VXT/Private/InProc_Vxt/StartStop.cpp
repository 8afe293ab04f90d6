// The entry points by which a client enters and leaves the library.
#include <algorithm>
#include <cstring>
#include <ctime>
#include <regex>
#include <sstream>
#include <string>

#include <boost/date_time/posix_time/posix_time.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

#include "Common.h"
#include "ConnectionState.h"
#include "Logging.h"
#include "TargetManager.h"
#include "Telemetry.h"
#include "VXT_Exports.h"
#include "frame/CatchAll.h"
#include "frame/ErrorContext.h"
#include "frame/InternalCodes.h"
#include "frame/Render.h"
#include "frame/TextStream.h"
#include "frame/TraceLine.h"

namespace vxt {
namespace {

// Name of logging stream 1, under which usage lines are recorded.
constexpr const char* kUsageStream = "VxtInterface";

std::string IdentifierOf(const VXT_Client& client) {
  return std::string(client.identifier, strnlen(client.identifier, sizeof client.identifier));
}

// Tells Common a name for this run: local time, "_" and the identifier.
uint32_t SetRunName(const std::string& identifier) {
  const frame::ErrorContextScope context;
  const CommonComponent* common = nullptr;
  if (const uint32_t code = Voxtrel_GetCommon(&common); code != 0 || common == nullptr) return code;

  char stamp[32] = "";
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (localtime_r(&now, &local) != nullptr) std::strftime(stamp, sizeof stamp, "%Y-%m-%d_%H-%M-%S", &local);
  const std::string name = std::string(stamp) + "_" + identifier;
  return common->SetRunName(name.c_str(), true);
}

void CopyText(char (&target)[VXT_CLIENT_TEXT_SIZE], const std::string& text) {
  const size_t length = std::min(text.size(), sizeof target - 1);
  std::memcpy(target, text.data(), length);
  target[length] = '\0';
}

// Common sees the full record, whatever form the client used.
uint32_t MakeFullRecord(const VXT_Client& client, uint32_t isLocal, VXT_Client& record) {
  record = VXT_Client{};
  record.structureSize = VXT_CLIENT_SIZE;
  if (client.structureSize == VXT_CLIENT_SIZE) {
    record = client;
  } else if (client.structureSize == VXT_CLIENT_SHORT_SIZE || client.structureSize == 0) {
    record.clientId = client.clientId;
    CopyText(record.identifier, IdentifierOf(client));
  } else {
    frame::TextStream text;
    text << "VXT_Client structureSize is invalid: " << client.structureSize;
    Voxtrel_ErrorPostError(code::kStructureSize, text.str().c_str(), __FILE__, __LINE__);
    return code::kStructureSize;
  }
  record.isLocal = isLocal == 1 ? 1 : 0;
  frame::TextStream startTime;
  startTime << boost::posix_time::second_clock::universal_time();
  CopyText(record.startTime, startTime.str());
  return 0;
}

std::string ProcessGuidText() {
  const CommonComponent* common = nullptr;
  boost::uuids::uuid guid{};
  if (Voxtrel_GetCommon(&common) != 0 || common == nullptr || common->GetProcessGuid(guid.data) != 0) return {};
  return boost::uuids::to_string(guid);
}

std::string Hex8Text(uint32_t value) {
  frame::TextStream text;
  text << frame::Hex8{value};
  return text.str();
}

void ReportConnection(const VXT_Client& client, uint32_t isLocal) {
  const std::string guid = ProcessGuidText();
  Telemetry_BeginSession("Client_Lifespan", "processguid", guid.c_str());
  Telemetry_BuildDataSet("Client_Connect", "clientid", Hex8Text(client.clientId).c_str(), 0);

  static const std::regex kClientIdentifier("(.*)_([0-9]*)@([^@]*)", std::regex::ECMAScript);
  const std::string identifier = IdentifierOf(client);
  std::smatch parts;
  if (std::regex_match(identifier, parts, kClientIdentifier))
    Telemetry_BuildDataSet("Client_Connect", "clientidname_str", parts.str(1).c_str(), 0);

  Telemetry_BuildDataSet("Client_Connect", "islocal", isLocal != 0 ? "True" : "False", 0);
  Telemetry_SendEvent("Client_Lifespan", "Client_Connect");
}

// Steps of StartNewInstance that can fail; the caller reports the code.
uint32_t Connect(VXT_Client* client, uint32_t isLocal, uint32_t hostingType, void* port) {
  ConnectionState& state = ConnectionState::Get();
  if (client == nullptr) {
    Voxtrel_ErrorPostError(code::kInvalidArgument, "The given client structure is NULL", __FILE__, __LINE__);
    return code::kInvalidArgument;
  }

  const std::string identifier = IdentifierOf(*client);
  uint32_t code = SetRunName(identifier);
  if (Voxtrel_LoggingIsLoggingUsage()) {
    frame::TextStream text;
    text << "ClientID: " << client->clientId << ", ClientIdentifier: '" << identifier << "'";
    Voxtrel_LoggingLogUsage(kUsageStream, "Start", text.str().c_str());
  }
  frame::TraceLine(state.connectionLogger, 2, "New client connection. ClientID: ", client->clientId,
                   ", ClientIdentifier: '", identifier, "'");
  if (code != 0) return code;

  if (port != nullptr) {
    Voxtrel_ErrorPostError(
        code::kNotSupported,
        "A port was passed in to InProc_Vxt::StartNewInstance(). This is not supported at the moment", __FILE__,
        __LINE__);
    return code::kNotSupported;
  }
  if (hostingType == VXT_ServerHostingType_In_Process_Allow_Connections) {
    Voxtrel_ErrorPostError(code::kNotSupported, "VXT_ServerHostingType_In_Process_Allow_Connections is not supported",
                           __FILE__, __LINE__);
    return code::kNotSupported;
  }

  {
    std::lock_guard lock(state.connectionMutex);
    state.connectedClients.push_back(client->clientId);
    if (state.connectedClients.size() == 1) code = DoFirstClientWork();
  }
  if (code != 0) return code;

  const CommonComponent* common = nullptr;
  if (code = Voxtrel_GetCommon(&common); code != 0 || common == nullptr) return code;

  VXT_Client record;
  if (code = MakeFullRecord(*client, isLocal, record); code != 0) return code;
  code = common->RegisterClient(&record);
  if (code == 0) ReportConnection(record, isLocal);
  return code;
}

// Runs on every path of StartNewInstance, after its result is settled; what
// it meets is not reported, yet nothing it meets may leave the library.
void StartTargetInitialization() {
  frame::CatchAll(__FILE__, __LINE__, []() -> uint32_t {
    const TargetManagerComponent* targetManager = nullptr;
    if (Voxtrel_GetTargetManager(&targetManager) != 0 || targetManager == nullptr) return 0;
    targetManager->StartInitialization();
    ConnectionState::Get().ReplaceTopologySubscription();
    return 0;
  });
}

}  // namespace
}  // namespace vxt

using namespace vxt;

extern "C" VXT_Result StartNewInstance(VXT_Client* client, uint32_t isLocal, uint32_t hostingType, void* port) {
  const frame::ErrorContextScope context;
  const uint32_t code =
      frame::CatchAll(__FILE__, __LINE__, [&] { return Connect(client, isLocal, hostingType, port); });
  VXT_Result publicCode = 0;
  if (code != 0) publicCode = frame::ReportFailure(context.id(), code).publicCode;
  StartTargetInitialization();
  return publicCode;
}

extern "C" VXT_Result ConnectExistingInstance(VXT_Client*, uint32_t, void*) { return VXT_E_NOT_SUPPORTED; }

extern "C" VXT_Result Disconnect(uint32_t clientId) {
  ConnectionState& state = ConnectionState::Get();
  const frame::ErrorContextScope context;
  if (Voxtrel_LoggingIsLoggingUsage()) {
    frame::TextStream text;
    text << "ClientID: " << clientId;
    Voxtrel_LoggingLogUsage(kUsageStream, "Stop", text.str().c_str());
  }
  frame::TraceLine(state.connectionLogger, 1, "In  InProc_Vxt::Disconnect(clientId = ", clientId, ")");

  Telemetry_BuildDataSet("Client_Disconnect", "clientid", Hex8Text(clientId).c_str(), 0);
  Telemetry_SendEvent("Client_Lifespan", "Client_Disconnect");
  Telemetry_EndSession("Client_Lifespan");

  frame::CatchAll(__FILE__, __LINE__, [clientId]() -> uint32_t {
    const CommonComponent* common = nullptr;
    Voxtrel_GetCommon(&common);
    if (common != nullptr) common->UnregisterClient(clientId);
    return 0;
  });

  std::lock_guard lock(state.connectionMutex);
  auto& clients = state.connectedClients;
  if (auto found = std::find(clients.begin(), clients.end(), clientId); found != clients.end()) clients.erase(found);

  VXT_Result publicCode = 0;
  if (clients.empty()) {
    if (const uint32_t code = frame::CatchAll(__FILE__, __LINE__, [] { return DoLastClientWork(); }); code != 0)
      publicCode = frame::ReportFailure(context.id(), code).publicCode;
  }
  frame::TraceLine(state.connectionLogger, 1, "Out InProc_Vxt::Disconnect() ErrorCode = ", frame::Hex8{publicCode});
  return publicCode;
}

extern "C" VXT_Result DisconnectIfLastClient(uint32_t clientId, uint32_t* disconnected) {
  if (disconnected == nullptr) return VXT_E_INVALID_ARGUMENT;
  const VXT_Result result = Disconnect(clientId);
  if (result == 0) *disconnected = 1;
  return result;
}

extern "C" uint32_t IsConnected(void) {
  ConnectionState& state = ConnectionState::Get();
  std::lock_guard lock(state.connectionMutex);
  return state.connectedClients.empty() ? 0 : 1;
}
