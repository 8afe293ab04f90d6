// Service 10: stopping and starting the target's threads.
//
// Halt, Go, Step and the All / InDomain forms run in the background from the
// caller's point of view: each gives an operation token (OperationReceipt
// service) that ends once the threads have done what was asked. A success
// here says that the request was accepted.
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

// Characters of a break type or subtype text, terminating zero included: the
// buffer a caller of GetBreakType / GetBreakSubtype provides.
inline constexpr uint32_t VXT_BREAK_TYPE_TEXT_SIZE = 64;

class IInternalService_RunControl {
 public:
  virtual ~IInternalService_RunControl() = default;

  virtual VXT_Result Halt(uint32_t deviceId, uint64_t* operationToken) = 0;
  virtual VXT_Result Go(uint32_t deviceId, uint64_t* operationToken) = 0;
  virtual VXT_Result HaltAll(uint64_t* operationToken) = 0;
  virtual VXT_Result GoAll(uint64_t* operationToken) = 0;
  virtual VXT_Result GetRunStatus(uint32_t deviceId, VXT_RunStatus* status) = 0;
  // `status` receives numStatus values, one for each of deviceIds.
  virtual VXT_Result GetRunStatusManyThreads(const uint32_t* deviceIds, VXT_RunStatus* status, int32_t numStatus) = 0;
  // One summary of every thread of the domain.
  virtual VXT_Result GetAllRunStatus(uint32_t targetDomainId, VXT_RunStatus* status) = 0;
  virtual VXT_Result Step(uint32_t deviceId, VXT_StepType stepType, int32_t numSteps, uint64_t* operationToken) = 0;
  virtual VXT_Result HaltAllInDomain(uint32_t targetDomainId, uint64_t* operationToken) = 0;
  virtual VXT_Result GoAllInDomain(uint32_t targetDomainId, uint64_t* operationToken) = 0;
  // Why the thread last stopped; buffers of VXT_BREAK_TYPE_TEXT_SIZE characters.
  virtual VXT_Result GetBreakType(uint32_t threadId, char* breakType) = 0;
  virtual VXT_Result GetBreakSubtype(uint32_t threadId, char* breakSubtype) = 0;
  virtual VXT_Result GetBreakAddress(uint32_t threadId, VXT_Address* breakAddress) = 0;
  virtual VXT_Result GetInstructionResult(uint32_t threadId, uint32_t offset, uint64_t* result) = 0;
  virtual VXT_Result SubmitInstruction(uint32_t threadId, const char* instructionBuffer) = 0;
  virtual VXT_Result GetNumOperatingModes(uint32_t deviceId, uint32_t* numOperatingModes) = 0;
  // Fills numOperatingModes mode numbers.
  virtual VXT_Result OperatingModes(uint32_t deviceId, uint32_t numOperatingModes, uint32_t* operatingModes) = 0;
};
