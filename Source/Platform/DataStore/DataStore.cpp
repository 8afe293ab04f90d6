// The DataStore component: the platform's structured-data store. It keeps
// one notification callback, which it calls on the notifying thread.
#include "DataStore.h"

#include <memory>
#include <mutex>
#include <utility>

namespace voxtrel::platform::data_store {

namespace {

class NotifyingDataStore final : public DataStore {
 public:
  void SetNotificationCallback(NotificationCallback callback) override {
    auto replacement = callback ? std::make_shared<const NotificationCallback>(std::move(callback)) : nullptr;
    const std::lock_guard lock(mutex_);
    callback_ = std::move(replacement);
  }

  // The callback is taken under the lock and called outside it, so that it
  // may set or clear the callback itself, and a clearing thread never waits
  // for a notification in progress.
  void Notify(const std::string& text) override {
    std::shared_ptr<const NotificationCallback> callback;
    {
      const std::lock_guard lock(mutex_);
      callback = callback_;
    }
    if (callback) (*callback)(text);
  }

 private:
  std::mutex mutex_;
  std::shared_ptr<const NotificationCallback> callback_;
};

}  // namespace

}  // namespace voxtrel::platform::data_store

DataStore& DataStore::Get() {
  // Immortal: the library clears the callback from its static destructors.
  static auto& store = *new voxtrel::platform::data_store::NotifyingDataStore;
  return store;
}
