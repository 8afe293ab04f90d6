// RunControl's run state operations. A device stands for every thread it
// holds (a thread, a core, a core group, a domain); Halt and Go act on each
// of them and answer once all have done it.
#include "RunOperations.h"

#include <vector>

#include "CpuThreads.h"
#include "MemoryAccess.h"
#include "OperationResult.h"
#include "RunControlCodes.h"
#include "ConfigurationOperations.h"
#include "StepMethods.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::run_control {
namespace {

using target::Failure;
using target::Outcome;

using ThreadCall = cpu::CpuResult (cpu::CpuBackend::*)(uint32_t);
using DomainCall = cpu::CpuResult (cpu::CpuBackend::*)();

Outcome OnEachThread(uint32_t deviceId, ThreadCall call, const char* what, uint64_t* operationToken) {
  cpu::CpuSelection selection;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = FindThreads(deviceId, selection)) return refused;
  if (auto refused = CheckRunControlEnabled(selection)) return refused;
  for (const uint32_t thread : selection.threadIndices) {
    if (const auto result = (selection.domain->backend.get()->*call)(thread); result != cpu::CpuResult::Ok)
      return CpuFailure(result, std::string(what) + " thread " + std::to_string(thread) + " of device " + HexText(deviceId));
  }
  GiveCompleted(operationToken);
  return std::nullopt;
}

Outcome OnDomains(const std::vector<std::shared_ptr<const cpu::CpuDomain>>& domains, DomainCall call,
                  const char* what, uint64_t* operationToken) {
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  for (const auto& domain : domains) {
    if (const auto result = (domain->backend.get()->*call)(); result != cpu::CpuResult::Ok)
      return CpuFailure(result, std::string(what) + " target domain " + HexText(domain->targetDomainId));
  }
  GiveCompleted(operationToken);
  return std::nullopt;
}

Outcome OnDomain(uint32_t targetDomainId, DomainCall call, const char* what, uint64_t* operationToken) {
  std::shared_ptr<const cpu::CpuDomain> domain;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (auto refused = FindDomain(targetDomainId, domain)) return refused;
  return OnDomains({domain}, call, what, operationToken);
}

// Running when every thread runs, Halted when every one is halted.
Outcome Summary(const cpu::CpuDomain& domain, const std::vector<uint32_t>& threads, VXT_RunStatus& status) {
  size_t halted = 0;
  for (const uint32_t thread : threads) {
    cpu::RunState state = cpu::RunState::Running;
    if (const auto result = domain.backend->GetRunState(thread, state); result != cpu::CpuResult::Ok)
      return CpuFailure(result, "reading the run state of thread " + std::to_string(thread));
    if (state == cpu::RunState::Halted) ++halted;
  }
  status = halted == threads.size() ? VXT_RunStatus_Halted
           : halted == 0            ? VXT_RunStatus_Running
                                    : VXT_RunStatus_SomeRunning;
  return std::nullopt;
}

Outcome DeviceStatus(uint32_t deviceId, VXT_RunStatus& status) {
  cpu::CpuSelection selection;
  if (auto refused = FindThreads(deviceId, selection)) return refused;
  return Summary(*selection.domain, selection.threadIndices, status);
}

Outcome ManyStatus(const uint32_t* deviceIds, VXT_RunStatus* status, int32_t numStatus) {
  if (auto refused = CheckNotNull(deviceIds, "deviceIds")) return refused;
  if (auto refused = CheckNotNull(status, "status")) return refused;
  if (numStatus < 0) return Failure{kValueOutOfRange, "numStatus " + std::to_string(numStatus) + " is negative"};
  std::vector<VXT_RunStatus> found(static_cast<size_t>(numStatus));
  for (int32_t i = 0; i < numStatus; ++i) {
    if (auto refused = DeviceStatus(deviceIds[i], found[i])) return refused;
  }
  std::copy(found.begin(), found.end(), status);
  return std::nullopt;
}

Outcome DomainStatus(uint32_t targetDomainId, VXT_RunStatus* status) {
  std::shared_ptr<const cpu::CpuDomain> domain;
  if (auto refused = CheckNotNull(status, "status")) return refused;
  if (auto refused = FindDomain(targetDomainId, domain)) return refused;
  std::vector<uint32_t> threads(domain->threadDeviceIds.size());
  for (uint32_t i = 0; i < threads.size(); ++i) threads[i] = i;
  return Summary(*domain, threads, *status);
}

