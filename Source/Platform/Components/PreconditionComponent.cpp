// The Precondition component's getter: its table is constant from library
// load on (Precondition/Preconditions.cpp).
#include "Precondition.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace voxtrel::platform::precondition {
const PreconditionComponent* Table();
}  // namespace voxtrel::platform::precondition

uint32_t Voxtrel_GetPrecondition(const PreconditionComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetPrecondition");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = voxtrel::platform::precondition::Table();
  return 0;
}
