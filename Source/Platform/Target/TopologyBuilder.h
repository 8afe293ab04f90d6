// Turns the "targetDomains" of a description (parameters already substituted)
// into the nodes of a topology: ids, identifiers, links, and the references
// between nodes resolved.
#pragma once

#include <cstddef>
#include <vector>

#include "Topology.h"

namespace voxtrel::platform::target {

// No description may declare more nodes than this.
inline constexpr size_t kMaxNodes = 65536;

// The nodes in traversal order, the root first. Throws DescriptionProblem.
std::vector<Node> BuildNodes(const Json& targetDomains, const std::string& place);

}  // namespace voxtrel::platform::target
