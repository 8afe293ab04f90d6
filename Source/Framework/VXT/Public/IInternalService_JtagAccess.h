// Service 13: raw access to a JTAG scan chain, named by its id or by the id
// of a TAP controller on it (then that controller alone is scanned, the
// others in BYPASS). Every operation gives an operation token (service 14)
// whose value holds the TDO bits the operation saw.
//
// Values are bit vectors of the calling client (service 1). A chain-wide
// value lists the bits from the TDO end: bit 0 is bit 0 of the TAP
// controller nearest TDO. Data a call does not pass shifts zeros. The TAP
// states are those of IEEE 1149.1 (VXT_JtagState).
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

class IInternalService_JtagAccess {
 public:
  virtual ~IInternalService_JtagAccess() = default;

  // Moves along the shortest path to `jtagState` and spends `numClocks`
  // more clocks there (TLR, RTI, shift and pause states only).
  virtual VXT_Result GoToState(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t numClocks,
                               VXT_JtagWaitType jtagWaitType, uint64_t* operationToken) = 0;
  // In ShfDR or ShfIR: shifts `shiftCount` bits of `tdiValue` (may be
  // null), then moves to `jtagState`; staying in the shift state keeps TMS 0.
  virtual VXT_Result Shift(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t shiftCount,
                           const VXT_BitData* tdiValue, uint64_t* operationToken) = 0;
  virtual VXT_Result GoToStateOnMultipleChains(uint32_t numJtagChains, const uint32_t* jtagChainIds,
                                               VXT_JtagState jtagState, uint32_t numClocks,
                                               uint64_t* operationToken) = 0;
  virtual VXT_Result TapReset(uint32_t jtagChainId, VXT_JtagResetType resetType, uint64_t* operationToken) = 0;
  // Loads `irValue` (the IR length of the chain or TAP controller), scans
  // `shiftCount` bits of `drValue` through the data register and ends in
  // RTI; the value is what the data register held.
  virtual VXT_Result IrDrScan(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue, uint32_t shiftCount,
                              const VXT_BitData* drValue, uint64_t* operationToken) = 0;
  // Skips the IR scan when every TAP controller holds that instruction already.
  virtual VXT_Result IrDrScanOptimized(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue,
                                       uint32_t shiftCount, const VXT_BitData* drValue,
                                       uint64_t* operationToken) = 0;
  // Fails the operation when an instruction register did not capture ...01.
  virtual VXT_Result IrDrScanVerify(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue, uint32_t shiftCount,
                                    const VXT_BitData* drValue, uint64_t* operationToken) = 0;
  // Writes `drValue`, reads it back and puts the old value back; the value
  // shows which bits took (read-only bits keep theirs).
  virtual VXT_Result IrDrScanReplace(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue,
                                     uint32_t shiftCount, const VXT_BitData* drValue,
                                     uint64_t* operationToken) = 0;
  // Reads the register, then writes `drValue` where `drValueMask` has ones
  // (everywhere when null) and the old bits elsewhere; the value is the old.
  virtual VXT_Result IrDrScanReadModifyWrite(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue,
                                             uint32_t shiftCount, const VXT_BitData* drValue,
                                             const VXT_BitData* drValueMask, uint64_t* operationToken) = 0;
  // Finds the data register's length (at most maxShiftCount) and scans it whole.
  virtual VXT_Result IrDrScanAuto(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue,
                                  uint32_t maxShiftCount, const VXT_BitData* drValue, uint64_t* operationToken) = 0;
  // While a client holds a chain, other clients' operations on it are refused.
  virtual VXT_Result Lock(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken) = 0;
  virtual VXT_Result Unlock(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken) = 0;
  // Records of a kind byte and little-endian fields: 0x01 state:u8
  // numClocks:u32 (GoToState); 0x02 state:u8 count:u32 tdi:(count+7)/8
  // bytes (Shift); 0x03 (TRST). The value is the TDO of all shifts.
  virtual VXT_Result BundleScan(uint32_t jtagChainIdOrDeviceId, const void* bundle, uint32_t bundleSize,
                                uint64_t* operationToken) = 0;
  // As Shift; the operation fails when TDO differs from compareValue where
  // compareValueMask has ones.
  virtual VXT_Result ShiftCompare(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t shiftCount,
                                  const VXT_BitData* tdiValue, const VXT_BitData* compareValue,
                                  const VXT_BitData* compareValueMask, uint64_t* operationToken) = 0;
  // The calling client's scans on the chain after Mark are run again by
  // Repeat: maxIterations times, or until every compare matched (the
  // simulated probe has no trigger). Repeat's value is the iterations run.
  virtual VXT_Result Mark(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken) = 0;
  virtual VXT_Result Repeat(uint32_t jtagChainIdOrDeviceId, uint32_t maxIterations, VXT_JtagRepeatType repeatType,
                            uint64_t* operationToken) = 0;
};
