// The locks of a topology's devices: which client holds which device, and
// the waiting of clients for devices that others hold.
//
// A lock request takes all of its devices at once or none, so that two
// clients asking for overlapping sets never each hold a part and wait for
// the rest. Waiting happens on the requester's thread (a receipt's worker)
// and never under a lock that Release, Break or Holder need for longer than
// a look at the table.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <unordered_map>

#include "PlatformApi.h"

namespace voxtrel::platform::target {

class VOXTREL_PLATFORM_API DeviceLocks {
 public:
  using Clock = std::chrono::steady_clock;

  // A device that another client holds.
  struct Conflict {
    uint32_t deviceId = 0;
    uint32_t holder = 0;
  };

  enum class Outcome {
    Taken,       // Every device is the client's now
    Busy,        // Another client holds `conflict`; TryTake only
    TimedOut,    // The deadline passed with `conflict` in the way
    Canceled,    // The stop token was triggered
    Retired,     // The topology was dropped
    ClientGone,  // The client was forgotten after the request read its epoch
  };
  struct Result {
    Outcome outcome = Outcome::Taken;
    Conflict conflict;
  };

  // Takes the devices for `client` if no other client holds any of them
  // (Busy with the first device in the way). Refused as Retired once the
  // topology is retired, and as ClientGone when the client was forgotten
  // after `clientEpoch` was read: a request that raced with either would
  // otherwise hold devices that no one releases.
  Result TryTake(uint32_t client, uint64_t clientEpoch, std::span<const uint32_t> deviceIds);
  // Waits until TryTake succeeds, the deadline passes (none: for ever),
  // `stop` is triggered, the topology is retired, or the client is
  // forgotten after `clientEpoch` was read.
  Result Take(uint32_t client, uint64_t clientEpoch, std::span<const uint32_t> deviceIds,
              std::optional<Clock::time_point> deadline, std::stop_token stop);

  // Counts the client's departures; a request remembers it to notice one.
  uint64_t ClientEpoch(uint32_t client) const;

  // Releases every device of the client; their number.
  size_t ReleaseAll(uint32_t client);
  // Releases the client's devices and ends its waiting requests.
  void ForgetClient(uint32_t client);
  // Releases the device; its former holder, if it had one.
  std::optional<uint32_t> Break(uint32_t deviceId);
  std::optional<uint32_t> Holder(uint32_t deviceId) const;

  // Drops every lock and ends every waiting request for good.
  void Retire();

 private:
  std::optional<Conflict> FindConflict(uint32_t client, std::span<const uint32_t> deviceIds) const;
  uint64_t EpochLocked(uint32_t client) const;
  // TryTake's work, under mutex_.
  Result TakeLocked(uint32_t client, uint64_t clientEpoch, std::span<const uint32_t> deviceIds);

  mutable std::mutex mutex_;
  std::condition_variable_any changed_;             // A device was released, a client forgotten, or all retired
  std::unordered_map<uint32_t, uint32_t> holders_;  // Device id to client id
  std::unordered_map<uint32_t, uint64_t> clientEpochs_;
  bool retired_ = false;
};

}  // namespace voxtrel::platform::target
