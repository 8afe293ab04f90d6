#include "InProc_OperationReceipt.h"

namespace vxt {
namespace {
InProc_OperationReceipt instance;
}  // namespace

InProc_OperationReceipt::InProc_OperationReceipt() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  Voxtrel_GetOperationReceipt(&operationReceipt);
}

InProc_OperationReceipt& InProc_OperationReceipt::Instance() { return instance; }

}  // namespace vxt
