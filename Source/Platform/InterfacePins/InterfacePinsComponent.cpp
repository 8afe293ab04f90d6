// The InterfacePins component's getter: its table, constant from library
// load on.
#include "InterfacePins.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace voxtrel::platform::pins {
const InterfacePinsComponent* PinsTable();
}  // namespace voxtrel::platform::pins

uint32_t Voxtrel_GetInterfacePins(const InterfacePinsComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetInterfacePins");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = voxtrel::platform::pins::PinsTable();
  return 0;
}
