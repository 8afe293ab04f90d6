#include "CpuThreads.h"

#include "RunControlCodes.h"

namespace voxtrel::platform::run_control {

target::Outcome FindThreads(uint32_t deviceId, cpu::CpuSelection& selection) {
  selection = cpu::CpuDomains::Instance().Find(deviceId);
  const std::string device = "device " + HexText(deviceId) + ": ";
  switch (selection.result) {
    case cpu::LookupResult::Ok:
      break;
    case cpu::LookupResult::NotStarted:
      return target::Failure{kNotInitialized, device + std::string(cpu::LookupResultText(selection.result))};
    case cpu::LookupResult::UnknownDevice:
      return target::Failure{kUnknownDevice, device + std::string(cpu::LookupResultText(selection.result))};
    case cpu::LookupResult::NotACpu:
    case cpu::LookupResult::NotEmulated:
      return target::Failure{kWrongDeviceType, device + std::string(cpu::LookupResultText(selection.result))};
  }
  return std::nullopt;
}

target::Outcome FindDomain(uint32_t targetDomainId, std::shared_ptr<const cpu::CpuDomain>& found) {
  for (auto& domain : cpu::CpuDomains::Instance().Domains()) {
    if (domain->targetDomainId == targetDomainId) {
      found = domain;
      return std::nullopt;
    }
  }
  return target::Failure{kUnknownDevice, "no target domain " + HexText(targetDomainId) + " runs emulated CPUs"};
}

namespace {

target::Outcome Find(uint32_t deviceId, CpuThread& cpu, bool oneThread) {
  cpu::CpuSelection selection;
  if (auto refused = FindThreads(deviceId, selection)) return refused;
  const std::string device = "device " + HexText(deviceId) + ": ";
  if (oneThread && selection.threadIndices.size() != 1)
    return target::Failure{kWrongDeviceType, device + "holds " + std::to_string(selection.threadIndices.size()) +
                                                 " threads; registers belong to one thread"};
  cpu = CpuThread{selection.domain, selection.threadIndices.front()};
  return std::nullopt;
}

}  // namespace

target::Outcome FindCpu(uint32_t deviceId, CpuThread& cpu) { return Find(deviceId, cpu, false); }
target::Outcome FindThread(uint32_t deviceId, CpuThread& cpu) { return Find(deviceId, cpu, true); }

}  // namespace voxtrel::platform::run_control
