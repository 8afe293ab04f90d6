// The Dma service: moves blocks of target memory by a device's
// configuration access methods, through a caller's buffer, a shared memory
// region or a file. The Dma component does the work; the service checks
// its arguments, turns a region's handle into an address and keeps every
// transfer inside its region. It keeps no state and takes no lock.
#pragma once

#include "Dma.h"
#include "IInternalService_Dma.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Dma : public SingletonService<InProc_Dma>, public IInternalService_Dma {
 public:
  static InProc_Dma& Instance();

  VXT_Result GetNumSupportedConfigurationAccessMethods(uint32_t deviceId,
                                                       uint32_t* numSupportedConfigurationAccessMethods) override;
  VXT_Result GetSupportedConfigurationAccessMethods(
      uint32_t deviceId, uint32_t maxNumMethods, char (*configAccessMethods)[VXT_CONFIG_ACCESS_METHOD_SIZE]) override;
  VXT_Result GetDefaultConfigurationAccessMethod(uint32_t deviceId, char* configMethod) override;
  VXT_Result ReadMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                        uint8_t* buffer, uint32_t* numBytesRead) override;
  VXT_Result WriteMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                         const uint8_t* buffer, uint32_t* numBytesWritten) override;
  VXT_Result ReadToSharedMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                uint32_t byteCount, uint32_t bufferOffset, uint64_t sharedMemoryHandle,
                                uint32_t* numBytesRead) override;
  VXT_Result WriteFromSharedMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address,
                                   uint32_t byteCount, uint32_t bufferOffset, uint64_t sharedMemoryHandle,
                                   uint32_t* numBytesWritten) override;
  VXT_Result SaveMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                        const char* fileName, uint32_t overwriteFile, const char* fileType, const char* saveOptions,
                        uint32_t* numBytesRead) override;
  VXT_Result LoadMemory(uint32_t deviceId, const char* configMethod, const VXT_Address* address, uint32_t byteCount,
                        const char* fileName, const char* fileType, const char* loadOptions,
                        uint32_t* numBytesWritten) override;
  VXT_Result ClearError(uint32_t deviceId, const char* configMethod, uint32_t force) override;

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const DmaComponent* dma = nullptr;
};

}  // namespace vxt
