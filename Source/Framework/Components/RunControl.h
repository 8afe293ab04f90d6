// The RunControl component: run control, memory and registers of the target.
//
// Every operation returns an internal code, 0 for success. Operations that
// give an operation token run in the background from the caller's point of
// view: the component writes the token and the outcome, and a read's value,
// come through the OperationReceipt component. A library object (BitData)
// handed in belongs to the caller and is valid only for the call; the
// component copies what it keeps. Pointers are checked here, not trusted.
#pragma once

#include <cstdint>

#include "BitData.h"
#include "IInternalService_Breakpoint.h"
#include "PlatformApi.h"
#include "VXT_Enumerations.h"
#include "VXT_Records.h"

// Length of one register name of GetRegisters, terminating zero included.
inline constexpr uint32_t kRegisterNameSize = 64;

struct RunControlComponent {
  uint32_t (*Initialize)();
  uint32_t (*Uninitialize)();
  // Whether run control events are to be delivered now: `active` 1 or 0.
  uint32_t (*IsEventDeliveryActive)(uint32_t* active);

  // --- Memory ---------------------------------------------------------------
  // `byteCount` units of `accessWidth` bytes (1, 2, 4 or 8); 0 reads bytes
  // the way the target finds best. The value is the bytes read, in order.
  uint32_t (*ReadMemory)(uint32_t deviceId, const VXT_Address* address, int32_t byteCount, uint32_t accessWidth,
                         uint64_t* operationToken);
  // Writes the first `byteCount` units of `data`.
  uint32_t (*WriteMemory)(uint32_t deviceId, const VXT_Address* address, int32_t byteCount, uint32_t accessWidth,
                          const BitData* data, uint64_t* operationToken);
  // `portByteSize` 1, 2 or 4.
  uint32_t (*ReadIO)(uint32_t deviceId, int32_t port, uint32_t portByteSize, uint64_t* operationToken);
  uint32_t (*WriteIO)(uint32_t deviceId, int32_t port, uint32_t portByteSize, const BitData* value,
                      uint64_t* operationToken);
  uint32_t (*ConvertAddress)(uint32_t deviceId, const VXT_Address* sourceAddress, VXT_AddressType destAddressType,
                             VXT_Address* destAddress);
  // `buffer` holds at least VXT_ADDRESS_TEXT_SIZE characters.
  uint32_t (*AddressToString)(const VXT_Address* address, char* buffer);
  uint32_t (*AddressFromString)(const char* addressAsString, VXT_Address* address);
  uint32_t (*InvalidateCache)(uint32_t deviceId, bool writeModifiedCacheToMainMemory, uint64_t* operationToken);
  uint32_t (*LoadMemory)(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                         const VXT_Address* toAddress, const char* fileType, const char* loadOptions,
                         uint64_t* operationToken);
  uint32_t (*SaveMemory)(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                         const VXT_Address* toAddress, bool overwriteFile, const char* fileType,
                         const char* saveOptions, uint64_t* operationToken);

  // --- Registers ------------------------------------------------------------
  uint32_t (*ReadMsr)(uint32_t deviceId, uint32_t msr, uint64_t* operationToken);
  uint32_t (*WriteMsr)(uint32_t deviceId, uint32_t msr, const BitData* value, uint64_t* operationToken);
  // One token for each of the `numRegisters` registers.
  uint32_t (*ReadMsrs)(uint32_t deviceId, const uint32_t* msrs, uint32_t numRegisters, uint64_t* operationTokens);
  uint32_t (*WriteMsrs)(uint32_t deviceId, const uint32_t* msrs, uint32_t numRegisters, const BitData* const* values,
                        uint64_t* operationTokens);
  uint32_t (*ReadRegister)(uint32_t deviceId, const char* registerName, uint64_t* operationToken);
  uint32_t (*WriteRegister)(uint32_t deviceId, const char* registerName, const BitData* value,
                            uint64_t* operationToken);
  uint32_t (*ReadRegisters)(uint32_t deviceId, const char* const* registerNames, uint32_t numRegisters,
                            uint64_t* operationTokens);
  uint32_t (*WriteRegisters)(uint32_t deviceId, const char* const* registerNames, uint32_t numRegisters,
                             const BitData* const* values, uint64_t* operationTokens);
  // `whichRegister` a VXT_CpuidRegister; `valueWidthInDwords` is 1.
  uint32_t (*ReadCPUIDValue)(uint32_t deviceId, uint32_t inputEax, uint32_t inputEcx, uint32_t whichRegister,
                             uint32_t valueWidthInDwords, uint64_t* operationToken);
  uint32_t (*ReadAPICIDValue)(uint32_t deviceId, uint64_t* operationToken);
  uint32_t (*GetNumRegisters)(uint32_t deviceId, uint32_t* numRegisters);
  // Names of kRegisterNameSize characters, one after the other.
  uint32_t (*GetRegisters)(uint32_t deviceId, uint32_t maxNumRegisters, char (*registerNames)[kRegisterNameSize]);

