#include "InProc_OperationReceipt.h"

#include "BindTable.h"

namespace vxt {
namespace {
InProc_OperationReceipt instance;
}  // namespace

InProc_OperationReceipt::InProc_OperationReceipt() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetOperationReceipt, operationReceipt);
}

InProc_OperationReceipt& InProc_OperationReceipt::Instance() { return instance; }

}  // namespace vxt
