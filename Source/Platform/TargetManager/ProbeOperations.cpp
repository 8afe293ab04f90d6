// The TargetManager's probes, TAP controllers as a probe finds them, saved
// configurations and scenarios.
//
// A probe is the one a debug port's description names ("probe": type,
// uniqueIdentifier, details). A JTAG chain's TAP controllers are found once
// the probe of its debug port is initialized: what the chain holds now,
// which is what the description says until SpecifyTapControllers replaces
// it (and the JTAG chain model follows). The supported TAP controllers are
// every kind the description names. A saved configuration holds the probe
// selected, the TAP controllers specified per chain and the scenario, for
// the life of the process, per description.
#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "Support/ComponentCall.h"
#include "Target/PerTarget.h"
#include "TargetManager/DeviceQueries.h"
#include "TargetManager/ListAnswers.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::target_manager {
namespace {

using target::DebugPortDetails;
using target::LiveTopology;
using target::Node;
using target::NodeType;
using target::TapControllerDetails;
using target::TapControllerSpecification;

constexpr uint32_t kNotInitialized = 0x20002;  // A chain whose probe is not initialized, no saved configuration
constexpr size_t kNameSize = 64;

struct Selected {
  uint32_t probePort = 0;  // 0: none selected
  std::set<uint32_t> initializedPorts;
  std::string scenario;
};

target::PerTarget<Selected>& Selection() {
  static target::PerTarget<Selected> selection;
  return selection;
}

struct Saved {
  uint32_t probePort = 0;
  std::string scenario;
  std::map<uint32_t, std::vector<TapControllerSpecification>> chains;
};

// Saved configurations by the description's name.
struct SavedConfigurations {
  std::mutex mutex;
  std::map<std::string, Saved> byDescription;
};

SavedConfigurations& SavedOnes() {
  static SavedConfigurations saved;
  return saved;
}

std::vector<const Node*> OfType(const LiveTopology& live, NodeType type) {
  std::vector<const Node*> nodes;
  for (const Node& node : live.Layout().Nodes())
    if (node.type == type) nodes.push_back(&node);
  return nodes;
}

std::vector<const Node*> Probes(const LiveTopology& live) {
  std::vector<const Node*> ports;
  for (const Node* port : OfType(live, NodeType::Debugport))
    if (const auto* details = port->As<DebugPortDetails>(); details != nullptr && details->probe) ports.push_back(port);
  return ports;
}

const target::ProbeDetails& ProbeOf(const Node& port) { return *port.As<DebugPortDetails>()->probe; }

std::vector<std::string> ProbeTypes(const LiveTopology& live) {
  std::vector<std::string> types;
  for (const Node* port : Probes(live))
    if (std::find(types.begin(), types.end(), ProbeOf(*port).type) == types.end()) types.push_back(ProbeOf(*port).type);
  return types;
}

std::vector<TapControllerSpecification> Supported(const LiveTopology& live) {
  std::vector<TapControllerSpecification> kinds;
  for (const Node* tap : OfType(live, NodeType::TAPController)) {
    const auto* details = tap->As<TapControllerDetails>();
    if (details == nullptr) continue;
    const TapControllerSpecification kind{details->deviceType, details->deviceSubType, details->stepping,
                                          details->irLength};
    if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) kinds.push_back(kind);
  }
  return kinds;
}

std::vector<std::string> Scenarios(const LiveTopology& live) { return live.Layout().Scenarios(); }

constexpr NameFields Names(uint32_t max) { return {max, kNameSize, PastTheList::Emptied}; }

// The client's `max` TAP controller records, zeroed past the last.
struct TapRecords {
  uint32_t max;
  void operator()(const std::vector<TapControllerSpecification>& taps, TargetManager_TapController* records) const {
    for (uint32_t i = 0; i < max; ++i) {
      TargetManager_TapController& record = records[i];
      record = TargetManager_TapController{};
      if (i >= taps.size()) continue;
      CopyText(taps[i].deviceType, record.deviceType, sizeof record.deviceType);
      CopyText(taps[i].deviceSubType, record.deviceSubType, sizeof record.deviceSubType);
      CopyText(taps[i].stepping, record.stepping, sizeof record.stepping);
      record.irLength = taps[i].irLength;
    }
  }
};

std::string Field(const char* field, size_t size) { return std::string(field, strnlen(field, size)); }

// The chain's TAP controllers as its probe finds them; refused before its
// debug port's probe is initialized.
std::vector<TapControllerSpecification> Discovered(Request& request, uint32_t jtagChainId) {
  const Node* chain = request.DeviceOfType(jtagChainId, NodeType::JTAGScanChain);
  if (chain == nullptr) return {};
  auto& selection = Selection();
  std::lock_guard lock(selection.mutex);
  if (!selection.For(request.SharedTopology()).initializedPorts.contains(chain->debugPortId)) {
    request.Refuse(kNotInitialized, ": the probe of debug port " + HexId(chain->debugPortId) +
                                        " is not initialized; InitializeProbe finds its chains' TAP controllers");
    return {};
  }
  return TapControllersOnChain(*request.Topology(), *chain);
}

}  // namespace

