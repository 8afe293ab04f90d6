// How an operation of the component ends: a refusal is posted and its code
// returned; a success gives its caller the token of an ended receipt.
#pragma once

#include <cstdint>

#include "../OperationReceipt/Receipts.h"
#include "../Target/PostFailure.h"

namespace voxtrel::platform::run_control {

// `*operationToken` (checked by the caller) receives a receipt that has
// completed with `value`.
inline void GiveCompleted(uint64_t* operationToken, receipts::ReceiptValue value = {}) {
  *operationToken = receipts::FinishedReceipt(receipts::ReceiptOutcome::Success(std::move(value)));
}

// The code of an operation whose work gave `outcome`, its refusal posted.
inline uint32_t Answer(const target::Outcome& outcome, const char* file, uint32_t line) {
  return outcome ? target::PostFailure(*outcome, file, line) : 0;
}

}  // namespace voxtrel::platform::run_control

#define VOXTREL_ANSWER(outcome) ::voxtrel::platform::run_control::Answer((outcome), __FILE__, __LINE__)
