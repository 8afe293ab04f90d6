// The I2c component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "I2c.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace {

constexpr I2cComponent kI2c{};

}  // namespace

uint32_t Voxtrel_GetI2c(const I2cComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetI2c");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kI2c;
  return 0;
}
