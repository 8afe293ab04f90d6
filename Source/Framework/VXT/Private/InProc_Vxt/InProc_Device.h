// The Device service: the target's topology as the TargetManager holds it.
// The service keeps no state; it checks, traces and passes each operation
// to the component, assembles VXT_Device records, converts TAP controller
// records for the component, and turns 32-bit booleans into the
// component's 8-bit ones.
#pragma once

#include <cstdint>
#include <string>

#include "ArgumentErrorReporter.h"
#include "IInternalService_Device.h"
#include "SingletonService.h"
#include "TargetManager.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Device : public SingletonService<InProc_Device>, public IInternalService_Device {
 public:
  InProc_Device();
  static InProc_Device& Instance();

  VXT_Result GetNumTargetDomainDeviceIds(uint32_t* numTargetDomains) override;
  VXT_Result GetTargetDomainDeviceIds(uint32_t maxNumTargetDomains, uint32_t* targetDomainDeviceIds) override;
  VXT_Result GetNumDeviceIdsOfTypes(uint32_t targetDomainId, uint32_t numNodeTypes, const VXT_NodeType* nodeTypes,
                                    uint32_t* numDeviceIds) override;
  VXT_Result GetDeviceIdsOfTypes(uint32_t targetDomainId, uint32_t numNodeTypes, const VXT_NodeType* nodeTypes,
                                 uint32_t maxNumDeviceIds, uint32_t* deviceIds) override;
  VXT_Result GetParentIdForDevice(uint32_t deviceId, uint32_t* parentId) override;
  VXT_Result GetNumChildrenIds(uint32_t deviceId, uint32_t* numChildren) override;
  VXT_Result GetChildrenIds(uint32_t deviceId, uint32_t maxChildrenIds, uint32_t* childrenIds) override;
  VXT_Result GetAncestorIdForType(uint32_t deviceId, VXT_NodeType ancestorType, uint32_t* ancestorId) override;
  VXT_Result GetNumDescendantIdsForType(uint32_t deviceId, VXT_NodeType descendantType, uint32_t onlyEnabledDescendants,
                                        uint32_t* numDescendants) override;
  VXT_Result GetDescendantIdsForType(uint32_t deviceId, VXT_NodeType descendantType, uint32_t onlyEnabledDescendants,
                                     uint32_t maxDescendantIds, uint32_t* descendantIds) override;
  VXT_Result GetDevice(uint32_t deviceId, VXT_Device* device) override;
  VXT_Result GetNodeType(uint32_t deviceId, VXT_NodeType* nodeType) override;
  VXT_Result GetIdentifierForDeviceId(uint32_t deviceId, char* identifier) override;
  VXT_Result GetDeviceIdForIdentifier(uint32_t targetDomainId, const char* identifier, uint32_t* deviceId) override;
  VXT_Result GetDebugportIdForDevice(uint32_t deviceId, uint32_t* debugPortID) override;
  VXT_Result GetNumDevicePropertyNames(uint32_t deviceId, uint32_t* propertyNameCount) override;
  VXT_Result GetDevicePropertyNames(uint32_t deviceId, uint32_t maxPropertyNames,
                                    VXT_PropertyName* propertyNames) override;
  VXT_Result GetDeviceProperty(uint32_t deviceId, const char* propertyName, char* propertyValue) override;
  VXT_Result Lock(uint32_t deviceId, uint32_t timeout, uint64_t* operationToken) override;
  VXT_Result LockMany(const uint32_t* deviceIds, uint32_t deviceIdCount, uint32_t timeout,
                      uint64_t* operationToken) override;
  VXT_Result Unlock(uint64_t* operationToken) override;
  VXT_Result BreakLock(uint32_t deviceId, uint32_t* brokeLock) override;
  VXT_Result GetLockingClient(uint32_t deviceId, char* clientIdentifier) override;
  VXT_Result UpdateTopology(uint32_t deviceId, int32_t phases) override;
  VXT_Result GetNumDeviceIdsInCoreGroup(uint32_t coreGroupId, VXT_NodeType nodeType, uint32_t onlyEnabledDevices,
                                        uint32_t* numDevices) override;
  VXT_Result GetDeviceIdsInCoreGroup(uint32_t coreGroupId, VXT_NodeType nodeType, uint32_t onlyEnabledDevices,
                                     uint32_t maxDeviceIds, uint32_t* deviceIds) override;
  VXT_Result GetCoreGroupIdForDevice(uint32_t deviceId, uint32_t* coreGroupId) override;
  VXT_Result GetDeviceProperties(uint32_t deviceId, uint32_t propertyNameCount, const VXT_PropertyName* propertyNames,
                                 VXT_PropertyValue* propertyValues) override;
  VXT_Result SpecifyTopology(uint32_t jtagChainId, uint32_t tapControllerCount,
                             const VXT_TapController* tapControllers) override;
  VXT_Result SetDeviceEnabled(uint32_t deviceId, uint32_t enabled) override;
  VXT_Result IsDeviceEnabled(uint32_t deviceId, uint32_t* enabled) override;

  // The bodies of GetIdentifierForDeviceId and GetNodeType, for use inside
  // another operation's frame: a null out pointer goes to `report` as
  // "(identifier) : Null pointer"; a component failure is posted with an
  // empty text and returned.
  uint32_t _GetIdentifierForDeviceId(uint32_t deviceId, char* identifier, const ArgumentErrorReporter& report);
  uint32_t _GetNodeType(uint32_t deviceId, VXT_NodeType* nodeType, const ArgumentErrorReporter& report);

  // The device's identifier as GetIdentifierForDeviceId gives it, through
  // that operation's whole frame; empty when it fails. For other services'
  // telemetry.
  std::string IdentifierOf(uint32_t deviceId);

  frame::ServiceLogger logger;
  // Bound when the library is loaded.
  const TargetManagerComponent* targetManager = nullptr;
};

}  // namespace vxt
