// Service 24: raw byte access to an I2C bus. Each operation hands back an
// operation token; a read's bytes are the receipt's value.
#pragma once

#include <cstdint>

#include "VXT_ErrorCodes.h"

class IInternalService_I2cAccess {
 public:
  virtual ~IInternalService_I2cAccess() = default;

  virtual VXT_Result I2cRawRead(uint32_t i2cBusId, uint8_t idbyte, uint32_t bytecnt, uint32_t options,
                                uint64_t* operationToken) = 0;
  virtual VXT_Result I2cRawWrite(uint32_t i2cBusId, uint8_t idbyte, const uint8_t* bytebuffer, uint32_t bytecnt,
                                 uint32_t options, uint64_t* operationToken) = 0;
  virtual VXT_Result Lock(uint32_t i2cBusId, uint64_t* operationToken) = 0;
  virtual VXT_Result Unlock(uint32_t i2cBusId, uint64_t* operationToken) = 0;
  virtual VXT_Result BundleScan(uint32_t i2cBusId, const void* bundleBuffer, uint32_t bundleBufferSize,
                                uint64_t* operationToken) = 0;
};
