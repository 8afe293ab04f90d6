// The TargetManager's operations over the topology: queries, properties,
// locks and changes. Each is an entry of the component's table.
#pragma once

#include <cstdint>

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
uint32_t SpecifyTopology(uint32_t jtagChainId, uint32_t tapControllerCount,
                         const TargetManager_TapController* tapControllers);
uint32_t SetDeviceEnabled(uint32_t deviceId, bool enabled);
uint32_t IsDeviceEnabled(uint32_t deviceId, bool* enabled);

}  // namespace voxtrel::platform::target_manager
