// The RunControl component: run control, memory and registers of the
// target's threads.
#include "RunControl.h"
#include "Cpu/CpuDomains.h"
#include "RunControl/RunControlOperations.h"
#include "RunControl/RunControlState.h"
#include "Components/ResetBreaks.h"
#include "RunControl/BreakConditions.h"
#include "RunControl/BreakpointRegistry.h"
#include "RunControl/ConfigurationOperations.h"
#include "RunControl/RunOperations.h"
#include "RunControl/StopRecords.h"
#include "Support/ComponentCall.h"
#include "Target/PostFailure.h"

namespace voxtrel::platform::run_control {

target::TopologyBinding& RunControlTopology() {
  static target::TopologyBinding binding("RunControl");
  return binding;
}

namespace {

uint32_t Initialize() {
  VOXTREL_COMPONENT_CALL("RunControl.Initialize");
  if (target::Outcome refused = RunControlTopology().Bind()) return VOXTREL_POST_FAILURE(*refused);
  if (target::Outcome refused = cpu::CpuDomains::Instance().Start(RunControlTopology().Topology()->Layout())) {
    RunControlTopology().Unbind();
    return VOXTREL_POST_FAILURE(*refused);
  }
  ForgetBreakpoints();
  ForgetConfiguration();
  ForgetBreakConditions();
  platform_control::ForgetResetBreaksAndStalls();
  ListenToStops();
  return 0;
}

uint32_t Uninitialize() {
  VOXTREL_COMPONENT_CALL("RunControl.Uninitialize");
  cpu::CpuDomains::Instance().Stop();
  RunControlTopology().Unbind();
  return 0;
}

constexpr RunControlComponent kRunControl{
    &Initialize,      &Uninitialize,    &IsEventDeliveryActive,
    // Memory
    &ReadMemory,      &WriteMemory,     &ReadIO,          &WriteIO,          &ConvertAddress,
    &AddressToString, &AddressFromString, &InvalidateCache, &LoadMemory,     &SaveMemory,
    // Registers
    &ReadMsr,         &WriteMsr,        &ReadMsrs,        &WriteMsrs,        &ReadRegister,
    &WriteRegister,   &ReadRegisters,   &WriteRegisters,  &ReadCPUIDValue,   &ReadAPICIDValue,
    &GetNumRegisters, &GetRegisters,
    // Assembler
    &Assemble,        &Disassemble,
    // Run control
    &Halt,            &Go,              &HaltAll,         &GoAll,            &GetRunStatus,
    &GetRunStatusManyThreads, &GetAllRunStatus, &Step,   &HaltAllInDomain,  &GoAllInDomain,
    &GetBreakType,    &GetBreakSubtype, &GetBreakAddress, &GetInstructionResult, &SubmitInstruction,
    &GetNumOperatingModes, &GetOperatingModes,
    // Breakpoints
    &CreateBreakpoint, &CreateBreakpoints, &RemoveBreakpoint, &RemoveBreakpoints, &RemoveBreakpointsById,
    &GetBreakAllSetting, &SetBreakAllSetting, &GetNumBreakpoints, &GetBreakpointIds, &GetBreakpoint,
    &ChangeBreakpoint, &EnableBreakpoint, &EnableAllBreakpoints, &DisableBreakpoint, &DisableAllBreakpoints,
    // Run control configuration
    &GetStepMode, &SetStepMode, &GetNumProbeModeEntryMethods, &GetProbeModeEntryMethods, &GetProbeModeEntryMethod,
    &SetProbeModeEntryMethod, &GetNumProbeModeExitMethods, &GetProbeModeExitMethods, &GetProbeModeExitMethod,
    &SetProbeModeExitMethod, &GetNumProbeModeDetectMethods, &GetProbeModeDetectMethods, &GetProbeModeDetectMethod,
    &SetProbeModeDetectMethod, &GetNumInterestingThreads, &GetInterestingThreads, &SetInterestingThreads,
    &GetProbeModeRedirectionMode, &SetProbeModeRedirectionMode, &GetStepIntoExceptionEnabled,
    &StepIntoExceptionEnabled, &SetRunControlEnabled, &IsRunControlEnabled,
    // Break conditions
    &GetNumBreakConditions, &GetBreakConditions, &GetBreakCondition, &SetBreakCondition,
};

}  // namespace

}  // namespace voxtrel::platform::run_control

uint32_t Voxtrel_GetRunControl(const RunControlComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetRunControl");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &voxtrel::platform::run_control::kRunControl;
  return 0;
}
