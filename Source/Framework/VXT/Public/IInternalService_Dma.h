// Service 30: blocks of target memory moved by a device's configuration
// access methods, without operation tokens: each transfer tells through its
// out argument how many bytes moved. A transfer goes through the caller's
// buffer, a shared memory region (General service) or a file.
#pragma once

#include <cstdint>

#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

// Characters of one method name, terminating zero included.
inline constexpr uint32_t VXT_CONFIG_ACCESS_METHOD_SIZE = 64;

class IInternalService_Dma {
 public:
  virtual ~IInternalService_Dma() = default;

  virtual VXT_Result GetNumSupportedConfigurationAccessMethods(uint32_t deviceId,
                                                               uint32_t* numSupportedConfigurationAccessMethods) = 0;
  // Fills at most maxNumMethods buffers of VXT_CONFIG_ACCESS_METHOD_SIZE characters.
  virtual VXT_Result GetSupportedConfigurationAccessMethods(
      uint32_t deviceId, uint32_t maxNumMethods, char (*configAccessMethods)[VXT_CONFIG_ACCESS_METHOD_SIZE]) = 0;
  // `configMethod` holds VXT_CONFIG_ACCESS_METHOD_SIZE characters.
  virtual VXT_Result GetDefaultConfigurationAccessMethod(uint32_t deviceId, char* configMethod) = 0;
  virtual VXT_Result ReadMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                uint32_t byteCount, uint8_t* buffer, uint32_t* numBytesRead) = 0;
  virtual VXT_Result WriteMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                 uint32_t byteCount, const uint8_t* buffer, uint32_t* numBytesWritten) = 0;
  // The bytes go to, or come from, the region at `bufferOffset`; the
  // transfer must lie inside the region.
  virtual VXT_Result ReadToSharedMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                        uint32_t byteCount, uint32_t bufferOffset, uint64_t sharedMemoryHandle,
                                        uint32_t* numBytesRead) = 0;
  virtual VXT_Result WriteFromSharedMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                           uint32_t byteCount, uint32_t bufferOffset, uint64_t sharedMemoryHandle,
                                           uint32_t* numBytesWritten) = 0;
  virtual VXT_Result SaveMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                uint32_t byteCount, const char* fileName, uint32_t overwriteFile, const char* fileType,
                                const char* saveOptions, uint32_t* numBytesRead) = 0;
  virtual VXT_Result LoadMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                uint32_t byteCount, const char* fileName, const char* fileType,
                                const char* loadOptions, uint32_t* numBytesWritten) = 0;
  // Ends the error a failed transfer left on the method.
  virtual VXT_Result ClearError(uint32_t deviceId, const char* configMethod, uint32_t force) = 0;
};
