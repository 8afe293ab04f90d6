// The RunControl service: halting, resuming and stepping the target's
// threads, their run status, why they stopped, probe-mode instructions and
// operating modes, all done by the RunControl component. The service checks
// the arguments and counts the run-changing calls with the device and core
// group they name. It keeps no run state and takes no lock of its own.
#pragma once

#include <cstdint>
#include <string>

#include "IInternalService_RunControl.h"
#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

static_assert(VXT_BREAK_TYPE_TEXT_SIZE == kBreakTextSize);

class InProc_RunControl : public SingletonService<InProc_RunControl>, public IInternalService_RunControl {
 public:
  static InProc_RunControl& Instance();

  VXT_Result Halt(uint32_t deviceId, uint64_t* operationToken) override;
  VXT_Result Go(uint32_t deviceId, uint64_t* operationToken) override;
  VXT_Result HaltAll(uint64_t* operationToken) override;
  VXT_Result GoAll(uint64_t* operationToken) override;
  VXT_Result GetRunStatus(uint32_t deviceId, VXT_RunStatus* status) override;
  VXT_Result GetRunStatusManyThreads(const uint32_t* deviceIds, VXT_RunStatus* status, int32_t numStatus) override;
  VXT_Result GetAllRunStatus(uint32_t targetDomainId, VXT_RunStatus* status) override;
  VXT_Result Step(uint32_t deviceId, VXT_StepType stepType, int32_t numSteps, uint64_t* operationToken) override;
  VXT_Result HaltAllInDomain(uint32_t targetDomainId, uint64_t* operationToken) override;
  VXT_Result GoAllInDomain(uint32_t targetDomainId, uint64_t* operationToken) override;
  VXT_Result GetBreakType(uint32_t threadId, char* breakType) override;
  VXT_Result GetBreakSubtype(uint32_t threadId, char* breakSubtype) override;
  VXT_Result GetBreakAddress(uint32_t threadId, VXT_Address* breakAddress) override;
  VXT_Result GetInstructionResult(uint32_t threadId, uint32_t offset, uint64_t* result) override;
  VXT_Result SubmitInstruction(uint32_t threadId, const char* instructionBuffer) override;
  VXT_Result GetNumOperatingModes(uint32_t deviceId, uint32_t* numOperatingModes) override;
  VXT_Result OperatingModes(uint32_t deviceId, uint32_t numOperatingModes, uint32_t* operatingModes) override;

  // The counted detail of a call on one device:
  // "device=<identifier>,coreGroup=<identifier of its core group>".
  static std::string DeviceDetail(uint32_t deviceId);

  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
  frame::ServiceLogger logger;
  // RunControl.Initialize has succeeded since the last client left.
  bool isComponentInitialized = false;
};

}  // namespace vxt
