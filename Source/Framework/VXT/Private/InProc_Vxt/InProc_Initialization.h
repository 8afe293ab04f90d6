// The Initialization service: probes, TAP controllers, saved configurations
// and scenarios through the TargetManager, converting between the public
// records (with their structureSize) and the component's.
#pragma once

#include "IInternalService_Initialization.h"
#include "SingletonService.h"
#include "TargetManager.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Initialization : public SingletonService<InProc_Initialization>,
                              public IInternalService_Initialization {
 public:
  InProc_Initialization();
  static InProc_Initialization& Instance();

  VXT_Result GetProbeTypeCount(uint32_t* probeTypeCount) override;
  VXT_Result GetProbeTypes(uint32_t maxProbeTypeCount, char* probeTypes) override;
  VXT_Result GetConnectedProbeCount(uint32_t* probeCount) override;
  VXT_Result GetConnectedProbes(uint32_t maxProbeCount, VXT_Probe* probes) override;
  VXT_Result SelectProbe(VXT_Probe* probe, void* selection) override;
  VXT_Result InitializeProbe(uint32_t debugPortId) override;
  VXT_Result GetSupportedTapControllerCount(uint32_t* tapControllerCount) override;
  VXT_Result GetSupportedTapControllers(uint32_t maxTapControllerCount, VXT_TapController* tapControllers) override;
  VXT_Result GetDiscoveredTapControllerCount(uint32_t jtagChainId, uint32_t* tapControllerCount) override;
  VXT_Result GetDiscoveredTapControllers(uint32_t jtagChainId, uint32_t maxTapControllerCount,
                                         VXT_TapController* tapControllers) override;
  VXT_Result SpecifyTapControllers(uint32_t jtagChainId, uint32_t tapControllerCount,
                                   const VXT_TapController* tapControllers) override;
  VXT_Result IsSavedConfigurationAvailable(uint32_t* savedConfigurationAvailable) override;
  VXT_Result SaveConfiguration() override;
  VXT_Result RestoreConfiguration() override;
  VXT_Result GetAvailableScenarioCount(uint32_t* scenarioCount) override;
  VXT_Result GetAvailableScenarios(uint32_t maxScenarioCount, char* scenarioNames) override;
  VXT_Result SelectScenario(const char* scenarioName) override;

  frame::ServiceLogger logger;
  // Component tables. Bound when the library is loaded.
  const TargetManagerComponent* targetManager = nullptr;
};

}  // namespace vxt
