// One list of event subscribers.
//
// A delivery runs with no lock held, so that a subscriber may subscribe or
// unsubscribe (itself included) from inside its callback. The list is
// therefore copied on write: a change builds a new array under the list's
// mutex, and a delivery takes the current array under the same mutex and
// lets it go at once. Taking the array is one reference count, never a copy
// of the entries, and an array in delivery stays alive and unchanged until
// its last delivery ends. So a delivery in progress still reaches a
// subscriber removed meanwhile and misses one added meanwhile; a change
// shows from the next event on.
#pragma once

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

namespace vxt {

template <class Callback>
struct EventSubscriber {
  Callback callback;  // Never null
  void* userData;     // Handed back unchanged; never read
};

template <class Callback>
class SubscriberList {
 public:
  using Subscribers = std::vector<EventSubscriber<Callback>>;

  // Appends `callback` unless it is there already, in which case its first
  // userData stays.
  void Add(Callback callback, void* userData) {
    std::lock_guard lock(mutex_);
    if (Find(callback) != nullptr) return;
    auto grown = subscribers_ ? std::make_shared<Subscribers>(*subscribers_) : std::make_shared<Subscribers>();
    grown->push_back({callback, userData});
    subscribers_ = std::move(grown);
  }

  // Removes the first entry of `callback`; the others keep their order. An
  // unknown callback changes nothing.
  void Remove(Callback callback) {
    std::lock_guard lock(mutex_);
    const EventSubscriber<Callback>* found = Find(callback);
    if (found == nullptr) return;
    auto shrunk = std::make_shared<Subscribers>();
    shrunk->reserve(subscribers_->size() - 1);
    for (const auto& subscriber : *subscribers_)
      if (&subscriber != found) shrunk->push_back(subscriber);
    subscribers_ = shrunk->empty() ? nullptr : std::move(shrunk);
  }

  // The subscribers as they stand now; null when there are none.
  std::shared_ptr<const Subscribers> Current() const {
    std::lock_guard lock(mutex_);
    return subscribers_;
  }

  // Calls every subscriber, oldest first, with `record`. A null record
  // reaches nobody.
  template <class Record>
  void Deliver(const Record* record) const {
    if (record == nullptr) return;
    const std::shared_ptr<const Subscribers> subscribers = Current();
    if (!subscribers) return;
    for (const auto& subscriber : *subscribers) subscriber.callback(record, subscriber.userData);
  }

 private:
  const EventSubscriber<Callback>* Find(Callback callback) const {
    if (!subscribers_) return nullptr;
    const auto it = std::find_if(subscribers_->begin(), subscribers_->end(),
                                 [callback](const auto& subscriber) { return subscriber.callback == callback; });
    return it == subscribers_->end() ? nullptr : &*it;
  }

  mutable std::mutex mutex_;
  // Never changed once published; replaced whole by Add and Remove.
  std::shared_ptr<const Subscribers> subscribers_;
};

}  // namespace vxt
