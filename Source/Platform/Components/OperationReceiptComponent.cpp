// The OperationReceipt component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "OperationReceipt.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace {

constexpr OperationReceiptComponent kOperationReceipt{};

}  // namespace

uint32_t Voxtrel_GetOperationReceipt(const OperationReceiptComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetOperationReceipt");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kOperationReceipt;
  return 0;
}
