// The Dma component: transfers between a target domain's physical memory
// and a caller's buffer or a file, by a device's configuration access
// methods. Every operation returns an internal code, 0 for success.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "VXT_Records.h"

struct DmaComponent {
  // `configAccessMethods` holds maxNumMethods buffers of 64 characters; the
  // count of the device's methods goes to `numMethods`.
  uint32_t (*GetSupportedConfigurationAccessMethods)(uint32_t deviceId, uint32_t maxNumMethods,
                                                     char (*configAccessMethods)[64], uint32_t* numMethods);
  uint32_t (*GetDefaultConfigurationAccessMethod)(uint32_t deviceId, char* configMethod);
  uint32_t (*ReadMemory)(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                         uint8_t* buffer, uint32_t* numBytesRead);
  uint32_t (*WriteMemory)(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                          uint32_t byteCount, const uint8_t* buffer, uint32_t* numBytesWritten);
  uint32_t (*SaveMemory)(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                         const char* fileName, uint32_t overwriteFile, const char* fileType, const char* saveOptions,
                         uint32_t* numBytesRead);
  uint32_t (*LoadMemory)(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                         const char* fileName, const char* fileType, const char* loadOptions,
                         uint32_t* numBytesWritten);
  uint32_t (*ClearError)(uint32_t deviceId, const char* configMethod, uint32_t force);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetDma(const DmaComponent** table);
