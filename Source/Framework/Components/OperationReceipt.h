// The OperationReceipt component: the one registry of background operations
// of all components. A component that starts an operation in the background
// gives its caller a token; the caller follows the operation and ends the
// token here. Any client may end any token.
//
// Every operation returns an internal code, 0 for success. A token that was
// never issued or has been destroyed gives kUnknownOperationToken ("Invalid
// handle") with a message naming the token.
#pragma once

#include <cstdint>

#include "BitData.h"
#include "PlatformApi.h"

// A token that was never issued or has been destroyed.
inline constexpr uint32_t kUnknownOperationToken = 0x2000e;
// A value asked for before the operation has ended ("Resource busy").
inline constexpr uint32_t kOperationNotEnded = 0x20013;
// A value asked for of an operation that failed or was canceled.
inline constexpr uint32_t kOperationHasNoValue = 0x20004;
// A value with set bits beyond the width asked for.
inline constexpr uint32_t kValueTooWide = 0x20001;
// Both out arguments null.
inline constexpr uint32_t kNoOutArgument = 0x20000;
// A message longer than the caller's buffer; the buffer holds its start.
inline constexpr uint32_t kBufferTooSmall = 0x2000b;

struct OperationReceiptComponent {
  // Ends the receipt: the token is unknown from then on. An operation still
  // running is asked to stop, and its outcome is dropped.
  uint32_t (*Destroy)(uint64_t token);
  // Waits until the operation has ended: completed, canceled or failed.
  // Gives kUnknownOperationToken when the receipt is destroyed meanwhile.
  uint32_t (*Flush)(uint64_t token);
  // A pending operation ends "Canceled" at once and never runs. A running
  // one is asked to stop, and ends as its work decides. An operation that
  // has ended stays as it is; that is no error.
  uint32_t (*Cancel)(uint64_t token);
  // The text of a failed or canceled operation, "" for any other. Writes
  // the size it needs, terminating zero included, to `actualStringSize`
  // when that is not null, and the text, cut to maxBufferSize - 1
  // characters and terminated, to `buffer` when that is not null. Either
  // may be null, not both. A cut text gives kBufferTooSmall.
  uint32_t (*GetOperationErrorMessage)(uint64_t token, char* buffer, uint32_t maxBufferSize,
                                       uint32_t* actualStringSize);
  // The operation's internal error code: 0 unless it failed, or
  // 0x20008 ("Operation canceled") when canceled.
  uint32_t (*GetOperationErrorResult)(uint64_t token, int32_t* result);
  // A OperationStatus value.
  uint32_t (*GetOperationStatus)(uint64_t token, uint32_t* status);
  // A new copy of a completed operation's value, every time; the caller
  // frees it with BitData_FreeManaged.
  uint32_t (*GetValue)(uint64_t token, BitData** value);
  // A completed operation's value at a fixed width: a shorter value is
  // widened with zeros, a longer one whose set bits all fit is cut, and
  // one with a set bit beyond the width gives kValueTooWide.
  uint32_t (*GetValueAsUInt8)(uint64_t token, uint8_t* value);
  uint32_t (*GetValueAsUInt16)(uint64_t token, uint16_t* value);
  uint32_t (*GetValueAsUInt32)(uint64_t token, uint32_t* value);
  uint32_t (*GetValueAsUInt64)(uint64_t token, uint64_t* value);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetOperationReceipt(const OperationReceiptComponent** table);
