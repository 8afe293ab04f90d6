// The Device service's walk of the topology: target domains, devices by
// type, parents, children, ancestors, descendants, debug ports and core
// groups.
#include "InProc_Device.h"

#include "BindTable.h"
#include "Error.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_Device instance;

using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex8;
using frame::List;
using frame::NoArgs;
using frame::NodeTypeName;
using frame::Out;
using frame::TraceArgs;
using NodeTypeText = Enum<&NodeTypeName>;
using Table = TargetManagerComponent;

// Two queries tell the Error library of their success with a post of code 0.
uint32_t PostSuccess(const Call& call, uint32_t code) {
  if (code == code::kSuccess) Voxtrel_ErrorPostError(code::kSuccess, "", call.site().file, call.site().line);
  return code;
}

}  // namespace

InProc_Device::InProc_Device() {
  // The component is there from load on; an operation finds a null table
  // when the getter failed.
  BindTable(&Voxtrel_GetTargetManager, targetManager);
}

InProc_Device& InProc_Device::Instance() { return instance; }

VXT_Result InProc_Device::GetNumTargetDomainDeviceIds(uint32_t* numTargetDomains) {
  return RunOperation(
      logger, VXT_OPERATION(Device, GetNumTargetDomainDeviceIds), NoArgs{},
      TraceArgs("numTargetDomains", Out<Dec>(numTargetDomains)), [&](Call& call) {
        return call.NotNull(numTargetDomains, "numTargetDomains").Core(targetManager, [&](const Table& t) {
          return t.GetNumTargetDomainDeviceIds(numTargetDomains);
        });
      });
}

VXT_Result InProc_Device::GetTargetDomainDeviceIds(uint32_t maxNumTargetDomains, uint32_t* targetDomainDeviceIds) {
  return RunOperation(
      logger, VXT_OPERATION(Device, GetTargetDomainDeviceIds),
      TraceArgs("maxNumTargetDomains", Dec{maxNumTargetDomains}),
      TraceArgs("targetDomainDeviceIds", List<Hex8>(targetDomainDeviceIds, maxNumTargetDomains)), [&](Call& call) {
        return call.NotNull(targetDomainDeviceIds, "targetDomainDeviceIds").Core(targetManager, [&](const Table& t) {
          return t.GetTargetDomainDeviceIds(maxNumTargetDomains, targetDomainDeviceIds);
        });
      });
}

VXT_Result InProc_Device::GetNumDeviceIdsOfTypes(uint32_t targetDomainId, uint32_t numNodeTypes,
                                                 const VXT_NodeType* nodeTypes, uint32_t* numDeviceIds) {
  return RunOperation(logger, VXT_OPERATION(Device, GetNumDeviceIdsOfTypes),
                      TraceArgs("targetDomainId", Hex8{targetDomainId}, "numNodeTypes", Dec{numNodeTypes}, "nodeTypes",
                                List<NodeTypeText>(nodeTypes, numNodeTypes)),
                      TraceArgs("numDeviceIds", Out<Dec>(numDeviceIds)), [&](Call& call) {
                        return call.NotNull(numDeviceIds, "numDeviceIds").Core(targetManager, [&](const Table& t) {
                          return t.GetNumDeviceIdsOfTypes(targetDomainId, numNodeTypes, nodeTypes, numDeviceIds);
                        });
                      });
}

VXT_Result InProc_Device::GetDeviceIdsOfTypes(uint32_t targetDomainId, uint32_t numNodeTypes,
                                              const VXT_NodeType* nodeTypes, uint32_t maxNumDeviceIds,
                                              uint32_t* deviceIds) {
  return RunOperation(logger, VXT_OPERATION(Device, GetDeviceIdsOfTypes),
                      TraceArgs("targetDomainId", Hex8{targetDomainId}, "numNodeTypes", Dec{numNodeTypes}, "nodeTypes",
                                List<NodeTypeText>(nodeTypes, numNodeTypes), "maxNumDeviceIds", Dec{maxNumDeviceIds}),
                      TraceArgs("deviceIds", List<Hex8>(deviceIds, maxNumDeviceIds)), [&](Call& call) {
                        return call.NotNull(deviceIds, "deviceIds").Core(targetManager, [&](const Table& t) {
                          return t.GetDeviceIdsOfTypes(targetDomainId, numNodeTypes, nodeTypes, maxNumDeviceIds,
                                                       deviceIds);
                        });
                      });
}

