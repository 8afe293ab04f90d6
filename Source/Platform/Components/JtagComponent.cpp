// The Jtag component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "Jtag.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace {

constexpr JtagComponent kJtag{};

}  // namespace

uint32_t Voxtrel_GetJtag(const JtagComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetJtag");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kJtag;
  return 0;
}
