#include "DeviceLocks.h"

#include <iterator>

namespace voxtrel::platform::target {

std::optional<DeviceLocks::Conflict> DeviceLocks::FindConflict(uint32_t client,
                                                               std::span<const uint32_t> deviceIds) const {
  for (uint32_t deviceId : deviceIds) {
    const auto held = holders_.find(deviceId);
    if (held != holders_.end() && held->second != client) return Conflict{deviceId, held->second};
  }
  return std::nullopt;
}

uint64_t DeviceLocks::EpochLocked(uint32_t client) const {
  const auto epoch = clientEpochs_.find(client);
  return epoch == clientEpochs_.end() ? 0 : epoch->second;
}

DeviceLocks::Result DeviceLocks::TakeLocked(uint32_t client, uint64_t clientEpoch,
                                            std::span<const uint32_t> deviceIds) {
  if (retired_) return {Outcome::Retired, {}};
  if (EpochLocked(client) != clientEpoch) return {Outcome::ClientGone, {}};
  if (std::optional<Conflict> conflict = FindConflict(client, deviceIds)) return {Outcome::Busy, *conflict};
  for (uint32_t deviceId : deviceIds) holders_[deviceId] = client;
  return {Outcome::Taken, {}};
}

DeviceLocks::Result DeviceLocks::TryTake(uint32_t client, uint64_t clientEpoch, std::span<const uint32_t> deviceIds) {
  std::lock_guard lock(mutex_);
  return TakeLocked(client, clientEpoch, deviceIds);
}

DeviceLocks::Result DeviceLocks::Take(uint32_t client, uint64_t clientEpoch, std::span<const uint32_t> deviceIds,
                                      std::optional<Clock::time_point> deadline, std::stop_token stop) {
  std::unique_lock lock(mutex_);
  Result result{Outcome::Busy, {}};
  // The wait is over unless another client is still in the way; the last
  // run of this, under the lock, has taken the devices if it could.
  const auto settled = [&] {
    result = TakeLocked(client, clientEpoch, deviceIds);
    return result.outcome != Outcome::Busy;
  };
  if (deadline) {
    changed_.wait_until(lock, stop, *deadline, settled);
  } else {
    changed_.wait(lock, stop, settled);
  }
  if (result.outcome != Outcome::Busy) return result;
  return {stop.stop_requested() ? Outcome::Canceled : Outcome::TimedOut, result.conflict};
}

uint64_t DeviceLocks::ClientEpoch(uint32_t client) const {
  std::lock_guard lock(mutex_);
  return EpochLocked(client);
}

size_t DeviceLocks::ReleaseAll(uint32_t client) {
  size_t released = 0;
  {
    std::lock_guard lock(mutex_);
    released = std::erase_if(holders_, [client](const auto& held) { return held.second == client; });
  }
  if (released > 0) changed_.notify_all();
  return released;
}

void DeviceLocks::ForgetClient(uint32_t client) {
  {
    std::lock_guard lock(mutex_);
    std::erase_if(holders_, [client](const auto& held) { return held.second == client; });
    ++clientEpochs_[client];
  }
  changed_.notify_all();
}

std::optional<uint32_t> DeviceLocks::Break(uint32_t deviceId) {
  std::optional<uint32_t> holder;
  {
    std::lock_guard lock(mutex_);
    const auto held = holders_.find(deviceId);
    if (held == holders_.end()) return std::nullopt;
    holder = held->second;
    holders_.erase(held);
  }
  changed_.notify_all();
  return holder;
}

std::optional<uint32_t> DeviceLocks::Holder(uint32_t deviceId) const {
  std::lock_guard lock(mutex_);
  const auto held = holders_.find(deviceId);
  if (held == holders_.end()) return std::nullopt;
  return held->second;
}

void DeviceLocks::Retire() {
  {
    std::lock_guard lock(mutex_);
    retired_ = true;
    holders_.clear();
  }
  changed_.notify_all();
}

}  // namespace voxtrel::platform::target
