// What a component that works on the built topology holds between its
// Initialize and Uninitialize: the topology it was initialized with.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "Failure.h"
#include "PlatformApi.h"
#include "TargetModel.h"

namespace voxtrel::platform::target {

class VOXTREL_PLATFORM_API TopologyBinding {
 public:
  // `component` names the component in messages, e.g. "RunControl".
  explicit TopologyBinding(std::string component) : component_(std::move(component)) {}

  // Binds to the topology built now, replacing one bound before (a target
  // uninitialized and built again). Refused while none is built.
  Outcome Bind();
  // Harmless when not bound.
  void Unbind();

  bool IsBound() const;
  // Null when not bound.
  std::shared_ptr<LiveTopology> Topology() const;

 private:
  const std::string component_;
  mutable std::mutex mutex_;
  std::shared_ptr<LiveTopology> topology_;
};

}  // namespace voxtrel::platform::target
