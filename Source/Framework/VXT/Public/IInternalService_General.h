// Service 7: the library itself, logging control, connected clients and
// shared memory regions.
#pragma once

#include <cstdint>

#include "VXT_Client.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Version.h"

class IInternalService_General {
 public:
  virtual ~IInternalService_General() = default;

  virtual VXT_Result GetImplementationVersion(VXT_Version* version) = 0;
  // Fills all VXT_IMPLEMENTATION_IDENTIFIER_SIZE characters of `identifier`.
  virtual VXT_Result GetImplementationIdentifier(char* identifier) = 0;

  // A region of `memorySize` bytes that this process and the client map;
  // handles count from 1 per client.
  virtual VXT_Result AllocateSharedMemory(uint32_t memorySize, uint64_t* handle) = 0;
  virtual VXT_Result GetSharedMemoryAddress(uint64_t handle, void** address) = 0;
  // The region's name in the operating system, in a buffer of
  // VXT_SHARED_MEMORY_IDENTIFIER_SIZE characters.
  virtual VXT_Result GetSharedMemoryIdentifier(uint64_t handle, char* identifier) = 0;
  virtual VXT_Result FreeSharedMemory(uint64_t handle) = 0;

  virtual VXT_Result GetLoggingPresetNamesCount(uint32_t* numPresetNames) = 0;
  // Fills the first numPresetNames buffers of VXT_LOGGING_PRESET_NAME_SIZE characters.
  virtual VXT_Result GetLoggingPresetNames(uint32_t numPresetNames, char** presetNames) = 0;
  virtual VXT_Result LoadLoggingPreset(const char* presetName) = 0;
  // Writes the client's own line into the library's trace.
  virtual VXT_Result WriteLogMessage(const char* message) = 0;

  virtual VXT_Result GetNumConnectedClients(uint32_t* numConnectedClients) = 0;
  // Each record's structureSize, set in advance (0 counts as short), says
  // how much of it is filled and where the next one starts.
  virtual VXT_Result GetConnectedClients(uint32_t maxNumConnectedClients, uint32_t* numConnectedClients,
                                         VXT_Client* connectedClients) = 0;

  virtual VXT_Result FlushLogs() = 0;
  virtual VXT_Result ClearLogs() = 0;
  virtual VXT_Result ArchiveLogs() = 0;
  // Writes the loaded preset's name into a buffer of VXT_LOGGING_PRESET_NAME_SIZE characters.
  virtual VXT_Result GetLoadedLoggingPreset(char* presetName) = 0;
};
