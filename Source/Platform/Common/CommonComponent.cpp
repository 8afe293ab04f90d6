// The Common component: the clients of the process, the client each thread
// acts for, the run name, the process GUID and the log file operations.
#include <algorithm>
#include <cstring>
#include <string>

#include "Common.h"
#include "Common/ClientRegistry.h"
#include "Common/ProcessIdentity.h"
#include "Events/ClientEvent.h"
#include "Logging/LogFile.h"
#include "Support/ComponentCall.h"
#include "Target/CallArguments.h"
#include "Target/PostFailure.h"
#include "TargetManager/DeviceQueries.h"

namespace voxtrel::platform::common {

namespace {

using target::Failure;

inline constexpr uint32_t kNullArgument = 0x20000;
inline constexpr uint32_t kStructureSize = 0x2000a;
inline constexpr uint32_t kUnknownClient = 0x140000;

uint32_t NullArgument(const char* operation, const char* argument) {
  return VOXTREL_POST_FAILURE((Failure{kNullArgument, std::string(operation) + " was given a null " + argument}));
}

uint32_t SetRunName(const char* name, bool flag) {
  VOXTREL_COMPONENT_CALL("Common.SetRunName", "name=", target::QuotedArgument(name), ", flag=", flag);
  if (!name) return NullArgument("Common.SetRunName", "name");
  common::SetRunName(name);
  return 0;
}

// The event is a consequence of the registration, not part of it: a broker
// that does not deliver leaves the client registered.
uint32_t RegisterClient(const VXT_Client* record) {
  VOXTREL_COMPONENT_CALL("Common.RegisterClient", "clientId=", record ? std::to_string(record->clientId) : "<NULL>");
  if (!record) return NullArgument("Common.RegisterClient", "record");
  if (record->structureSize != VXT_CLIENT_SIZE)
    return VOXTREL_POST_FAILURE((Failure{kStructureSize, "Common.RegisterClient needs a full client record, not one of " +
                                                             std::to_string(record->structureSize) + " bytes"}));
  ClientRegistry::Instance().Register(*record);
  events::PublishClientEvent(events::kClientConnected, *record);
  return 0;
}

// An unknown id is told by code alone: the caller's own message must stand.
uint32_t UnregisterClient(uint32_t clientId) {
  VOXTREL_COMPONENT_CALL("Common.UnregisterClient", "clientId=", clientId);
  const std::optional<VXT_Client> removed = ClientRegistry::Instance().Unregister(clientId);
  if (!removed) return kUnknownClient;
  // A client's locks go with its last registration.
  if (!ClientRegistry::Instance().Find(clientId)) target_manager::ReleaseLocksOfDepartedClient(clientId);
  events::PublishClientEvent(events::kClientDisconnected, *removed);
  return 0;
}

uint32_t GetProcessGuid(uint8_t* guid16) {
  VOXTREL_COMPONENT_CALL("Common.GetProcessGuid");
  if (!guid16) return NullArgument("Common.GetProcessGuid", "guid");
  const std::array<uint8_t, 16>& guid = ProcessGuid();
  std::copy(guid.begin(), guid.end(), guid16);
  return 0;
}

// Trace trailers ask for the id on every line, inside the caller's error
// context: a thread that acts for no client gets 0 and a code, and nothing
// is posted.
uint32_t GetClientId(int32_t* clientId) {
  VOXTREL_COMPONENT_CALL("Common.GetClientId");
  if (!clientId) return NullArgument("Common.GetClientId", "clientId");
  const std::optional<uint32_t> bound = ClientRegistry::Instance().BoundClientId();
  *clientId = bound ? static_cast<int32_t>(*bound) : 0;
  return bound ? 0 : kUnknownClient;
}

uint32_t GetNumConnectedClients(uint32_t* numConnectedClients) {
  VOXTREL_COMPONENT_CALL("Common.GetNumConnectedClients");
  if (!numConnectedClients) return NullArgument("Common.GetNumConnectedClients", "numConnectedClients");
  *numConnectedClients = static_cast<uint32_t>(ClientRegistry::Instance().Count());
  return 0;
}

// numConnectedClients gets the number of records written, never more than
// the maximum, so that a caller may walk exactly that many. With a maximum
// of 0 the array is not touched and may be null.
uint32_t GetConnectedClients(uint32_t maxNumConnectedClients, uint32_t* numConnectedClients,
                             VXT_Client* connectedClients) {
  VOXTREL_COMPONENT_CALL("Common.GetConnectedClients", "maxNumConnectedClients=", maxNumConnectedClients);
  if (!numConnectedClients) return NullArgument("Common.GetConnectedClients", "numConnectedClients");
  if (!connectedClients && maxNumConnectedClients > 0)
    return NullArgument("Common.GetConnectedClients", "connectedClients");
  const std::vector<VXT_Client> records = ClientRegistry::Instance().Records(maxNumConnectedClients);
  std::copy(records.begin(), records.end(), connectedClients);
  *numConnectedClients = static_cast<uint32_t>(records.size());
  return 0;
}

uint32_t FlushLogs() {
  VOXTREL_COMPONENT_CALL("Common.FlushLogs");
  return FlushLogFile();
}

uint32_t ClearLogs() {
  VOXTREL_COMPONENT_CALL("Common.ClearLogs");
  return ClearLogFile();
}

uint32_t ArchiveLogs() {
  VOXTREL_COMPONENT_CALL("Common.ArchiveLogs");
  return ArchiveLogFile();
}

uint32_t IsClientLocal(uint32_t clientId, bool* isLocal) {
  VOXTREL_COMPONENT_CALL("Common.IsClientLocal", "clientId=", clientId);
  if (!isLocal) return NullArgument("Common.IsClientLocal", "isLocal");
  const std::optional<VXT_Client> record = ClientRegistry::Instance().Find(clientId);
  if (!record)
    return VOXTREL_POST_FAILURE(
        (Failure{kUnknownClient, "Common.IsClientLocal knows no client " + std::to_string(clientId)}));
  *isLocal = record->isLocal != 0;
  return 0;
}

constexpr CommonComponent kCommon{&SetRunName,  &RegisterClient,         &UnregisterClient,    &GetProcessGuid,
                                  &GetClientId, &GetNumConnectedClients, &GetConnectedClients, &FlushLogs,
                                  &ClearLogs,   &ArchiveLogs,            &IsClientLocal};

}  // namespace

}  // namespace voxtrel::platform::common

uint32_t Voxtrel_GetCommon(const CommonComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetCommon");
  if (!table) return 0x20000;
  *table = &voxtrel::platform::common::kCommon;
  return 0;
}
