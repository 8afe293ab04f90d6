#include "Topology.h"

namespace voxtrel::platform::target {

const TapInstruction* TapControllerDetails::FindInstruction(std::string_view name) const {
  for (const TapInstruction& instruction : instructions)
    if (instruction.name == name) return &instruction;
  return nullptr;
}

const std::string* Node::FindProperty(std::string_view name) const {
  for (const Property& property : properties)
    if (property.name == name) return &property.value;
  return nullptr;
}

const Json* Node::FindFacet(std::string_view name) const {
  for (const auto& [member, value] : facets)
    if (member == name) return &value;
  return nullptr;
}

Topology::Topology(std::string name, std::string origin, std::string description, std::vector<std::string> scenarios,
                   std::vector<Node> nodes)
    : name_(std::move(name)),
      origin_(std::move(origin)),
      description_(std::move(description)),
      scenarios_(std::move(scenarios)),
      nodes_(std::move(nodes)) {
  indexById_.reserve(nodes_.size());
  for (size_t index = 0; index < nodes_.size(); ++index) {
    const Node& node = nodes_[index];
    indexById_.emplace(node.id, index);
    if (node.targetDomainId != 0) idByIdentifier_[node.targetDomainId].emplace(node.identifier, node.id);
  }
}

const Node* Topology::Find(uint32_t deviceId) const {
  const std::optional<size_t> index = IndexOf(deviceId);
  return index ? &nodes_[*index] : nullptr;
}

std::optional<size_t> Topology::IndexOf(uint32_t deviceId) const {
  const auto found = indexById_.find(deviceId);
  if (found == indexById_.end()) return std::nullopt;
  return found->second;
}

const Node* Topology::FindByIdentifier(uint32_t targetDomainId, std::string_view identifier) const {
  const auto domain = idByIdentifier_.find(targetDomainId);
  if (domain == idByIdentifier_.end()) return nullptr;
  const auto found = domain->second.find(identifier);
  return found == domain->second.end() ? nullptr : Find(found->second);
}

}  // namespace voxtrel::platform::target
