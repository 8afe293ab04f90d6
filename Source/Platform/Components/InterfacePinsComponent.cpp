// The InterfacePins component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "InterfacePins.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace {

constexpr InterfacePinsComponent kInterfacePins{};

}  // namespace

uint32_t Voxtrel_GetInterfacePins(const InterfacePinsComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetInterfacePins");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kInterfacePins;
  return 0;
}
