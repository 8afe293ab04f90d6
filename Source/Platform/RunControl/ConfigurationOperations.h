// RunControl's configuration of each core group: step mode, probe mode
// methods, threads of interest, redirection, stepping into exceptions and
// whether run control is enabled; and its break conditions (BreakConditions.h).
#pragma once

#include <cstdint>

#include "../Cpu/CpuDomains.h"
#include "../Target/Failure.h"
#include "RunControl.h"

namespace voxtrel::platform::run_control {

uint32_t GetStepMode(uint32_t coreGroupId, VXT_StepMode* stepMode);
uint32_t SetStepMode(uint32_t coreGroupId, VXT_StepMode stepMode);
uint32_t GetNumProbeModeEntryMethods(uint32_t coreGroupId, uint32_t* methodCount);
uint32_t GetProbeModeEntryMethods(uint32_t coreGroupId, uint32_t maxMethodCount, char (*methodNames)[64]);
uint32_t GetProbeModeEntryMethod(uint32_t coreGroupId, char* methodName);
uint32_t SetProbeModeEntryMethod(uint32_t coreGroupId, const char* methodName);
uint32_t GetNumProbeModeExitMethods(uint32_t coreGroupId, uint32_t* methodCount);
uint32_t GetProbeModeExitMethods(uint32_t coreGroupId, uint32_t maxMethodCount, char (*methodNames)[64]);
uint32_t GetProbeModeExitMethod(uint32_t coreGroupId, char* methodName);
uint32_t SetProbeModeExitMethod(uint32_t coreGroupId, const char* methodName);
uint32_t GetNumProbeModeDetectMethods(uint32_t coreGroupId, uint32_t* methodCount);
uint32_t GetProbeModeDetectMethods(uint32_t coreGroupId, uint32_t maxMethodCount, char (*methodNames)[64]);
uint32_t GetProbeModeDetectMethod(uint32_t coreGroupId, char* methodName);
uint32_t SetProbeModeDetectMethod(uint32_t coreGroupId, const char* methodName);
uint32_t GetNumInterestingThreads(uint32_t coreGroupId, uint32_t* threadCount);
uint32_t GetInterestingThreads(uint32_t coreGroupId, uint32_t threadCount, uint32_t* threadIds);
uint32_t SetInterestingThreads(uint32_t coreGroupId, uint32_t threadCount, const uint32_t* threadIds);
uint32_t GetProbeModeRedirectionMode(uint32_t coreGroupId, int32_t* mode);
uint32_t SetProbeModeRedirectionMode(uint32_t coreGroupId, int32_t mode);
uint32_t GetStepIntoExceptionEnabled(uint32_t coreGroupId, uint32_t* enabled);
uint32_t StepIntoExceptionEnabled(uint32_t coreGroupId, uint32_t enabled);
uint32_t SetRunControlEnabled(uint32_t coreGroupId, uint32_t enabled);
uint32_t IsRunControlEnabled(uint32_t coreGroupId, uint32_t* enabled);

// Every core group back to its defaults (a new target).
void ForgetConfiguration();

// Refuses run control of the selected threads when one of them is in a core
// group whose run control is disabled.
target::Outcome CheckRunControlEnabled(const cpu::CpuSelection& selection);

}  // namespace voxtrel::platform::run_control
