// The DeviceControl component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "DeviceControl.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace {

constexpr DeviceControlComponent kDeviceControl{};

}  // namespace

uint32_t Voxtrel_GetDeviceControl(const DeviceControlComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetDeviceControl");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kDeviceControl;
  return 0;
}
