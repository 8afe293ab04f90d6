// The calls into the Telemetry library kept for test control, up to a limit,
// the oldest dropped first.
#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "PlatformTestControl.h"

namespace voxtrel::platform::telemetry {

class CallRecords {
 public:
  explicit CallRecords(size_t limit) : limit_(limit) {}

  // Once the limit is reached, the oldest call's record takes the new one,
  // its texts' storage reused: every counted call of the interface library
  // is recorded, and a long-running client must not allocate for each.
  template <class Texts>
  void Add(std::string_view function, const Texts& args) {
    if (slots_.size() < limit_) {
      slots_.push_back({std::string(function), std::vector<std::string>(std::begin(args), std::end(args))});
      return;
    }
    testing::TelemetryCall& slot = slots_[oldest_];
    slot.function.assign(function);
    slot.args.resize(std::size(args));
    size_t i = 0;
    for (const auto& arg : args) slot.args[i++].assign(std::string_view(arg));
    oldest_ = (oldest_ + 1) % limit_;
  }

  std::vector<testing::TelemetryCall> InOrder() const {
    std::vector<testing::TelemetryCall> calls(slots_.begin() + static_cast<std::ptrdiff_t>(oldest_), slots_.end());
    calls.insert(calls.end(), slots_.begin(), slots_.begin() + static_cast<std::ptrdiff_t>(oldest_));
    return calls;
  }

  void Clear() {
    slots_.clear();
    oldest_ = 0;
  }

 private:
  size_t limit_;
  std::vector<testing::TelemetryCall> slots_;
  size_t oldest_ = 0;  // Where the next record goes once the limit is reached
};

}  // namespace voxtrel::platform::telemetry
