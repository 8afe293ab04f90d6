// The PlatformControl component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "PlatformControl.h"
#include "Components/ResetBreaks.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace voxtrel::platform::pins {
uint32_t CheckPinChange(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal);
}  // namespace voxtrel::platform::pins

namespace {

constexpr PlatformControlComponent kPlatformControl{
    &voxtrel::platform::pins::CheckPinChange,
    // System stalls and reset breaks (ResetBreaks.h)
    &voxtrel::platform::platform_control::GetNumSystemStalls, &voxtrel::platform::platform_control::GetSystemStalls,
    &voxtrel::platform::platform_control::GetSystemStall, &voxtrel::platform::platform_control::SetSystemStall,
    &voxtrel::platform::platform_control::GetResetBreakMode, &voxtrel::platform::platform_control::GetResetBreak,
    &voxtrel::platform::platform_control::SetResetBreak,
};

}  // namespace

uint32_t Voxtrel_GetPlatformControl(const PlatformControlComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetPlatformControl");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kPlatformControl;
  return 0;
}
