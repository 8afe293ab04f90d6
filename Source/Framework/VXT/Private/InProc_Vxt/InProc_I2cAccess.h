// The I2cAccess service: traces and counts each call and forwards it to the
// I2c component, whose table it asks for on every call, so that it works as
// soon as the component answers. The bus lock and the devices are the
// component's.
#pragma once

#include "IInternalService_I2cAccess.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_I2cAccess : public SingletonService<InProc_I2cAccess>, public IInternalService_I2cAccess {
 public:
  static InProc_I2cAccess& Instance();

  VXT_Result I2cRawRead(uint32_t i2cBusId, uint8_t idbyte, uint32_t bytecnt, uint32_t options,
                        uint64_t* operationToken) override;
  VXT_Result I2cRawWrite(uint32_t i2cBusId, uint8_t idbyte, const uint8_t* bytebuffer, uint32_t bytecnt,
                         uint32_t options, uint64_t* operationToken) override;
  VXT_Result Lock(uint32_t i2cBusId, uint64_t* operationToken) override;
  VXT_Result Unlock(uint32_t i2cBusId, uint64_t* operationToken) override;
  VXT_Result BundleScan(uint32_t i2cBusId, const void* bundleBuffer, uint32_t bundleBufferSize,
                        uint64_t* operationToken) override;

  frame::ServiceLogger logger;
};

}  // namespace vxt
