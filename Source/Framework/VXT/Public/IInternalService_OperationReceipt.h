// Service 14: following and ending the background operations that other
// services start.
//
// An operation that runs in the background writes an operation token and
// returns at once. The client asks here what became of the operation, reads
// its value, and ends the token with Destroy or DestroyMany; nothing else
// frees it, not even the client's disconnection. Any client may end any
// token. The library keeps no list of tokens: an unknown or destroyed token
// is refused by the platform with VXT_E_INVALID_HANDLE.
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

// Failures of operations that follow a token.
inline constexpr VXT_Result VXT_E_OPERATION_HAS_NO_VALUE = static_cast<VXT_Result>(0x80000005u);  // Failed or canceled
inline constexpr VXT_Result VXT_E_OPERATION_CANCELED = static_cast<VXT_Result>(0x8000000cu);
inline constexpr VXT_Result VXT_E_BUFFER_TOO_SMALL = static_cast<VXT_Result>(0x80000013u);
inline constexpr VXT_Result VXT_E_OPERATION_NOT_ENDED = static_cast<VXT_Result>(0x8000001cu);  // Value not ready yet

class IInternalService_OperationReceipt {
 public:
  virtual ~IInternalService_OperationReceipt() = default;

  // A pending operation never runs; a running one is asked to stop.
  virtual VXT_Result Cancel(uint64_t operationToken) = 0;
  virtual VXT_Result Destroy(uint64_t operationToken) = 0;
  // Destroys the tokens in order and stops at the first that fails: those
  // before it are destroyed, it and those behind it are not.
  virtual VXT_Result DestroyMany(const uint64_t* operationTokens, uint32_t numTokens) = 0;
  // Waits until the operation has ended.
  virtual VXT_Result Flush(uint64_t operationToken) = 0;
  // The text of a failed or canceled operation. `actualStringSize` receives
  // the size the text needs, terminating zero included; either out argument
  // may be null, not both.
  virtual VXT_Result GetOperationErrorMessage(uint64_t operationToken, char* buffer, uint32_t maxBufferSize,
                                              uint32_t* actualStringSize) = 0;
  // The operation's failure as a result code of this library, 0 unless it
  // failed or was canceled.
  virtual VXT_Result GetOperationErrorResult(uint64_t operationToken, VXT_Result* operationErrorResult) = 0;
  virtual VXT_Result GetOperationStatus(uint64_t operationToken, OperationStatus* status) = 0;
  // The value as a new vector of the calling client, in an empty record.
  virtual VXT_Result GetValue(uint64_t operationToken, VXT_BitData* value) = 0;
  virtual VXT_Result GetValueAsUInt64(uint64_t operationToken, uint64_t* value) = 0;
  virtual VXT_Result GetValueAsUInt32(uint64_t operationToken, uint32_t* value) = 0;
  virtual VXT_Result GetValueAsUInt16(uint64_t operationToken, uint16_t* value) = 0;
  virtual VXT_Result GetValueAsUInt8(uint64_t operationToken, uint8_t* value) = 0;
  // The value's bytes, bit 0 the low bit of byte 0. With `bytes`, at most
  // maxByteCount of them are copied and `byteCount` receives how many; with
  // `bytes` null, `byteCount` receives the whole length.
  virtual VXT_Result GetValueAsRawBytes(uint64_t operationToken, uint8_t* bytes, uint32_t maxByteCount,
                                        uint32_t* byteCount) = 0;
};
