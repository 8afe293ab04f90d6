// The PlatformControl component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "PlatformControl.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace {

constexpr PlatformControlComponent kPlatformControl{};

}  // namespace

uint32_t Voxtrel_GetPlatformControl(const PlatformControlComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetPlatformControl");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kPlatformControl;
  return 0;
}
