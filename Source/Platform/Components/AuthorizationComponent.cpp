// The Authorization component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "Authorization.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace {

constexpr AuthorizationComponent kAuthorization{};

}  // namespace

uint32_t Voxtrel_GetAuthorization(const AuthorizationComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetAuthorization");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kAuthorization;
  return 0;
}
