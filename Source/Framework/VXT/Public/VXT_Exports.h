// The functions exported by libInProc_Vxt.so, with C linkage.
#pragma once

#include <cstdint>

#include "VXT_Client.h"
#include "VXT_Configuration.h"
#include "VXT_ErrorCodes.h"

#define VXT_API __attribute__((visibility("default")))

extern "C" {

// Connection. A client enters with StartNewInstance and leaves with Disconnect;
// the first client starts the platform and the last one stops it.
VXT_API VXT_Result StartNewInstance(VXT_Client* client, uint32_t isLocal, uint32_t hostingType, void* port);
// Not served: a client always enters through StartNewInstance.
VXT_API VXT_Result ConnectExistingInstance(VXT_Client* client, uint32_t isLocal, void* port);
VXT_API VXT_Result Disconnect(uint32_t clientId);
// Disconnects, and sets *disconnected to 1 when that succeeded.
VXT_API VXT_Result DisconnectIfLastClient(uint32_t clientId, uint32_t* disconnected);
// 1 while any client is connected.
VXT_API uint32_t IsConnected(void);

// Lookup. `reserved` is not read. *service receives the address of the
// service's IInternalService_<Service> interface.
VXT_API VXT_Result GetService(void* reserved, uint32_t serviceId, void** service);
// The text of the calling thread's last failure; empty if there is none.
// Valid until this thread's next GetService or failing call.
VXT_API const char* GetLastErrorMessage(void);

// Configuration and initialization.
VXT_API VXT_Result SelectConfigurationByFileName(const char* fileName);
VXT_API VXT_Result SelectConfigurationByName(const char* configurationName);
VXT_API VXT_Result GetAvailableConfigurationCount(uint32_t* configurationCount);
VXT_API VXT_Result GetAvailableConfigurations(uint32_t maxConfigurationCount, VXT_ConfigurationName* configurations);
VXT_API VXT_Result SetConfigurationParameters(uint32_t parameterCount, const char* const* parameterNames,
                                              const char* const* parameterValues);
VXT_API VXT_Result SetClientInfo(const char* key, const char* value);
VXT_API VXT_Result FinishInitialization(void);
VXT_API VXT_Result BeginDynamicInitialization(void);
VXT_API VXT_Result CancelDynamicInitialization(void);

}  // extern "C"
