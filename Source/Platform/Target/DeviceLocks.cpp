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

std::optional<DeviceLocks::Conflict> DeviceLocks::TryTake(uint32_t client, std::span<const uint32_t> deviceIds) {
  std::lock_guard lock(mutex_);
  if (std::optional<Conflict> conflict = FindConflict(client, deviceIds)) return conflict;
  for (uint32_t deviceId : deviceIds) holders_[deviceId] = client;
  return std::nullopt;
}

DeviceLocks::Result DeviceLocks::Take(uint32_t client, uint64_t clientEpoch, std::span<const uint32_t> deviceIds,
                                      std::optional<Clock::time_point> deadline, std::stop_token stop) {
  std::unique_lock lock(mutex_);
  std::optional<Conflict> conflict;
  bool clientGone = false;
  // True when waiting is over, whatever the reason.
  const auto settled = [&] {
    if (retired_) return true;
    const auto epoch = clientEpochs_.find(client);
    clientGone = (epoch == clientEpochs_.end() ? 0 : epoch->second) != clientEpoch;
    if (clientGone) return true;
    conflict = FindConflict(client, deviceIds);
    return !conflict;
  };
  if (deadline) {
    changed_.wait_until(lock, stop, *deadline, settled);
  } else {
    changed_.wait(lock, stop, settled);
  }
  // The predicate ran last under the lock, so its findings stand.
  if (retired_) return {Outcome::Retired, {}};
  if (clientGone) return {Outcome::ClientGone, {}};
  if (!conflict) {
    for (uint32_t deviceId : deviceIds) holders_[deviceId] = client;
    return {Outcome::Taken, {}};
  }
  if (stop.stop_requested()) return {Outcome::Canceled, *conflict};
  return {Outcome::TimedOut, *conflict};
}

uint64_t DeviceLocks::ClientEpoch(uint32_t client) const {
  std::lock_guard lock(mutex_);
  const auto epoch = clientEpochs_.find(client);
  return epoch == clientEpochs_.end() ? 0 : epoch->second;
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
