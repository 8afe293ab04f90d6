// The receipts API of the components, over the registry.
#include <utility>

#include "OperationReceipt/ReceiptRegistry.h"
#include "OperationReceipt/Receipts.h"

namespace voxtrel::platform::receipts {

namespace {

// A component that hands over no work has a fault of its own; its client
// gets a failed receipt rather than one that never ends.
constexpr uint32_t kNoWork = 0x20000;

}  // namespace

uint64_t RunReceipt(ReceiptWork work) {
  if (!work) return FinishedReceipt(ReceiptOutcome::Failure(kNoWork, "The operation was started without its work"));
  return ReceiptRegistry::Instance().Start(std::move(work));
}

uint64_t StartReceipt() { return ReceiptRegistry::Instance().Start(nullptr); }

bool FinishReceipt(uint64_t token, ReceiptOutcome outcome) {
  return ReceiptRegistry::Instance().Finish(token, std::move(outcome));
}

uint64_t FinishedReceipt(ReceiptOutcome outcome) {
  return ReceiptRegistry::Instance().StartFinished(std::move(outcome));
}

}  // namespace voxtrel::platform::receipts