  // --- Assembler ------------------------------------------------------------
  // `instructionType` a VXT_InstructionType.
  uint32_t (*Assemble)(uint32_t deviceId, uint32_t instructionType, const char* instruction,
                       uint64_t instructionAddressOffset, uint32_t maxBufferSize, uint8_t* outputBuffer,
                       uint32_t* numBytesAssembled);
  // `outputBuffer` holds at least VXT_DISASSEMBLY_TEXT_SIZE characters.
  uint32_t (*Disassemble)(uint32_t deviceId, uint32_t instructionType, uint32_t inputBufferSize,
                          const uint8_t* inputBuffer, uint64_t instructionAddressOffset, char* outputBuffer,
                          uint32_t* numBytesDisassembled);

  // --- Run control ----------------------------------------------------------
  // Halt, Go, Step and the All / InDomain forms give a token that ends once
  // the threads have done it. `status` values are VXT_RunStatus, `stepType`
  // a VXT_StepType. Break texts fill kBreakTextSize characters.
  uint32_t (*Halt)(uint32_t deviceId, uint64_t* operationToken);
  uint32_t (*Go)(uint32_t deviceId, uint64_t* operationToken);
  uint32_t (*HaltAll)(uint64_t* operationToken);
  uint32_t (*GoAll)(uint64_t* operationToken);
  uint32_t (*GetRunStatus)(uint32_t deviceId, VXT_RunStatus* status);
  uint32_t (*GetRunStatusManyThreads)(const uint32_t* deviceIds, VXT_RunStatus* status, int32_t numStatus);
  uint32_t (*GetAllRunStatus)(uint32_t targetDomainId, VXT_RunStatus* status);
  uint32_t (*Step)(uint32_t deviceId, VXT_StepType stepType, int32_t numSteps, uint64_t* operationToken);
  uint32_t (*HaltAllInDomain)(uint32_t targetDomainId, uint64_t* operationToken);
  uint32_t (*GoAllInDomain)(uint32_t targetDomainId, uint64_t* operationToken);
  uint32_t (*GetBreakType)(uint32_t threadId, char* breakType);
  uint32_t (*GetBreakSubtype)(uint32_t threadId, char* breakSubtype);
  uint32_t (*GetBreakAddress)(uint32_t threadId, VXT_Address* breakAddress);
  uint32_t (*GetInstructionResult)(uint32_t threadId, uint32_t offset, uint64_t* result);
  uint32_t (*SubmitInstruction)(uint32_t threadId, const char* instructionBuffer);
  uint32_t (*GetNumOperatingModes)(uint32_t deviceId, uint32_t* numOperatingModes);
  uint32_t (*GetOperatingModes)(uint32_t deviceId, uint32_t numOperatingModes, uint32_t* operatingModes);

  // --- Breakpoints ----------------------------------------------------------
  // Records are checked by the caller (size 104 or 128; arrays with the
  // stride of their first record). Create writes the id into the record.
  uint32_t (*CreateBreakpoint)(VXT_Breakpoint* breakpoint);
  uint32_t (*CreateBreakpoints)(uint32_t numBreakpoints, VXT_Breakpoint* breakpoints);
  uint32_t (*RemoveBreakpoint)(uint32_t breakpointId);
  uint32_t (*RemoveBreakpoints)(uint32_t numBreakpoints, const VXT_Breakpoint* breakpoints);
  uint32_t (*RemoveBreakpointsById)(uint32_t numBreakpointIds, const uint32_t* breakpointIds);
  uint32_t (*GetBreakAllSetting)(uint32_t targetDomainId, VXT_BreakAllSetting* breakAllSetting);
  uint32_t (*SetBreakAllSetting)(uint32_t targetDomainId, VXT_BreakAllSetting breakAllSetting);
  uint32_t (*GetNumBreakpoints)(uint32_t targetDomainId, uint32_t* numBreakpoints);
  uint32_t (*GetBreakpointIds)(uint32_t targetDomainId, int32_t maxBreakpoints, uint32_t* breakpointIds);
  uint32_t (*GetBreakpoint)(uint32_t breakpointId, VXT_Breakpoint* breakpoint);
  uint32_t (*ChangeBreakpoint)(VXT_Breakpoint* breakpoint);
  uint32_t (*EnableBreakpoint)(uint32_t breakpointId);
  uint32_t (*EnableAllBreakpoints)(uint32_t targetDomainId);
  uint32_t (*DisableBreakpoint)(uint32_t breakpointId);
  uint32_t (*DisableAllBreakpoints)(uint32_t targetDomainId);

