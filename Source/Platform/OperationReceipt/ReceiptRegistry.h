// The registry of receipts: every token that is alive, its operation's state,
// outcome and work.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <unordered_map>

#include "OperationReceipt/Receipts.h"
#include "OperationReceipt/WorkerPool.h"

namespace voxtrel::platform::receipts {

class ReceiptRegistry {
 public:
  // Immortal: works may still run on workers while the process exits.
  static ReceiptRegistry& Instance();

  // A new receipt. With a work, the work is queued on a worker; without
  // one, the receipt waits for Finish.
  uint64_t Start(ReceiptWork work);
  uint64_t StartFinished(ReceiptOutcome outcome);
  // Ends a receipt that is still pending or active; false otherwise.
  bool Finish(uint64_t token, ReceiptOutcome outcome);

  // The component's operations. Each returns 0 or an internal code, with
  // its message posted to the caller's error context.
  uint32_t Destroy(uint64_t token);
  uint32_t Flush(uint64_t token);
  uint32_t Cancel(uint64_t token);

  // What the getters read of a receipt, copied under the lock.
  struct View {
    ReceiptStatus status;
    uint32_t code;
    std::string message;
  };
  // Fills `view`; kUnknownOperationToken, posted, for an unknown token.
  uint32_t Look(uint64_t token, View& view);
  // A new copy of a completed operation's value, or the code, posted, that
  // says why there is none.
  uint32_t CopyValue(uint64_t token, BitData*& copy);

  // While held, works stay "Pending": no worker takes one.
  void HoldWork(bool hold) { workers_.Hold(hold); }

 private:
  struct Receipt {
    ReceiptStatus status = ReceiptStatus::Pending;
    ReceiptOutcome outcome;
    ReceiptWork work;  // Until a worker takes it
    std::stop_source stop;
    bool destroyed = false;
  };

  ReceiptRegistry() = default;
  uint64_t Enter(std::shared_ptr<Receipt> receipt);
  // The receipt of a token, or null. Under the lock.
  std::shared_ptr<Receipt> Find(uint64_t token) const;
  // Records an outcome on a receipt that has not ended. Under the lock.
  static void End(Receipt& receipt, ReceiptOutcome outcome);
  // What a worker does with a receipt it takes.
  void Run(const std::shared_ptr<Receipt>& receipt);

  mutable std::mutex mutex_;
  // Woken whenever a receipt ends or is destroyed; Flush waits on it.
  std::condition_variable ended_;
  std::unordered_map<uint64_t, std::shared_ptr<Receipt>> receipts_;
  uint64_t lastToken_ = 0;
  WorkerPool workers_{4, std::chrono::seconds(5)};
};

// "Pending" to "Failed".
bool HasEnded(ReceiptStatus status);

}  // namespace voxtrel::platform::receipts
