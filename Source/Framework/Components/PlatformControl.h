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

  // System stalls of a debug port or target domain: named 32-bit values;
  // names fill 260 characters, a list is a block of them.
  uint32_t (*GetNumSystemStalls)(uint32_t debugportOrTargetDomainId, uint32_t* numStallNames);
  uint32_t (*GetSystemStalls)(uint32_t debugportOrTargetDomainId, uint32_t numStallNames, char (*stallNames)[260]);
  uint32_t (*GetSystemStall)(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t* value);
  uint32_t (*SetSystemStall)(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t value);
  // The reset break of a device: `mode` 1 when platform control keeps it
  // there; `value` 0 off, 1 break once after the next reset, 2 after every reset.
  uint32_t (*GetResetBreakMode)(uint32_t target, int32_t* mode);
  uint32_t (*GetResetBreak)(uint32_t target, uint32_t* value);
  uint32_t (*SetResetBreak)(uint32_t target, uint32_t value);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetPlatformControl(const PlatformControlComponent** table);
