// State a component keeps for the target that is built now: dropped when
// another topology is built, so that each target starts as its description
// says (levels in force, settings, precondition states).
#pragma once

#include <memory>
#include <mutex>

#include "Target/TargetModel.h"

namespace voxtrel::platform::target {

template <class State>
class PerTarget {
 public:
  // Held around every use of For.
  std::mutex mutex;

  // The state of `topology`; a fresh one when another topology was built
  // since the last call.
  State& For(const std::shared_ptr<LiveTopology>& topology) {
    if (owner_.lock() != topology) {
      state_ = State{};
      owner_ = topology;
    }
    return state_;
  }

 private:
  std::weak_ptr<LiveTopology> owner_;
  State state_;
};

}  // namespace voxtrel::platform::target
