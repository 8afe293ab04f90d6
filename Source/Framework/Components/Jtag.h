// The Jtag component: scan chains of TAP controllers.
//
// Unlike the other components' getters, Voxtrel_GetJtag gives a record of
// three tables: the access table (the JtagAccess service), the
// configuration table (JtagConfiguration) and the diagnostic table
// (JtagDiagnostic). Every entry returns an internal code; the access
// operations hand back an operation token whose value holds the TDO bits
// of the scan. A chain is named by its own id or by the id of a TAP
// controller on it; the bit vectors are BitData library objects, read
// before the entry returns.
#pragma once

#include <cstdint>

#include "BitData.h"
#include "PlatformApi.h"
#include "VXT_Enumerations.h"

struct JtagAccessComponent {
  uint32_t (*GoToState)(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t numClocks,
                        VXT_JtagWaitType jtagWaitType, uint64_t* operationToken);
  uint32_t (*Shift)(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t shiftCount, const BitData* tdi,
                    uint64_t* operationToken);
  uint32_t (*GoToStateOnMultipleChains)(uint32_t numJtagChains, const uint32_t* jtagChainIds,
                                        VXT_JtagState jtagState, uint32_t numClocks, uint64_t* operationToken);
  uint32_t (*TapReset)(uint32_t jtagChainId, VXT_JtagResetType resetType, uint64_t* operationToken);
  uint32_t (*IrDrScan)(uint32_t jtagChainIdOrDeviceId, const BitData* ir, uint32_t shiftCount, const BitData* dr,
                       uint64_t* operationToken);
  uint32_t (*IrDrScanOptimized)(uint32_t jtagChainIdOrDeviceId, const BitData* ir, uint32_t shiftCount,
                                const BitData* dr, uint64_t* operationToken);
  uint32_t (*IrDrScanVerify)(uint32_t jtagChainIdOrDeviceId, const BitData* ir, uint32_t shiftCount,
                             const BitData* dr, uint64_t* operationToken);
  uint32_t (*IrDrScanReplace)(uint32_t jtagChainIdOrDeviceId, const BitData* ir, uint32_t shiftCount,
                              const BitData* dr, uint64_t* operationToken);
  uint32_t (*IrDrScanReadModifyWrite)(uint32_t jtagChainIdOrDeviceId, const BitData* ir, uint32_t shiftCount,
                                      const BitData* dr, const BitData* drMask, uint64_t* operationToken);
  uint32_t (*IrDrScanAuto)(uint32_t jtagChainIdOrDeviceId, const BitData* ir, uint32_t maxShiftCount,
                           const BitData* dr, uint64_t* operationToken);
  uint32_t (*Lock)(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken);
  uint32_t (*Unlock)(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken);
  uint32_t (*BundleScan)(uint32_t jtagChainIdOrDeviceId, const void* bundle, uint32_t bundleSize,
                         uint64_t* operationToken);
  uint32_t (*ShiftCompare)(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t shiftCount,
                           const BitData* tdi, const BitData* compare, const BitData* compareMask,
                           uint64_t* operationToken);
  uint32_t (*Mark)(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken);
  uint32_t (*Repeat)(uint32_t jtagChainIdOrDeviceId, uint32_t maxIterations, VXT_JtagRepeatType repeatType,
                     uint64_t* operationToken);
};

struct JtagConfigurationComponent {
  // The TAP controller's instruction register length; a chain's is the sum
  // of its controllers'.
  uint32_t (*GetDeviceIrLength)(uint32_t deviceId, uint32_t* irLength);
  // 1 while encrypted debug runs on the device, else 0.
  uint32_t (*GetEncryptedDebugStatus)(uint32_t deviceId, uint32_t* status);
};

struct JtagDiagnosticComponent {
  // Resets the chain's TAPs and reads the IDCODE (or bypass bit) of each,
  // from the TAP nearest TDO on. `flags` must be 0.
  uint32_t (*TapResetGetIdcodes)(uint32_t jtagChainId, int32_t maxDeviceCount, uint32_t flags, uint32_t* idcodes,
                                 int32_t* numDevices, VXT_JtagTdiTdoContinuity* detectedTraits);
  // Scans `ir`, then captures the selected data register path into `dr`,
  // which is resized to the length found (at most maxDrLength bits).
  uint32_t (*CaptureDr)(uint32_t jtagChainIdOrDeviceId, const BitData* ir, int32_t maxDrLength, BitData* dr,
                        VXT_JtagTdiTdoContinuity* detectedTraits);
  // Resets the chain and captures every instruction register, from TDO on,
  // into `tdo`; each controller's length into `irLengths`.
  uint32_t (*CaptureIrBypass)(uint32_t jtagChainId, int32_t maxTdiTdoIrLength, int32_t maxDeviceCount,
                              uint32_t* irLengths, int32_t* numDevices, BitData* tdo,
                              VXT_JtagTdiTdoContinuity* detectedTraits);
  uint32_t (*BreakLock)(uint32_t jtagChainId);
  // The holder's client identifier in VXT_CLIENT_TEXT_SIZE characters; empty
  // when the chain is free.
  uint32_t (*GetLockingClient)(uint32_t jtagChainId, char* clientIdentifier);
};

struct JtagComponent {
  const JtagAccessComponent* access;
  const JtagConfigurationComponent* configuration;
  const JtagDiagnosticComponent* diagnostic;
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetJtag(const JtagComponent** table);
