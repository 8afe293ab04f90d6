// Values and outcomes of receipts.
#include <bit>
#include <cstring>
#include <new>
#include <utility>

#include "BitData/ObjectStorage.h"
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

ReceiptValue ReceiptValue::ByteBuffer(uint64_t byteCount) {
  // Only the words past the bytes are zeroed here: the bytes themselves are
  // written once, by the caller.
  BitData* bits = bitdata::NewUnfilledObject(byteCount * 8);
  const uint64_t filledWords = byteCount / sizeof(uint64_t);
  std::memset(bits->words + filledWords, 0, (bits->wordCapacity - filledWords) * sizeof(uint64_t));
  return ReceiptValue(bits);
}

std::span<uint8_t> ReceiptValue::WritableBytes() {
  if (!bits_) return {};
  // Bytes in order are the little-endian words' bytes in memory.
  static_assert(std::endian::native == std::endian::little);
  return {reinterpret_cast<uint8_t*>(bits_->words), bits_->bitSize / 8};
}

ReceiptValue ReceiptValue::Copy(const BitData& bits) { return ReceiptValue(BitData_CreateManagedFromBitData(&bits)); }

ReceiptOutcome ReceiptOutcome::Success(ReceiptValue value) { return ReceiptOutcome{0, {}, std::move(value)}; }

ReceiptOutcome ReceiptOutcome::Failure(uint32_t code, std::string message) {
  return ReceiptOutcome{code, std::move(message), {}};
}

ReceiptOutcome ReceiptOutcome::Canceled() { return ReceiptOutcome{kOperationCanceled, "Operation canceled", {}}; }

}  // namespace voxtrel::platform::receipts
