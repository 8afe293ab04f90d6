// Test control of operation receipts: receipts that end at once, after a
// delay, on the test's word, or when a gate opens, so that tests can drive
// every status.
#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <stop_token>
#include <utility>

#include "OperationReceipt/ReceiptRegistry.h"
#include "OperationReceipt/Receipts.h"
#include "PlatformTestControl.h"

namespace voxtrel::testing {

namespace {

using platform::receipts::ReceiptOutcome;
using platform::receipts::ReceiptValue;

ReceiptValue ValueOf(const ReceiptBits& bits) {
  // Short byte lists are widened with zeros, so that a test may give fewer
  // bytes than the size asks for.
  std::vector<uint8_t> bytes = bits.bytes;
  bytes.resize((bits.bitSize + 7) / 8, 0);
  return ReceiptValue::Bytes(bytes.data(), bits.bitSize);
}

// The gate of one gated receipt's work.
struct Gate {
  std::mutex mutex;
  std::condition_variable_any opened;
  bool open = false;
  ReceiptBits value;
};

class Gates {
 public:
  static Gates& Instance() {
    static auto& gates = *new Gates;
    return gates;
  }
  void Add(uint64_t token, std::shared_ptr<Gate> gate) {
    const std::lock_guard lock(mutex_);
    gates_.emplace(token, std::move(gate));
  }
  std::shared_ptr<Gate> Take(uint64_t token) {
    const std::lock_guard lock(mutex_);
    const auto found = gates_.find(token);
    if (found == gates_.end()) return nullptr;
    std::shared_ptr<Gate> gate = std::move(found->second);
    gates_.erase(found);
    return gate;
  }

 private:
  std::mutex mutex_;
  std::map<uint64_t, std::shared_ptr<Gate>> gates_;
};

ReceiptOutcome WaitAtGate(Gate& gate, bool honoursCancel, std::stop_token stop) {
  std::unique_lock lock(gate.mutex);
  if (honoursCancel) {
    if (!gate.opened.wait(lock, stop, [&] { return gate.open; })) return ReceiptOutcome::Canceled();
  } else {
    gate.opened.wait(lock, [&] { return gate.open; });
  }
  return ReceiptOutcome::Success(ValueOf(gate.value));
}

}  // namespace

uint64_t StartCompletedReceipt(const ReceiptBits& value) {
  return platform::receipts::FinishedReceipt(ReceiptOutcome::Success(ValueOf(value)));
}

uint64_t StartFailedReceipt(uint32_t code, const std::string& message) {
  return platform::receipts::FinishedReceipt(ReceiptOutcome::Failure(code, message));
}

uint64_t StartDelayedReceipt(uint32_t milliseconds, const ReceiptBits& value) {
  return platform::receipts::RunReceipt([milliseconds, value](std::stop_token stop) {
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    never.wait_for(lock, stop, std::chrono::milliseconds(milliseconds), [] { return false; });
    if (stop.stop_requested()) return ReceiptOutcome::Canceled();
    return ReceiptOutcome::Success(ValueOf(value));
  });
}

uint64_t StartHeldReceipt() { return platform::receipts::StartReceipt(); }

bool CompleteHeldReceipt(uint64_t token, const ReceiptBits& value) {
  return platform::receipts::FinishReceipt(token, ReceiptOutcome::Success(ValueOf(value)));
}

bool FailHeldReceipt(uint64_t token, uint32_t code, const std::string& message) {
  return platform::receipts::FinishReceipt(token, ReceiptOutcome::Failure(code, message));
}

uint64_t StartGatedReceipt(bool honoursCancel) {
  auto gate = std::make_shared<Gate>();
  const uint64_t token = platform::receipts::RunReceipt(
      [gate, honoursCancel](std::stop_token stop) { return WaitAtGate(*gate, honoursCancel, std::move(stop)); });
  Gates::Instance().Add(token, gate);
  return token;
}

bool OpenReceiptGate(uint64_t token, const ReceiptBits& value) {
  const std::shared_ptr<Gate> gate = Gates::Instance().Take(token);
  if (gate == nullptr) return false;
  {
    const std::lock_guard lock(gate->mutex);
    gate->value = value;
    gate->open = true;
  }
  gate->opened.notify_all();
  return true;
}

void HoldReceiptWorkers(bool hold) { platform::receipts::ReceiptRegistry::Instance().HoldWork(hold); }

}  // namespace voxtrel::testing
