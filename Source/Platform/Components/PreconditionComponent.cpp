// The Precondition component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "Precondition.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace {

constexpr PreconditionComponent kPrecondition{};

}  // namespace

uint32_t Voxtrel_GetPrecondition(const PreconditionComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetPrecondition");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kPrecondition;
  return 0;
}
