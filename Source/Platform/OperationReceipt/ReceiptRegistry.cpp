#include "OperationReceipt/ReceiptRegistry.h"

#include <new>
#include <utility>

#include "BitData/ObjectStorage.h"
#include "OperationReceipt.h"
#include "OperationReceipt/Refusals.h"

namespace voxtrel::platform::receipts {

namespace {

// A work that throws, or finds no thread to run on, fails its operation
// with the code that the interface library gives to an exception.
constexpr uint32_t kWorkThrew = 0x20009;

ReceiptStatus StatusOf(const ReceiptOutcome& outcome) {
  if (outcome.code == 0) return ReceiptStatus::Completed;
  if (outcome.code == kOperationCanceled) return ReceiptStatus::Canceled;
  return ReceiptStatus::Failed;
}

}  // namespace

bool HasEnded(ReceiptStatus status) {
  return status == ReceiptStatus::Completed || status == ReceiptStatus::Canceled || status == ReceiptStatus::Failed;
}

ReceiptRegistry& ReceiptRegistry::Instance() {
  static auto& registry = *new ReceiptRegistry;
  return registry;
}

uint64_t ReceiptRegistry::Enter(std::shared_ptr<Receipt> receipt) {
  const std::lock_guard lock(mutex_);
  // 2^64 tokens are not used up in a process's life; the loop only keeps
  // the promise that a token is never 0 and never one in use.
  do {
    ++lastToken_;
  } while (lastToken_ == 0 || receipts_.contains(lastToken_));
  receipts_.emplace(lastToken_, std::move(receipt));
  return lastToken_;
}

std::shared_ptr<ReceiptRegistry::Receipt> ReceiptRegistry::Find(uint64_t token) const {
  const auto found = receipts_.find(token);
  return found == receipts_.end() ? nullptr : found->second;
}

void ReceiptRegistry::End(Receipt& receipt, ReceiptOutcome outcome) {
  receipt.status = StatusOf(outcome);
  receipt.outcome = std::move(outcome);
}

uint64_t ReceiptRegistry::Start(ReceiptWork work) {
  auto receipt = std::make_shared<Receipt>();
  const bool runs = static_cast<bool>(work);
  receipt->work = std::move(work);
  const uint64_t token = Enter(receipt);
  // Without a worker the operation fails rather than stay pending for ever;
  // should a worker take the job later, it finds the receipt ended.
  if (runs && !workers_.Submit([this, receipt] { Run(receipt); }))
    Finish(token, ReceiptOutcome::Failure(kWorkThrew, "No worker thread could be started for the operation"));
  return token;
}

uint64_t ReceiptRegistry::StartFinished(ReceiptOutcome outcome) {
  auto receipt = std::make_shared<Receipt>();
  End(*receipt, std::move(outcome));
  return Enter(std::move(receipt));
}

bool ReceiptRegistry::Finish(uint64_t token, ReceiptOutcome outcome) {
  {
    const std::lock_guard lock(mutex_);
    const std::shared_ptr<Receipt> receipt = Find(token);
    if (receipt == nullptr || HasEnded(receipt->status)) return false;
    End(*receipt, std::move(outcome));
  }
  ended_.notify_all();
  return true;
}

void ReceiptRegistry::Run(const std::shared_ptr<Receipt>& receipt) {
  ReceiptWork work;
  std::stop_token stop;
  {
    const std::lock_guard lock(mutex_);
    // Canceled or destroyed while it waited for a worker.
    if (receipt->status != ReceiptStatus::Pending || receipt->destroyed) return;
    receipt->status = ReceiptStatus::Active;
    work = std::move(receipt->work);
    stop = receipt->stop.get_token();
  }
  ReceiptOutcome outcome;
  try {
    outcome = work(stop);
  } catch (...) {
    outcome = ReceiptOutcome::Failure(kWorkThrew, "The operation's work threw an exception");
  }
  {
    const std::lock_guard lock(mutex_);
    // A destroyed receipt's outcome is dropped with it.
    if (!receipt->destroyed && !HasEnded(receipt->status)) End(*receipt, std::move(outcome));
  }
  ended_.notify_all();
}

uint32_t ReceiptRegistry::Destroy(uint64_t token) {
  std::shared_ptr<Receipt> receipt;
  {
    const std::lock_guard lock(mutex_);
    const auto found = receipts_.find(token);
    if (found == receipts_.end()) return RefuseUnknownToken(token);
    receipt = std::move(found->second);
    receipts_.erase(found);
    receipt->destroyed = true;
    receipt->stop.request_stop();
  }
  ended_.notify_all();
  return 0;
}

uint32_t ReceiptRegistry::Flush(uint64_t token) {
  std::unique_lock lock(mutex_);
  const std::shared_ptr<Receipt> receipt = Find(token);
  if (receipt == nullptr) {
    lock.unlock();
    return RefuseUnknownToken(token);
  }
  ended_.wait(lock, [&] { return receipt->destroyed || HasEnded(receipt->status); });
  const bool destroyed = receipt->destroyed;
  lock.unlock();
  if (destroyed)
    return Refuse(kUnknownOperationToken, "Operation token " + TokenText(token) + " was destroyed during the flush");
  return 0;
}

uint32_t ReceiptRegistry::Cancel(uint64_t token) {
  {
    const std::lock_guard lock(mutex_);
    const std::shared_ptr<Receipt> receipt = Find(token);
    if (receipt == nullptr) return RefuseUnknownToken(token);
    if (HasEnded(receipt->status)) return 0;
    receipt->stop.request_stop();
    // A running work sees the request and decides its own outcome.
    if (receipt->status == ReceiptStatus::Active) return 0;
    End(*receipt, ReceiptOutcome::Canceled());
    receipt->work = nullptr;
  }
  ended_.notify_all();
  return 0;
}

uint32_t ReceiptRegistry::Look(uint64_t token, View& view) {
  const std::lock_guard lock(mutex_);
  const std::shared_ptr<Receipt> receipt = Find(token);
  if (receipt == nullptr) return RefuseUnknownToken(token);
  view.status = receipt->status;
  view.code = HasEnded(receipt->status) ? receipt->outcome.code : 0;
  view.message = HasEnded(receipt->status) ? receipt->outcome.message : std::string();
  return 0;
}

uint32_t ReceiptRegistry::CopyValue(uint64_t token, BitData*& copy) {
  const std::lock_guard lock(mutex_);
  const std::shared_ptr<Receipt> receipt = Find(token);
  if (receipt == nullptr) return RefuseUnknownToken(token);
  switch (receipt->status) {
    case ReceiptStatus::Completed:
      // The value never changes once the operation has completed, so a large
      // one is handed out without a copy: a megabyte read is then copied
      // once less on its way to the client.
      copy = bitdata::CopyForReading(receipt->outcome.value.bits());
      return 0;
    case ReceiptStatus::Pending:
    case ReceiptStatus::Active:
      return Refuse(kOperationNotEnded, "The operation of token " + TokenText(token) + " has not ended");
    case ReceiptStatus::Canceled:
      return Refuse(kOperationHasNoValue, "The operation of token " + TokenText(token) + " was canceled");
    case ReceiptStatus::Failed:
      return Refuse(kOperationHasNoValue, "The operation of token " + TokenText(token) + " failed");
  }
  return Refuse(kOperationHasNoValue, "The operation of token " + TokenText(token) + " has no value");
}

}  // namespace voxtrel::platform::receipts
