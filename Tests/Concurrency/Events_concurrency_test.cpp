// Event delivery on several threads at once: no lock is held while a
// subscriber runs, every delivery keeps the subscription order, the lists
// change safely under deliveries, and subscriptions outlive clients that
// come and go on many threads.
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "../../Source/Platform/Events/MessageEvent.h"
#include "../../Source/Platform/Events/StatePortEvent.h"
#include "../../Source/Platform/Events/TargetEvents.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
namespace ev = voxtrel::platform::events;
using vxt::test::MakeClient;

// Only guards against a hang: a lock held while a subscriber runs makes
// the waits below run out instead of blocking the test for ever.
constexpr auto kDeadlockGuard = std::chrono::seconds(10);

IInternalService_Event& Events() {
  void* service = nullptr;
  GetService(nullptr, VXT_Service_Event, &service);
  return *static_cast<IInternalService_Event*>(service);
}

void PublishMessage(const char* text) {
  const ev::MessageEventData kind = ev::MakeMessageEventData(1);
  tc::PublishBrokerEvent("Message", text, &kind);
}

// Client 1 connected and the target up, so that the broker and the
// interface port component deliver; trace rendered but not written, to
// exercise the handlers' lines under contention.
class EventsConcurrencyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tc::ResetTestControl();
    tc::SetLogLevel(1);
    tc::SetLoggingSuppressed(true);
    ASSERT_EQ(StartNewInstance(&client_, 1, 0, nullptr), 0);
    ASSERT_EQ(FinishInitialization(), 0);
  }
  void TearDown() override {
    Disconnect(1);
    tc::ResetTestControl();
  }

 private:
  VXT_Client client_ = MakeClient(1, "events_1@here");
};

struct Rendezvous {
  std::promise<void> entered;
  std::promise<void> released;
  std::atomic<bool> timedOut{false};
  std::atomic<int> calls{0};
};

std::atomic<int> othersReached{0};

void Other(const VXT_MessageEvent*, void*) { ++othersReached; }
void OtherTarget(const VXT_TargetEvent*, void*) { ++othersReached; }

// Changes its own list from inside its callback, then holds the delivery
// until the test thread, which meanwhile edits and delivers the same list,
// lets it go.
void Holding(const VXT_MessageEvent*, void* userData) {
  auto& rendezvous = *static_cast<Rendezvous*>(userData);
  if (rendezvous.calls++ > 0) return;  // Only the first delivery holds
  IInternalService_Event& events = Events();
  events.SubscribeMessageEvents(&Other, nullptr);
  events.UnsubscribeMessageEvents(&Other);
  events.UnsubscribeMessageEvents(&Holding);
  rendezvous.entered.set_value();
  if (rendezvous.released.get_future().wait_for(kDeadlockGuard) != std::future_status::ready)
    rendezvous.timedOut = true;
}

TEST_F(EventsConcurrencyTest, NoLockIsHeldWhileASubscriberRuns) {
  Rendezvous rendezvous;
  IInternalService_Event& events = Events();
  ASSERT_EQ(events.SubscribeMessageEvents(&Holding, &rendezvous), 0);
  std::future<void> entered = rendezvous.entered.get_future();
  std::thread deliverer([] { PublishMessage("held"); });

  if (entered.wait_for(kDeadlockGuard) != std::future_status::ready) {
    ADD_FAILURE() << "the subscriber never got past changing its own list";
    std::_Exit(1);  // The delivering thread is stuck for good
  }
  // The first delivery is still running: its list, and another, can change
  // and be delivered to from here.
  EXPECT_EQ(events.SubscribeMessageEvents(&Other, nullptr), 0);
  EXPECT_EQ(events.SubscribeTargetEvents(&OtherTarget, nullptr), 0);
  PublishMessage("meanwhile");
  EXPECT_EQ(ev::PublishTargetPowerEvent("On", 1), 0u);
  EXPECT_EQ(othersReached.load(), 2);
  EXPECT_EQ(events.UnsubscribeMessageEvents(&Other), 0);
  EXPECT_EQ(events.UnsubscribeTargetEvents(&OtherTarget), 0);
  rendezvous.released.set_value();
  deliverer.join();

  EXPECT_FALSE(rendezvous.timedOut.load()) << "a list stayed locked while its subscriber ran";
  // The holder took itself off before the second event: one call in all.
  EXPECT_EQ(rendezvous.calls.load(), 1);
}

