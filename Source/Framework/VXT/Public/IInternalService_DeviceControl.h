// Service 28: the named settings (configs) and actions of a device, and the
// configs changed from their defaults. Every text is NUL-terminated.
#pragma once

#include <cstdint>

#include "VXT_ErrorCodes.h"

// Sizes of the buffers this system's DeviceControl component fills: each
// field of a name or option array, a value, a description or a result.
inline constexpr uint32_t VXT_DEVICE_CONFIG_NAME_SIZE = 64;
inline constexpr uint32_t VXT_DEVICE_CONFIG_VALUE_SIZE = 128;
inline constexpr uint32_t VXT_DEVICE_CONTROL_TEXT_SIZE = 512;

class IInternalService_DeviceControl {
 public:
  virtual ~IInternalService_DeviceControl() = default;

  virtual VXT_Result GetNumDeviceConfigNames(uint32_t deviceId, uint32_t* numDeviceConfigNames) = 0;
  virtual VXT_Result GetDeviceConfigNames(uint32_t deviceId, uint32_t maxNumDeviceConfigNames,
                                          char* deviceConfigNames) = 0;
  virtual VXT_Result SetDeviceConfig(uint32_t deviceId, const char* deviceConfigName, const char* value) = 0;
  virtual VXT_Result GetDeviceConfig(uint32_t deviceId, const char* deviceConfigName, char* value) = 0;
  virtual VXT_Result GetNumDeviceActionNames(uint32_t deviceId, uint32_t* numDeviceActionNames) = 0;
  virtual VXT_Result GetDeviceActionNames(uint32_t deviceId, uint32_t maxNumDeviceActionNames,
                                          char* deviceActionNames) = 0;
  virtual VXT_Result GetDeviceActionDescription(uint32_t deviceId, const char* deviceActionName,
                                                char* description) = 0;
  virtual VXT_Result ExecuteDeviceAction(uint32_t deviceId, const char* deviceActionName, const char* input,
                                         char* result) = 0;
  virtual VXT_Result GetDeviceConfigDescription(uint32_t deviceId, const char* deviceConfigName,
                                                char* description) = 0;
  virtual VXT_Result GetNumDeviceConfigOptions(uint32_t deviceId, const char* deviceConfigName,
                                               uint32_t* numDeviceConfigOptions) = 0;
  virtual VXT_Result GetDeviceConfigOptions(uint32_t deviceId, const char* deviceConfigName,
                                            uint32_t maxNumDeviceConfigOptions, char* deviceConfigOptions) = 0;
  virtual VXT_Result GetNumModifiedDeviceConfigs(uint32_t deviceId, uint32_t* numModifiedDeviceConfigs) = 0;
  // `names`: 64-byte fields; `firstValues` (the value in force) and
  // `secondValues` (the default): 128-byte fields.
  virtual VXT_Result GetModifiedDeviceConfigs(uint32_t deviceId, uint32_t maxNumModifiedDeviceConfigs, char* names,
                                              char* firstValues, char* secondValues) = 0;
  virtual VXT_Result RevertModifiedDeviceConfigs(uint32_t deviceId) = 0;
};
