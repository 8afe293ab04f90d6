// The TargetManager component: brings the target's topology up from the
// selected description and takes it down again.
#include "Jtag/EncryptedDebug.h"
#include "Support/ComponentCall.h"
#include "Target/PostFailure.h"
#include "Target/TargetModel.h"
#include "TargetManager.h"
#include "TargetManager/CoreGroupName.h"
#include "TargetManager/DeviceQueries.h"
#include "TargetManager/TopologyEvents.h"

namespace voxtrel::platform::target_manager {

namespace {

using target::TargetModel;

uint32_t StartInitialization() {
  VOXTREL_COMPONENT_CALL("TargetManager.StartInitialization");
  TargetModel::Instance().StartInitialization();
  return 0;
}

// Builds the topology once; subscribers hear of it after the model has let
// go of its lock, so that they may query it at once.
uint32_t FinishInitialization() {
  VOXTREL_COMPONENT_CALL("TargetManager.FinishInitialization");
  bool builtNow = false;
  if (target::Outcome refused = TargetModel::Instance().FinishInitialization(builtNow))
    return VOXTREL_POST_FAILURE(*refused);
  if (builtNow) PublishTopologyEvent(kTopologyCompleted);
  return 0;
}

uint32_t BeginDynamicInitialization() {
  VOXTREL_COMPONENT_CALL("TargetManager.BeginDynamicInitialization");
  if (target::Outcome refused = TargetModel::Instance().BeginDynamicInitialization())
    return VOXTREL_POST_FAILURE(*refused);
  return 0;
}

// Cancelling when none runs is no error: the caller's aim is met.
uint32_t CancelDynamicInitialization() {
  VOXTREL_COMPONENT_CALL("TargetManager.CancelDynamicInitialization");
  TargetModel::Instance().CancelDynamicInitialization();
  return 0;
}

uint32_t Uninitialize() {
  VOXTREL_COMPONENT_CALL("TargetManager.Uninitialize");
  TargetModel::Instance().Uninitialize();
  return 0;
}

constexpr TargetManagerComponent kTargetManager{
    &StartInitialization,
    &FinishInitialization,
    &BeginDynamicInitialization,
    &CancelDynamicInitialization,
    &Uninitialize,
    &GetNumTargetDomainDeviceIds,
    &GetTargetDomainDeviceIds,
    &GetNumDeviceIdsOfTypes,
    &GetDeviceIdsOfTypes,
    &GetParentIdForDevice,
    &GetNumChildrenIds,
    &GetChildrenIds,
    &GetAncestorIdForType,
    &GetNumDescendantIdsForType,
    &GetDescendantIdsForType,
    &GetNodeType,
    &GetIdentifierForDeviceId,
    &GetDeviceIdForIdentifier,
    &GetDebugportIdForDevice,
    &GetNumDevicePropertyNames,
    &GetDevicePropertyNames,
    &GetDeviceProperty,
    &Lock,
    &LockMany,
    &Unlock,
    &BreakLock,
    &GetLockingClient,
    &UpdateTopology,
    &GetNumDeviceIdsInCoreGroup,
    &GetDeviceIdsInCoreGroup,
    &GetCoreGroupIdForDevice,
    &GetDeviceProperties,
    &SpecifyTopology,
    &SetDeviceEnabled,
    &IsDeviceEnabled,
    &jtag::StartEncryptedDebug,
    &jtag::StopEncryptedDebug,
    &GetProbeTypeCount,
    &GetProbeTypes,
    &GetConnectedProbeCount,
    &GetConnectedProbes,
    &SelectProbe,
    &InitializeProbe,
    &GetSupportedTapControllerCount,
    &GetSupportedTapControllers,
    &GetDiscoveredTapControllerCount,
    &GetDiscoveredTapControllers,
    &SpecifyTapControllers,
    &IsSavedConfigurationAvailable,
    &SaveConfiguration,
    &RestoreConfiguration,
    &GetAvailableScenarioCount,
    &GetAvailableScenarios,
    &SelectScenario,
    &GetCoreGroupName,
};

}  // namespace

}  // namespace voxtrel::platform::target_manager

uint32_t Voxtrel_GetTargetManager(const TargetManagerComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetTargetManager");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &voxtrel::platform::target_manager::kTargetManager;
  return 0;
}