  // --- Run control configuration of a core group (a LogicalGroupCore) -----
  // Method names fill kMethodNameSize characters; a list is a block of them.
  // `enabled` values: non-zero means true.
  uint32_t (*GetStepMode)(uint32_t coreGroupId, VXT_StepMode* stepMode);
  uint32_t (*SetStepMode)(uint32_t coreGroupId, VXT_StepMode stepMode);
  uint32_t (*GetNumProbeModeEntryMethods)(uint32_t coreGroupId, uint32_t* methodCount);
  uint32_t (*GetProbeModeEntryMethods)(uint32_t coreGroupId, uint32_t maxMethodCount, char (*methodNames)[64]);
  uint32_t (*GetProbeModeEntryMethod)(uint32_t coreGroupId, char* methodName);
  uint32_t (*SetProbeModeEntryMethod)(uint32_t coreGroupId, const char* methodName);
  uint32_t (*GetNumProbeModeExitMethods)(uint32_t coreGroupId, uint32_t* methodCount);
  uint32_t (*GetProbeModeExitMethods)(uint32_t coreGroupId, uint32_t maxMethodCount, char (*methodNames)[64]);
  uint32_t (*GetProbeModeExitMethod)(uint32_t coreGroupId, char* methodName);
  uint32_t (*SetProbeModeExitMethod)(uint32_t coreGroupId, const char* methodName);
  uint32_t (*GetNumProbeModeDetectMethods)(uint32_t coreGroupId, uint32_t* methodCount);
  uint32_t (*GetProbeModeDetectMethods)(uint32_t coreGroupId, uint32_t maxMethodCount, char (*methodNames)[64]);
  uint32_t (*GetProbeModeDetectMethod)(uint32_t coreGroupId, char* methodName);
  uint32_t (*SetProbeModeDetectMethod)(uint32_t coreGroupId, const char* methodName);
  uint32_t (*GetNumInterestingThreads)(uint32_t coreGroupId, uint32_t* threadCount);
  uint32_t (*GetInterestingThreads)(uint32_t coreGroupId, uint32_t threadCount, uint32_t* threadIds);
  uint32_t (*SetInterestingThreads)(uint32_t coreGroupId, uint32_t threadCount, const uint32_t* threadIds);
  uint32_t (*GetProbeModeRedirectionMode)(uint32_t coreGroupId, int32_t* mode);
  uint32_t (*SetProbeModeRedirectionMode)(uint32_t coreGroupId, int32_t mode);
  uint32_t (*GetStepIntoExceptionEnabled)(uint32_t coreGroupId, uint32_t* enabled);
  uint32_t (*StepIntoExceptionEnabled)(uint32_t coreGroupId, uint32_t enabled);
  uint32_t (*SetRunControlEnabled)(uint32_t coreGroupId, uint32_t enabled);
  uint32_t (*IsRunControlEnabled)(uint32_t coreGroupId, uint32_t* enabled);

  // --- Break conditions of a device (named 32-bit values) -----------------
  // Names fill kBreakNameSize characters; a list is a block of them, and the
  // entries past the component's own names are left as they were.
  uint32_t (*GetNumBreakConditions)(uint32_t deviceId, uint32_t* numBreakNames);
  uint32_t (*GetBreakConditions)(uint32_t deviceId, uint32_t numBreakNames, char (*breakNames)[260]);
  uint32_t (*GetBreakCondition)(uint32_t deviceId, const char* breakName, uint32_t* value);
  uint32_t (*SetBreakCondition)(uint32_t deviceId, const char* breakName, uint32_t value);
};

// Characters of a probe mode method name, terminating zero included.
inline constexpr uint32_t kMethodNameSize = 64;
// Characters of a break condition or system stall name, terminating zero included.
inline constexpr uint32_t kBreakNameSize = 260;

// Characters of a break type or subtype text, terminating zero included.
inline constexpr uint32_t kBreakTextSize = 64;

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetRunControl(const RunControlComponent** table);
