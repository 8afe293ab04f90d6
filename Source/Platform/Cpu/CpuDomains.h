// The CPUs of the built target, from the RunControl component's Initialize
// to its Uninitialize: one backend for each target domain that has emulated
// threads, and the way from a device id to a backend and its thread indices.
// Thread-safe; what Find gives stays usable after Stop (the backend then
// answers Unavailable), so a lookup never dangles.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "../Target/Failure.h"
#include "CpuBackend.h"
#include "PlatformApi.h"

namespace voxtrel::platform::target {
class Topology;
}

namespace voxtrel::platform::cpu {

class EmulatedMachine;

// The CPUs one target domain runs.
struct CpuDomain {
  uint32_t targetDomainId = 0;
  std::shared_ptr<CpuBackend> backend;
  // The device id of each thread, by thread index.
  std::vector<uint32_t> threadDeviceIds;
  // The machine around the CPUs (IO devices), for test control and tools.
  std::shared_ptr<EmulatedMachine> machine;
};

enum class LookupResult : uint8_t {
  Ok,
  NotStarted,     // Outside RunControl's Initialize..Uninitialize
  UnknownDevice,  // No node has the id
  NotACpu,        // A node that holds no thread: a debug port, an uncore, a TAP controller, ...
  NotEmulated,    // Its target domain runs no CPUs
};

// What a device id stands for. A LogicalThread gives its one thread, a
// LogicalCore its threads, a LogicalGroupCore the threads of its cores, a
// TargetDomain (or a package, die, module in it) every thread beneath it;
// indices ascending.
struct CpuSelection {
  LookupResult result = LookupResult::NotStarted;
  std::shared_ptr<const CpuDomain> domain;  // Set when result is Ok
  std::vector<uint32_t> threadIndices;      // Set when result is Ok; never empty then
};

class VOXTREL_PLATFORM_API CpuDomains {
 public:
  static CpuDomains& Instance();

  // Builds the backends of the topology's domains and lets them run (a
  // domain's threads start from reset). Stops what ran before. Refused when
  // a domain's description cannot be emulated (its firmware is missing, the
  // emulating module cannot be loaded); then nothing runs.
  target::Outcome Start(const target::Topology& topology);
  // Stops every domain's execution and drops the backends. Harmless when
  // nothing runs.
  void Stop();

  CpuSelection Find(uint32_t deviceId) const;
  // The running domains in the topology's order; empty when stopped.
  std::vector<std::shared_ptr<const CpuDomain>> Domains() const;

 private:
  CpuDomains() = default;
  struct State;
  std::shared_ptr<const State> Current() const;
  void Replace(std::shared_ptr<const State> state);
  mutable std::mutex mutex_;            // Held only to copy or swap state_
  std::shared_ptr<const State> state_;  // Replaced whole by Start and Stop
};

// Short English text of a lookup's result ("the device has no CPU").
std::string_view LookupResultText(LookupResult result);

}  // namespace voxtrel::platform::cpu
