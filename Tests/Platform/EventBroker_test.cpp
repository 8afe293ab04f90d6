// The EventBroker: subscriptions, delivery order, changes during delivery,
// its start and stop, and publishing from many threads.
#include <atomic>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "EventBroker.h"
#include "PlatformTestControl.h"
#include "TargetTestSupport.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::CallPosting;
using vxt::test::Posted;

constexpr uint32_t kNullArgument = 0x20000;
constexpr uint32_t kUnknownSubscription = 0x20001;
constexpr uint32_t kNotRunning = 0x20002;
constexpr char kType[] = "BrokerTest";

const EventBrokerComponent& Broker() { return vxt::test::Get(&Voxtrel_GetEventBroker); }

// One delivery as a subscriber saw it.
struct Delivery {
  std::string subscriber;
  std::string eventName;
  const void* eventData;

  friend bool operator==(const Delivery&, const Delivery&) = default;
};

std::ostream& operator<<(std::ostream& out, const Delivery& delivery) {
  return out << "{" << delivery.subscriber << ", " << delivery.eventName << ", " << delivery.eventData << "}";
}

// A subscriber whose userData points to it; what it does on an event can be
// set per test.
struct Subscriber {
  std::string name;
  std::vector<Delivery>* log;
  std::function<void()> onEvent;

  static void Handle(void* userData, const char* eventName, const void* eventData) {
    auto& self = *static_cast<Subscriber*>(userData);
    self.log->push_back({self.name, eventName, eventData});
    if (self.onEvent) self.onEvent();
  }
};

class EventBrokerTest : public vxt::test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    broker_.Initialize();
  }
  void TearDown() override {
    for (Subscriber* subscriber : {&a_, &b_, &c_})
      while (broker_.Unsubscribe(kType, &Subscriber::Handle, subscriber) == 0) {
      }
    broker_.Uninitialize();
    PlatformTest::TearDown();
  }

  uint32_t Subscribe(Subscriber& subscriber) {
    return broker_.Subscribe(kType, &Subscriber::Handle, &subscriber, subscriber.name.c_str());
  }
  uint32_t Unsubscribe(Subscriber& subscriber) { return broker_.Unsubscribe(kType, &Subscriber::Handle, &subscriber); }
  std::vector<std::string> Publish(const char* eventName) {
    log_.clear();
    EXPECT_EQ(broker_.Publish(kType, eventName, nullptr), 0u);
    std::vector<std::string> names;
    for (const Delivery& delivery : log_) names.push_back(delivery.subscriber);
    return names;
  }

  const EventBrokerComponent& broker_ = Broker();
  std::vector<Delivery> log_;
  Subscriber a_{"a", &log_, {}};
  Subscriber b_{"b", &log_, {}};
  Subscriber c_{"c", &log_, {}};
};

using Names = std::vector<std::string>;

void Ignore(void*, const char*, const void*) {}

TEST_F(EventBrokerTest, NullTypeOrHandlerIsRefusedAndChangesNothing) {
  struct Case {
    const char* name;
    std::function<uint32_t()> call;
    std::string message;
  };
  const Case cases[] = {
      {"Subscribe type", [&] { return broker_.Subscribe(nullptr, &Ignore, nullptr, "t"); },
       "EventBroker.Subscribe was given a null typeName"},
      {"Subscribe handler", [&] { return broker_.Subscribe(kType, nullptr, nullptr, "t"); },
       "EventBroker.Subscribe was given a null handler"},
      {"SubscribeWithMode handler", [&] { return broker_.SubscribeWithMode(kType, nullptr, 2, nullptr, "t"); },
       "EventBroker.SubscribeWithMode was given a null handler"},
      {"Unsubscribe type", [&] { return broker_.Unsubscribe(nullptr, &Ignore, nullptr); },
       "EventBroker.Unsubscribe was given a null typeName"},
      {"Unsubscribe handler", [&] { return broker_.Unsubscribe(kType, nullptr, nullptr); },
       "EventBroker.Unsubscribe was given a null handler"},
      {"Publish type", [&] { return broker_.Publish(nullptr, "e", nullptr); },
       "EventBroker.Publish was given a null typeName"},
      {"Publish name", [&] { return broker_.Publish(kType, nullptr, nullptr); },
       "EventBroker.Publish was given a null eventName"},
  };
  ASSERT_EQ(Subscribe(a_), 0u);
  for (const Case& refused : cases) {
    EXPECT_EQ(CallPosting(refused.call), (Posted{kNullArgument, refused.message})) << refused.name;
    EXPECT_EQ(tc::BrokerSubscriberCount(kType), 1u) << refused.name;
  }
  EXPECT_TRUE(log_.empty());
}

