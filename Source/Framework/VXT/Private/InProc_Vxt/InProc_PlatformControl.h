// The PlatformControl service: power cycle, reset and power status of the
// target behind a debug port, turned into the component's generic action and
// status operations, and the transport settings of a target domain.
#pragma once

#include "IInternalService_PlatformControl.h"
#include "PlatformControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_PlatformControl : public SingletonService<InProc_PlatformControl>,
                               public IInternalService_PlatformControl {
 public:
  static InProc_PlatformControl& Instance();

  VXT_Result PowerCycleTarget(uint32_t debugPortId, uint64_t* operationToken) override;
  VXT_Result GetTargetPowerStatus(uint32_t debugPortId, uint32_t* status) override;
  VXT_Result ResetTarget(uint32_t debugPortId, uint64_t* operationToken) override;
  VXT_Result GetDebugPortPowerStatus(uint32_t debugPortId, uint32_t* status) override;
  VXT_Result SetPreferHighBandwidthTransports(uint32_t targetDomainId, VXT_Preference prefer) override;
  VXT_Result GetPreferHighBandwidthTransports(uint32_t targetDomainId, VXT_Preference* prefer) override;
  VXT_Result SetFeatureSurvivabilityPreset(uint32_t targetDomainId, VXT_TransportFeature feature,
                                           VXT_SurvivabilityPreset preset) override;
  VXT_Result GetFeatureSurvivabilityPreset(uint32_t targetDomainId, VXT_TransportFeature feature,
                                           VXT_SurvivabilityPreset* preset) override;

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const PlatformControlComponent* platformControl = nullptr;
};

}  // namespace vxt