uint32_t GetProbeTypeCount(uint32_t* probeTypeCount) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetProbeTypeCount");
  Request request("TargetManager.GetProbeTypeCount");
  return AnswerCount(request, probeTypeCount, "probeTypeCount", [&] { return InTopology(request, ProbeTypes); });
}

uint32_t GetProbeTypes(uint32_t maxProbeTypeCount, char* probeTypes) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetProbeTypes", "max=", maxProbeTypeCount);
  Request request("TargetManager.GetProbeTypes");
  return AnswerFill(request, probeTypes, "probeTypes", Names(maxProbeTypeCount),
                    [&] { return InTopology(request, ProbeTypes); });
}

uint32_t GetConnectedProbeCount(uint32_t* probeCount) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetConnectedProbeCount");
  Request request("TargetManager.GetConnectedProbeCount");
  return AnswerCount(request, probeCount, "probeCount", [&] { return InTopology(request, Probes); });
}

uint32_t GetConnectedProbes(uint32_t maxProbeCount, TargetManager_Probe* probes) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetConnectedProbes", "max=", maxProbeCount);
  Request request("TargetManager.GetConnectedProbes");
  const LiveTopology* live = request.Topology();
  if (live == nullptr) return request.code();
  if (maxProbeCount > 0 && request.NotNull(probes, "probes").failed()) return request.code();
  const std::vector<const Node*> ports = Probes(*live);
  for (uint32_t i = 0; i < maxProbeCount && i < ports.size(); ++i) {
    const target::ProbeDetails& probe = ProbeOf(*ports[i]);
    CopyText(probe.type, probes[i].type, sizeof probes[i].type);
    CopyText(probe.uniqueIdentifier, probes[i].uniqueIdentifier, sizeof probes[i].uniqueIdentifier);
    CopyText(probe.details, probes[i].details, sizeof probes[i].details);
  }
  return 0;
}

uint32_t SelectProbe(TargetManager_Probe* probe, void* selection) {
  VOXTREL_COMPONENT_CALL("TargetManager.SelectProbe");
  Request request("TargetManager.SelectProbe");
  const LiveTopology* live = request.NotNull(probe, "probe").Topology();
  if (live == nullptr) return request.code();
  const std::string type = Field(probe->type, sizeof probe->type);
  const std::string identifier = Field(probe->uniqueIdentifier, sizeof probe->uniqueIdentifier);
  for (const Node* port : Probes(*live)) {
    const target::ProbeDetails& found = ProbeOf(*port);
    if (found.type != type || (!identifier.empty() && found.uniqueIdentifier != identifier)) continue;
    CopyText(found.uniqueIdentifier, probe->uniqueIdentifier, sizeof probe->uniqueIdentifier);
    CopyText(found.details, probe->details, sizeof probe->details);
    if (selection != nullptr) *static_cast<uint32_t*>(selection) = port->id;
    auto& selected = Selection();
    std::lock_guard lock(selected.mutex);
    selected.For(request.SharedTopology()).probePort = port->id;
    return 0;
  }
  return request.Refuse(kDeviceNotFound, ": no probe of type \"" + type + "\"" +
                                             (identifier.empty() ? "" : " and identifier \"" + identifier + "\""));
}

uint32_t InitializeProbe(uint32_t debugPortId) {
  VOXTREL_COMPONENT_CALL("TargetManager.InitializeProbe", "debugPortId=", HexId(debugPortId));
  Request request("TargetManager.InitializeProbe");
  const Node* port = request.DeviceOfType(debugPortId, NodeType::Debugport);
  if (port == nullptr) return request.code();
  auto& selection = Selection();
  std::lock_guard lock(selection.mutex);
  Selected& selected = selection.For(request.SharedTopology());
  if (selected.probePort != 0 && selected.probePort != debugPortId)
    return request.Refuse(kNotInitialized, ": the probe selected is that of debug port " + HexId(selected.probePort));
  selected.initializedPorts.insert(debugPortId);
  return 0;
}

uint32_t GetSupportedTapControllerCount(uint32_t* tapControllerCount) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetSupportedTapControllerCount");
  Request request("TargetManager.GetSupportedTapControllerCount");
  return AnswerCount(request, tapControllerCount, "tapControllerCount", [&] { return InTopology(request, Supported); });
}

uint32_t GetSupportedTapControllers(uint32_t maxTapControllerCount, TargetManager_TapController* tapControllers) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetSupportedTapControllers", "max=", maxTapControllerCount);
  Request request("TargetManager.GetSupportedTapControllers");
  return AnswerFill(request, tapControllers, "tapControllers", TapRecords{maxTapControllerCount},
                    [&] { return InTopology(request, Supported); });
}

uint32_t GetDiscoveredTapControllerCount(uint32_t jtagChainId, uint32_t* tapControllerCount) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetDiscoveredTapControllerCount", "jtagChainId=", HexId(jtagChainId));
  Request request("TargetManager.GetDiscoveredTapControllerCount");
  return AnswerCount(request, tapControllerCount, "tapControllerCount",
                     [&] { return Discovered(request, jtagChainId); });
}

