#include "Common/ClientRegistry.h"

#include <algorithm>

namespace voxtrel::platform::common {

namespace {

// The registration the calling thread acts for; 0 for none.
thread_local uint64_t threadRegistration = 0;

}  // namespace

ClientRegistry& ClientRegistry::Instance() {
  // Immortal: the library asks for the client id in static destructors.
  static auto& registry = *new ClientRegistry;
  return registry;
}

const ClientRegistry::Entry* ClientRegistry::EntryOf(uint64_t registration) const {
  if (registration == 0) return nullptr;
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.registration == registration; });
  return found == entries_.end() ? nullptr : &*found;
}

void ClientRegistry::Register(const VXT_Client& record) {
  const std::lock_guard lock(mutex_);
  entries_.push_back({++lastRegistration_, record});
  count_.store(entries_.size(), std::memory_order_release);
  threadRegistration = lastRegistration_;
}

std::optional<VXT_Client> ClientRegistry::Unregister(uint32_t clientId) {
  const std::lock_guard lock(mutex_);
  const Entry* own = EntryOf(threadRegistration);
  auto found = own && own->record.clientId == clientId
                   ? entries_.begin() + (own - entries_.data())
                   : std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.record.clientId == clientId; });
  if (found == entries_.end()) return std::nullopt;
  VXT_Client removed = found->record;
  entries_.erase(found);
  count_.store(entries_.size(), std::memory_order_release);
  return removed;
}

std::optional<uint32_t> ClientRegistry::BoundClientId() const {
  const std::lock_guard lock(mutex_);
  const Entry* entry = EntryOf(threadRegistration);
  return entry ? std::optional<uint32_t>(entry->record.clientId) : std::nullopt;
}

bool ClientRegistry::BindThread(uint32_t clientId) {
  const std::lock_guard lock(mutex_);
  const auto newest = std::find_if(entries_.rbegin(), entries_.rend(),
                                   [&](const Entry& entry) { return entry.record.clientId == clientId; });
  threadRegistration = newest == entries_.rend() ? 0 : newest->registration;
  return threadRegistration != 0;
}

std::vector<VXT_Client> ClientRegistry::Records(size_t max) const {
  const std::lock_guard lock(mutex_);
  std::vector<VXT_Client> records;
  const size_t count = std::min(max, entries_.size());
  records.reserve(count);
  for (size_t index = 0; index < count; ++index) records.push_back(entries_[index].record);
  return records;
}

std::optional<VXT_Client> ClientRegistry::Find(uint32_t clientId) const {
  const std::lock_guard lock(mutex_);
  const auto newest = std::find_if(entries_.rbegin(), entries_.rend(),
                                   [&](const Entry& entry) { return entry.record.clientId == clientId; });
  return newest == entries_.rend() ? std::nullopt : std::optional<VXT_Client>(newest->record);
}

}  // namespace voxtrel::platform::common
