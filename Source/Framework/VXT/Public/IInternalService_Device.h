// Service 4: the target's topology. The tree of devices from the root down
// (target domains, packages, cores, threads, debug ports, JTAG chains, TAP
// controllers ...), each with its 32-bit id, node type, text identifier and
// named properties; core groups; enabled flags; the locks that keep two
// clients from driving one device at once; and the rebuilding of parts of
// the topology.
//
// Count and fill pairs (GetNum<Things> / Get<Things>) work together: ask
// the count, size the array, and pass the count as the maximum. Identifiers
// and property names are VXT_DEVICE_IDENTIFIER_SIZE / VXT_PROPERTY_NAME_SIZE
// buffers, property values VXT_PROPERTY_VALUE_SIZE buffers.
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Topology.h"

class IInternalService_Device {
 public:
  virtual ~IInternalService_Device() = default;

  virtual VXT_Result GetNumTargetDomainDeviceIds(uint32_t* numTargetDomains) = 0;
  virtual VXT_Result GetTargetDomainDeviceIds(uint32_t maxNumTargetDomains, uint32_t* targetDomainDeviceIds) = 0;
  // Devices of a target domain (the root's id: of every domain) whose type
  // is one of `nodeTypes`.
  virtual VXT_Result GetNumDeviceIdsOfTypes(uint32_t targetDomainId, uint32_t numNodeTypes,
                                            const VXT_NodeType* nodeTypes, uint32_t* numDeviceIds) = 0;
  virtual VXT_Result GetDeviceIdsOfTypes(uint32_t targetDomainId, uint32_t numNodeTypes, const VXT_NodeType* nodeTypes,
                                         uint32_t maxNumDeviceIds, uint32_t* deviceIds) = 0;
  virtual VXT_Result GetParentIdForDevice(uint32_t deviceId, uint32_t* parentId) = 0;
  virtual VXT_Result GetNumChildrenIds(uint32_t deviceId, uint32_t* numChildren) = 0;
  virtual VXT_Result GetChildrenIds(uint32_t deviceId, uint32_t maxChildrenIds, uint32_t* childrenIds) = 0;
  virtual VXT_Result GetAncestorIdForType(uint32_t deviceId, VXT_NodeType ancestorType, uint32_t* ancestorId) = 0;
  // Any non-zero onlyEnabledDescendants counts as true.
  virtual VXT_Result GetNumDescendantIdsForType(uint32_t deviceId, VXT_NodeType descendantType,
                                                uint32_t onlyEnabledDescendants, uint32_t* numDescendants) = 0;
  virtual VXT_Result GetDescendantIdsForType(uint32_t deviceId, VXT_NodeType descendantType,
                                             uint32_t onlyEnabledDescendants, uint32_t maxDescendantIds,
                                             uint32_t* descendantIds) = 0;
  // `device->structureSize` must be VXT_DEVICE_SIZE. The record is written
  // only when the whole device could be read.
  virtual VXT_Result GetDevice(uint32_t deviceId, VXT_Device* device) = 0;
  virtual VXT_Result GetNodeType(uint32_t deviceId, VXT_NodeType* nodeType) = 0;
  virtual VXT_Result GetIdentifierForDeviceId(uint32_t deviceId, char* identifier) = 0;
  virtual VXT_Result GetDeviceIdForIdentifier(uint32_t targetDomainId, const char* identifier, uint32_t* deviceId) = 0;
  virtual VXT_Result GetDebugportIdForDevice(uint32_t deviceId, uint32_t* debugPortID) = 0;
  virtual VXT_Result GetNumDevicePropertyNames(uint32_t deviceId, uint32_t* propertyNameCount) = 0;
  virtual VXT_Result GetDevicePropertyNames(uint32_t deviceId, uint32_t maxPropertyNames,
                                            VXT_PropertyName* propertyNames) = 0;
  virtual VXT_Result GetDeviceProperty(uint32_t deviceId, const char* propertyName, char* propertyValue) = 0;

  // Locks are held by the calling client. The outcome of Lock and LockMany
  // comes through the operation token (OperationReceipt service): taken,
  // timed out after `timeout` milliseconds (VXT_INFINITE_TIMEOUT: never), or
  // canceled. LockMany takes all of its devices or none.
  virtual VXT_Result Lock(uint32_t deviceId, uint32_t timeout, uint64_t* operationToken) = 0;
  virtual VXT_Result LockMany(const uint32_t* deviceIds, uint32_t deviceIdCount, uint32_t timeout,
                              uint64_t* operationToken) = 0;
  // Releases every device the calling client holds.
  virtual VXT_Result Unlock(uint64_t* operationToken) = 0;
  // Releases the device whoever holds it; `brokeLock` (may be null) says
  // whether anyone did.
  virtual VXT_Result BreakLock(uint32_t deviceId, uint32_t* brokeLock) = 0;
  // The holder's client identifier, in VXT_CLIENT_TEXT_SIZE characters;
  // empty when the device is not locked.
  virtual VXT_Result GetLockingClient(uint32_t deviceId, char* clientIdentifier) = 0;
  // Refreshes the device and what lies beneath it; `phases` is a set of
  // bits: 0x1 the enabled flags as described, 0x2 the TAP controllers as
  // described; 0 means both.
  virtual VXT_Result UpdateTopology(uint32_t deviceId, int32_t phases) = 0;

  // Only onlyEnabledDevices == 1 counts as true.
  virtual VXT_Result GetNumDeviceIdsInCoreGroup(uint32_t coreGroupId, VXT_NodeType nodeType,
                                                uint32_t onlyEnabledDevices, uint32_t* numDevices) = 0;
  virtual VXT_Result GetDeviceIdsInCoreGroup(uint32_t coreGroupId, VXT_NodeType nodeType, uint32_t onlyEnabledDevices,
                                             uint32_t maxDeviceIds, uint32_t* deviceIds) = 0;
  virtual VXT_Result GetCoreGroupIdForDevice(uint32_t deviceId, uint32_t* coreGroupId) = 0;
  // A value for each of the `propertyNameCount` names.
  virtual VXT_Result GetDeviceProperties(uint32_t deviceId, uint32_t propertyNameCount,
                                         const VXT_PropertyName* propertyNames, VXT_PropertyValue* propertyValues) = 0;
  // Declares the TAP controllers of a JTAG chain, from TDI to TDO.
  virtual VXT_Result SpecifyTopology(uint32_t jtagChainId, uint32_t tapControllerCount,
                                     const VXT_TapController* tapControllers) = 0;
  // Any non-zero `enabled` counts as true.
  virtual VXT_Result SetDeviceEnabled(uint32_t deviceId, uint32_t enabled) = 0;
  // A device is enabled when it and every device above it are.
  virtual VXT_Result IsDeviceEnabled(uint32_t deviceId, uint32_t* enabled) = 0;
};
