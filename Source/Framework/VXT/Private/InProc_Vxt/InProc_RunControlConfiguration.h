// The RunControlConfiguration service: how run control behaves for one core
// group (step mode, probe mode methods, threads of interest, redirection,
// stepping into exceptions, whether run control is enabled). Every value is
// the RunControl component's; the service checks pointers, traces and
// counts the setters, and keeps no setting of its own.
#pragma once

#include "IInternalService_RunControlConfiguration.h"
#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

static_assert(VXT_METHOD_NAME_SIZE == kMethodNameSize);

class InProc_RunControlConfiguration : public SingletonService<InProc_RunControlConfiguration>,
                                       public IInternalService_RunControlConfiguration {
 public:
  static InProc_RunControlConfiguration& Instance();

  VXT_Result GetStepMode(uint32_t coreGroupId, VXT_StepMode* stepMode) override;
  VXT_Result SetStepMode(uint32_t coreGroupId, VXT_StepMode stepMode) override;
  VXT_Result GetNumProbeModeEntryMethods(uint32_t coreGroupId, uint32_t* methodCount) override;
  VXT_Result GetProbeModeEntryMethods(uint32_t coreGroupId, uint32_t maxMethodCount,
                                      char (*methodNames)[VXT_METHOD_NAME_SIZE]) override;
  VXT_Result GetProbeModeEntryMethod(uint32_t coreGroupId, char* methodName) override;
  VXT_Result SetProbeModeEntryMethod(uint32_t coreGroupId, const char* methodName) override;
  VXT_Result GetNumProbeModeExitMethods(uint32_t coreGroupId, uint32_t* methodCount) override;
  VXT_Result GetProbeModeExitMethods(uint32_t coreGroupId, uint32_t maxMethodCount,
                                     char (*methodNames)[VXT_METHOD_NAME_SIZE]) override;
  VXT_Result GetProbeModeExitMethod(uint32_t coreGroupId, char* methodName) override;
  VXT_Result SetProbeModeExitMethod(uint32_t coreGroupId, const char* methodName) override;
  VXT_Result GetNumProbeModeDetectMethods(uint32_t coreGroupId, uint32_t* methodCount) override;
  VXT_Result GetProbeModeDetectMethods(uint32_t coreGroupId, uint32_t maxMethodCount,
                                       char (*methodNames)[VXT_METHOD_NAME_SIZE]) override;
  VXT_Result GetProbeModeDetectMethod(uint32_t coreGroupId, char* methodName) override;
  VXT_Result SetProbeModeDetectMethod(uint32_t coreGroupId, const char* methodName) override;
  VXT_Result GetNumInterestingThreads(uint32_t coreGroupId, uint32_t* threadCount) override;
  VXT_Result GetInterestingThreads(uint32_t coreGroupId, uint32_t threadCount, uint32_t* threadIds) override;
  VXT_Result SetInterestingThreads(uint32_t coreGroupId, uint32_t threadCount, const uint32_t* threadIds) override;
  VXT_Result GetProbeModeRedirectionMode(uint32_t coreGroupId, int32_t* mode) override;
  VXT_Result SetProbeModeRedirectionMode(uint32_t coreGroupId, int32_t mode) override;
  VXT_Result GetStepIntoExceptionEnabled(uint32_t coreGroupId, uint32_t* enabled) override;
  VXT_Result StepIntoExceptionEnabled(uint32_t coreGroupId, uint32_t enabled) override;
  VXT_Result SetRunControlEnabled(uint32_t coreGroupId, uint32_t enabled) override;
  VXT_Result IsRunControlEnabled(uint32_t coreGroupId, uint32_t* enabled) override;

  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
  frame::ServiceLogger logger;
};

}  // namespace vxt
