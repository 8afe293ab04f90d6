// The clients Common knows, in order of registration, and the client each
// thread acts for.
//
// The same id may be registered more than once; each registration is an
// entry of its own and needs an unregistration of its own. A thread is bound
// to a registration, not to an id: once that registration is gone the thread
// acts for no client, even if the id is registered again by another thread.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "VXT_Client.h"

namespace voxtrel::platform::common {

class ClientRegistry {
 public:
  static ClientRegistry& Instance();

  // Adds the record and binds the calling thread to it.
  void Register(const VXT_Client& record);
  // Removes a registration of the id: the calling thread's own if it holds
  // one of this id, else the oldest. The removed record, or nothing.
  std::optional<VXT_Client> Unregister(uint32_t clientId);

  // The id the calling thread acts for, if its registration stands.
  std::optional<uint32_t> BoundClientId() const;
  // Binds the calling thread to the newest registration of the id; false
  // and unbound if there is none.
  bool BindThread(uint32_t clientId);

  // Reads no lock, so that a count asked from many threads does not make
  // them wait on each other.
  size_t Count() const { return count_.load(std::memory_order_acquire); }
  // The first `max` records in order of registration.
  std::vector<VXT_Client> Records(size_t max) const;
  // The newest record of the id.
  std::optional<VXT_Client> Find(uint32_t clientId) const;

 private:
  struct Entry {
    uint64_t registration;  // Unique for the process, never 0
    VXT_Client record;
  };
  ClientRegistry() = default;
  const Entry* EntryOf(uint64_t registration) const;

  mutable std::mutex mutex_;
  uint64_t lastRegistration_ = 0;
  std::vector<Entry> entries_;
  std::atomic<size_t> count_{0};  // entries_.size(), written under mutex_
};

}  // namespace voxtrel::platform::common
