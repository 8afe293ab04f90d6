#include "Telemetry/TelemetryStore.h"

#include <initializer_list>

namespace voxtrel::platform::telemetry {
namespace {

template <class T>
void PushBounded(std::deque<T>& records, T record) {
  if (records.size() == kRecordLimit) records.pop_front();
  records.push_back(std::move(record));
}

}  // namespace

TelemetryStore& TelemetryStore::Instance() {
  static TelemetryStore& store = *new TelemetryStore;
  return store;
}

void TelemetryStore::RecordCall(std::string function, std::vector<std::string> args) {
  std::lock_guard lock(mutex_);
  calls_.Add(function, args);
}

void TelemetryStore::BeginSession(const std::string& session, const std::string& key, const std::string& value) {
  std::lock_guard lock(mutex_);
  sessions_[session] = {key, value};
}

void TelemetryStore::EndSession(const std::string& session) {
  std::lock_guard lock(mutex_);
  sessions_.erase(session);
}

void TelemetryStore::AddField(const std::string& event, const std::string& key, const std::string& value) {
  std::lock_guard lock(mutex_);
  pendingFields_[event].emplace_back(key, value);
}

TelemetryStore::Sent TelemetryStore::Send(const std::string& session, const std::string& event) {
  std::lock_guard lock(mutex_);
  Sent sent{{session, event, {}}, std::nullopt};
  if (auto fields = pendingFields_.extract(event)) sent.event.fields = std::move(fields.mapped());
  if (auto found = sessions_.find(session); found != sessions_.end()) sent.sessionKey = found->second;
  PushBounded(sent_, sent.event);
  return sent;
}

void TelemetryStore::CountAndRecord(std::string_view session, std::string_view event, std::string_view key,
                                    std::string_view value) {
  // Looked up by the texts as given: a key's strings are made only for a new counter.
  const CounterTexts texts{session, event, key, value};
  std::lock_guard lock(mutex_);
  auto found = counters_.find(texts);
  if (found == counters_.end()) {
    CounterKey made{std::string(session), std::string(event), std::string(key), std::string(value)};
    found = counters_.emplace(std::move(made), 0).first;
  }
  ++found->second;
  calls_.Add("CountEvent", std::initializer_list<std::string_view>{session, event, key, value});
}

std::vector<testing::TelemetryCall> TelemetryStore::Calls() {
  std::lock_guard lock(mutex_);
  return calls_.InOrder();
}

void TelemetryStore::ClearCalls() {
  std::lock_guard lock(mutex_);
  calls_.Clear();
}

std::vector<testing::TelemetryEvent> TelemetryStore::SentEvents() {
  std::lock_guard lock(mutex_);
  return {sent_.begin(), sent_.end()};
}

uint64_t TelemetryStore::Counter(const std::string& session, const std::string& event, const std::string& key,
                                 const std::string& value) {
  std::lock_guard lock(mutex_);
  const auto found = counters_.find({session, event, key, value});
  return found != counters_.end() ? found->second : 0;
}

void TelemetryStore::Reset() {
  std::lock_guard lock(mutex_);
  sessions_.clear();
  pendingFields_.clear();
  counters_.clear();
  calls_.Clear();
  sent_.clear();
}

}  // namespace voxtrel::platform::telemetry
