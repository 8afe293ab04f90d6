// The DeviceControl component and the target manager library's
// DeviceConfigManager. A device's configs and actions are those its
// "deviceConfigs" and "deviceActions" members (or its nearest ancestor's)
// describe:
//
//   "deviceConfigs": [
//     { "name": "CacheMode", "description": "...", "options": ["WriteBack", "WriteThrough"], "default": "WriteBack" },
//     { "name": "DebugUnlock", "options": ["Locked", "Unlocked"], "default": "Locked",
//       "requires": "ChangeLockedSetting" } ],
//   "deviceActions": [ { "name": "LastPostCode", "description": "...", "effect": "lastPostCode" } ]
//
// A config holds its default until set; one set to a value other than its
// default is modified until set back or reverted. A config that "requires"
// an operation is refused below the authorization level that grants it.
// Every pointer a client hands in is checked here.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "Authorization/AuthorizationLevels.h"
#include "Cpu/CpuBackend.h"
#include "Cpu/CpuDomains.h"
#include "DeviceConfigManager.h"
#include "DeviceControl.h"
#include "Error.h"
#include "Support/ComponentCall.h"
#include "Target/FacetChecks.h"
#include "Target/FacetOwner.h"
#include "Target/JsonReader.h"
#include "Target/PerTarget.h"
#include "TargetManager/ListAnswers.h"
#include "TargetManager/Request.h"

// The library's handle of a device: its id, for the life of the process.
class Node {
 public:
  explicit Node(uint32_t id) : deviceId(id) {}
  const uint32_t deviceId;
};

namespace voxtrel::platform::device_control {
namespace {

using target::Json;
using target_manager::AnswerCount;
using target_manager::AnswerFill;
using target_manager::HexId;
using target_manager::ListOf;
using target_manager::Request;

constexpr uint32_t kUnknownName = 0x20001;  // No config, option or action of that name
constexpr uint32_t kActionFailed = 0x20002;
constexpr size_t kNameSize = 64;
constexpr size_t kValueSize = 128;
constexpr size_t kTextSize = 512;
constexpr char kConfigs[] = "deviceConfigs";
constexpr char kActions[] = "deviceActions";

struct Config {
  std::string name, description, defaultValue, requiredGrant;
  std::vector<std::string> options;
};
struct Action {
  std::string name, description, effect;
};

std::vector<std::string> ReadTexts(const target::ObjectReader& object, const char* member, size_t maxLength) {
  std::vector<std::string> texts;
  if (const Json* array = object.OptionalArray(member))
    for (size_t i = 0; i < array->size(); ++i)
      texts.push_back(target::ReadString((*array)[i], target::PlaceOf(object.Place(member), i), maxLength));
  return texts;
}

std::vector<Config> ReadConfigs(const Json& facet, const std::string& place) {
  std::vector<Config> configs;
  for (size_t i = 0; i < facet.size(); ++i) {
    const target::ObjectReader object(facet[i], target::PlaceOf(place, i),
                                      {"name", "description", "options", "default", "requires"});
    Config config{object.RequiredString("name", kNameSize - 1), object.OptionalString("description", kTextSize - 1),
                  object.RequiredString("default", kValueSize - 1), object.OptionalString("requires", 63),
                  ReadTexts(object, "options", kNameSize - 1)};
    if (!config.options.empty() &&
        std::find(config.options.begin(), config.options.end(), config.defaultValue) == config.options.end())
      target::Fail(object.Place("default"), "the default is not one of the options");
    configs.push_back(std::move(config));
  }
  return configs;
}

std::vector<Action> ReadActions(const Json& facet, const std::string& place) {
  std::vector<Action> actions;
  for (size_t i = 0; i < facet.size(); ++i) {
    const target::ObjectReader object(facet[i], target::PlaceOf(place, i), {"name", "description", "effect"});
    Action action{object.RequiredString("name", kNameSize - 1), object.OptionalString("description", kTextSize - 1),
                  object.RequiredString("effect", 32)};
    if (action.effect != "lastPostCode" && action.effect != "resetThreads")
      target::Fail(object.Place("effect"), "the effects are \"lastPostCode\" and \"resetThreads\"");
    actions.push_back(std::move(action));
  }
  return actions;
}

const bool registered = [] {
  target::RegisterFacetCheck(kConfigs, [](const Json& f, const std::string& p, const target::Node&) { ReadConfigs(f, p); });
  target::RegisterFacetCheck(kActions, [](const Json& f, const std::string& p, const target::Node&) { ReadActions(f, p); });
  return true;
}();

// Values set on the built target, by the device that describes the configs
// and the config's name.
using Values = target::PerTarget<std::map<std::pair<uint32_t, std::string>, std::string>>;
Values& Stored() {
  static Values values;
  return values;
}

// A device's configs and actions, and the device whose members they are.
struct Described {
  std::shared_ptr<target::LiveTopology> topology;
  const target::Node* device = nullptr;
  uint32_t ownerId = 0;
  std::vector<Config> configs;
  std::vector<Action> actions;
  uint32_t targetDomainId = 0;

