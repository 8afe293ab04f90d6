// Changes of the live topology: enabled flags, TAP controllers declared on
// a JTAG chain, and the update that brings a part of the topology back to
// its description. The two changes of the topology's make-up are told to
// the EventBroker's subscribers as "Reconfiguration" "Started" and
// "Completed", on the calling thread.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "Events/ReconfigurationEvent.h"
#include "Support/ComponentCall.h"
#include "TargetManager/DeviceQueries.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::target_manager {

using target::LiveTopology;
using target::Node;
using target::NodeType;
using target::TapControllerDetails;
using target::TapControllerSpecification;

namespace {

constexpr uint32_t kMinIrLength = 2;
constexpr uint32_t kMaxIrLength = 64;

// A component text field, read no further than its buffer.
std::string FieldText(const char (&field)[VXT_TAP_CONTROLLER_TEXT_SIZE]) {
  return std::string(field, strnlen(field, VXT_TAP_CONTROLLER_TEXT_SIZE - 1));
}

// The chain's TAP controllers as the description gives them.
std::vector<const Node*> DescribedTapControllers(const LiveTopology& live, const Node& chain) {
  std::vector<const Node*> taps;
  for (uint32_t childId : chain.childIds)
    if (const Node* child = live.Layout().Find(childId); child && child->As<TapControllerDetails>())
      taps.push_back(child);
  return taps;
}

TapControllerSpecification SpecificationOf(const Node& tap) {
  const auto& details = *tap.As<TapControllerDetails>();
  return {details.deviceType, details.deviceSubType, details.stepping, details.irLength};
}

// What the chain holds now: the last declaration, else the description.
std::vector<TapControllerSpecification> CurrentTapControllers(const LiveTopology& live, const Node& chain) {
  if (auto specified = live.SpecifiedTapControllers(chain.id)) return *specified;
  std::vector<TapControllerSpecification> described;
  for (const Node* tap : DescribedTapControllers(live, chain)) described.push_back(SpecificationOf(*tap));
  return described;
}

// Sets a device's own flag; true when it changed.
bool SetFlag(LiveTopology& live, uint32_t deviceId, bool enabled) {
  const bool before = live.IsEnabled(deviceId).value_or(enabled);
  live.SetEnabled(deviceId, enabled);
  return before != enabled;
}

// A described TAP controller is present when the declaration has one like it
// at its place; a present one is as the description enables it.
bool ApplyTapControllers(LiveTopology& live, const Node& chain,
                         const std::vector<TapControllerSpecification>* declared) {
  bool changed = false;
  const std::vector<const Node*> taps = DescribedTapControllers(live, chain);
  for (size_t place = 0; place < taps.size(); ++place) {
    const bool present =
        declared == nullptr || (place < declared->size() && (*declared)[place] == SpecificationOf(*taps[place]));
    changed |= SetFlag(live, taps[place]->id, present && taps[place]->enabled);
  }
  return changed;
}

template <class Visit>
void ForEachInSubtree(const LiveTopology& live, const Node& top, Visit&& visit) {
  std::vector<const Node*> pending{&top};
  while (!pending.empty()) {
    const Node* node = pending.back();
    pending.pop_back();
    visit(*node);
    for (uint32_t childId : node->childIds)
      if (const Node* child = live.Layout().Find(childId)) pending.push_back(child);
  }
}

void PublishStarted() { events::PublishReconfigurationEvent("Started", false); }
void PublishCompleted(bool devicesHaveChanged) { events::PublishReconfigurationEvent("Completed", devicesHaveChanged); }

}  // namespace

std::vector<TapControllerSpecification> TapControllersOnChain(const LiveTopology& live, const Node& chain) {
  return CurrentTapControllers(live, chain);
}

uint32_t SetDeviceEnabled(uint32_t deviceId, bool enabled) {
  VOXTREL_COMPONENT_CALL("TargetManager.SetDeviceEnabled", "deviceId=", HexId(deviceId), ", enabled=", enabled);
  Request request("TargetManager.SetDeviceEnabled");
  if (request.Device(deviceId) == nullptr) return request.code();
  request.Topology()->SetEnabled(deviceId, enabled);
  return 0;
}

uint32_t IsDeviceEnabled(uint32_t deviceId, bool* enabled) {
  VOXTREL_COMPONENT_CALL("TargetManager.IsDeviceEnabled", "deviceId=", HexId(deviceId));
  Request request("TargetManager.IsDeviceEnabled");
  if (request.NotNull(enabled, "enabled").Device(deviceId) == nullptr) return request.code();
  *enabled = request.Topology()->IsEffectivelyEnabled(deviceId);
  return 0;
}

