// The TargetManager component: the target's topology and its initialization,
// the queries over the topology, the devices' enabled flags and locks.
//
// Every operation returns an internal code, 0 for success, and posts the
// message of a failure into the caller's error context. Queries fail with
// kTopologyNotBuilt outside FinishInitialization..Uninitialize. A count and
// fill pair ("GetNum<Things>", "Get<Things>") fills at most the caller's
// maximum and sets the rest of the caller's array to zero: a caller sizes
// its array with the count.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "VXT_Topology.h"

// The component's form of a TAP controller: a VXT_TapController without its
// structureSize.
struct TargetManager_TapController {
  char deviceType[VXT_TAP_CONTROLLER_TEXT_SIZE];
  char deviceSubType[VXT_TAP_CONTROLLER_TEXT_SIZE];
  char stepping[VXT_TAP_CONTROLLER_TEXT_SIZE];
  uint32_t irLength;
};
static_assert(sizeof(TargetManager_TapController) == 388);

// The component's form of a probe: a VXT_Probe without its structureSize.
struct TargetManager_Probe {
  char type[64];
  char uniqueIdentifier[128];
  char details[512];
};
static_assert(sizeof(TargetManager_Probe) == 704);

// Phases of UpdateTopology, as bits; 0 stands for all of them.
inline constexpr int32_t kTopologyPhaseEnabledFlags = 0x1;    // Enabled flags back to the description's
inline constexpr int32_t kTopologyPhaseTapControllers = 0x2;  // Specified TAP controllers forgotten
inline constexpr int32_t kTopologyPhasesAll = 0x3;

struct TargetManagerComponent {
  uint32_t (*StartInitialization)();
  // Builds the topology of the selected configuration and publishes
  // "DeviceTopology".
  uint32_t (*FinishInitialization)();
  uint32_t (*BeginDynamicInitialization)();
  uint32_t (*CancelDynamicInitialization)();
  // Drops the topology; every lock goes with it, and lock requests still
  // waiting fail.
  uint32_t (*Uninitialize)();

  // ---- Queries ---------------------------------------------------------------
  uint32_t (*GetNumTargetDomainDeviceIds)(uint32_t* numTargetDomains);
  uint32_t (*GetTargetDomainDeviceIds)(uint32_t maxNumTargetDomains, uint32_t* targetDomainDeviceIds);
  // The devices of a target domain (itself included) whose type is one of
  // `nodeTypes`, in traversal order. The root's id stands for every domain.
  uint32_t (*GetNumDeviceIdsOfTypes)(uint32_t targetDomainId, uint32_t numNodeTypes, const VXT_NodeType* nodeTypes,
                                     uint32_t* numDeviceIds);
  uint32_t (*GetDeviceIdsOfTypes)(uint32_t targetDomainId, uint32_t numNodeTypes, const VXT_NodeType* nodeTypes,
                                  uint32_t maxNumDeviceIds, uint32_t* deviceIds);
  // The root's parent is 0.
  uint32_t (*GetParentIdForDevice)(uint32_t deviceId, uint32_t* parentId);
  uint32_t (*GetNumChildrenIds)(uint32_t deviceId, uint32_t* numChildren);
  uint32_t (*GetChildrenIds)(uint32_t deviceId, uint32_t maxChildrenIds, uint32_t* childrenIds);
  // The nearest ancestor of that type, the device itself not included.
  uint32_t (*GetAncestorIdForType)(uint32_t deviceId, VXT_NodeType ancestorType, uint32_t* ancestorId);
  // Descendants at any depth, the device itself not included, in traversal
  // order. A device is enabled when it and all its ancestors are.
  uint32_t (*GetNumDescendantIdsForType)(uint32_t deviceId, VXT_NodeType descendantType, bool onlyEnabledDescendants,
                                         uint32_t* numDescendants);
  uint32_t (*GetDescendantIdsForType)(uint32_t deviceId, VXT_NodeType descendantType, bool onlyEnabledDescendants,
                                      uint32_t maxDescendantIds, uint32_t* descendantIds);
  uint32_t (*GetNodeType)(uint32_t deviceId, VXT_NodeType* nodeType);
  // At most VXT_DEVICE_IDENTIFIER_SIZE characters, terminator included.
  uint32_t (*GetIdentifierForDeviceId)(uint32_t deviceId, char* identifier);
  // An identifier is unique in its target domain. With the root's id the
  // identifier names the root or a target domain.
  uint32_t (*GetDeviceIdForIdentifier)(uint32_t targetDomainId, const char* identifier, uint32_t* deviceId);
  uint32_t (*GetDebugportIdForDevice)(uint32_t deviceId, uint32_t* debugPortId);

  // ---- Properties ------------------------------------------------------------
  uint32_t (*GetNumDevicePropertyNames)(uint32_t deviceId, uint32_t* propertyNameCount);
  uint32_t (*GetDevicePropertyNames)(uint32_t deviceId, uint32_t maxPropertyNames, VXT_PropertyName* propertyNames);
  uint32_t (*GetDeviceProperty)(uint32_t deviceId, const char* propertyName, char* propertyValue);

