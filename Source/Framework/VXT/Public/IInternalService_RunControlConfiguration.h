// Service 29: how run control behaves for one core group: the step mode,
// the methods by which its cores enter, leave and are detected in probe
// mode, the threads of interest, probe mode redirection, stepping into
// exceptions, and whether run control is enabled. Every value is the
// RunControl component's; a value read back is always its.
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"

// Characters of one method name, terminating zero included; a list of names
// is a block of such buffers.
inline constexpr uint32_t VXT_METHOD_NAME_SIZE = 64;

class IInternalService_RunControlConfiguration {
 public:
  virtual ~IInternalService_RunControlConfiguration() = default;

  virtual VXT_Result GetStepMode(uint32_t coreGroupId, VXT_StepMode* stepMode) = 0;
  virtual VXT_Result SetStepMode(uint32_t coreGroupId, VXT_StepMode stepMode) = 0;
  virtual VXT_Result GetNumProbeModeEntryMethods(uint32_t coreGroupId, uint32_t* methodCount) = 0;
  virtual VXT_Result GetProbeModeEntryMethods(uint32_t coreGroupId, uint32_t maxMethodCount,
                                              char (*methodNames)[VXT_METHOD_NAME_SIZE]) = 0;
  // `methodName` holds VXT_METHOD_NAME_SIZE characters.
  virtual VXT_Result GetProbeModeEntryMethod(uint32_t coreGroupId, char* methodName) = 0;
  virtual VXT_Result SetProbeModeEntryMethod(uint32_t coreGroupId, const char* methodName) = 0;
  virtual VXT_Result GetNumProbeModeExitMethods(uint32_t coreGroupId, uint32_t* methodCount) = 0;
  virtual VXT_Result GetProbeModeExitMethods(uint32_t coreGroupId, uint32_t maxMethodCount,
                                             char (*methodNames)[VXT_METHOD_NAME_SIZE]) = 0;
  virtual VXT_Result GetProbeModeExitMethod(uint32_t coreGroupId, char* methodName) = 0;
  virtual VXT_Result SetProbeModeExitMethod(uint32_t coreGroupId, const char* methodName) = 0;
  virtual VXT_Result GetNumProbeModeDetectMethods(uint32_t coreGroupId, uint32_t* methodCount) = 0;
  virtual VXT_Result GetProbeModeDetectMethods(uint32_t coreGroupId, uint32_t maxMethodCount,
                                               char (*methodNames)[VXT_METHOD_NAME_SIZE]) = 0;
  virtual VXT_Result GetProbeModeDetectMethod(uint32_t coreGroupId, char* methodName) = 0;
  virtual VXT_Result SetProbeModeDetectMethod(uint32_t coreGroupId, const char* methodName) = 0;
  virtual VXT_Result GetNumInterestingThreads(uint32_t coreGroupId, uint32_t* threadCount) = 0;
  virtual VXT_Result GetInterestingThreads(uint32_t coreGroupId, uint32_t threadCount, uint32_t* threadIds) = 0;
  virtual VXT_Result SetInterestingThreads(uint32_t coreGroupId, uint32_t threadCount, const uint32_t* threadIds) = 0;
  virtual VXT_Result GetProbeModeRedirectionMode(uint32_t coreGroupId, int32_t* mode) = 0;
  virtual VXT_Result SetProbeModeRedirectionMode(uint32_t coreGroupId, int32_t mode) = 0;
  // `enabled` values: non-zero means true.
  virtual VXT_Result GetStepIntoExceptionEnabled(uint32_t coreGroupId, uint32_t* enabled) = 0;
  // Sets whether a step enters an exception handler.
  virtual VXT_Result StepIntoExceptionEnabled(uint32_t coreGroupId, uint32_t enabled) = 0;
  virtual VXT_Result SetRunControlEnabled(uint32_t coreGroupId, uint32_t enabled) = 0;
  virtual VXT_Result IsRunControlEnabled(uint32_t coreGroupId, uint32_t* enabled) = 0;
};
