// The JtagAccess service: traces and counts each call, checks every bit
// vector record that comes in and hands the component the BitData object
// behind it, so that no client handle reaches the Jtag component. The chain
// lock and what each scan does are the component's.
#pragma once

#include "IInternalService_JtagAccess.h"
#include "Jtag.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_JtagAccess : public SingletonService<InProc_JtagAccess>, public IInternalService_JtagAccess {
 public:
  InProc_JtagAccess();
  static InProc_JtagAccess& Instance();

  VXT_Result GoToState(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t numClocks,
                       VXT_JtagWaitType jtagWaitType, uint64_t* operationToken) override;
  VXT_Result Shift(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t shiftCount,
                   const VXT_BitData* tdiValue, uint64_t* operationToken) override;
  VXT_Result GoToStateOnMultipleChains(uint32_t numJtagChains, const uint32_t* jtagChainIds, VXT_JtagState jtagState,
                                       uint32_t numClocks, uint64_t* operationToken) override;
  VXT_Result TapReset(uint32_t jtagChainId, VXT_JtagResetType resetType, uint64_t* operationToken) override;
  VXT_Result IrDrScan(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue, uint32_t shiftCount,
                      const VXT_BitData* drValue, uint64_t* operationToken) override;
  VXT_Result IrDrScanOptimized(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue, uint32_t shiftCount,
                               const VXT_BitData* drValue, uint64_t* operationToken) override;
  VXT_Result IrDrScanVerify(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue, uint32_t shiftCount,
                            const VXT_BitData* drValue, uint64_t* operationToken) override;
  VXT_Result IrDrScanReplace(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue, uint32_t shiftCount,
                             const VXT_BitData* drValue, uint64_t* operationToken) override;
  VXT_Result IrDrScanReadModifyWrite(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue, uint32_t shiftCount,
                                     const VXT_BitData* drValue, const VXT_BitData* drValueMask,
                                     uint64_t* operationToken) override;
  VXT_Result IrDrScanAuto(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue, uint32_t maxShiftCount,
                          const VXT_BitData* drValue, uint64_t* operationToken) override;
  VXT_Result Lock(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken) override;
  VXT_Result Unlock(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken) override;
  VXT_Result BundleScan(uint32_t jtagChainIdOrDeviceId, const void* bundle, uint32_t bundleSize,
                        uint64_t* operationToken) override;
  VXT_Result ShiftCompare(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t shiftCount,
                          const VXT_BitData* tdiValue, const VXT_BitData* compareValue,
                          const VXT_BitData* compareValueMask, uint64_t* operationToken) override;
  VXT_Result Mark(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken) override;
  VXT_Result Repeat(uint32_t jtagChainIdOrDeviceId, uint32_t maxIterations, VXT_JtagRepeatType repeatType,
                    uint64_t* operationToken) override;

  frame::ServiceLogger logger;
  // Bound when the library is loaded: the record of the three Jtag tables.
  const JtagComponent* jtag = nullptr;
};

}  // namespace vxt
