// The Common component: client records, the client of the calling thread,
// the run name, the process GUID and the log file operations.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "VXT_Client.h"

struct CommonComponent {
  uint32_t (*SetRunName)(const char* name, bool flag);
  // Records a client and binds the calling thread to it. Publishes the
  // "Client" event "Connected" with the full 1296-byte record.
  uint32_t (*RegisterClient)(const VXT_Client* record);
  // Forgets a client. Publishes "Client" / "Disconnected" with its record.
  uint32_t (*UnregisterClient)(uint32_t clientId);
  uint32_t (*GetProcessGuid)(uint8_t* guid16);
  // Id of the client on whose behalf the calling thread runs; 0 if none.
  uint32_t (*GetClientId)(int32_t* clientId);
  uint32_t (*GetNumConnectedClients)(uint32_t* numConnectedClients);
  // Writes at most maxNumConnectedClients full records.
  uint32_t (*GetConnectedClients)(uint32_t maxNumConnectedClients, uint32_t* numConnectedClients,
                                  VXT_Client* connectedClients);
  uint32_t (*FlushLogs)();
  uint32_t (*ClearLogs)();
  uint32_t (*ArchiveLogs)();
  uint32_t (*IsClientLocal)(uint32_t clientId, bool* isLocal);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetCommon(const CommonComponent** table);