TEST_F(EventBrokerTest, DeliversInSubscriptionOrderWithEachUserData) {
  ASSERT_EQ(Subscribe(b_), 0u);
  ASSERT_EQ(broker_.SubscribeWithMode(kType, &Subscriber::Handle, 2, &a_, "a"), 0u);
  ASSERT_EQ(Subscribe(c_), 0u);
  const int data = 7;
  EXPECT_EQ(broker_.Publish(kType, "Happened", &data), 0u);
  EXPECT_EQ(log_, (std::vector<Delivery>{{"b", "Happened", &data}, {"a", "Happened", &data}, {"c", "Happened", &data}}));
  // Other types reach nobody here.
  log_.clear();
  EXPECT_EQ(broker_.Publish("OtherType", "Happened", nullptr), 0u);
  EXPECT_TRUE(log_.empty());
}

TEST_F(EventBrokerTest, UnsubscribeRemovesOneMatchingSubscriptionAndKeepsTheOrder) {
  for (Subscriber* subscriber : {&a_, &b_, &c_, &b_}) ASSERT_EQ(Subscribe(*subscriber), 0u);
  EXPECT_EQ(Publish("e"), (Names{"a", "b", "c", "b"}));  // Subscribed twice, delivered twice
  EXPECT_EQ(Unsubscribe(b_), 0u);
  EXPECT_EQ(Publish("e"), (Names{"a", "c", "b"}));
  EXPECT_EQ(Unsubscribe(b_), 0u);
  EXPECT_EQ(Publish("e"), (Names{"a", "c"}));

  struct Case {
    const char* name;
    const char* typeName;
    void* userData;
  };
  const Case unknown[] = {
      {"gone already", kType, &b_},
      {"other userData", kType, &log_},
      {"other type", "OtherType", &a_},
  };
  for (const Case& refused : unknown) {
    EXPECT_EQ(CallPosting([&] { return broker_.Unsubscribe(refused.typeName, &Subscriber::Handle, refused.userData); })
                  .code,
              kUnknownSubscription)
        << refused.name;
  }
  EXPECT_EQ(tc::BrokerSubscriberCount(kType), 2u);
}

// A change that a handler makes to the list takes effect from the next event:
// the delivery under way goes on over the list as it was.
TEST_F(EventBrokerTest, HandlersChangingTheListAffectOnlyLaterEvents) {
  struct Case {
    const char* name;
    std::function<void()> onA;
    std::vector<Subscriber*> subscribed;
    Names first, second;
  };
  const Case cases[] = {
      {"a unsubscribes itself", [&] { EXPECT_EQ(Unsubscribe(a_), 0u); }, {&a_, &b_, &c_}, {"a", "b", "c"},
       {"b", "c"}},
      {"a removes the later c", [&] { Unsubscribe(c_); }, {&a_, &b_, &c_}, {"a", "b", "c"}, {"a", "b"}},
      {"a subscribes b",
       [&] {
         if (tc::BrokerSubscriberCount(kType) == 1) {
           EXPECT_EQ(Subscribe(b_), 0u);
         }
       },
       {&a_}, {"a"}, {"a", "b"}},
  };
  for (const Case& change : cases) {
    SCOPED_TRACE(change.name);
    for (Subscriber* subscriber : {&a_, &b_, &c_})
      while (Unsubscribe(*subscriber) == 0) {
      }
    a_.onEvent = change.onA;
    for (Subscriber* subscriber : change.subscribed) ASSERT_EQ(Subscribe(*subscriber), 0u);
    EXPECT_EQ(Publish("e"), change.first);
    EXPECT_EQ(Publish("e"), change.second);
  }
}

