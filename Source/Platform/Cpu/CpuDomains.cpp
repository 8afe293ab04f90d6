#include "Cpu/CpuDomains.h"

#include <unordered_map>
#include <utility>

#include "Target/Topology.h"

namespace voxtrel::platform::cpu {

struct CpuDomains::State {
  std::vector<std::shared_ptr<const CpuDomain>> domains;
  std::unordered_map<uint32_t, CpuSelection> byDeviceId;  // Every node of the topology
};

CpuDomains& CpuDomains::Instance() {
  static CpuDomains instance;
  return instance;
}

std::shared_ptr<const CpuDomains::State> CpuDomains::Current() const {
  std::lock_guard lock(mutex_);
  return state_;
}

void CpuDomains::Replace(std::shared_ptr<const State> state) {
  std::shared_ptr<const State> old;
  {
    std::lock_guard lock(mutex_);
    old = std::exchange(state_, std::move(state));
  }
  // The old backends stop when the last holder lets them go, outside the lock.
}

target::Outcome CpuDomains::Start(const target::Topology& topology) {
  Stop();
  auto state = std::make_shared<State>();
  for (const target::Node& node : topology.Nodes()) {
    CpuSelection selection;
    const bool holdsThreads = node.type == target::NodeType::LogicalThread ||
                              node.type == target::NodeType::LogicalCore ||
                              node.type == target::NodeType::LogicalGroupCore ||
                              node.type == target::NodeType::TargetDomain ||
                              node.type == target::NodeType::LogicalPackage ||
                              node.type == target::NodeType::LogicalDie ||
                              node.type == target::NodeType::LogicalModule;
    selection.result = holdsThreads ? LookupResult::NotEmulated : LookupResult::NotACpu;
    state->byDeviceId.emplace(node.id, std::move(selection));
  }
  Replace(std::move(state));
  return std::nullopt;
}

void CpuDomains::Stop() { Replace(nullptr); }

CpuSelection CpuDomains::Find(uint32_t deviceId) const {
  std::shared_ptr<const State> state = Current();
  if (!state) return {};
  auto found = state->byDeviceId.find(deviceId);
  if (found == state->byDeviceId.end()) return {LookupResult::UnknownDevice, nullptr, {}};
  return found->second;
}

std::vector<std::shared_ptr<const CpuDomain>> CpuDomains::Domains() const {
  std::shared_ptr<const State> state = Current();
  return state ? state->domains : std::vector<std::shared_ptr<const CpuDomain>>{};
}

}  // namespace voxtrel::platform::cpu
