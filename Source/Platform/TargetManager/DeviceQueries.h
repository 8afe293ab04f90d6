// The TargetManager's operations over the topology: queries, properties,
// locks and changes. Each is an entry of the component's table.
#pragma once

#include <cstdint>

#include <vector>

#include "Target/TargetModel.h"
#include "TargetManager.h"

namespace voxtrel::platform::target_manager {

// Topology.
uint32_t GetNumTargetDomainDeviceIds(uint32_t* numTargetDomains);
uint32_t GetTargetDomainDeviceIds(uint32_t maxNumTargetDomains, uint32_t* targetDomainDeviceIds);
uint32_t GetNumDeviceIdsOfTypes(uint32_t targetDomainId, uint32_t numNodeTypes, const VXT_NodeType* nodeTypes,
                                uint32_t* numDeviceIds);
uint32_t GetDeviceIdsOfTypes(uint32_t targetDomainId, uint32_t numNodeTypes, const VXT_NodeType* nodeTypes,
                             uint32_t maxNumDeviceIds, uint32_t* deviceIds);
uint32_t GetParentIdForDevice(uint32_t deviceId, uint32_t* parentId);
uint32_t GetNumChildrenIds(uint32_t deviceId, uint32_t* numChildren);
uint32_t GetChildrenIds(uint32_t deviceId, uint32_t maxChildrenIds, uint32_t* childrenIds);
uint32_t GetAncestorIdForType(uint32_t deviceId, VXT_NodeType ancestorType, uint32_t* ancestorId);
uint32_t GetNumDescendantIdsForType(uint32_t deviceId, VXT_NodeType descendantType, bool onlyEnabledDescendants,
                                    uint32_t* numDescendants);
uint32_t GetDescendantIdsForType(uint32_t deviceId, VXT_NodeType descendantType, bool onlyEnabledDescendants,
                                 uint32_t maxDescendantIds, uint32_t* descendantIds);
uint32_t GetNodeType(uint32_t deviceId, VXT_NodeType* nodeType);
uint32_t GetIdentifierForDeviceId(uint32_t deviceId, char* identifier);
uint32_t GetDeviceIdForIdentifier(uint32_t targetDomainId, const char* identifier, uint32_t* deviceId);
uint32_t GetDebugportIdForDevice(uint32_t deviceId, uint32_t* debugPortId);
uint32_t GetNumDeviceIdsInCoreGroup(uint32_t coreGroupId, VXT_NodeType nodeType, bool onlyEnabledDevices,
                                    uint32_t* numDevices);
uint32_t GetDeviceIdsInCoreGroup(uint32_t coreGroupId, VXT_NodeType nodeType, bool onlyEnabledDevices,
                                 uint32_t maxDeviceIds, uint32_t* deviceIds);
uint32_t GetCoreGroupIdForDevice(uint32_t deviceId, uint32_t* coreGroupId);

// Properties.
uint32_t GetNumDevicePropertyNames(uint32_t deviceId, uint32_t* propertyNameCount);
uint32_t GetDevicePropertyNames(uint32_t deviceId, uint32_t maxPropertyNames, VXT_PropertyName* propertyNames);
uint32_t GetDeviceProperty(uint32_t deviceId, const char* propertyName, char* propertyValue);
uint32_t GetDeviceProperties(uint32_t deviceId, uint32_t propertyNameCount, const VXT_PropertyName* propertyNames,
                             VXT_PropertyValue* propertyValues);

// Locks.
uint32_t Lock(uint32_t deviceId, uint32_t timeout, uint64_t* operationToken);
uint32_t LockMany(const uint32_t* deviceIds, uint32_t deviceIdCount, uint32_t timeout, uint64_t* operationToken);
uint32_t Unlock(uint64_t* operationToken);
uint32_t BreakLock(uint32_t deviceId, bool* brokeLock);
uint32_t GetLockingClient(uint32_t deviceId, char* clientIdentifier);
// A client's last registration is gone: its locks are released and its
// waiting requests end.
void ReleaseLocksOfDepartedClient(uint32_t clientId);

// Changes.
uint32_t UpdateTopology(uint32_t deviceId, int32_t phases);
// Probes, TAP controllers found, saved configurations and scenarios
// (ProbeOperations.cpp).
uint32_t GetProbeTypeCount(uint32_t* probeTypeCount);
uint32_t GetProbeTypes(uint32_t maxProbeTypeCount, char* probeTypes);
uint32_t GetConnectedProbeCount(uint32_t* probeCount);
uint32_t GetConnectedProbes(uint32_t maxProbeCount, TargetManager_Probe* probes);
uint32_t SelectProbe(TargetManager_Probe* probe, void* selection);
uint32_t InitializeProbe(uint32_t debugPortId);
uint32_t GetSupportedTapControllerCount(uint32_t* tapControllerCount);
uint32_t GetSupportedTapControllers(uint32_t maxTapControllerCount, TargetManager_TapController* tapControllers);
uint32_t GetDiscoveredTapControllerCount(uint32_t jtagChainId, uint32_t* tapControllerCount);
uint32_t GetDiscoveredTapControllers(uint32_t jtagChainId, uint32_t maxTapControllerCount,
                                     TargetManager_TapController* tapControllers);
uint32_t SpecifyTapControllers(uint32_t jtagChainId, uint32_t tapControllerCount,
                               const TargetManager_TapController* tapControllers);
uint32_t IsSavedConfigurationAvailable(uint32_t* savedConfigurationAvailable);
uint32_t SaveConfiguration();
uint32_t RestoreConfiguration();
uint32_t GetAvailableScenarioCount(uint32_t* scenarioCount);
uint32_t GetAvailableScenarios(uint32_t maxScenarioCount, char* scenarioNames);
uint32_t SelectScenario(const char* scenarioName);

// What a JTAG chain holds now: the TAP controllers last specified, else the
// described ones (TopologyChanges.cpp).
std::vector<target::TapControllerSpecification> TapControllersOnChain(const target::LiveTopology& live,
                                                                      const target::Node& chain);
uint32_t SpecifyTopology(uint32_t jtagChainId, uint32_t tapControllerCount,
                         const TargetManager_TapController* tapControllers);
// What SpecifyTopology and SpecifyTapControllers both do; `operation` names
// the call and its refusals.
uint32_t ReplaceTapControllers(const char* operation, uint32_t jtagChainId, uint32_t tapControllerCount,
                               const TargetManager_TapController* tapControllers);
uint32_t SetDeviceEnabled(uint32_t deviceId, bool enabled);
uint32_t IsDeviceEnabled(uint32_t deviceId, bool* enabled);

}  // namespace voxtrel::platform::target_manager