// Roles 0 and 1 are the stable first and last subscribers of every list,
// checked for order and their userData on each delivering thread; the
// others are subscribed and unsubscribed over and over.
std::atomic<int> calls[4]{};  // By role
std::atomic<int> outOfOrder{0};
thread_local int lastSeen = 1;

template <int Role, class Record>
void Subscriber(const Record*, void* userData) {
  if constexpr (Role < 2) {
    if (lastSeen != 1 - Role || userData != &calls[Role]) ++outOfOrder;
    lastSeen = Role;
  }
  ++calls[Role];
}

// Subscribes (or unsubscribes) the role on the four lists; the failures.
template <int Role>
int ChangeEveryList(IInternalService_Event& events, bool subscribe) {
  if (subscribe)
    return (events.SubscribeTargetEvents(&Subscriber<Role, VXT_TargetEvent>, &calls[Role]) != 0) +
           (events.SubscribeMessageEvents(&Subscriber<Role, VXT_MessageEvent>, &calls[Role]) != 0) +
           (events.SubscribeStatePortEvents(&Subscriber<Role, VXT_StatePortEvent>, &calls[Role]) != 0) +
           (events.SubscribeInterfacePortErrorEvents(&Subscriber<Role, VXT_InterfacePortErrorEvent>, &calls[Role]) !=
            0);
  return (events.UnsubscribeTargetEvents(&Subscriber<Role, VXT_TargetEvent>) != 0) +
         (events.UnsubscribeMessageEvents(&Subscriber<Role, VXT_MessageEvent>) != 0) +
         (events.UnsubscribeStatePortEvents(&Subscriber<Role, VXT_StatePortEvent>) != 0) +
         (events.UnsubscribeInterfacePortErrorEvents(&Subscriber<Role, VXT_InterfacePortErrorEvent>) != 0);
}

template <int Role>
void Churn(IInternalService_Event& events, std::atomic<int>& failures) {
  failures += ChangeEveryList<Role>(events, true) + ChangeEveryList<Role>(events, false);
}

TEST_F(EventsConcurrencyTest, DeliveriesRunWhileOtherThreadsSubscribeAndUnsubscribe) {
  constexpr int kPublishers = 2;
  constexpr int kRounds = 400;
  constexpr int kListsPerRound = 4;
  IInternalService_Event& events = Events();
  ASSERT_EQ(ChangeEveryList<0>(events, true), 0);
  ASSERT_EQ(ChangeEveryList<1>(events, true), 0);

  std::atomic<bool> publishing{true};
  std::atomic<int> failures{0};
  std::vector<std::thread> churners;
  churners.emplace_back([&] {
    while (publishing) Churn<2>(events, failures);
  });
  churners.emplace_back([&] {
    while (publishing) Churn<3>(events, failures);
  });

  std::vector<std::thread> publishers;
  for (int p = 0; p < kPublishers; ++p) {
    publishers.emplace_back([&failures, p] {
      for (int round = 0; round < kRounds; ++round) {
        failures += ev::PublishPowerDomainEvent("On", static_cast<uint32_t>(p), "core") != 0;
        PublishMessage("churned");
        failures += ev::PublishStatePortEvent("ValueChanged", 1, "sp", 2, 3, 4) != 0;
        failures += tc::RaiseInterfacePortError(static_cast<uint32_t>(p), static_cast<uint64_t>(round)) != 0;
      }
    });
  }
  for (std::thread& publisher : publishers) publisher.join();
  publishing = false;
  for (std::thread& churner : churners) churner.join();

  EXPECT_EQ(failures.load(), 0);
  // The stable subscribers heard every event, first before last.
  EXPECT_EQ(calls[0].load(), kPublishers * kRounds * kListsPerRound);
  EXPECT_EQ(calls[1].load(), kPublishers * kRounds * kListsPerRound);
  EXPECT_EQ(outOfOrder.load(), 0);
}

std::atomic<int> survivorCalls{0};
void Survivor(const VXT_MessageEvent*, void*) { ++survivorCalls; }

