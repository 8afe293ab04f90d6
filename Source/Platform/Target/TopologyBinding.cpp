#include "TopologyBinding.h"

namespace voxtrel::platform::target {

Outcome TopologyBinding::Bind() {
  std::shared_ptr<LiveTopology> topology = TargetModel::Instance().Topology();
  if (!topology)
    return Failure{kRefusedInThisState, "The " + component_ +
                                            " component cannot be initialized before the target's topology is built "
                                            "(TargetManager.FinishInitialization)"};
  std::lock_guard lock(mutex_);
  topology_ = std::move(topology);
  return std::nullopt;
}

void TopologyBinding::Unbind() {
  std::lock_guard lock(mutex_);
  topology_.reset();
}

bool TopologyBinding::IsBound() const {
  std::lock_guard lock(mutex_);
  return topology_ != nullptr;
}

std::shared_ptr<LiveTopology> TopologyBinding::Topology() const {
  std::lock_guard lock(mutex_);
  return topology_;
}

}  // namespace voxtrel::platform::target
