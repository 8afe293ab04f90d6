// The way from an operation's deviceId to the CPU it works on.
//
// Memory operations take any device that holds emulated threads: physical
// addresses go to its target domain, linear and logical ones through its
// first thread. Register operations take one thread: a LogicalThread, or a
// core or other device that holds exactly one.
#pragma once

#include <cstdint>
#include <memory>

#include "../Cpu/CpuDomains.h"
#include "../Target/Failure.h"

namespace voxtrel::platform::run_control {

struct CpuThread {
  std::shared_ptr<const cpu::CpuDomain> domain;  // Keeps the backend alive for the call
  uint32_t thread = 0;

  cpu::CpuBackend& backend() const { return *domain->backend; }
};

// Every thread the device holds, for run control.
target::Outcome FindThreads(uint32_t deviceId, cpu::CpuSelection& selection);
// The running domain of that id.
target::Outcome FindDomain(uint32_t targetDomainId, std::shared_ptr<const cpu::CpuDomain>& domain);
// The first thread of the device, for memory and IO.
target::Outcome FindCpu(uint32_t deviceId, CpuThread& cpu);
// The device's one thread, for registers.
target::Outcome FindThread(uint32_t deviceId, CpuThread& cpu);

}  // namespace voxtrel::platform::run_control
