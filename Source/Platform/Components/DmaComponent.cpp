// The Dma component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "Dma.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace {

constexpr DmaComponent kDma{};

}  // namespace

uint32_t Voxtrel_GetDma(const DmaComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetDma");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kDma;
  return 0;
}
