// The EventBroker's subscriber lists and its delivery.
//
// Each event type has a list of subscriptions in subscription order. A list
// is never changed in place: a change builds a new list and swaps it in under
// the mutex, so a delivery walks the list it took without any lock held. A
// handler may therefore subscribe, unsubscribe (itself included) or publish
// while it runs; the change shows from the next event on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "EventBroker.h"

namespace voxtrel::platform::event_broker {

// Internal codes of the broker.
inline constexpr uint32_t kNullArgument = 0x20000;
inline constexpr uint32_t kUnknownSubscription = 0x20001;  // Unsubscribe of what is not subscribed
inline constexpr uint32_t kNotRunning = 0x20002;           // Publish while the broker is stopped

struct Subscription {
  EventBrokerHandler handler = nullptr;
  void* userData = nullptr;
  uint32_t mode = 0;
  std::string subscriberName;
};

class Broker {
 public:
  static Broker& Instance();

  // Subscriptions are kept across a stop and a new start.
  void Start();
  void Stop();
  bool IsRunning() const;

  // The same handler and userData may be subscribed more than once; each
  // subscription is delivered to and needs an Unsubscribe of its own.
  void Subscribe(std::string_view typeName, Subscription subscription);
  // Removes the oldest subscription with this handler and userData; false if none.
  bool Unsubscribe(std::string_view typeName, EventBrokerHandler handler, void* userData);
  // Delivers on the calling thread; kNotRunning while stopped.
  uint32_t Publish(std::string_view typeName, const char* eventName, const void* eventData) const;

  size_t SubscriberCount(std::string_view typeName) const;

 private:
  using List = std::vector<Subscription>;
  Broker() = default;
  std::shared_ptr<const List> ListOf(std::string_view typeName) const;

  mutable std::mutex mutex_;
  bool running_ = false;
  std::map<std::string, std::shared_ptr<const List>, std::less<>> lists_;
};

}  // namespace voxtrel::platform::event_broker