uint32_t SpecifyTopology(uint32_t jtagChainId, uint32_t tapControllerCount,
                         const TargetManager_TapController* tapControllers) {
  return ReplaceTapControllers("TargetManager.SpecifyTopology", jtagChainId, tapControllerCount, tapControllers);
}

uint32_t ReplaceTapControllers(const char* operation, uint32_t jtagChainId, uint32_t tapControllerCount,
                               const TargetManager_TapController* tapControllers) {
  std::vector<TapControllerSpecification> declared;
  if (tapControllers != nullptr) {
    for (uint32_t index = 0; index < tapControllerCount; ++index) {
      const TargetManager_TapController& record = tapControllers[index];
      declared.push_back(
          {FieldText(record.deviceType), FieldText(record.deviceSubType), FieldText(record.stepping), record.irLength});
    }
  }
  VOXTREL_COMPONENT_CALL(operation, "jtagChainId=", HexId(jtagChainId),
                         ", tapControllerCount=", tapControllerCount, ", tapControllers=", [&] {
                           if (tapControllers == nullptr) return std::string("<NULL>");
                           std::string text;
                           for (const TapControllerSpecification& tap : declared)
                             text += (text.empty() ? "{" : ", {") + tap.deviceType + "/" + tap.deviceSubType + "/" +
                                     tap.stepping + "/" + std::to_string(tap.irLength) + "}";
                           return text;
                         }());
  Request request(operation);
  if (tapControllerCount > 0) request.NotNull(tapControllers, "tapControllers");
  const Node* chain = request.DeviceOfType(jtagChainId, NodeType::JTAGScanChain);
  if (chain == nullptr) return request.code();
  for (size_t index = 0; index < declared.size(); ++index) {
    const std::string place = " was given tapControllers[" + std::to_string(index) + "]";
    if (declared[index].deviceType.empty()) return request.Refuse(kValueOutOfRange, place + " without a deviceType");
    if (declared[index].irLength < kMinIrLength || declared[index].irLength > kMaxIrLength)
      return request.Refuse(kValueOutOfRange, place + " with irLength " + std::to_string(declared[index].irLength) +
                                                  "; an instruction register has " + std::to_string(kMinIrLength) +
                                                  " to " + std::to_string(kMaxIrLength) + " bits");
  }

  LiveTopology& live = *request.Topology();
  PublishStarted();
  bool changed = false;
  {
    const auto reconfiguring = live.BeginReconfiguration();
    changed = CurrentTapControllers(live, *chain) != declared;
    changed |= ApplyTapControllers(live, *chain, &declared);
    live.SpecifyTapControllers(chain->id, std::move(declared));
  }
  PublishCompleted(changed);
  return 0;
}

uint32_t UpdateTopology(uint32_t deviceId, int32_t phases) {
  VOXTREL_COMPONENT_CALL("TargetManager.UpdateTopology", "deviceId=", HexId(deviceId), ", phases=", HexId(phases));
  Request request("TargetManager.UpdateTopology");
  const Node* top = request.Device(deviceId);
  if (top == nullptr) return request.code();
  if ((phases & ~kTopologyPhasesAll) != 0)
    return request.Refuse(kValueOutOfRange, " does not know the phases " + HexId(phases & ~kTopologyPhasesAll) +
                                                " (0x1: enabled flags, 0x2: specified TAP controllers)");
  if (phases == 0) phases = kTopologyPhasesAll;

  LiveTopology& live = *request.Topology();
  PublishStarted();
  bool changed = false;
  {
    const auto reconfiguring = live.BeginReconfiguration();
    ForEachInSubtree(live, *top, [&](const Node& node) {
      if ((phases & kTopologyPhaseEnabledFlags) != 0) changed |= SetFlag(live, node.id, node.enabled);
      if ((phases & kTopologyPhaseTapControllers) != 0 && node.type == NodeType::JTAGScanChain) {
        const std::vector<TapControllerSpecification> before = CurrentTapControllers(live, node);
        if (live.ForgetSpecifiedTapControllers(node.id)) {
          changed |= before != CurrentTapControllers(live, node);
          changed |= ApplyTapControllers(live, node, nullptr);
        }
      }
    });
  }
  PublishCompleted(changed);
  return 0;
}

}  // namespace voxtrel::platform::target_manager
