// The JtagDiagnostic service: IDCODEs after a reset, data register and
// instruction register captures with the traits of the TDI-TDO path, and
// the chain lock seen from outside. Unlike its siblings it creates bit
// vectors for the client, and takes them back when a capture fails.
#pragma once

#include "IInternalService_JtagDiagnostic.h"
#include "Jtag.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_JtagDiagnostic : public SingletonService<InProc_JtagDiagnostic>, public IInternalService_JtagDiagnostic {
 public:
  InProc_JtagDiagnostic();
  static InProc_JtagDiagnostic& Instance();

  VXT_Result TapResetGetIdcodes(uint32_t jtagChainId, int32_t maxDeviceCount, uint32_t* idcodes, int32_t* numDevices,
                                VXT_JtagTdiTdoContinuity* detectedTraits) override;
  VXT_Result CaptureDr(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue, int32_t maxDrLength,
                       VXT_BitData* drValue, VXT_JtagTdiTdoContinuity* detectedTraits) override;
  VXT_Result CaptureIrBypass(uint32_t jtagChainId, int32_t maxTdiTdoIrLength, int32_t maxDeviceCount,
                             VXT_BitData** capturedIrValue, int32_t* numDevices,
                             VXT_JtagTdiTdoContinuity* detectedTraits) override;
  VXT_Result BreakLock(uint32_t jtagChainId) override;
  VXT_Result GetLockingClient(uint32_t jtagChainId, char* clientIdentifier) override;

  frame::ServiceLogger logger;
  // Bound when the library is loaded: the record of the three Jtag tables.
  const JtagComponent* jtag = nullptr;
};

}  // namespace vxt