  // ---- Locks -------------------------------------------------------------------
  // A lock is held by the client the calling thread acts for. The outcome
  // comes through the operation receipt written to `operationToken`: the
  // lock is taken at once when it can be, else a worker waits for it up to
  // `timeout` milliseconds (VXT_INFINITE_TIMEOUT: for ever) and the receipt
  // fails with kLockTimedOut. Devices the client holds already count as
  // taken. LockMany takes all of its devices at once or none.
  uint32_t (*Lock)(uint32_t deviceId, uint32_t timeout, uint64_t* operationToken);
  uint32_t (*LockMany)(const uint32_t* deviceIds, uint32_t deviceIdCount, uint32_t timeout, uint64_t* operationToken);
  // Releases every device the calling client holds; the receipt's value is
  // their number.
  uint32_t (*Unlock)(uint64_t* operationToken);
  // Releases the device whoever holds it; `brokeLock` says whether anyone did.
  uint32_t (*BreakLock)(uint32_t deviceId, bool* brokeLock);
  // The holder's client identifier (VXT_CLIENT_TEXT_SIZE characters at
  // most, terminator included); empty when the device is not locked.
  uint32_t (*GetLockingClient)(uint32_t deviceId, char* clientIdentifier);

  // ---- Changes of the topology -----------------------------------------------
  // Refreshes the device and its descendants as `phases` says and publishes
  // "Reconfiguration" "Started" and "Completed".
  uint32_t (*UpdateTopology)(uint32_t deviceId, int32_t phases);

  // ---- Core groups -------------------------------------------------------------
  // The group's cores (LogicalCore) or their threads (LogicalThread).
  uint32_t (*GetNumDeviceIdsInCoreGroup)(uint32_t coreGroupId, VXT_NodeType nodeType, bool onlyEnabledDevices,
                                         uint32_t* numDevices);
  uint32_t (*GetDeviceIdsInCoreGroup)(uint32_t coreGroupId, VXT_NodeType nodeType, bool onlyEnabledDevices,
                                      uint32_t maxDeviceIds, uint32_t* deviceIds);
  uint32_t (*GetCoreGroupIdForDevice)(uint32_t deviceId, uint32_t* coreGroupId);

  // All or nothing: an unknown name fails the call before any value is written.
  uint32_t (*GetDeviceProperties)(uint32_t deviceId, uint32_t propertyNameCount, const VXT_PropertyName* propertyNames,
                                  VXT_PropertyValue* propertyValues);
  // Declares the TAP controllers a JTAG chain holds, from TDI to TDO, and
  // publishes "Reconfiguration" "Started" and "Completed". A described TAP
  // controller that the declaration does not match at its place is
  // disabled; UpdateTopology puts the described flags back (phase 0x1) or
  // forgets the declaration (phase 0x2).
  uint32_t (*SpecifyTopology)(uint32_t jtagChainId, uint32_t tapControllerCount,
                              const TargetManager_TapController* tapControllers);
  uint32_t (*SetDeviceEnabled)(uint32_t deviceId, bool enabled);
  uint32_t (*IsDeviceEnabled)(uint32_t deviceId, bool* enabled);
  // Encrypted debug of a device, on and off; the Jtag component reports it.
  uint32_t (*StartEncryptedDebug)(uint32_t deviceId);
  uint32_t (*StopEncryptedDebug)(uint32_t deviceId);

  // Probes, TAP controllers found on a chain, saved configurations and
  // scenarios (ProbeOperations.cpp). A probe is one debug port's, as the
  // description says; a chain's TAP controllers are found once its debug
  // port's probe is initialized.
  uint32_t (*GetProbeTypeCount)(uint32_t* probeTypeCount);
  uint32_t (*GetProbeTypes)(uint32_t maxProbeTypeCount, char* probeTypes);
  uint32_t (*GetConnectedProbeCount)(uint32_t* probeCount);
  uint32_t (*GetConnectedProbes)(uint32_t maxProbeCount, TargetManager_Probe* probes);
  // Completes the record from the probe whose type (and identifier, when
  // given) it names; `selection`, when not null, is a uint32_t that receives
  // the probe's debug port.
  uint32_t (*SelectProbe)(TargetManager_Probe* probe, void* selection);
  uint32_t (*InitializeProbe)(uint32_t debugPortId);
  uint32_t (*GetSupportedTapControllerCount)(uint32_t* tapControllerCount);
  uint32_t (*GetSupportedTapControllers)(uint32_t maxTapControllerCount, TargetManager_TapController* tapControllers);
  uint32_t (*GetDiscoveredTapControllerCount)(uint32_t jtagChainId, uint32_t* tapControllerCount);
  uint32_t (*GetDiscoveredTapControllers)(uint32_t jtagChainId, uint32_t maxTapControllerCount,
                                          TargetManager_TapController* tapControllers);
  // As SpecifyTopology: what the chain holds from now on, in place of what was found.
  uint32_t (*SpecifyTapControllers)(uint32_t jtagChainId, uint32_t tapControllerCount,
                                    const TargetManager_TapController* tapControllers);
  uint32_t (*IsSavedConfigurationAvailable)(uint32_t* savedConfigurationAvailable);
  uint32_t (*SaveConfiguration)();
  uint32_t (*RestoreConfiguration)();
  uint32_t (*GetAvailableScenarioCount)(uint32_t* scenarioCount);
  uint32_t (*GetAvailableScenarios)(uint32_t maxScenarioCount, char* scenarioNames);
  uint32_t (*SelectScenario)(const char* scenarioName);
  // The name of a core group device (a LogicalGroupCore) into 64 characters.
  uint32_t (*GetCoreGroupName)(uint32_t deviceId, char* name);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetTargetManager(const TargetManagerComponent** table);
