// Service 12: actions on the platform as a whole: power-cycling and
// resetting the target behind a debug port, its power status, and the
// transport settings of a target domain.
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"

class IInternalService_PlatformControl {
 public:
  virtual ~IInternalService_PlatformControl() = default;

  virtual VXT_Result PowerCycleTarget(uint32_t debugPortId, uint64_t* operationToken) = 0;
  // Replaced by GetDebugPortPowerStatus: always fails, and reads and writes
  // neither argument.
  virtual VXT_Result GetTargetPowerStatus(uint32_t debugPortId, uint32_t* status) = 0;
  virtual VXT_Result ResetTarget(uint32_t debugPortId, uint64_t* operationToken) = 0;
  // `status`: 1 when the target is powered, else 0.
  virtual VXT_Result GetDebugPortPowerStatus(uint32_t debugPortId, uint32_t* status) = 0;
  virtual VXT_Result SetPreferHighBandwidthTransports(uint32_t targetDomainId, VXT_Preference prefer) = 0;
  virtual VXT_Result GetPreferHighBandwidthTransports(uint32_t targetDomainId, VXT_Preference* prefer) = 0;
  virtual VXT_Result SetFeatureSurvivabilityPreset(uint32_t targetDomainId, VXT_TransportFeature feature,
                                                   VXT_SurvivabilityPreset preset) = 0;
  virtual VXT_Result GetFeatureSurvivabilityPreset(uint32_t targetDomainId, VXT_TransportFeature feature,
                                                   VXT_SurvivabilityPreset* preset) = 0;
};
