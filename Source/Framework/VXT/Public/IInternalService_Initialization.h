// Service 31: bringing up the connection to a target by hand: probe types
// and connected probes, the probe to debug through, its initialization, the
// TAP controllers supported and found on a JTAG chain, saved configurations
// and scenarios.
#pragma once

#include <cstdint>

#include "VXT_ErrorCodes.h"
#include "VXT_Topology.h"

inline constexpr uint32_t VXT_PROBE_SIZE = 708;
inline constexpr uint32_t VXT_PROBE_TYPE_SIZE = 64;
inline constexpr uint32_t VXT_PROBE_IDENTIFIER_SIZE = 128;
inline constexpr uint32_t VXT_PROBE_DETAILS_SIZE = 512;
// The size of each field of a `probeTypes` or `scenarioNames` array.
inline constexpr uint32_t VXT_INITIALIZATION_NAME_SIZE = 64;

struct VXT_Probe {
  uint32_t structureSize;  // VXT_PROBE_SIZE in every record the library fills; not read on input
  char type[VXT_PROBE_TYPE_SIZE];
  char uniqueIdentifier[VXT_PROBE_IDENTIFIER_SIZE];  // Tells probes of one type apart
  char details[VXT_PROBE_DETAILS_SIZE];
};
static_assert(sizeof(VXT_Probe) == VXT_PROBE_SIZE);

class IInternalService_Initialization {
 public:
  virtual ~IInternalService_Initialization() = default;

  virtual VXT_Result GetProbeTypeCount(uint32_t* probeTypeCount) = 0;
  virtual VXT_Result GetProbeTypes(uint32_t maxProbeTypeCount, char* probeTypes) = 0;
  virtual VXT_Result GetConnectedProbeCount(uint32_t* probeCount) = 0;
  virtual VXT_Result GetConnectedProbes(uint32_t maxProbeCount, VXT_Probe* probes) = 0;
  // `selection`: null, or a uint32_t that receives the debug port of the probe.
  virtual VXT_Result SelectProbe(VXT_Probe* probe, void* selection) = 0;
  virtual VXT_Result InitializeProbe(uint32_t debugPortId) = 0;
  virtual VXT_Result GetSupportedTapControllerCount(uint32_t* tapControllerCount) = 0;
  virtual VXT_Result GetSupportedTapControllers(uint32_t maxTapControllerCount, VXT_TapController* tapControllers) = 0;
  virtual VXT_Result GetDiscoveredTapControllerCount(uint32_t jtagChainId, uint32_t* tapControllerCount) = 0;
  virtual VXT_Result GetDiscoveredTapControllers(uint32_t jtagChainId, uint32_t maxTapControllerCount,
                                                 VXT_TapController* tapControllers) = 0;
  virtual VXT_Result SpecifyTapControllers(uint32_t jtagChainId, uint32_t tapControllerCount,
                                           const VXT_TapController* tapControllers) = 0;
  // `savedConfigurationAvailable`: a 32-bit boolean.
  virtual VXT_Result IsSavedConfigurationAvailable(uint32_t* savedConfigurationAvailable) = 0;
  virtual VXT_Result SaveConfiguration() = 0;
  virtual VXT_Result RestoreConfiguration() = 0;
  virtual VXT_Result GetAvailableScenarioCount(uint32_t* scenarioCount) = 0;
  virtual VXT_Result GetAvailableScenarios(uint32_t maxScenarioCount, char* scenarioNames) = 0;
  virtual VXT_Result SelectScenario(const char* scenarioName) = 0;
};
