// Service 19: a scan chain seen from outside its description. Results list
// the TAP controllers from the TDO end. Each capture also reports the
// traits of the TDI-TDO path (VXT_JtagTdiTdoContinuity; `detectedTraits`
// may be null).
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

class IInternalService_JtagDiagnostic {
 public:
  virtual ~IInternalService_JtagDiagnostic() = default;

  // Resets the chain and reads each TAP controller's IDCODE (0 for one
  // that has none and shows a bypass bit).
  virtual VXT_Result TapResetGetIdcodes(uint32_t jtagChainId, int32_t maxDeviceCount, uint32_t* idcodes,
                                        int32_t* numDevices, VXT_JtagTdiTdoContinuity* detectedTraits) = 0;
  // Loads `irValue`, then captures the data register path into a new vector
  // in the empty record `drValue`, of the length found (at most maxDrLength).
  virtual VXT_Result CaptureDr(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue, int32_t maxDrLength,
                               VXT_BitData* drValue, VXT_JtagTdiTdoContinuity* detectedTraits) = 0;
  // Resets the chain and captures every instruction register into a new
  // vector in each of the `maxDeviceCount` empty records, then leaves every
  // TAP controller in BYPASS.
  virtual VXT_Result CaptureIrBypass(uint32_t jtagChainId, int32_t maxTdiTdoIrLength, int32_t maxDeviceCount,
                                     VXT_BitData** capturedIrValue, int32_t* numDevices,
                                     VXT_JtagTdiTdoContinuity* detectedTraits) = 0;
  // Releases the chain's lock, whoever holds it.
  virtual VXT_Result BreakLock(uint32_t jtagChainId) = 0;
  // The holder's client identifier (VXT_CLIENT_TEXT_SIZE); empty when free.
  virtual VXT_Result GetLockingClient(uint32_t jtagChainId, char* clientIdentifier) = 0;
};
