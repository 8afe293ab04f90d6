// The device whose member describes a device's share of a component's
// state: the device itself or its nearest ancestor with the member (the
// preconditions or authorization levels a target domain describes hold for
// every device in it).
#pragma once

#include <string_view>

#include "Target/TargetModel.h"

namespace voxtrel::platform::target {

// Null when neither the device nor any ancestor has the member.
inline const Node* FacetOwner(const LiveTopology& topology, const Node& device, std::string_view member) {
  for (const Node* node = &device; node != nullptr; node = topology.Layout().Find(node->parentId)) {
    if (node->FindFacet(member) != nullptr) return node;
    if (node->parentId == 0) break;
  }
  return nullptr;
}

}  // namespace voxtrel::platform::target
