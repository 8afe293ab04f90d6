// Queries over the topology's tree: target domains, devices by type,
// parents, children, ancestors, descendants, identifiers, debug ports and
// core groups.
#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "Support/ComponentCall.h"
#include "Target/CallArguments.h"
#include "TargetManager/DeviceQueries.h"
#include "TargetManager/ListAnswers.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::target_manager {

using target::LiveTopology;
using target::Node;
using target::NodeType;
using target::Topology;

namespace {

// `top` and every device beneath it, parents before children, in the order
// of the description.
template <class Visit>
void ForEachInSubtree(const Topology& layout, const Node& top, Visit&& visit) {
  std::vector<const Node*> pending{&top};
  while (!pending.empty()) {
    const Node* node = pending.back();
    pending.pop_back();
    visit(*node);
    for (auto child = node->childIds.rbegin(); child != node->childIds.rend(); ++child)
      if (const Node* found = layout.Find(*child)) pending.push_back(found);
  }
}

// A target domain, or the root standing for all of them.
const Node* DomainOrRoot(Request& request, uint32_t targetDomainId) {
  const Node* domain = request.Device(targetDomainId);
  if (domain == nullptr || domain->type == NodeType::TargetDomain || domain->type == NodeType::LogicalRoot)
    return domain;
  request.Refuse(kWrongDeviceType, " needs a TargetDomain or the LogicalRoot, and device " + DeviceName(*domain) +
                                       " is a " + std::string(target::NodeTypeName(domain->type)));
  return nullptr;
}

// The devices of a domain (itself included) whose type is listed.
std::vector<uint32_t> IdsOfTypes(Request& request, uint32_t targetDomainId, uint32_t numNodeTypes,
                                 const VXT_NodeType* nodeTypes) {
  std::vector<uint32_t> ids;
  if (numNodeTypes > 0) request.NotNull(nodeTypes, "nodeTypes");
  const Node* domain = DomainOrRoot(request, targetDomainId);
  if (domain == nullptr) return ids;
  const std::span<const VXT_NodeType> types(nodeTypes, numNodeTypes);
  ForEachInSubtree(request.Topology()->Layout(), *domain, [&](const Node& node) {
    if (std::find(types.begin(), types.end(), static_cast<VXT_NodeType>(node.type)) != types.end())
      ids.push_back(node.id);
  });
  return ids;
}

std::vector<uint32_t> TargetDomainIds(const LiveTopology& live) { return live.Layout().TargetDomainIds(); }

std::vector<uint32_t> ChildIds(Request& request, uint32_t deviceId) {
  const Node* device = request.Device(deviceId);
  return device ? device->childIds : std::vector<uint32_t>{};
}

std::vector<uint32_t> DescendantIds(Request& request, uint32_t deviceId, VXT_NodeType type, bool onlyEnabled) {
  std::vector<uint32_t> ids;
  const Node* device = request.Device(deviceId);
  if (device == nullptr) return ids;
  const LiveTopology& live = *request.Topology();
  ForEachInSubtree(live.Layout(), *device, [&](const Node& node) {
    if (node.id != device->id && static_cast<VXT_NodeType>(node.type) == type &&
        (!onlyEnabled || live.IsEffectivelyEnabled(node.id)))
      ids.push_back(node.id);
  });
  return ids;
}

// The group's cores, or the threads of its cores.
std::vector<uint32_t> CoreGroupMembers(Request& request, uint32_t coreGroupId, VXT_NodeType type, bool onlyEnabled) {
  std::vector<uint32_t> ids;
  const Node* group = request.Device(coreGroupId);
  if (group == nullptr) return ids;
  const auto* details = group->As<target::CoreGroupDetails>();
  if (details == nullptr) {
    request.Refuse(kCoreGroupNotFound, ": device " + DeviceName(*group) + " is no core group");
    return ids;
  }
  const LiveTopology& live = *request.Topology();
  const auto take = [&](uint32_t id) {
    if (!onlyEnabled || live.IsEffectivelyEnabled(id)) ids.push_back(id);
  };
  for (uint32_t coreId : details->coreIds) {
    if (type == VXT_NodeType_LogicalCore) take(coreId);
    if (type != VXT_NodeType_LogicalThread) continue;
    if (const Node* core = live.Layout().Find(coreId))
      for (uint32_t childId : core->childIds)
        if (const Node* child = live.Layout().Find(childId); child && child->type == NodeType::LogicalThread)
          take(childId);
  }
  return ids;
}

}  // namespace

uint32_t GetNumTargetDomainDeviceIds(uint32_t* numTargetDomains) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetNumTargetDomainDeviceIds");
  Request request("TargetManager.GetNumTargetDomainDeviceIds");
  return AnswerCount(request, numTargetDomains, "numTargetDomains",
                     [&] { return InTopology(request, TargetDomainIds); });
}

uint32_t GetTargetDomainDeviceIds(uint32_t maxNumTargetDomains, uint32_t* targetDomainDeviceIds) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetTargetDomainDeviceIds", "maxNumTargetDomains=", maxNumTargetDomains);
  Request request("TargetManager.GetTargetDomainDeviceIds");
  return AnswerFill(request, targetDomainDeviceIds, "targetDomainDeviceIds", IdEntries{maxNumTargetDomains},
                    [&] { return InTopology(request, TargetDomainIds); });
}

