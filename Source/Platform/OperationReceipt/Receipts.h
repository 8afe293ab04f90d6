// Receipts of background operations: how a component hands a client a token
// now and the operation's outcome later.
//
// The OperationReceipt component keeps the one registry of receipts for all
// components. A component starts a receipt in one of three ways and gives
// the token to its caller at once:
//
//   // Work on a worker thread; the lambda owns copies of its inputs.
//   *operationToken = receipts::RunReceipt(
//       [deviceId, timeout](std::stop_token stop) { return AcquireLock(deviceId, timeout, stop); });
//
//   // The component ends the receipt itself, from any thread, later.
//   uint64_t token = receipts::StartReceipt();
//   ... receipts::FinishReceipt(token, receipts::ReceiptOutcome::Success(value));
//
//   // Done already.
//   *operationToken = receipts::FinishedReceipt(receipts::ReceiptOutcome::Failure(code, "text"));
//
// Clients follow and end receipts through the component's table
// (OperationReceipt.h); any client may end any token. Tokens are unique in
// the process, never 0 and never reused.
//
// Everything here is thread-safe.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stop_token>
#include <string>

#include "BitData.h"
#include "PlatformApi.h"

namespace voxtrel::platform::receipts {

// A receipt's state, as the component's GetOperationStatus gives it.
enum class ReceiptStatus : uint32_t { Pending = 0, Active = 1, Completed = 2, Canceled = 3, Failed = 4 };

// The error code of a canceled operation ("Operation canceled").
inline constexpr uint32_t kOperationCanceled = 0x20008;

// A receipt's value: a bit vector of any length, 0 included, owned by the
// value. Move-only; every constructor copies what it is given.
class VOXTREL_PLATFORM_API ReceiptValue {
 public:
  // No value: a vector of 0 bits.
  ReceiptValue();
  // The low `bitSize` bits of `value`; bitSize may exceed 64 (zeros above).
  static ReceiptValue Number(uint64_t value, uint32_t bitSize = 64);
  // (bitSize + 7) / 8 bytes of `bytes`, bit 0 the low bit of byte 0. Null
  // bytes give zero bits.
  static ReceiptValue Bytes(const uint8_t* bytes, uint64_t bitSize);
  // A copy of a whole vector, such as a client's.
  static ReceiptValue Copy(const BitData& bits);
  // `byteCount` bytes that the caller fills in place through
  // WritableBytes() before the value is given: a large value (memory read in
  // bulk) is then made with no copy.
  static ReceiptValue ByteBuffer(uint64_t byteCount);

  // The value's own bytes, valid until the value is moved or destroyed.
  std::span<uint8_t> WritableBytes();

  // A value that has been moved from reads as a vector of 0 bits.
  const BitData& bits() const;

 private:
  struct FreeBits {
    void operator()(BitData* bits) const { BitData_FreeManaged(bits); }
  };
  explicit ReceiptValue(BitData* bits);

  std::unique_ptr<BitData, FreeBits> bits_;
};

// How an operation ended.
struct VOXTREL_PLATFORM_API ReceiptOutcome {
  // 0: the operation completed; any other internal code: it failed, or was
  // canceled when the code is kOperationCanceled.
  uint32_t code = 0;
  // The failure's text, as GetOperationErrorMessage gives it.
  std::string message;
  // A completed operation's value.
  ReceiptValue value;

  static ReceiptOutcome Success(ReceiptValue value = {});
  static ReceiptOutcome Failure(uint32_t code, std::string message);
  // What a work returns when it stops on a cancel request.
  static ReceiptOutcome Canceled();
};

// An operation's work. It runs once, on a worker thread, outside every lock
// of the registry, and must own everything it reads: the client's buffers
// and vectors may be gone when it runs. `stop` is requested when a client
// cancels or destroys the receipt; a work that waits should wait on it and
// then return ReceiptOutcome::Canceled(). A work that throws fails its
// operation with 0x20009.
using ReceiptWork = std::function<ReceiptOutcome(std::stop_token stop)>;

// A receipt whose work runs on a worker thread: "Pending" until a worker
// takes it, "Active" while it runs, then as its outcome says. A receipt
// canceled while pending never runs its work.
VOXTREL_PLATFORM_API uint64_t RunReceipt(ReceiptWork work);

// A "Pending" receipt that the caller ends with FinishReceipt, unless a
// client cancels it first.
VOXTREL_PLATFORM_API uint64_t StartReceipt();

// Ends a receipt made by StartReceipt. False, and nothing changes, when the
// receipt has ended already (canceled, say) or has been destroyed.
VOXTREL_PLATFORM_API bool FinishReceipt(uint64_t token, ReceiptOutcome outcome);

// A receipt that has ended already, for an operation done at once.
VOXTREL_PLATFORM_API uint64_t FinishedReceipt(ReceiptOutcome outcome);

}  // namespace voxtrel::platform::receipts
