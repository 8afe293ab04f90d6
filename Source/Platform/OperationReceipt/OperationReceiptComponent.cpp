// The OperationReceipt component: the clients' doorway to the receipt
// registry.
#include <algorithm>
#include <cstring>
#include <memory>

#include "OperationReceipt.h"
#include "OperationReceipt/ReceiptRegistry.h"
#include "OperationReceipt/Refusals.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace voxtrel::platform::receipts {

namespace {

ReceiptRegistry& Registry() { return ReceiptRegistry::Instance(); }

uint32_t RefuseNull(const char* operation, const char* argument) {
  return Refuse(kNoOutArgument, std::string(operation) + ": " + argument + " is a null pointer");
}

uint32_t Destroy(uint64_t token) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.Destroy", "token=", token);
  return Registry().Destroy(token);
}

uint32_t Flush(uint64_t token) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.Flush", "token=", token);
  return Registry().Flush(token);
}

uint32_t Cancel(uint64_t token) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.Cancel", "token=", token);
  return Registry().Cancel(token);
}

uint32_t GetOperationErrorMessage(uint64_t token, char* buffer, uint32_t maxBufferSize, uint32_t* actualStringSize) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.GetOperationErrorMessage", "token=", token,
                         " maxBufferSize=", maxBufferSize);
  if (buffer == nullptr && actualStringSize == nullptr)
    return Refuse(kNoOutArgument, "OperationReceipt.GetOperationErrorMessage: buffer and actualStringSize are both null");
  ReceiptRegistry::View view;
  if (const uint32_t code = Registry().Look(token, view)) return code;
  // Messages are the registry's own or a component's; none comes near 4 GB.
  const auto needed = static_cast<uint32_t>(std::min<size_t>(view.message.size() + 1, UINT32_MAX));
  if (actualStringSize != nullptr) *actualStringSize = needed;
  if (buffer == nullptr) return 0;
  if (maxBufferSize == 0)
    return Refuse(kBufferTooSmall, "The error message of operation token " + TokenText(token) + " needs " +
                                       std::to_string(needed) + " bytes");
  const size_t copied = std::min<size_t>(view.message.size(), maxBufferSize - 1);
  std::memcpy(buffer, view.message.data(), copied);
  buffer[copied] = '\0';
  if (copied < view.message.size())
    return Refuse(kBufferTooSmall, "The error message of operation token " + TokenText(token) + " needs " +
                                       std::to_string(needed) + " bytes");
  return 0;
}

uint32_t GetOperationErrorResult(uint64_t token, int32_t* result) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.GetOperationErrorResult", "token=", token);
  if (result == nullptr) return RefuseNull("OperationReceipt.GetOperationErrorResult", "result");
  ReceiptRegistry::View view;
  if (const uint32_t code = Registry().Look(token, view)) return code;
  *result = static_cast<int32_t>(view.code);
  return 0;
}

uint32_t GetOperationStatus(uint64_t token, uint32_t* status) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.GetOperationStatus", "token=", token);
  if (status == nullptr) return RefuseNull("OperationReceipt.GetOperationStatus", "status");
  ReceiptRegistry::View view;
  if (const uint32_t code = Registry().Look(token, view)) return code;
  *status = static_cast<uint32_t>(view.status);
  return 0;
}

uint32_t GetValue(uint64_t token, BitData** value) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.GetValue", "token=", token);
  if (value == nullptr) return RefuseNull("OperationReceipt.GetValue", "value");
  BitData* copy = nullptr;
  if (const uint32_t code = Registry().CopyValue(token, copy)) return code;
  *value = copy;
  return 0;
}

struct FreeBits {
  void operator()(BitData* bits) const { BitData_FreeManaged(bits); }
};

// The value at `Width` bits: zeros above a shorter value; a longer one is
// cut only when every set bit fits.
template <class Width>
uint32_t ReadValueAs(const char* operation, uint64_t token, Width* value) {
  if (value == nullptr) return RefuseNull(operation, "value");
  BitData* copy = nullptr;
  if (const uint32_t code = Registry().CopyValue(token, copy)) return code;
  const std::unique_ptr<BitData, FreeBits> owned(copy);
  constexpr uint64_t kWidth = sizeof(Width) * 8;
  if (copy->bitSize > kWidth) {
    uint64_t highestSet = BITDATA_NOT_FOUND;
    BitData_FindLast(copy, kWidth, copy->bitSize - kWidth, &highestSet);
    if (highestSet != BITDATA_NOT_FOUND)
      return Refuse(kValueTooWide, "The value of operation token " + TokenText(token) + " does not fit in " +
                                       std::to_string(kWidth) + " bits");
  }
  *value = static_cast<Width>(BitData_GetUpToUInt64(copy, 0, std::min(copy->bitSize, kWidth)));
  return 0;
}

uint32_t GetValueAsUInt8(uint64_t token, uint8_t* value) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.GetValueAsUInt8", "token=", token);
  return ReadValueAs("OperationReceipt.GetValueAsUInt8", token, value);
}

uint32_t GetValueAsUInt16(uint64_t token, uint16_t* value) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.GetValueAsUInt16", "token=", token);
  return ReadValueAs("OperationReceipt.GetValueAsUInt16", token, value);
}

uint32_t GetValueAsUInt32(uint64_t token, uint32_t* value) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.GetValueAsUInt32", "token=", token);
  return ReadValueAs("OperationReceipt.GetValueAsUInt32", token, value);
}

uint32_t GetValueAsUInt64(uint64_t token, uint64_t* value) {
  VOXTREL_COMPONENT_CALL("OperationReceipt.GetValueAsUInt64", "token=", token);
  return ReadValueAs("OperationReceipt.GetValueAsUInt64", token, value);
}

constexpr OperationReceiptComponent kOperationReceipt{
    &Destroy,  &Flush,           &Cancel,          &GetOperationErrorMessage, &GetOperationErrorResult,
    &GetOperationStatus, &GetValue, &GetValueAsUInt8, &GetValueAsUInt16, &GetValueAsUInt32, &GetValueAsUInt64};

}  // namespace

}  // namespace voxtrel::platform::receipts

uint32_t Voxtrel_GetOperationReceipt(const OperationReceiptComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetOperationReceipt");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &voxtrel::platform::receipts::kOperationReceipt;
  return 0;
}