uint32_t GetDiscoveredTapControllers(uint32_t jtagChainId, uint32_t maxTapControllerCount,
                                     TargetManager_TapController* tapControllers) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetDiscoveredTapControllers", "jtagChainId=", HexId(jtagChainId));
  Request request("TargetManager.GetDiscoveredTapControllers");
  return AnswerFill(request, tapControllers, "tapControllers", TapRecords{maxTapControllerCount},
                    [&] { return Discovered(request, jtagChainId); });
}

uint32_t IsSavedConfigurationAvailable(uint32_t* savedConfigurationAvailable) {
  VOXTREL_COMPONENT_CALL("TargetManager.IsSavedConfigurationAvailable");
  Request request("TargetManager.IsSavedConfigurationAvailable");
  const LiveTopology* live = request.NotNull(savedConfigurationAvailable, "savedConfigurationAvailable").Topology();
  if (live == nullptr) return request.code();
  std::lock_guard lock(SavedOnes().mutex);
  *savedConfigurationAvailable = SavedOnes().byDescription.contains(live->Layout().Name()) ? 1 : 0;
  return 0;
}

uint32_t SaveConfiguration() {
  VOXTREL_COMPONENT_CALL("TargetManager.SaveConfiguration");
  Request request("TargetManager.SaveConfiguration");
  const LiveTopology* live = request.Topology();
  if (live == nullptr) return request.code();
  Saved saved;
  {
    auto& selection = Selection();
    std::lock_guard lock(selection.mutex);
    const Selected& selected = selection.For(request.SharedTopology());
    saved.probePort = selected.probePort;
    saved.scenario = selected.scenario;
  }
  for (const Node* chain : OfType(*live, NodeType::JTAGScanChain))
    if (auto specified = live->SpecifiedTapControllers(chain->id)) saved.chains[chain->id] = std::move(*specified);
  std::lock_guard lock(SavedOnes().mutex);
  SavedOnes().byDescription[live->Layout().Name()] = std::move(saved);
  return 0;
}

uint32_t RestoreConfiguration() {
  VOXTREL_COMPONENT_CALL("TargetManager.RestoreConfiguration");
  Request request("TargetManager.RestoreConfiguration");
  const LiveTopology* live = request.Topology();
  if (live == nullptr) return request.code();
  Saved saved;
  {
    std::lock_guard lock(SavedOnes().mutex);
    const auto found = SavedOnes().byDescription.find(live->Layout().Name());
    if (found == SavedOnes().byDescription.end())
      return request.Refuse(kNotInitialized, ": no configuration of " + live->Layout().Name() + " is saved");
    saved = found->second;
  }
  for (const auto& [chainId, taps] : saved.chains) {
    std::vector<TargetManager_TapController> records(taps.size());
    TapRecords{static_cast<uint32_t>(taps.size())}(taps, records.data());
    if (const uint32_t code = SpecifyTopology(chainId, static_cast<uint32_t>(records.size()), records.data()); code != 0)
      return code;
  }
  auto& selection = Selection();
  std::lock_guard lock(selection.mutex);
  Selected& selected = selection.For(request.SharedTopology());
  selected.probePort = saved.probePort;
  selected.scenario = saved.scenario;
  return 0;
}

uint32_t GetAvailableScenarioCount(uint32_t* scenarioCount) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetAvailableScenarioCount");
  Request request("TargetManager.GetAvailableScenarioCount");
  return AnswerCount(request, scenarioCount, "scenarioCount", [&] { return InTopology(request, Scenarios); });
}

uint32_t GetAvailableScenarios(uint32_t maxScenarioCount, char* scenarioNames) {
  VOXTREL_COMPONENT_CALL("TargetManager.GetAvailableScenarios", "max=", maxScenarioCount);
  Request request("TargetManager.GetAvailableScenarios");
  return AnswerFill(request, scenarioNames, "scenarioNames", Names(maxScenarioCount),
                    [&] { return InTopology(request, Scenarios); });
}

uint32_t SelectScenario(const char* scenarioName) {
  VOXTREL_COMPONENT_CALL("TargetManager.SelectScenario");
  Request request("TargetManager.SelectScenario");
  const LiveTopology* live = request.NotNull(scenarioName, "scenarioName").Topology();
  if (live == nullptr) return request.code();
  const auto& scenarios = live->Layout().Scenarios();
  if (std::find(scenarios.begin(), scenarios.end(), scenarioName) == scenarios.end())
    return request.Refuse(kValueOutOfRange, ": no scenario \"" + std::string(scenarioName) + "\"");
  auto& selection = Selection();
  std::lock_guard lock(selection.mutex);
  selection.For(request.SharedTopology()).scenario = scenarioName;
  return 0;
}

uint32_t SpecifyTapControllers(uint32_t jtagChainId, uint32_t tapControllerCount,
                               const TargetManager_TapController* tapControllers) {
  return ReplaceTapControllers("TargetManager.SpecifyTapControllers", jtagChainId, tapControllerCount, tapControllers);
}

}  // namespace voxtrel::platform::target_manager
