// The General service: the library itself, logging control, connected
// clients and shared memory regions.
#pragma once

#include "Common.h"
#include "EventBroker.h"
#include "IInternalService_General.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_General : public SingletonService<InProc_General>, public IInternalService_General {
 public:
  static InProc_General& Instance();

  VXT_Result GetImplementationVersion(VXT_Version* version) override;
  VXT_Result GetImplementationIdentifier(char* identifier) override;
  VXT_Result AllocateSharedMemory(uint32_t memorySize, uint64_t* handle) override;
  VXT_Result GetSharedMemoryAddress(uint64_t handle, void** address) override;
  VXT_Result GetSharedMemoryIdentifier(uint64_t handle, char* identifier) override;
  VXT_Result FreeSharedMemory(uint64_t handle) override;
  VXT_Result GetLoggingPresetNamesCount(uint32_t* numPresetNames) override;
  VXT_Result GetLoggingPresetNames(uint32_t numPresetNames, char** presetNames) override;
  VXT_Result LoadLoggingPreset(const char* presetName) override;
  VXT_Result WriteLogMessage(const char* message) override;
  VXT_Result GetNumConnectedClients(uint32_t* numConnectedClients) override;
  VXT_Result GetConnectedClients(uint32_t maxNumConnectedClients, uint32_t* numConnectedClients,
                                 VXT_Client* connectedClients) override;
  VXT_Result FlushLogs() override;
  VXT_Result ClearLogs() override;
  VXT_Result ArchiveLogs() override;
  VXT_Result GetLoadedLoggingPreset(char* presetName) override;

  // Subscribed to the "Client" events: frees the shared memory regions of a
  // client that has disconnected.
  static void _ClientCloseCallback(void* userData, const char* eventName, const void* eventData);
  // Frees every client's regions; the last client's departure calls it.
  static void _ClearRegions();
  // The size in bytes of the calling client's region `handle`, for the
  // services that move data into it; 0 for a handle the client does not
  // hold. No frame: the caller has looked the handle up through
  // GetSharedMemoryAddress already.
  uint64_t _GetSharedMemorySize(uint64_t handle) const;

  // Component tables, bound by FinishInitialization.
  const CommonComponent* common = nullptr;
  const EventBrokerComponent* eventBroker = nullptr;
  frame::ServiceLogger logger;
  // The close callback is subscribed.
  bool closeCallbackSubscribed = false;
};

}  // namespace vxt