VXT_Result InProc_Device::GetParentIdForDevice(uint32_t deviceId, uint32_t* parentId) {
  return RunOperation(logger, VXT_OPERATION(Device, GetParentIdForDevice), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("parentId", Out<Hex8>(parentId)), [&](Call& call) {
                        return call.NotNull(parentId, "parentId").Core(targetManager, [&](const Table& t) {
                          return t.GetParentIdForDevice(deviceId, parentId);
                        });
                      });
}

VXT_Result InProc_Device::GetNumChildrenIds(uint32_t deviceId, uint32_t* numChildren) {
  return RunOperation(logger, VXT_OPERATION(Device, GetNumChildrenIds), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("numChildren", Out<Dec>(numChildren)), [&](Call& call) {
                        return call.NotNull(numChildren, "numChildren").Core(targetManager, [&](const Table& t) {
                          return t.GetNumChildrenIds(deviceId, numChildren);
                        });
                      });
}

VXT_Result InProc_Device::GetChildrenIds(uint32_t deviceId, uint32_t maxChildrenIds, uint32_t* childrenIds) {
  return RunOperation(logger, VXT_OPERATION(Device, GetChildrenIds),
                      TraceArgs("deviceId", Hex8{deviceId}, "maxChildrenIds", Dec{maxChildrenIds}),
                      TraceArgs("childrenIds", List<Hex8>(childrenIds, maxChildrenIds)), [&](Call& call) {
                        return call.NotNull(childrenIds, "childrenIds").Core(targetManager, [&](const Table& t) {
                          return t.GetChildrenIds(deviceId, maxChildrenIds, childrenIds);
                        });
                      });
}

VXT_Result InProc_Device::GetAncestorIdForType(uint32_t deviceId, VXT_NodeType ancestorType, uint32_t* ancestorId) {
  return RunOperation(logger, VXT_OPERATION(Device, GetAncestorIdForType),
                      TraceArgs("deviceId", Hex8{deviceId}, "ancestorType", NodeTypeText{ancestorType}),
                      TraceArgs("ancestorId", Out<Hex8>(ancestorId)), [&](Call& call) {
                        return call.NotNull(ancestorId, "ancestorId").Core(targetManager, [&](const Table& t) {
                          return PostSuccess(call, t.GetAncestorIdForType(deviceId, ancestorType, ancestorId));
                        });
                      });
}

VXT_Result InProc_Device::GetNumDescendantIdsForType(uint32_t deviceId, VXT_NodeType descendantType,
                                                     uint32_t onlyEnabledDescendants, uint32_t* numDescendants) {
  return RunOperation(logger, VXT_OPERATION(Device, GetNumDescendantIdsForType),
                      TraceArgs("deviceId", Hex8{deviceId}, "descendantType", NodeTypeText{descendantType},
                                "onlyEnabledDescendants", Bool{onlyEnabledDescendants}),
                      TraceArgs("numDescendants", Out<Dec>(numDescendants)), [&](Call& call) {
                        return call.NotNull(numDescendants, "numDescendants").Core(targetManager, [&](const Table& t) {
                          return PostSuccess(
                              call, t.GetNumDescendantIdsForType(deviceId, descendantType, onlyEnabledDescendants != 0,
                                                                 numDescendants));
                        });
                      });
}

