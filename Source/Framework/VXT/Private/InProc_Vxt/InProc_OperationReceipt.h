// The OperationReceipt service object.
#pragma once

#include "OperationReceipt.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_OperationReceipt : public SingletonService<InProc_OperationReceipt> {
 public:
  InProc_OperationReceipt();
  static InProc_OperationReceipt& Instance();

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const OperationReceiptComponent* operationReceipt = nullptr;
};

}  // namespace vxt
