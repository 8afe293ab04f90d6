#include "Cpu/CpuDomains.h"

#include <unordered_map>
#include <utility>

#include "Cpu/DomainDescription.h"
#include "Cpu/EmulatedMachine.h"
#include "Cpu/EngineModule.h"
#include "Target/JsonReader.h"
#include "Target/Topology.h"

namespace voxtrel::platform::cpu {

using target::NodeType;

struct CpuDomains::State {
  std::vector<std::shared_ptr<const CpuDomain>> domains;
  std::unordered_map<uint32_t, CpuSelection> byDeviceId;  // Every node of the topology
};

namespace {

bool HoldsThreads(NodeType type) {
  switch (type) {
    case NodeType::LogicalThread:
    case NodeType::LogicalCore:
    case NodeType::LogicalGroupCore:
    case NodeType::TargetDomain:
    case NodeType::LogicalPackage:
    case NodeType::LogicalDie:
    case NodeType::LogicalModule:
      return true;
    default:
      return false;
  }
}

// The whole physical space: the described regions with holes between and
// around them, from 0 to 2^64.
std::vector<RegionSetup> BuildMemory(const DomainDescription& description) {
  std::vector<RegionSetup> regions;
  uint64_t at = 0;
  for (const RegionDescription& described : description.regions) {
    if (described.region.base > at) regions.push_back({{at, described.region.base - at, RegionKind::Hole, ""}, {}});
    RegionSetup region{described.region, {}};
    if (described.region.kind == RegionKind::Rom) region.image = LoadImage(described.image, "memoryMap");
    regions.push_back(std::move(region));
    at = described.region.base + described.region.size;
  }
  regions.push_back({{at, 0 - at, RegionKind::Hole, ""}, {}});
  return regions;
}

// A running domain, or a failure that names it.
std::shared_ptr<CpuDomain> StartDomain(const target::Node& domainNode, const DomainDescription& description,
                                       std::vector<uint32_t> threadIds, target::Outcome& failure) {
  auto domain = std::make_shared<CpuDomain>();
  domain->targetDomainId = domainNode.id;
  domain->threadDeviceIds = std::move(threadIds);
  EngineSetup setup;
  setup.threadCount = static_cast<uint32_t>(domain->threadDeviceIds.size());
  for (uint32_t index = 0; index < setup.threadCount; ++index)
    setup.apicIds.push_back(index < description.apicIds.size() ? description.apicIds[index] : index);
  std::string error;
  try {
    setup.regions = BuildMemory(description);
  } catch (const target::DescriptionProblem& problem) {
    error = problem.what();
  }
  domain->machine = std::make_shared<EmulatedMachine>(description, setup.apicIds);
  setup.machine = domain->machine;
  CreateBackendFunction create = error.empty() ? LoadEngineModule(error) : nullptr;
  CpuBackend* backend = create ? create(setup, error) : nullptr;
  if (!backend) {
    failure = target::Failure{target::kRefusedInThisState,
                              "The CPUs of target domain '" + domainNode.identifier + "' cannot start: " + error};
    return nullptr;
  }
  domain->backend.reset(backend);
  return domain;
}

}  // namespace

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
  if (old)
    for (const auto& domain : old->domains) domain->backend->Shutdown();
}

target::Outcome CpuDomains::Start(const target::Topology& topology) {
  Stop();
  auto state = std::make_shared<State>();
  // Threads of each domain in traversal order, and each node's threads.
  std::unordered_map<uint32_t, std::vector<uint32_t>> threadsOfDomain;
  std::unordered_map<uint32_t, std::vector<uint32_t>> threadsOfNode;
  for (const target::Node& node : topology.Nodes()) {
    if (node.type != NodeType::LogicalThread) continue;
    threadsOfDomain[node.targetDomainId].push_back(node.id);
    for (const target::Node* at = &node; at; at = at->parentId ? topology.Find(at->parentId) : nullptr)
      threadsOfNode[at->id].push_back(node.id);
    if (node.coreGroupId) threadsOfNode[node.coreGroupId].push_back(node.id);
  }
  std::unordered_map<uint32_t, std::pair<std::shared_ptr<const CpuDomain>, uint32_t>> threadIndex;
  for (uint32_t domainId : topology.TargetDomainIds()) {
    const target::Node* domainNode = topology.Find(domainId);
    std::optional<DomainDescription> description = ReadDomainDescription(*domainNode);
    if (!description || threadsOfDomain[domainId].empty()) continue;
    target::Outcome failure;
    std::shared_ptr<CpuDomain> domain = StartDomain(*domainNode, *description, threadsOfDomain[domainId], failure);
    if (!domain) {
      for (const auto& started : state->domains) started->backend->Shutdown();
      return failure;
    }
    for (uint32_t index = 0; index < domain->threadDeviceIds.size(); ++index)
      threadIndex[domain->threadDeviceIds[index]] = {domain, index};
    state->domains.push_back(std::move(domain));
  }
  for (const target::Node& node : topology.Nodes()) {
    CpuSelection selection;
    selection.result = HoldsThreads(node.type) ? LookupResult::NotEmulated : LookupResult::NotACpu;
    for (uint32_t threadId : threadsOfNode[node.id]) {
      auto found = threadIndex.find(threadId);
      if (found == threadIndex.end()) continue;
      selection.result = LookupResult::Ok;
      selection.domain = found->second.first;
      selection.threadIndices.push_back(found->second.second);
    }
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
