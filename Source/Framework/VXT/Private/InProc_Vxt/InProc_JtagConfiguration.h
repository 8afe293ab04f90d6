// The JtagConfiguration service: instruction register lengths and the
// encrypted debug switch. Its four chain queries are not offered: they
// check their argument and answer "not implemented".
#pragma once

#include "IInternalService_JtagConfiguration.h"
#include "Jtag.h"
#include "SingletonService.h"
#include "TargetManager.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_JtagConfiguration : public SingletonService<InProc_JtagConfiguration>,
                                 public IInternalService_JtagConfiguration {
 public:
  InProc_JtagConfiguration();
  static InProc_JtagConfiguration& Instance();

  VXT_Result GetJtagChainCount(uint32_t targetDomainId, uint32_t* numJtagChains) override;
  VXT_Result GetJtagChains(uint32_t targetDomainId, uint32_t maxNumJtagChains, uint32_t* jtagChains) override;
  VXT_Result GetDeviceIrLength(uint32_t deviceId, uint32_t* irLength) override;
  VXT_Result GetJtagChainDeviceCount(uint32_t jtagChainId, uint32_t* numDevices) override;
  VXT_Result GetJtagChainDevices(uint32_t jtagChainId, uint32_t maxNumDeviceIds, uint32_t* deviceIds) override;
  VXT_Result StartEncryptedDebug(uint32_t deviceId) override;
  VXT_Result GetEncryptedDebugStatus(uint32_t deviceId, uint32_t* status) override;
  VXT_Result StopEncryptedDebug(uint32_t deviceId) override;

  frame::ServiceLogger logger;
  // Bound when the library is loaded.
  const JtagComponent* jtag = nullptr;
  const TargetManagerComponent* targetManager = nullptr;
};

}  // namespace vxt