// Steps of any kind, each one as StepMethods.h has it; a stop of another
// kind on the way ends them.
Outcome StepWork(uint32_t deviceId, VXT_StepType stepType, int32_t numSteps, uint64_t* operationToken) {
  CpuThread cpu;
  if (auto refused = CheckNotNull(operationToken, "operationToken")) return refused;
  if (numSteps < 1) return Failure{kValueOutOfRange, "numSteps " + std::to_string(numSteps) + " is less than 1"};
  if (auto refused = FindThread(deviceId, cpu)) return refused;
  if (auto refused = CheckRunControlEnabled(cpu::CpuSelection{cpu::LookupResult::Ok, cpu.domain, {cpu.thread}}))
    return refused;
  bool interrupted = false;
  for (int32_t i = 0; i < numSteps && !interrupted; ++i) {
    if (auto refused = StepThread(cpu, stepType, interrupted)) return refused;
  }
  GiveCompleted(operationToken);
  return std::nullopt;
}

}  // namespace

uint32_t Halt(uint32_t deviceId, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.Halt", "deviceId=", HexText(deviceId));
  return VOXTREL_ANSWER(OnEachThread(deviceId, &cpu::CpuBackend::Halt, "halting", operationToken));
}

uint32_t Go(uint32_t deviceId, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.Go", "deviceId=", HexText(deviceId));
  return VOXTREL_ANSWER(OnEachThread(deviceId, &cpu::CpuBackend::Go, "resuming", operationToken));
}

uint32_t HaltAll(uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.HaltAll");
  return VOXTREL_ANSWER(
      OnDomains(cpu::CpuDomains::Instance().Domains(), &cpu::CpuBackend::HaltAll, "halting", operationToken));
}

uint32_t GoAll(uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.GoAll");
  return VOXTREL_ANSWER(
      OnDomains(cpu::CpuDomains::Instance().Domains(), &cpu::CpuBackend::GoAll, "resuming", operationToken));
}

uint32_t HaltAllInDomain(uint32_t targetDomainId, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.HaltAllInDomain", "targetDomainId=", targetDomainId);
  return VOXTREL_ANSWER(OnDomain(targetDomainId, &cpu::CpuBackend::HaltAll, "halting", operationToken));
}

uint32_t GoAllInDomain(uint32_t targetDomainId, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.GoAllInDomain", "targetDomainId=", targetDomainId);
  return VOXTREL_ANSWER(OnDomain(targetDomainId, &cpu::CpuBackend::GoAll, "resuming", operationToken));
}

uint32_t GetRunStatus(uint32_t deviceId, VXT_RunStatus* status) {
  VOXTREL_COMPONENT_CALL("RunControl.GetRunStatus", "deviceId=", HexText(deviceId));
  if (const uint32_t refused = VOXTREL_ANSWER(CheckNotNull(status, "status"))) return refused;
  return VOXTREL_ANSWER(DeviceStatus(deviceId, *status));
}

uint32_t GetRunStatusManyThreads(const uint32_t* deviceIds, VXT_RunStatus* status, int32_t numStatus) {
  VOXTREL_COMPONENT_CALL("RunControl.GetRunStatusManyThreads", "numStatus=", numStatus);
  return VOXTREL_ANSWER(ManyStatus(deviceIds, status, numStatus));
}

uint32_t GetAllRunStatus(uint32_t targetDomainId, VXT_RunStatus* status) {
  VOXTREL_COMPONENT_CALL("RunControl.GetAllRunStatus", "targetDomainId=", HexText(targetDomainId));
  return VOXTREL_ANSWER(DomainStatus(targetDomainId, status));
}

uint32_t Step(uint32_t deviceId, VXT_StepType stepType, int32_t numSteps, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("RunControl.Step", "deviceId=", HexText(deviceId), ", numSteps=", numSteps);
  return VOXTREL_ANSWER(StepWork(deviceId, stepType, numSteps, operationToken));
}

}  // namespace voxtrel::platform::run_control
