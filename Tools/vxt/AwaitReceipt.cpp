#include "AwaitReceipt.h"

#include <stdexcept>

#include "Session.h"

namespace vxt::cli {

void AwaitCompletion(IInternalService_OperationReceipt& receipts, uint64_t token, const std::string& call) {
  Check(receipts.Flush(token), "Flush");
  OperationStatus status = VXT_OperationStatus_Pending;
  Check(receipts.GetOperationStatus(token, &status), "GetOperationStatus");
  char message[512] = "";
  if (status != VXT_OperationStatus_Completed)
    Check(receipts.GetOperationErrorMessage(token, message, sizeof message, nullptr), "GetOperationErrorMessage");
  Check(receipts.Destroy(token), "Destroy");
  if (status != VXT_OperationStatus_Completed) throw std::runtime_error(call + " did not complete: " + message);
}

}  // namespace vxt::cli