TEST_F(EventsConcurrencyTest, SubscriptionsOutliveClientsComingAndGoingOnManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 25;
  ASSERT_EQ(Events().SubscribeMessageEvents(&Survivor, nullptr), 0);
  ASSERT_EQ(Disconnect(1), 0);  // Every client below may be a first and a last one

  std::atomic<bool> churning{true};
  std::thread publisher([&churning] {
    while (churning) PublishMessage("maybe heard");  // Refused while no client is connected
  });
  std::atomic<int> failures{0};
  std::vector<std::thread> clients;
  for (int t = 0; t < kThreads; ++t) {
    clients.emplace_back([&failures, t] {
      const auto id = static_cast<uint32_t>(10 + t);
      VXT_Client client = MakeClient(id, "churn_" + std::to_string(id) + "@here");
      for (int round = 0; round < kRounds; ++round) {
        failures += StartNewInstance(&client, 1, 0, nullptr) != 0;
        failures += Disconnect(id) != 0;
      }
    });
  }
  for (std::thread& client : clients) client.join();
  churning = false;
  publisher.join();
  EXPECT_EQ(failures.load(), 0);
  EXPECT_EQ(IsConnected(), 0u);

  // A new first client: the handlers are subscribed once, and the
  // subscription left standing hears each event once.
  VXT_Client client = MakeClient(1, "events_1@here");
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  EXPECT_EQ(tc::BrokerSubscriberCount("Message"), 1u);
  survivorCalls = 0;
  PublishMessage("heard");
  EXPECT_EQ(survivorCalls.load(), 1);
}

// The interface port's state changes come on a platform thread while a
// subscriber that leaves on its first event joins over and over, and the
// one that stays calls back into the port each time.
struct PortWatcher {
  IInternalService_InterfacePort* ports;
  std::atomic<int> changes{0};
  std::atomic<int> refused{0};
};

void WatchPort(const VXT_InterfacePortStateChangeEvent* event, void* userData) {
  auto& watcher = *static_cast<PortWatcher*>(userData);
  VXT_InterfacePortState state = VXT_InterfacePortState_Unknown;
  if (watcher.ports->GetInterfacePortState(event->interfacePortId, &state) != 0) ++watcher.refused;
  ++watcher.changes;
}

void LeaveOnFirstEvent(const VXT_InterfacePortStateChangeEvent*, void*) {
  Events().UnsubscribeInterfacePortStateChangeEvents(&LeaveOnFirstEvent);
}

TEST_F(EventsConcurrencyTest, PortStateChangesReachSubscribersThatComeGoAndCallBack) {
  constexpr uint32_t kPort = 0x0f000000;
  constexpr int kRounds = 200;
  void* service = nullptr;
  ASSERT_EQ(GetService(nullptr, VXT_Service_InterfacePort, &service), 0);
  PortWatcher watcher{static_cast<IInternalService_InterfacePort*>(service)};
  IInternalService_Event& events = Events();
  ASSERT_EQ(events.SubscribeInterfacePortStateChangeEvents(&WatchPort, &watcher), 0);
  std::atomic<bool> opening{true};
  std::thread joiner([&] {
    while (opening) {
      events.SubscribeInterfacePortStateChangeEvents(&LeaveOnFirstEvent, nullptr);  // Refused while it stays
      std::this_thread::yield();
    }
  });
  VXT_InterfacePortConfiguration window{};
  window.structureSize = VXT_INTERFACE_PORT_CONFIGURATION_SIZE;
  window.accessMode = VXT_InterfacePortAccessMode_Read;
  int failures = 0;
  for (int round = 0; round < kRounds; ++round)
    failures += (watcher.ports->OpenWindow(kPort, &window) != 0) + (watcher.ports->CloseWindow(kPort) != 0);
  opening = false;
  joiner.join();
  EXPECT_EQ(failures, 0);
  // Each open and each close is one change of state, heard once.
  const auto deadline = std::chrono::steady_clock::now() + kDeadlockGuard;
  while (watcher.changes < 2 * kRounds && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_EQ(watcher.changes.load(), 2 * kRounds);
  EXPECT_EQ(watcher.refused.load(), 0);
  EXPECT_EQ(events.UnsubscribeInterfacePortStateChangeEvents(&WatchPort), 0);
  events.UnsubscribeInterfacePortStateChangeEvents(&LeaveOnFirstEvent);
}

}  // namespace
