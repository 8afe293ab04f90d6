// What an event costs: a broker publish delivered through the Event
// service's handler to one subscriber and to eleven, and a subscription
// made and taken back, with trace off.
//
// "events" is published events per second, "calls" subscriber calls per
// second; "pairs" is Subscribe and Unsubscribe pairs per second.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdint>
#include <utility>

#include "BenchmarkClient.h"
#include "EventBroker.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"

namespace {

namespace tc = voxtrel::testing;

constexpr int kMaxSubscribers = 11;

// One client for the whole run, so that the broker delivers.
struct EventConnection {
  EventConnection() { Voxtrel_GetEventBroker(&broker); }

  BenchmarkClient client{6, "events_6@localhost"};
  IInternalService_Event* events = BenchmarkClient::Get<IInternalService_Event>(VXT_Service_Event);
  const EventBrokerComponent* broker = nullptr;
};

EventConnection& Connected() {
  static EventConnection connection;
  return connection;
}

std::atomic<uint64_t> received{0};

template <int N>
void Subscriber(const VXT_MessageEvent* event, void*) {
  benchmark::DoNotOptimize(event->message);
  received.fetch_add(1, std::memory_order_relaxed);
}

template <int... N>
void SubscribeFirst(IInternalService_Event& events, int count, std::integer_sequence<int, N...>) {
  ((N < count ? events.SubscribeMessageEvents(&Subscriber<N>, nullptr) : 0), ...);
}

template <int... N>
void UnsubscribeAll(IInternalService_Event& events, std::integer_sequence<int, N...>) {
  (events.UnsubscribeMessageEvents(&Subscriber<N>), ...);
}

// A "Message" event published through the broker reaches range(0)
// subscribers of the message list.
void BM_BrokerEventToSubscribers(benchmark::State& state) {
  EventConnection& connection = Connected();
  tc::SetLogLevel(5);
  const auto subscribers = static_cast<int>(state.range(0));
  SubscribeFirst(*connection.events, subscribers, std::make_integer_sequence<int, kMaxSubscribers>{});
  const uint32_t kind = 1;
  received = 0;
  for (auto _ : state) connection.broker->Publish("Message", "benchmark", &kind);
  if (received != state.iterations() * static_cast<uint64_t>(subscribers)) state.SkipWithError("deliveries lost");
  UnsubscribeAll(*connection.events, std::make_integer_sequence<int, kMaxSubscribers>{});
  state.counters["events"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["calls"] = benchmark::Counter(static_cast<double>(received), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_BrokerEventToSubscribers)->Arg(1)->Arg(kMaxSubscribers);

// Subscribe and Unsubscribe of one callback on a list that holds range(0)
// other subscribers, each through the whole call frame.
void BM_SubscribeUnsubscribePair(benchmark::State& state) {
  EventConnection& connection = Connected();
  tc::SetLogLevel(5);
  IInternalService_Event& events = *connection.events;
  SubscribeFirst(events, static_cast<int>(state.range(0)), std::make_integer_sequence<int, kMaxSubscribers - 1>{});
  for (auto _ : state) {
    events.SubscribeMessageEvents(&Subscriber<kMaxSubscribers - 1>, nullptr);
    events.UnsubscribeMessageEvents(&Subscriber<kMaxSubscribers - 1>);
  }
  UnsubscribeAll(events, std::make_integer_sequence<int, kMaxSubscribers>{});
  state.counters["pairs"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_SubscribeUnsubscribePair)->Arg(0)->Arg(kMaxSubscribers - 1);

}  // namespace