TEST_F(EventBrokerTest, HandlerMayPublishAgain) {
  a_.onEvent = [&] {
    if (log_.size() == 1) {
      EXPECT_EQ(broker_.Publish(kType, "nested", nullptr), 0u);
    }
  };
  ASSERT_EQ(Subscribe(a_), 0u);
  ASSERT_EQ(broker_.Publish(kType, "outer", nullptr), 0u);
  ASSERT_EQ(log_.size(), 2u);
  EXPECT_EQ(log_[1].eventName, "nested");
}

TEST_F(EventBrokerTest, StoppedBrokerDeliversNothingAndKeepsItsSubscriptions) {
  ASSERT_EQ(Subscribe(a_), 0u);
  EXPECT_EQ(broker_.Uninitialize(), 0u);
  EXPECT_EQ(CallPosting([&] { return broker_.Publish(kType, "e", nullptr); }), (Posted{kNotRunning, ""}));
  EXPECT_EQ(tc::PublishBrokerEvent(kType, "e", nullptr), kNotRunning);
  EXPECT_TRUE(log_.empty());
  // Subscribing and unsubscribing work while stopped.
  EXPECT_EQ(Subscribe(b_), 0u);
  EXPECT_EQ(broker_.Initialize(), 0u);
  EXPECT_EQ(Publish("e"), (Names{"a", "b"}));
}

// The message event's data is its kind; its name is the text.
TEST_F(EventBrokerTest, MessageEventCarriesTheTextAsNameAndTheKindAsData) {
  struct Heard {
    std::string text;
    uint32_t kind = 0;
    bool hadData = false;
  } heard;
  auto handler = [](void* userData, const char* eventName, const void* eventData) {
    auto& into = *static_cast<Heard*>(userData);
    into.text = eventName;
    into.hadData = eventData != nullptr;
    if (eventData) std::memcpy(&into.kind, eventData, sizeof into.kind);
  };
  ASSERT_EQ(broker_.Subscribe("Message", handler, &heard, "test"), 0u);
  for (const uint32_t kind : {0u, 1u, 2u}) {
    EXPECT_EQ(Voxtrel_PublishMessageEvent(kind, "store says hello"), 0u);
    EXPECT_EQ(heard.text, "store says hello");
    EXPECT_TRUE(heard.hadData);
    EXPECT_EQ(heard.kind, kind);
  }
  EXPECT_EQ(Voxtrel_PublishMessageEvent(1, nullptr), kNullArgument);
  EXPECT_EQ(broker_.Unsubscribe("Message", handler, &heard), 0u);
}

// Publishers race with threads that keep changing the list: a standing
// subscriber hears every event exactly once, and the changes all land.
TEST_F(EventBrokerTest, ConcurrentPublishingAndSubscribingLoseNothing) {
  constexpr int kPublishers = 2;
  constexpr int kEventsEach = 2000;
  constexpr int kChangers = 2;
  std::atomic<int> heard{0};
  auto count = [](void* userData, const char*, const void*) { ++*static_cast<std::atomic<int>*>(userData); };
  ASSERT_EQ(broker_.Subscribe(kType, count, &heard, "standing"), 0u);

  std::atomic<bool> publishing{true};
  std::vector<std::thread> changers;
  for (int changer = 0; changer < kChangers; ++changer)
    changers.emplace_back([&] {
      std::atomic<int> mine{0};
      void* userData = &mine;
      while (publishing) {
        ASSERT_EQ(broker_.Subscribe(kType, count, userData, "changing"), 0u);
        ASSERT_EQ(broker_.Unsubscribe(kType, count, userData), 0u);
      }
    });
  std::vector<std::thread> publishers;
  for (int publisher = 0; publisher < kPublishers; ++publisher)
    publishers.emplace_back([&] {
      for (int event = 0; event < kEventsEach; ++event) ASSERT_EQ(broker_.Publish(kType, "tick", nullptr), 0u);
    });
  for (std::thread& thread : publishers) thread.join();
  publishing = false;
  for (std::thread& thread : changers) thread.join();

  EXPECT_EQ(heard.load(), kPublishers * kEventsEach);
  EXPECT_EQ(tc::BrokerSubscriberCount(kType), 1u);
  EXPECT_EQ(broker_.Unsubscribe(kType, count, &heard), 0u);
}

}  // namespace