  std::string ValueOf(const Config& config) const {
    std::lock_guard lock(Stored().mutex);
    const auto& set = Stored().For(topology);
    const auto found = set.find({ownerId, config.name});
    return found == set.end() ? config.defaultValue : found->second;
  }
};

std::optional<Described> DescribedFor(const std::shared_ptr<target::LiveTopology>& topology,
                                      const target::Node& device) {
  Described described{topology, &device, device.id, {}, {}, device.targetDomainId};
  if (const target::Node* owner = target::FacetOwner(*topology, device, kConfigs)) {
    described.ownerId = owner->id;
    described.configs = ReadConfigs(*owner->FindFacet(kConfigs), kConfigs);
  }
  if (const target::Node* owner = target::FacetOwner(*topology, device, kActions))
    described.actions = ReadActions(*owner->FindFacet(kActions), kActions);
  return described;
}

std::optional<Described> DescribedFor(Request& request, uint32_t deviceId) {
  const target::Node* device = request.Device(deviceId);
  if (device == nullptr) return std::nullopt;
  return DescribedFor(request.SharedTopology(), *device);
}

template <class Item>
const Item* Named(Request& request, const std::vector<Item>& items, const char* name, const char* what) {
  for (const Item& item : items)
    if (item.name == name) return &item;
  request.Refuse(kUnknownName, std::string(": no ") + what + " \"" + name + "\"");
  return nullptr;
}

constexpr target_manager::NameFields Names(uint32_t max) {
  return {max, kNameSize, target_manager::PastTheList::Emptied};
}

// The config a request names, its pointers checked.
std::optional<std::pair<Described, const Config*>> ConfigOf(Request& request, uint32_t deviceId, const char* name,
                                                            const void* out, const char* outName) {
  auto described = DescribedFor(request.NotNull(name, "deviceConfigName").NotNull(out, outName), deviceId);
  if (!described) return std::nullopt;
  const Config* config = Named(request, described->configs, name, "config");
  if (config == nullptr) return std::nullopt;
  return std::make_pair(std::move(*described), config);
}

// The options of the config a request names; none when it names none.
std::vector<std::string> OptionsOf(Request& request, uint32_t deviceId, const char* name) {
  const auto described = DescribedFor(request.NotNull(name, "deviceConfigName"), deviceId);
  const Config* config = described ? Named(request, described->configs, name, "config") : nullptr;
  return config ? config->options : std::vector<std::string>{};
}

uint32_t GetNumDeviceConfigNames(uint32_t deviceId, uint32_t* count) {
  VOXTREL_COMPONENT_CALL("DeviceControl.GetNumDeviceConfigNames", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.GetNumDeviceConfigNames");
  return AnswerCount(request, count, "numDeviceConfigNames",
                     [&] { return ListOf(DescribedFor(request, deviceId), &Described::configs); });
}

uint32_t GetDeviceConfigNames(uint32_t deviceId, uint32_t max, char* names) {
  VOXTREL_COMPONENT_CALL("DeviceControl.GetDeviceConfigNames", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.GetDeviceConfigNames");
  return AnswerFill(request, names, "deviceConfigNames", Names(max),
                    [&] { return ListOf(DescribedFor(request, deviceId), &Described::configs); });
}

uint32_t SetDeviceConfig(uint32_t deviceId, const char* name, const char* value) {
  VOXTREL_COMPONENT_CALL("DeviceControl.SetDeviceConfig", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.SetDeviceConfig");
  const auto found = ConfigOf(request, deviceId, name, value, "value");
  if (!found) return request.code();
  const Config& config = *found->second;
  if (std::strlen(value) >= kValueSize)
    return request.Refuse(kUnknownName, ": a value has at most " + std::to_string(kValueSize - 1) + " characters");
  if (!config.options.empty() && std::find(config.options.begin(), config.options.end(), value) == config.options.end())
    return request.Refuse(kUnknownName, ": \"" + std::string(value) + "\" is no option of " + config.name);
  if (!config.requiredGrant.empty() && authorization::RequireGrant(request, deviceId, config.requiredGrant) != 0)
    return request.code();
  std::lock_guard lock(Stored().mutex);
  auto& set = Stored().For(found->first.topology);
  if (config.defaultValue == value) {
    set.erase({found->first.ownerId, config.name});
  } else {
    set[{found->first.ownerId, config.name}] = value;
  }
  return 0;
}

uint32_t GetDeviceConfig(uint32_t deviceId, const char* name, char* value) {
  VOXTREL_COMPONENT_CALL("DeviceControl.GetDeviceConfig", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.GetDeviceConfig");
  const auto found = ConfigOf(request, deviceId, name, value, "value");
  if (!found) return request.code();
  target_manager::CopyText(found->first.ValueOf(*found->second), value, kValueSize);
  return 0;
}

uint32_t GetDeviceConfigDescription(uint32_t deviceId, const char* name, char* description) {
  VOXTREL_COMPONENT_CALL("DeviceControl.GetDeviceConfigDescription", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.GetDeviceConfigDescription");
  const auto found = ConfigOf(request, deviceId, name, description, "description");
  if (!found) return request.code();
  target_manager::CopyText(found->second->description, description, kTextSize);
  return 0;
}

uint32_t GetNumDeviceConfigOptions(uint32_t deviceId, const char* name, uint32_t* count) {
  VOXTREL_COMPONENT_CALL("DeviceControl.GetNumDeviceConfigOptions", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.GetNumDeviceConfigOptions");
  // The config's name is checked before the client's counter.
  return AnswerCount(request.NotNull(name, "deviceConfigName"), count, "numDeviceConfigOptions",
                     [&] { return OptionsOf(request, deviceId, name); });
}

uint32_t GetDeviceConfigOptions(uint32_t deviceId, const char* name, uint32_t max, char* options) {
  VOXTREL_COMPONENT_CALL("DeviceControl.GetDeviceConfigOptions", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.GetDeviceConfigOptions");
  return AnswerFill(request.NotNull(name, "deviceConfigName"), options, "deviceConfigOptions", Names(max),
                    [&] { return OptionsOf(request, deviceId, name); });
}

uint32_t GetNumDeviceActionNames(uint32_t deviceId, uint32_t* count) {
  VOXTREL_COMPONENT_CALL("DeviceControl.GetNumDeviceActionNames", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.GetNumDeviceActionNames");
  return AnswerCount(request, count, "numDeviceActionNames",
                     [&] { return ListOf(DescribedFor(request, deviceId), &Described::actions); });
}

uint32_t GetDeviceActionNames(uint32_t deviceId, uint32_t max, char* names) {
  VOXTREL_COMPONENT_CALL("DeviceControl.GetDeviceActionNames", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.GetDeviceActionNames");
  return AnswerFill(request, names, "deviceActionNames", Names(max),
                    [&] { return ListOf(DescribedFor(request, deviceId), &Described::actions); });
}

uint32_t GetDeviceActionDescription(uint32_t deviceId, const char* name, char* description) {
  VOXTREL_COMPONENT_CALL("DeviceControl.GetDeviceActionDescription", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.GetDeviceActionDescription");
  const auto described =
      DescribedFor(request.NotNull(name, "deviceActionName").NotNull(description, "description"), deviceId);
  if (!described) return request.code();
  const Action* action = Named(request, described->actions, name, "action");
  if (action == nullptr) return request.code();
  target_manager::CopyText(action->description, description, kTextSize);
  return 0;
}

uint32_t ExecuteDeviceAction(uint32_t deviceId, const char* name, const char* input, char* result) {
  VOXTREL_COMPONENT_CALL("DeviceControl.ExecuteDeviceAction", "deviceId=", HexId(deviceId));
  Request request("DeviceControl.ExecuteDeviceAction");
  // No action takes an input, so a null one is as good as an empty one.
  (void)input;
  const auto described = DescribedFor(request.NotNull(name, "deviceActionName").NotNull(result, "result"), deviceId);
  if (!described) return request.code();
  const Action* action = Named(request, described->actions, name, "action");
  if (action == nullptr) return request.code();
  const cpu::CpuSelection cpus = cpu::CpuDomains::Instance().Find(described->targetDomainId);
  if (cpus.result != cpu::LookupResult::Ok)
    return request.Refuse(kActionFailed, ": the target domain of " + HexId(deviceId) + " runs no CPUs");
  std::string answer;
  cpu::CpuResult outcome = cpu::CpuResult::Ok;
  if (action->effect == "lastPostCode") {
    uint32_t code = 0;
    outcome = cpus.domain->backend->ReadIo(0x80, 1, code);
    char text[8];
    std::snprintf(text, sizeof text, "0x%02x", code & 0xff);
    answer = text;
  } else {
    outcome = cpus.domain->backend->Reset(cpu::ResetMode::Run);
    answer = "reset";
  }
  if (outcome != cpu::CpuResult::Ok)
    return request.Refuse(kActionFailed, ": " + action->name + " failed: " + std::string(cpu::CpuResultText(outcome)));
  target_manager::CopyText(answer, result, kTextSize);
  return 0;
}

constexpr DeviceControlComponent kTable{
    &GetNumDeviceConfigNames, &GetDeviceConfigNames,       &SetDeviceConfig,     &GetDeviceConfig,
    &GetNumDeviceActionNames, &GetDeviceActionNames,       &GetDeviceActionDescription, &ExecuteDeviceAction,
    &GetDeviceConfigDescription, &GetNumDeviceConfigOptions, &GetDeviceConfigOptions};

// What the manager works on: the built topology and the node's device.
std::optional<Described> DescribedForNode(const Node& node) {
  const auto topology = target::TargetModel::Instance().Topology();
  if (!topology) throw Voxtrel_Error_Exception(target_manager::kTopologyNotBuilt);
  const target::Node* device = topology->Layout().Find(node.deviceId);
  if (device == nullptr) throw Voxtrel_Error_Exception(target_manager::kDeviceNotFound);
  return DescribedFor(topology, *device);
}

}  // namespace

const DeviceControlComponent* Table() { return &kTable; }

std::vector<ModifiedDeviceConfig> Modified(const Node& node) {
  const auto described = DescribedForNode(node);
  std::vector<ModifiedDeviceConfig> modified;
  for (const Config& config : described->configs) {
    std::string value = described->ValueOf(config);
    if (value != config.defaultValue) modified.push_back({config.name, std::move(value), config.defaultValue});
  }
  return modified;
}

void Revert(const Node& node) {
  const auto described = DescribedForNode(node);
  std::lock_guard lock(Stored().mutex);
  auto& set = Stored().For(described->topology);
  for (const Config& config : described->configs) set.erase({described->ownerId, config.name});
}

}  // namespace voxtrel::platform::device_control

std::vector<ModifiedDeviceConfig> DeviceConfigManager::GetModifiedConfigs(const Node& node) {
  return voxtrel::platform::device_control::Modified(node);
}

void DeviceConfigManager::RevertModifiedConfigs(const Node& node) { voxtrel::platform::device_control::Revert(node); }

TargetManager& TargetManager::GetInstance() {
  static TargetManager instance;
  return instance;
}

const Node* TargetManager::GetNodeForDeviceId(uint32_t deviceId) {
  const auto topology = voxtrel::platform::target::TargetModel::Instance().Topology();
  if (!topology || topology->Layout().Find(deviceId) == nullptr) return nullptr;
  static std::mutex mutex;
  static std::map<uint32_t, std::unique_ptr<Node>> nodes;
  std::lock_guard lock(mutex);
  auto& node = nodes[deviceId];
  if (!node) node = std::make_unique<Node>(deviceId);
  return node.get();
}

DeviceConfigManager* TargetManager::GetDeviceConfigManager() {
  static DeviceConfigManager manager;
  return &manager;
}
