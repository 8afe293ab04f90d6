// The OperationReceipt service: a traced doorway to the OperationReceipt
// component, which keeps every receipt. The service holds no state and takes
// no lock of its own; it translates an operation's error code, turns a
// receipt's value into a vector of the calling client, and sizes raw byte
// results.
#pragma once

#include "IInternalService_OperationReceipt.h"
#include "OperationReceipt.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_OperationReceipt : public SingletonService<InProc_OperationReceipt>,
                                public IInternalService_OperationReceipt {
 public:
  InProc_OperationReceipt();
  static InProc_OperationReceipt& Instance();

  VXT_Result Cancel(uint64_t operationToken) override;
  VXT_Result Destroy(uint64_t operationToken) override;
  VXT_Result DestroyMany(const uint64_t* operationTokens, uint32_t numTokens) override;
  VXT_Result Flush(uint64_t operationToken) override;
  VXT_Result GetOperationErrorMessage(uint64_t operationToken, char* buffer, uint32_t maxBufferSize,
                                      uint32_t* actualStringSize) override;
  VXT_Result GetOperationErrorResult(uint64_t operationToken, VXT_Result* operationErrorResult) override;
  VXT_Result GetOperationStatus(uint64_t operationToken, OperationStatus* status) override;
  VXT_Result GetValue(uint64_t operationToken, VXT_BitData* value) override;
  VXT_Result GetValueAsUInt64(uint64_t operationToken, uint64_t* value) override;
  VXT_Result GetValueAsUInt32(uint64_t operationToken, uint32_t* value) override;
  VXT_Result GetValueAsUInt16(uint64_t operationToken, uint16_t* value) override;
  VXT_Result GetValueAsUInt8(uint64_t operationToken, uint8_t* value) override;
  VXT_Result GetValueAsRawBytes(uint64_t operationToken, uint8_t* bytes, uint32_t maxByteCount,
                                uint32_t* byteCount) override;

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const OperationReceiptComponent* operationReceipt = nullptr;
};

}  // namespace vxt
