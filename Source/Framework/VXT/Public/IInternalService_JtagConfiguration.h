// Service 18: the JTAG set-up and encrypted debug. The four chain queries
// are not offered by this version and answer VXT_E_NOT_IMPLEMENTED; the
// Device service (4) lists chains and their TAP controllers.
#pragma once

#include <cstdint>

#include "VXT_ErrorCodes.h"

class IInternalService_JtagConfiguration {
 public:
  virtual ~IInternalService_JtagConfiguration() = default;

  virtual VXT_Result GetJtagChainCount(uint32_t targetDomainId, uint32_t* numJtagChains) = 0;
  virtual VXT_Result GetJtagChains(uint32_t targetDomainId, uint32_t maxNumJtagChains, uint32_t* jtagChains) = 0;
  // A TAP controller's instruction register length; a chain's is the sum.
  virtual VXT_Result GetDeviceIrLength(uint32_t deviceId, uint32_t* irLength) = 0;
  virtual VXT_Result GetJtagChainDeviceCount(uint32_t jtagChainId, uint32_t* numDevices) = 0;
  virtual VXT_Result GetJtagChainDevices(uint32_t jtagChainId, uint32_t maxNumDeviceIds, uint32_t* deviceIds) = 0;
  virtual VXT_Result StartEncryptedDebug(uint32_t deviceId) = 0;
  // 1 while encrypted debug runs on the device, else 0.
  virtual VXT_Result GetEncryptedDebugStatus(uint32_t deviceId, uint32_t* status) = 0;
  virtual VXT_Result StopEncryptedDebug(uint32_t deviceId) = 0;
};
