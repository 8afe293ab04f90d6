// The PlatformControl component. Its operations are declared as the services that
// call them are built; the getter answers from library load on.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "VXT_Enumerations.h"

// The size of an action's or a status's name field: the name, then zero
// bytes to the end.
inline constexpr uint32_t kPlatformControlNameSize = 64;

struct PlatformControlComponent {
  // 0 when the board lets a probe drive the signal of that pins interface
  // or debug port; else the refusal's code, its message posted.
  uint32_t (*CheckPinChange)(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal);
  // Starts the action named by the field ("PowerCycleTarget", "ResetTarget")
  // on the target behind the debug port and gives its receipt's token.
  uint32_t (*ExecuteAction)(uint32_t debugPortId, const char* actionName, uint64_t* operationToken);
  // Reads the status named by the field; "Power" reads 1 (on) or 0 (off).
  uint32_t (*ReadStatus)(uint32_t debugPortId, const char* statusName, uint32_t* value);
  uint32_t (*SetPreferHighBandwidthTransports)(uint32_t targetDomainId, VXT_Preference prefer);
  uint32_t (*GetPreferHighBandwidthTransports)(uint32_t targetDomainId, VXT_Preference* prefer);
  uint32_t (*SetFeatureSurvivabilityPreset)(uint32_t targetDomainId, VXT_TransportFeature feature,
                                            VXT_SurvivabilityPreset preset);
  uint32_t (*GetFeatureSurvivabilityPreset)(uint32_t targetDomainId, VXT_TransportFeature feature,
                                            VXT_SurvivabilityPreset* preset);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetPlatformControl(const PlatformControlComponent** table);
