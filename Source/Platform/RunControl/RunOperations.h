// The RunControl component's run control operations, as its table
// (RunControl.h) holds them. Halt, Go and Step do their work in the call and
// give the token of a receipt that has ended already; the stops they cause
// reach subscribers as "RunControl" events (StopRecords.h).
#pragma once

#include "RunControl.h"

namespace voxtrel::platform::run_control {

// Run state (RunOperations.cpp).
uint32_t Halt(uint32_t deviceId, uint64_t* operationToken);
uint32_t Go(uint32_t deviceId, uint64_t* operationToken);
uint32_t HaltAll(uint64_t* operationToken);
uint32_t GoAll(uint64_t* operationToken);
uint32_t GetRunStatus(uint32_t deviceId, VXT_RunStatus* status);
uint32_t GetRunStatusManyThreads(const uint32_t* deviceIds, VXT_RunStatus* status, int32_t numStatus);
uint32_t GetAllRunStatus(uint32_t targetDomainId, VXT_RunStatus* status);
uint32_t Step(uint32_t deviceId, VXT_StepType stepType, int32_t numSteps, uint64_t* operationToken);
uint32_t HaltAllInDomain(uint32_t targetDomainId, uint64_t* operationToken);
uint32_t GoAllInDomain(uint32_t targetDomainId, uint64_t* operationToken);

// Break causes, probe mode and operating modes (BreakCauseOperations.cpp).
uint32_t GetBreakType(uint32_t threadId, char* breakType);
uint32_t GetBreakSubtype(uint32_t threadId, char* breakSubtype);
uint32_t GetBreakAddress(uint32_t threadId, VXT_Address* breakAddress);
uint32_t GetInstructionResult(uint32_t threadId, uint32_t offset, uint64_t* result);
uint32_t SubmitInstruction(uint32_t threadId, const char* instructionBuffer);
uint32_t GetNumOperatingModes(uint32_t deviceId, uint32_t* numOperatingModes);
uint32_t GetOperatingModes(uint32_t deviceId, uint32_t numOperatingModes, uint32_t* operatingModes);

// Breakpoints (BreakpointOperations.cpp).
uint32_t CreateBreakpoint(VXT_Breakpoint* breakpoint);
uint32_t CreateBreakpoints(uint32_t numBreakpoints, VXT_Breakpoint* breakpoints);
uint32_t RemoveBreakpoint(uint32_t breakpointId);
uint32_t RemoveBreakpoints(uint32_t numBreakpoints, const VXT_Breakpoint* breakpoints);
uint32_t RemoveBreakpointsById(uint32_t numBreakpointIds, const uint32_t* breakpointIds);
uint32_t GetBreakAllSetting(uint32_t targetDomainId, VXT_BreakAllSetting* breakAllSetting);
uint32_t SetBreakAllSetting(uint32_t targetDomainId, VXT_BreakAllSetting breakAllSetting);
uint32_t GetNumBreakpoints(uint32_t targetDomainId, uint32_t* numBreakpoints);
uint32_t GetBreakpointIds(uint32_t targetDomainId, int32_t maxBreakpoints, uint32_t* breakpointIds);
uint32_t GetBreakpoint(uint32_t breakpointId, VXT_Breakpoint* breakpoint);
uint32_t ChangeBreakpoint(VXT_Breakpoint* breakpoint);
uint32_t EnableBreakpoint(uint32_t breakpointId);
uint32_t EnableAllBreakpoints(uint32_t targetDomainId);
uint32_t DisableBreakpoint(uint32_t breakpointId);
uint32_t DisableAllBreakpoints(uint32_t targetDomainId);

}  // namespace voxtrel::platform::run_control
