// The DeviceControl component: the settings (configs) and actions of each
// device. Buffers are those of IInternalService_DeviceControl.h: 64-byte
// name and option fields, 128-byte values, 512-byte descriptions and results.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

struct DeviceControlComponent {
  uint32_t (*GetNumDeviceConfigNames)(uint32_t deviceId, uint32_t* numDeviceConfigNames);
  uint32_t (*GetDeviceConfigNames)(uint32_t deviceId, uint32_t maxNumDeviceConfigNames, char* deviceConfigNames);
  uint32_t (*SetDeviceConfig)(uint32_t deviceId, const char* deviceConfigName, const char* value);
  uint32_t (*GetDeviceConfig)(uint32_t deviceId, const char* deviceConfigName, char* value);
  uint32_t (*GetNumDeviceActionNames)(uint32_t deviceId, uint32_t* numDeviceActionNames);
  uint32_t (*GetDeviceActionNames)(uint32_t deviceId, uint32_t maxNumDeviceActionNames, char* deviceActionNames);
  uint32_t (*GetDeviceActionDescription)(uint32_t deviceId, const char* deviceActionName, char* description);
  uint32_t (*ExecuteDeviceAction)(uint32_t deviceId, const char* deviceActionName, const char* input, char* result);
  uint32_t (*GetDeviceConfigDescription)(uint32_t deviceId, const char* deviceConfigName, char* description);
  uint32_t (*GetNumDeviceConfigOptions)(uint32_t deviceId, const char* deviceConfigName,
                                        uint32_t* numDeviceConfigOptions);
  uint32_t (*GetDeviceConfigOptions)(uint32_t deviceId, const char* deviceConfigName,
                                     uint32_t maxNumDeviceConfigOptions, char* deviceConfigOptions);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetDeviceControl(const DeviceControlComponent** table);
