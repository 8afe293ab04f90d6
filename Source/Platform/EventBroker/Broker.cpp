#include "EventBroker/Broker.h"

#include <algorithm>

namespace voxtrel::platform::event_broker {

Broker& Broker::Instance() {
  // Immortal: components publish from static destructors at exit.
  static auto& broker = *new Broker;
  return broker;
}

void Broker::Start() {
  const std::lock_guard lock(mutex_);
  running_ = true;
}

void Broker::Stop() {
  const std::lock_guard lock(mutex_);
  running_ = false;
}

bool Broker::IsRunning() const {
  const std::lock_guard lock(mutex_);
  return running_;
}

void Broker::Subscribe(std::string_view typeName, Subscription subscription) {
  const std::lock_guard lock(mutex_);
  auto found = lists_.find(typeName);
  if (found == lists_.end()) found = lists_.emplace(std::string(typeName), std::make_shared<const List>()).first;
  auto changed = std::make_shared<List>(*found->second);
  changed->push_back(std::move(subscription));
  found->second = std::move(changed);
}

bool Broker::Unsubscribe(std::string_view typeName, EventBrokerHandler handler, void* userData) {
  const std::lock_guard lock(mutex_);
  const auto found = lists_.find(typeName);
  if (found == lists_.end()) return false;
  const List& current = *found->second;
  const auto match = std::find_if(current.begin(), current.end(), [&](const Subscription& subscription) {
    return subscription.handler == handler && subscription.userData == userData;
  });
  if (match == current.end()) return false;
  auto changed = std::make_shared<List>(current.begin(), match);
  changed->insert(changed->end(), std::next(match), current.end());
  found->second = std::move(changed);
  return true;
}

std::shared_ptr<const Broker::List> Broker::ListOf(std::string_view typeName) const {
  const auto found = lists_.find(typeName);
  return found == lists_.end() ? nullptr : found->second;
}

uint32_t Broker::Publish(std::string_view typeName, const char* eventName, const void* eventData) const {
  std::shared_ptr<const List> subscribers;
  {
    const std::lock_guard lock(mutex_);
    if (!running_) return kNotRunning;
    subscribers = ListOf(typeName);
  }
  if (!subscribers) return 0;
  for (const Subscription& subscription : *subscribers) subscription.handler(subscription.userData, eventName, eventData);
  return 0;
}

size_t Broker::SubscriberCount(std::string_view typeName) const {
  const std::lock_guard lock(mutex_);
  const std::shared_ptr<const List> list = ListOf(typeName);
  return list ? list->size() : 0;
}

}  // namespace voxtrel::platform::event_broker
