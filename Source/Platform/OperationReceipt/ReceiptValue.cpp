// Values and outcomes of receipts.
#include <new>
#include <utility>

#include "OperationReceipt/Receipts.h"

namespace voxtrel::platform::receipts {

namespace {

// The BitData library gives null only when it cannot allocate.
BitData* Checked(BitData* bits) {
  if (bits == nullptr) throw std::bad_alloc();
  return bits;
}

}  // namespace

ReceiptValue::ReceiptValue() : bits_(Checked(BitData_CreateManaged(0))) {}

ReceiptValue::ReceiptValue(BitData* bits) : bits_(Checked(bits)) {}

const BitData& ReceiptValue::bits() const {
  static const BitData& noBits = *Checked(BitData_CreateManaged(0));
  return bits_ ? *bits_ : noBits;
}

ReceiptValue ReceiptValue::Number(uint64_t value, uint32_t bitSize) {
  return ReceiptValue(BitData_CreateManagedFromUInt64(bitSize, value));
}

ReceiptValue ReceiptValue::Bytes(const uint8_t* bytes, uint64_t bitSize) {
  if (bytes == nullptr) return ReceiptValue(BitData_CreateManaged(bitSize));
  return ReceiptValue(BitData_CreateManagedFromBuffer(bitSize, bytes));
}

ReceiptValue ReceiptValue::Copy(const BitData& bits) { return ReceiptValue(BitData_CreateManagedFromBitData(&bits)); }

ReceiptOutcome ReceiptOutcome::Success(ReceiptValue value) { return ReceiptOutcome{0, {}, std::move(value)}; }

ReceiptOutcome ReceiptOutcome::Failure(uint32_t code, std::string message) {
  return ReceiptOutcome{code, std::move(message), {}};
}

ReceiptOutcome ReceiptOutcome::Canceled() { return ReceiptOutcome{kOperationCanceled, "Operation canceled", {}}; }

}  // namespace voxtrel::platform::receipts