uint32_t GetNumDeviceIdsOfTypes(uint32_t targetDomainId, uint32_t numNodeTypes, const VXT_NodeType* nodeTypes,
                                uint32_t* numDeviceIds) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetNumDeviceIdsOfTypes", "targetDomainId=", HexId(targetDomainId),
                         ", numNodeTypes=", numNodeTypes);
  Request request("TargetManager.GetNumDeviceIdsOfTypes");
  return AnswerCount(request, numDeviceIds, "numDeviceIds",
                     [&] { return IdsOfTypes(request, targetDomainId, numNodeTypes, nodeTypes); });
}

uint32_t GetDeviceIdsOfTypes(uint32_t targetDomainId, uint32_t numNodeTypes, const VXT_NodeType* nodeTypes,
                             uint32_t maxNumDeviceIds, uint32_t* deviceIds) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetDeviceIdsOfTypes", "targetDomainId=", HexId(targetDomainId),
                         ", numNodeTypes=", numNodeTypes, ", maxNumDeviceIds=", maxNumDeviceIds);
  Request request("TargetManager.GetDeviceIdsOfTypes");
  return AnswerFill(request, deviceIds, "deviceIds", IdEntries{maxNumDeviceIds},
                    [&] { return IdsOfTypes(request, targetDomainId, numNodeTypes, nodeTypes); });
}

uint32_t GetParentIdForDevice(uint32_t deviceId, uint32_t* parentId) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetParentIdForDevice", "deviceId=", HexId(deviceId));
  Request request("TargetManager.GetParentIdForDevice");
  const Node* device = request.NotNull(parentId, "parentId").Device(deviceId);
  if (device == nullptr) return request.code();
  *parentId = device->parentId;
  return 0;
}

uint32_t GetNumChildrenIds(uint32_t deviceId, uint32_t* numChildren) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetNumChildrenIds", "deviceId=", HexId(deviceId));
  Request request("TargetManager.GetNumChildrenIds");
  return AnswerCount(request, numChildren, "numChildren", [&] { return ChildIds(request, deviceId); });
}

uint32_t GetChildrenIds(uint32_t deviceId, uint32_t maxChildrenIds, uint32_t* childrenIds) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetChildrenIds", "deviceId=", HexId(deviceId),
                         ", maxChildrenIds=", maxChildrenIds);
  Request request("TargetManager.GetChildrenIds");
  return AnswerFill(request, childrenIds, "childrenIds", IdEntries{maxChildrenIds},
                    [&] { return ChildIds(request, deviceId); });
}

uint32_t GetAncestorIdForType(uint32_t deviceId, VXT_NodeType ancestorType, uint32_t* ancestorId) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetAncestorIdForType", "deviceId=", HexId(deviceId),
                         ", ancestorType=", NodeTypeText(ancestorType));
  Request request("TargetManager.GetAncestorIdForType");
  const Node* device = request.NotNull(ancestorId, "ancestorId").Device(deviceId);
  if (device == nullptr) return request.code();
  const Topology& layout = request.Topology()->Layout();
  for (const Node* above = layout.Find(device->parentId); above != nullptr; above = layout.Find(above->parentId)) {
    if (static_cast<VXT_NodeType>(above->type) == ancestorType) {
      *ancestorId = above->id;
      return 0;
    }
  }
  return request.Refuse(kDeviceNotFound,
                        ": device " + DeviceName(*device) + " has no ancestor of type " + NodeTypeText(ancestorType));
}

uint32_t GetNumDescendantIdsForType(uint32_t deviceId, VXT_NodeType descendantType, bool onlyEnabledDescendants,
                                    uint32_t* numDescendants) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetNumDescendantIdsForType", "deviceId=", HexId(deviceId),
                         ", descendantType=", NodeTypeText(descendantType),
                         ", onlyEnabledDescendants=", onlyEnabledDescendants);
  Request request("TargetManager.GetNumDescendantIdsForType");
  return AnswerCount(request, numDescendants, "numDescendants",
                     [&] { return DescendantIds(request, deviceId, descendantType, onlyEnabledDescendants); });
}

uint32_t GetDescendantIdsForType(uint32_t deviceId, VXT_NodeType descendantType, bool onlyEnabledDescendants,
                                 uint32_t maxDescendantIds, uint32_t* descendantIds) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetDescendantIdsForType", "deviceId=", HexId(deviceId),
                         ", descendantType=", NodeTypeText(descendantType),
                         ", onlyEnabledDescendants=", onlyEnabledDescendants, ", maxDescendantIds=", maxDescendantIds);
  Request request("TargetManager.GetDescendantIdsForType");
  return AnswerFill(request, descendantIds, "descendantIds", IdEntries{maxDescendantIds},
                    [&] { return DescendantIds(request, deviceId, descendantType, onlyEnabledDescendants); });
}

