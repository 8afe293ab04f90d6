// Following and ending operations: status, outcome, flush, cancel, destroy.
#include "InProc_OperationReceipt.h"

#include "BindTable.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_OperationReceipt instance;

using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;
using frame::List;
using frame::NoArgs;
using frame::OperationStatusName;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;

}  // namespace

InProc_OperationReceipt::InProc_OperationReceipt() {
  // The component is there from load on. Should its getter fail, the table
  // stays null and every operation reports that instead of calling it.
  BindTable(&Voxtrel_GetOperationReceipt, operationReceipt);
}

InProc_OperationReceipt& InProc_OperationReceipt::Instance() { return instance; }

VXT_Result InProc_OperationReceipt::Cancel(uint64_t operationToken) {
  return RunOperation(logger, VXT_OPERATION(OperationReceipt, Cancel),
                      TraceArgs("operationToken", Hex16{operationToken}), NoArgs{}, [&](Call& call) {
                        return call.Core(operationReceipt, [&](const OperationReceiptComponent& receipts) {
                          return receipts.Cancel(operationToken);
                        });
                      });
}

VXT_Result InProc_OperationReceipt::Destroy(uint64_t operationToken) {
  return RunOperation(logger, VXT_OPERATION(OperationReceipt, Destroy),
                      TraceArgs("operationToken", Hex16{operationToken}), NoArgs{}, [&](Call& call) {
                        return call.Core(operationReceipt, [&](const OperationReceiptComponent& receipts) {
                          return receipts.Destroy(operationToken);
                        });
                      });
}

VXT_Result InProc_OperationReceipt::DestroyMany(const uint64_t* operationTokens, uint32_t numTokens) {
  return RunOperation(
      logger, VXT_OPERATION(OperationReceipt, DestroyMany),
      TraceArgs("operationTokens", List<Hex16>(operationTokens, numTokens), "numTokens", Dec{numTokens}), NoArgs{},
      [&](Call& call) {
        return call.NotNull(operationTokens, "operationTokens")
            .Core(operationReceipt, [&](const OperationReceiptComponent& receipts) {
              // The first failure ends the loop: the tokens
              // behind it stay alive.
              for (uint32_t i = 0; i < numTokens; ++i) {
                if (const uint32_t failure = receipts.Destroy(operationTokens[i])) return failure;
              }
              return code::kSuccess;
            });
      });
}

VXT_Result InProc_OperationReceipt::Flush(uint64_t operationToken) {
  return RunOperation(logger, VXT_OPERATION(OperationReceipt, Flush),
                      TraceArgs("operationToken", Hex16{operationToken}), NoArgs{}, [&](Call& call) {
                        return call.Core(operationReceipt, [&](const OperationReceiptComponent& receipts) {
                          return receipts.Flush(operationToken);
                        });
                      });
}

VXT_Result InProc_OperationReceipt::GetOperationErrorMessage(uint64_t operationToken, char* buffer,
                                                             uint32_t maxBufferSize, uint32_t* actualStringSize) {
  // The buffer is shown within maxBufferSize: after a failure it may hold
  // whatever the caller left in it, terminated or not.
  return RunOperation(
      logger, VXT_OPERATION(OperationReceipt, GetOperationErrorMessage),
      TraceArgs("operationToken", Hex16{operationToken}, "maxBufferSize", Dec{maxBufferSize}),
      TraceArgs("buffer", Quoted{buffer, maxBufferSize}, "actualStringSize", Out<Dec>(actualStringSize)),
      [&](Call& call) {
        return call.Core(operationReceipt, [&](const OperationReceiptComponent& receipts) {
          return receipts.GetOperationErrorMessage(operationToken, buffer, maxBufferSize, actualStringSize);
        });
      });
}

VXT_Result InProc_OperationReceipt::GetOperationErrorResult(uint64_t operationToken, VXT_Result* operationErrorResult) {
  return RunOperation(logger, VXT_OPERATION(OperationReceipt, GetOperationErrorResult),
                      TraceArgs("operationToken", Hex16{operationToken}),
                      TraceArgs("operationErrorResult", Out<Hex8>(operationErrorResult)), [&](Call& call) {
                        return call.NotNull(operationErrorResult, "operationErrorResult")
                            .Core(operationReceipt, [&](const OperationReceiptComponent& receipts) {
                              int32_t internalCode = 0;
                              const uint32_t failure = receipts.GetOperationErrorResult(operationToken, &internalCode);
                              // The client reads the operation's failure in the
                              // numbering of every other result.
                              if (failure == code::kSuccess)
                                *operationErrorResult = frame::TranslateErrorCode(static_cast<uint32_t>(internalCode));
                              return failure;
                            });
                      });
}

VXT_Result InProc_OperationReceipt::GetOperationStatus(uint64_t operationToken, OperationStatus* status) {
  return RunOperation(
      logger, VXT_OPERATION(OperationReceipt, GetOperationStatus), TraceArgs("operationToken", Hex16{operationToken}),
      TraceArgs("status", Out<Enum<OperationStatusName>>(status)), [&](Call& call) {
        return call.NotNull(status, "status").Core(operationReceipt, [&](const OperationReceiptComponent& receipts) {
          uint32_t state = 0;
          const uint32_t failure = receipts.GetOperationStatus(operationToken, &state);
          if (failure == code::kSuccess) *status = static_cast<OperationStatus>(state);
          return failure;
        });
      });
}

}  // namespace vxt
