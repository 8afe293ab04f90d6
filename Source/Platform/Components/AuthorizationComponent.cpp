// The Authorization component's getter: its table is constant from library
// load on (Authorization/AuthorizationLevels.cpp).
#include "Authorization.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace voxtrel::platform::authorization {
const AuthorizationComponent* Table();
}  // namespace voxtrel::platform::authorization

uint32_t Voxtrel_GetAuthorization(const AuthorizationComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetAuthorization");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = voxtrel::platform::authorization::Table();
  return 0;
}
