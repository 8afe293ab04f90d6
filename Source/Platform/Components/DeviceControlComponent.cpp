// The DeviceControl component's getter: its table is constant from library
// load on (DeviceControl/DeviceSettings.cpp).
#include "DeviceControl.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace voxtrel::platform::device_control {
const DeviceControlComponent* Table();
}  // namespace voxtrel::platform::device_control

uint32_t Voxtrel_GetDeviceControl(const DeviceControlComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetDeviceControl");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = voxtrel::platform::device_control::Table();
  return 0;
}