uint32_t GetNodeType(uint32_t deviceId, VXT_NodeType* nodeType) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetNodeType", "deviceId=", HexId(deviceId));
  Request request("TargetManager.GetNodeType");
  const Node* device = request.NotNull(nodeType, "nodeType").Device(deviceId);
  if (device == nullptr) return request.code();
  *nodeType = static_cast<VXT_NodeType>(device->type);
  return 0;
}

uint32_t GetIdentifierForDeviceId(uint32_t deviceId, char* identifier) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetIdentifierForDeviceId", "deviceId=", HexId(deviceId));
  Request request("TargetManager.GetIdentifierForDeviceId");
  const Node* device = request.NotNull(identifier, "identifier").Device(deviceId);
  if (device == nullptr) return request.code();
  CopyText(device->identifier, identifier, VXT_DEVICE_IDENTIFIER_SIZE);
  return 0;
}

uint32_t GetDeviceIdForIdentifier(uint32_t targetDomainId, const char* identifier, uint32_t* deviceId) {
  // An identifier has at most 63 characters: reading further cannot find one.
  const std::string_view wanted =
      identifier ? std::string_view(identifier, strnlen(identifier, VXT_DEVICE_IDENTIFIER_SIZE)) : std::string_view();
  VOXTREL_COMPONENT_CALL("TargetManager.GetDeviceIdForIdentifier", "targetDomainId=", HexId(targetDomainId),
                         ", identifier=", identifier ? target::QuotedArgument(wanted) : "<NULL>");
  Request request("TargetManager.GetDeviceIdForIdentifier");
  const Node* domain =
      DomainOrRoot(request.NotNull(identifier, "identifier").NotNull(deviceId, "deviceId"), targetDomainId);
  if (domain == nullptr) return request.code();
  const Topology& layout = request.Topology()->Layout();
  const Node* found = nullptr;
  if (domain->type == NodeType::LogicalRoot) {
    if (wanted == domain->identifier) found = domain;
    for (uint32_t domainId : domain->childIds)
      if (const Node* child = layout.Find(domainId); child && child->identifier == wanted) found = child;
  } else {
    found = layout.FindByIdentifier(domain->id, wanted);
  }
  if (found == nullptr)
    return request.Refuse(kDeviceNotFound,
                          " finds no device '" + std::string(wanted) + "' in " +
                              (domain->type == NodeType::LogicalRoot ? "the root " : "target domain ") +
                              DeviceName(*domain));
  *deviceId = found->id;
  return 0;
}

uint32_t GetDebugportIdForDevice(uint32_t deviceId, uint32_t* debugPortId) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetDebugportIdForDevice", "deviceId=", HexId(deviceId));
  Request request("TargetManager.GetDebugportIdForDevice");
  const Node* device = request.NotNull(debugPortId, "debugPortId").Device(deviceId);
  if (device == nullptr) return request.code();
  if (device->debugPortId == 0)
    return request.Refuse(kDeviceNotFound, ": device " + DeviceName(*device) + " is reached through no debug port");
  *debugPortId = device->debugPortId;
  return 0;
}

uint32_t GetNumDeviceIdsInCoreGroup(uint32_t coreGroupId, VXT_NodeType nodeType, bool onlyEnabledDevices,
                                    uint32_t* numDevices) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetNumDeviceIdsInCoreGroup", "coreGroupId=", HexId(coreGroupId),
                         ", nodeType=", NodeTypeText(nodeType), ", onlyEnabledDevices=", onlyEnabledDevices);
  Request request("TargetManager.GetNumDeviceIdsInCoreGroup");
  return AnswerCount(request, numDevices, "numDevices",
                     [&] { return CoreGroupMembers(request, coreGroupId, nodeType, onlyEnabledDevices); });
}

uint32_t GetDeviceIdsInCoreGroup(uint32_t coreGroupId, VXT_NodeType nodeType, bool onlyEnabledDevices,
                                 uint32_t maxDeviceIds, uint32_t* deviceIds) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetDeviceIdsInCoreGroup", "coreGroupId=", HexId(coreGroupId),
                         ", nodeType=", NodeTypeText(nodeType), ", onlyEnabledDevices=", onlyEnabledDevices,
                         ", maxDeviceIds=", maxDeviceIds);
  Request request("TargetManager.GetDeviceIdsInCoreGroup");
  return AnswerFill(request, deviceIds, "deviceIds", IdEntries{maxDeviceIds},
                    [&] { return CoreGroupMembers(request, coreGroupId, nodeType, onlyEnabledDevices); });
}

uint32_t GetCoreGroupIdForDevice(uint32_t deviceId, uint32_t* coreGroupId) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetCoreGroupIdForDevice", "deviceId=", HexId(deviceId));
  Request request("TargetManager.GetCoreGroupIdForDevice");
  const Node* device = request.NotNull(coreGroupId, "coreGroupId").Device(deviceId);
  if (device == nullptr) return request.code();
  const uint32_t group = device->type == NodeType::LogicalGroupCore ? device->id : device->coreGroupId;
  if (group == 0) return request.Refuse(kCoreGroupNotFound, ": device " + DeviceName(*device) + " is in no core group");
  *coreGroupId = group;
  return 0;
}

}  // namespace voxtrel::platform::target_manager
