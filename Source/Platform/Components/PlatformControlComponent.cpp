// The PlatformControl component's table. Its operations are added as the services
// that call them are built; the getter answers from library load on, as the
// table is constant.
#include "PlatformControl.h"
#include "Components/ResetBreaks.h"
#include "PlatformControl/PlatformControlOperations.h"
#include "Support/ComponentCall.h"
#include "Target/Failure.h"

namespace voxtrel::platform::pins {
uint32_t CheckPinChange(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal);
}  // namespace voxtrel::platform::pins

namespace {

namespace control = voxtrel::platform::platform_control;

constexpr PlatformControlComponent kPlatformControl{&voxtrel::platform::pins::CheckPinChange,
                                                    &control::ExecuteAction,
                                                    &control::ReadStatus,
                                                    &control::SetPreferHighBandwidthTransports,
                                                    &control::GetPreferHighBandwidthTransports,
                                                    &control::SetFeatureSurvivabilityPreset,
                                                    &control::GetFeatureSurvivabilityPreset,
                                                    // System stalls and reset breaks (ResetBreaks.h)
                                                    &control::GetNumSystemStalls,
                                                    &control::GetSystemStalls,
                                                    &control::GetSystemStall,
                                                    &control::SetSystemStall,
                                                    &control::GetResetBreakMode,
                                                    &control::GetResetBreak,
                                                    &control::SetResetBreak};

}  // namespace

uint32_t Voxtrel_GetPlatformControl(const PlatformControlComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetPlatformControl");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &kPlatformControl;
  return 0;
}
