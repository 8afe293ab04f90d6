// The DeviceControl service: a device's configs and actions through the
// DeviceControl component, and its modified configs through the target
// manager library's DeviceConfigManager. Its lines label each value with a
// colon, and the Out line holds only the code.
#pragma once

#include "DeviceControl.h"
#include "IInternalService_DeviceControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_DeviceControl : public SingletonService<InProc_DeviceControl>, public IInternalService_DeviceControl {
 public:
  InProc_DeviceControl();
  static InProc_DeviceControl& Instance();

  VXT_Result GetNumDeviceConfigNames(uint32_t deviceId, uint32_t* numDeviceConfigNames) override;
  VXT_Result GetDeviceConfigNames(uint32_t deviceId, uint32_t maxNumDeviceConfigNames,
                                  char* deviceConfigNames) override;
  VXT_Result SetDeviceConfig(uint32_t deviceId, const char* deviceConfigName, const char* value) override;
  VXT_Result GetDeviceConfig(uint32_t deviceId, const char* deviceConfigName, char* value) override;
  VXT_Result GetNumDeviceActionNames(uint32_t deviceId, uint32_t* numDeviceActionNames) override;
  VXT_Result GetDeviceActionNames(uint32_t deviceId, uint32_t maxNumDeviceActionNames,
                                  char* deviceActionNames) override;
  VXT_Result GetDeviceActionDescription(uint32_t deviceId, const char* deviceActionName, char* description) override;
  VXT_Result ExecuteDeviceAction(uint32_t deviceId, const char* deviceActionName, const char* input,
                                 char* result) override;
  VXT_Result GetDeviceConfigDescription(uint32_t deviceId, const char* deviceConfigName, char* description) override;
  VXT_Result GetNumDeviceConfigOptions(uint32_t deviceId, const char* deviceConfigName,
                                       uint32_t* numDeviceConfigOptions) override;
  VXT_Result GetDeviceConfigOptions(uint32_t deviceId, const char* deviceConfigName, uint32_t maxNumDeviceConfigOptions,
                                    char* deviceConfigOptions) override;
  VXT_Result GetNumModifiedDeviceConfigs(uint32_t deviceId, uint32_t* numModifiedDeviceConfigs) override;
  VXT_Result GetModifiedDeviceConfigs(uint32_t deviceId, uint32_t maxNumModifiedDeviceConfigs, char* names,
                                      char* firstValues, char* secondValues) override;
  VXT_Result RevertModifiedDeviceConfigs(uint32_t deviceId) override;

  // Component tables. Bound when the library is loaded.
  const DeviceControlComponent* deviceControl = nullptr;
  frame::ServiceLogger logger;
};

}  // namespace vxt
