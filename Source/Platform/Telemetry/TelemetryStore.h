// What the Telemetry library holds: open sessions, fields being built for
// events, counters, and, for test control, the calls and the sent events.
//
// Everything is behind one mutex; telemetry is sent at connection changes
// and counted once per counted operation, never on a hot path of its own.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "PlatformTestControl.h"
#include "Telemetry/CallRecords.h"

namespace voxtrel::platform::telemetry {

// Calls and sent events are kept up to this many, the oldest dropped first.
inline constexpr size_t kRecordLimit = 10000;

class TelemetryStore {
 public:
  using Fields = std::vector<std::pair<std::string, std::string>>;

  static TelemetryStore& Instance();

  void RecordCall(std::string function, std::vector<std::string> args);

  void BeginSession(const std::string& session, const std::string& key, const std::string& value);
  void EndSession(const std::string& session);
  void AddField(const std::string& event, const std::string& key, const std::string& value);
  // Takes the fields built for `event` and records the sent event. Gives the
  // event and the session's identifying pair, if the session was begun.
  struct Sent {
    testing::TelemetryEvent event;
    std::optional<std::pair<std::string, std::string>> sessionKey;
  };
  Sent Send(const std::string& session, const std::string& event);
  // Counts the event and records the call, under one lock: every counted
  // call of the interface library does.
  void CountAndRecord(std::string_view session, std::string_view event, std::string_view key,
                      std::string_view value);

  std::vector<testing::TelemetryCall> Calls();
  void ClearCalls();
  std::vector<testing::TelemetryEvent> SentEvents();
  uint64_t Counter(const std::string& session, const std::string& event, const std::string& key,
                   const std::string& value);

  // Back to a fresh process: no sessions, fields, counters, calls or events.
  void Reset();

 private:
  using CounterKey = std::tuple<std::string, std::string, std::string, std::string>;
  using CounterTexts = std::array<std::string_view, 4>;
  // Orders keys and texts alike, so that a counter is found by the texts as
  // given, without making strings of them.
  struct CounterOrder {
    using is_transparent = void;
    static CounterTexts Texts(const CounterKey& key) {
      return {std::get<0>(key), std::get<1>(key), std::get<2>(key), std::get<3>(key)};
    }
    static const CounterTexts& Texts(const CounterTexts& texts) { return texts; }
    template <class Left, class Right>
    bool operator()(const Left& left, const Right& right) const {
      return Texts(left) < Texts(right);
    }
  };

  std::mutex mutex_;
  std::map<std::string, std::pair<std::string, std::string>> sessions_;
  std::map<std::string, Fields> pendingFields_;
  std::map<CounterKey, uint64_t, CounterOrder> counters_;
  CallRecords calls_{kRecordLimit};
  std::deque<testing::TelemetryEvent> sent_;
};

}  // namespace voxtrel::platform::telemetry
