// The I2c component's getter: a record of its access table, constant from
// library load on.
#include "I2c.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace voxtrel::platform::i2c {
const I2cAccessComponent* AccessTable();
}  // namespace voxtrel::platform::i2c

uint32_t Voxtrel_GetI2c(const I2cComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetI2c");
  if (!table) return voxtrel::platform::target::kNullArgument;
  static const I2cComponent kI2c{voxtrel::platform::i2c::AccessTable()};
  *table = &kI2c;
  return 0;
}