VXT_Result InProc_Device::GetDescendantIdsForType(uint32_t deviceId, VXT_NodeType descendantType,
                                                  uint32_t onlyEnabledDescendants, uint32_t maxDescendantIds,
                                                  uint32_t* descendantIds) {
  return RunOperation(
      logger, VXT_OPERATION(Device, GetDescendantIdsForType),
      TraceArgs("deviceId", Hex8{deviceId}, "descendantType", NodeTypeText{descendantType}, "onlyEnabledDescendants",
                Bool{onlyEnabledDescendants}, "maxDescendantIds", Dec{maxDescendantIds}),
      TraceArgs("descendantIds", List<Hex8>(descendantIds, maxDescendantIds)), [&](Call& call) {
        return call.NotNull(descendantIds, "descendantIds").Core(targetManager, [&](const Table& t) {
          return t.GetDescendantIdsForType(deviceId, descendantType, onlyEnabledDescendants != 0, maxDescendantIds,
                                           descendantIds);
        });
      });
}

VXT_Result InProc_Device::GetDebugportIdForDevice(uint32_t deviceId, uint32_t* debugPortID) {
  return RunOperation(logger, VXT_OPERATION(Device, GetDebugportIdForDevice), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("debugPortID", Out<Hex8>(debugPortID)), [&](Call& call) {
                        return call.NotNull(debugPortID, "debugPortID").Core(targetManager, [&](const Table& t) {
                          return t.GetDebugportIdForDevice(deviceId, debugPortID);
                        });
                      });
}

// Core groups take only the value 1 for true: another value reaches the
// component as false, though the In line shows it as "True".
VXT_Result InProc_Device::GetNumDeviceIdsInCoreGroup(uint32_t coreGroupId, VXT_NodeType nodeType,
                                                     uint32_t onlyEnabledDevices, uint32_t* numDevices) {
  return RunOperation(logger, VXT_OPERATION(Device, GetNumDeviceIdsInCoreGroup),
                      TraceArgs("coreGroupId", Hex8{coreGroupId}, "nodeType", NodeTypeText{nodeType},
                                "onlyEnabledDevices", Bool{onlyEnabledDevices}),
                      TraceArgs("numDeviceIds", Out<Dec>(numDevices)), [&](Call& call) {
                        return call.NotNull(numDevices, "numDevices").Core(targetManager, [&](const Table& t) {
                          return t.GetNumDeviceIdsInCoreGroup(coreGroupId, nodeType, onlyEnabledDevices == 1,
                                                              numDevices);
                        });
                      });
}

VXT_Result InProc_Device::GetDeviceIdsInCoreGroup(uint32_t coreGroupId, VXT_NodeType nodeType,
                                                  uint32_t onlyEnabledDevices, uint32_t maxDeviceIds,
                                                  uint32_t* deviceIds) {
  return RunOperation(logger, VXT_OPERATION(Device, GetDeviceIdsInCoreGroup),
                      TraceArgs("coreGroupId", Hex8{coreGroupId}, "nodeType", NodeTypeText{nodeType},
                                "onlyEnabledDevices", Bool{onlyEnabledDevices}, "maxDeviceIds", Dec{maxDeviceIds}),
                      TraceArgs("deviceIds", List<Hex8>(deviceIds, maxDeviceIds)), [&](Call& call) {
                        return call.NotNull(deviceIds, "deviceIds").Core(targetManager, [&](const Table& t) {
                          return t.GetDeviceIdsInCoreGroup(coreGroupId, nodeType, onlyEnabledDevices == 1, maxDeviceIds,
                                                           deviceIds);
                        });
                      });
}

VXT_Result InProc_Device::GetCoreGroupIdForDevice(uint32_t deviceId, uint32_t* coreGroupId) {
  return RunOperation(logger, VXT_OPERATION(Device, GetCoreGroupIdForDevice), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("coreGroupId", Out<Hex8>(coreGroupId)), [&](Call& call) {
                        return call.NotNull(coreGroupId, "coreGroupId").Core(targetManager, [&](const Table& t) {
                          return t.GetCoreGroupIdForDevice(deviceId, coreGroupId);
                        });
                      });
}

}  // namespace vxt
