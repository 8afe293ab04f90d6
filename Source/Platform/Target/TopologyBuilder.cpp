#include "TopologyBuilder.h"

#include <array>
#include <cctype>
#include <map>
#include <set>
#include <unordered_map>

#include "FacetChecks.h"
#include "JsonReader.h"

namespace voxtrel::platform::target {

namespace {

constexpr size_t kMaxIdentifierLength = 63;
constexpr size_t kMaxPropertyNameLength = 63;
constexpr size_t kMaxPropertyValueLength = 127;
constexpr size_t kMaxTapTextLength = 127;
constexpr uint64_t kMaxRepeat = 4096;
constexpr uint64_t kMaxThreadsPerCore = 256;

// Members every node object may have.
const std::initializer_list<std::string_view> kNodeMembers = {
    "identifier", "enabled",   "properties", "memory", "registers", "statePorts",
    "memoryMap",  "ioDevices", "cpuid",      "msrs",   "apicIds",
    "authorization",
    "preconditions",
    "deviceConfigs",
    "deviceActions"};

bool IsIdentifierCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
}

bool IsInstructionName(std::string_view name) {
  if (name.empty() || name.size() > kMaxIdentifierLength) return false;
  for (char c : name)
    if (!IsIdentifierCharacter(c) || c == '-' || c == '.') return false;
  return true;
}

std::string RenderPropertyValue(const Json& value, const std::string& place) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_number() || value.is_boolean()) return value.dump();
  Fail(place, "expected a string, number or boolean, found " + Describe(value));
}

std::string JoinInstructionNames(const TapControllerDetails& tap) {
  std::string names;
  for (const TapInstruction& instruction : tap.instructions) names += (names.empty() ? "" : ", ") + instruction.name;
  return names;
}

// A debugAccess member waiting for the whole domain to be built.
struct PendingDebugAccess {
  size_t nodeIndex;
  std::string tapIdentifier;
  std::string instruction;
  std::string place;
};

struct DomainState {
  size_t domainIndex = 0;
  std::map<std::string, size_t, std::less<>> indexByIdentifier;
  std::map<std::string, std::string, std::less<>> placeByIdentifier;
  std::map<std::string, uint32_t, std::less<>> defaultNameCounters;
  uint32_t coreCount = 0;
  std::vector<PendingDebugAccess> pendingDebugAccess;
  std::vector<size_t> debugPortIndexes;
  std::vector<size_t> coreIndexes;
};

class Builder {
 public:
  std::vector<Node> Build(const Json& targetDomains, const std::string& place) {
    nodes_.reserve(64);
    Node root;
    root.id = MakeDeviceId(NodeType::LogicalRoot, NextOrdinal(NodeType::LogicalRoot, place));
    root.type = NodeType::LogicalRoot;
    root.identifier = "Root";
    indexById_.emplace(root.id, 0);
    nodes_.push_back(std::move(root));

    if (!targetDomains.is_array()) Fail(place, "expected an array, found " + Describe(targetDomains));
    if (targetDomains.empty()) Fail(place, "expected at least one element");
    std::map<std::string, std::string, std::less<>> domainPlaces;
    for (size_t index = 0; index < targetDomains.size(); ++index) {
      const std::string domainPlace = PlaceOf(place, index);
      BuildTargetDomain(targetDomains[index], domainPlace, index, domainPlaces);
    }
    return std::move(nodes_);
  }

 private:
  uint32_t NextOrdinal(NodeType type, const std::string& place) {
    uint32_t& ordinal = ordinals_[static_cast<size_t>(type)];
    if (ordinal > kMaxOrdinal || nodes_.size() >= kMaxNodes)
      Fail(place, "the description declares more than " + std::to_string(kMaxNodes) + " devices");
    return ordinal++;
  }

  static std::string ReadIdentifier(const ObjectReader& object) {
    const Json* value = object.Find("identifier");
    if (!value) return {};
    const std::string place = object.Place("identifier");
    std::string identifier = ReadString(*value, place, kMaxIdentifierLength);
    if (identifier.empty()) Fail(place, "an identifier cannot be empty");
    for (char c : identifier)
      if (!IsIdentifierCharacter(c))
        Fail(place, "identifier '" + identifier + "' may hold only letters, digits, '_', '-' and '.'");
    return identifier;
  }

  std::string DefaultName(DomainState& domain, const std::string& prefix) {
    return prefix + std::to_string(domain.defaultNameCounters[prefix]++);
  }

  // Adds a node below `parentIndex`, registered under its identifier in its
  // domain. `domain` is null only for a target domain, which opens its own.
  size_t AddNode(NodeType type, size_t parentIndex, std::string identifier, const std::string& place,
                 DomainState& domain) {
    Node node;
    node.id = MakeDeviceId(type, NextOrdinal(type, place));
    node.type = type;
    node.parentId = nodes_[parentIndex].id;
    node.targetDomainId = type == NodeType::TargetDomain ? node.id : nodes_[parentIndex].targetDomainId;
    const auto used = domain.placeByIdentifier.find(identifier);
    if (used != domain.placeByIdentifier.end())
      Fail(place,
           "duplicate identifier '" + identifier + "' in its target domain (first used at " + used->second + ")");
    node.identifier = std::move(identifier);
    const size_t index = nodes_.size();
    domain.placeByIdentifier.emplace(node.identifier, place);
    domain.indexByIdentifier.emplace(node.identifier, index);
    indexById_.emplace(node.id, index);
    nodes_[parentIndex].childIds.push_back(node.id);
    nodes_.push_back(std::move(node));
    return index;
  }

  // A memory map, checked already, is also published as properties
  // "MemoryRegion0", "MemoryRegion1", ... in the order described, each
  // "KIND BASE SIZE" ("rom 0xFFFF0000 0x10000"): a client (a debugger that
  // wants the target's memory map) reads it through the Device service. A
  // property the description gives that name itself stands.
  static void PublishMemoryMap(Node& node) {
    const Json* map = node.FindFacet("memoryMap");
    if (map == nullptr || !map->is_array()) return;
    for (size_t index = 0; index < map->size(); ++index) {
      const Json& region = (*map)[index];
      std::string name = "MemoryRegion" + std::to_string(index);
      if (node.FindProperty(name) != nullptr) continue;
      std::string text;
      for (const char* member : {"kind", "base", "size"})
        text += (text.empty() ? "" : " ") + RenderPropertyValue(region.at(member), member);
      node.properties.push_back({std::move(name), std::move(text)});
    }
  }

  // "enabled", "properties" and the component members, and "debugAccess"
  // where the object may have it.
  void ReadCommonMembers(const ObjectReader& object, size_t nodeIndex, DomainState& domain) {
    Node& node = nodes_[nodeIndex];
    node.enabled = object.OptionalBool("enabled", true);
    if (const Json* properties = object.OptionalObject("properties")) {
      for (const auto& [name, value] : properties->items()) {
        const std::string place = PlaceOf(object.Place("properties"), name);
        if (name.empty() || name.size() > kMaxPropertyNameLength)
          Fail(place, "a property name must have 1 to " + std::to_string(kMaxPropertyNameLength) + " characters");
        std::string text = RenderPropertyValue(value, place);
        if (text.size() > kMaxPropertyValueLength)
          Fail(place, "text of " + std::to_string(text.size()) + " characters is longer than " +
                          std::to_string(kMaxPropertyValueLength));
        node.properties.push_back({name, std::move(text)});
      }
    }
    for (std::string_view member : kFacetMembers) {
      if (const Json* facet = object.Find(member)) {
        CheckFacet(member, *facet, object.Place(member), node);
        node.facets.emplace_back(std::string(member), *facet);
      }
    }
    PublishMemoryMap(node);
    if (const Json* access = object.Find("debugAccess")) {
      const ObjectReader reader(*access, object.Place("debugAccess"), {"tap", "instruction"});
      domain.pendingDebugAccess.push_back({nodeIndex, reader.RequiredString("tap", kMaxIdentifierLength),
                                           reader.RequiredString("instruction", kMaxIdentifierLength), reader.Place()});
    }
  }

  void BuildTargetDomain(const Json& value, const std::string& place, size_t position,
                         std::map<std::string, std::string, std::less<>>& domainPlaces) {
    const ObjectReader object(value, place, kNodeMembers, {"packages", "chipsets", "debugPorts", "coreGroups"});
    std::string identifier = ReadIdentifier(object);
    if (identifier.empty()) identifier = "TargetDomain" + std::to_string(position);
    const auto used = domainPlaces.find(identifier);
    if (used != domainPlaces.end())
      Fail(place, "duplicate target domain identifier '" + identifier + "' (first used at " + used->second + ")");
    domainPlaces.emplace(identifier, place);

    DomainState domain;
    domain.domainIndex = AddNode(NodeType::TargetDomain, 0, std::move(identifier), place, domain);
    ReadCommonMembers(object, domain.domainIndex, domain);

    if (const Json* packages = object.OptionalArray("packages"))
      for (size_t index = 0; index < packages->size(); ++index)
        BuildPackage((*packages)[index], PlaceOf(object.Place("packages"), index), domain);
    if (const Json* chipsets = object.OptionalArray("chipsets"))
      for (size_t index = 0; index < chipsets->size(); ++index)
        BuildLeaf((*chipsets)[index], PlaceOf(object.Place("chipsets"), index), NodeType::LogicalChipset, "Chipset",
                  domain.domainIndex, domain, true);
    if (const Json* ports = object.OptionalArray("debugPorts"))
      for (size_t index = 0; index < ports->size(); ++index)
        BuildDebugPort((*ports)[index], PlaceOf(object.Place("debugPorts"), index), domain);
    BuildCoreGroups(object, domain);

    ResolveDebugAccess(domain);
    AssignDebugPorts(domain);
    DisableBelowDisabled(domain);
  }

  void BuildPackage(const Json& value, const std::string& place, DomainState& domain) {
    const ObjectReader object(value, place, kNodeMembers, {"debugAccess", "dies", "cores", "uncores"});
    std::string identifier = ReadIdentifier(object);
    if (identifier.empty()) identifier = DefaultName(domain, "Package");
    const size_t index = AddNode(NodeType::LogicalPackage, domain.domainIndex, std::move(identifier), place, domain);
    ReadCommonMembers(object, index, domain);
    const Json* dies = object.OptionalArray("dies");
    if (dies && object.Find("cores")) Fail(place, "a package holds either 'dies' or 'cores', not both");
    if (dies)
      for (size_t position = 0; position < dies->size(); ++position)
        BuildDie((*dies)[position], PlaceOf(object.Place("dies"), position), index, domain);
    BuildCoresAndUncores(object, index, domain);
  }

  void BuildDie(const Json& value, const std::string& place, size_t packageIndex, DomainState& domain) {
    const ObjectReader object(value, place, kNodeMembers, {"debugAccess", "cores", "uncores"});
    std::string identifier = ReadIdentifier(object);
    if (identifier.empty()) identifier = DefaultName(domain, "Die");
    const size_t index = AddNode(NodeType::LogicalDie, packageIndex, std::move(identifier), place, domain);
    ReadCommonMembers(object, index, domain);
    BuildCoresAndUncores(object, index, domain);
  }

  void BuildCoresAndUncores(const ObjectReader& object, size_t parentIndex, DomainState& domain) {
    if (const Json* cores = object.OptionalArray("cores"))
      for (size_t position = 0; position < cores->size(); ++position)
        BuildCores((*cores)[position], PlaceOf(object.Place("cores"), position), parentIndex, domain);
    if (const Json* uncores = object.OptionalArray("uncores"))
      for (size_t position = 0; position < uncores->size(); ++position)
        BuildLeaf((*uncores)[position], PlaceOf(object.Place("uncores"), position), NodeType::LogicalUncore, "Uncore",
                  parentIndex, domain, true);
  }

  // One core object, which "count" may repeat.
  void BuildCores(const Json& value, const std::string& place, size_t parentIndex, DomainState& domain) {
    const ObjectReader object(value, place, kNodeMembers, {"debugAccess", "count", "threads"});
    const uint64_t count = object.OptionalUnsigned("count", 1, kMaxRepeat, 1);
    const std::string explicitIdentifier = ReadIdentifier(object);
    if (count > 1 && !explicitIdentifier.empty())
      Fail(object.Place("identifier"), "an identifier cannot be given to a core repeated by 'count'");
    for (uint64_t repeat = 0; repeat < count; ++repeat) {
      const uint32_t coreOrdinal = domain.coreCount++;
      std::string identifier = explicitIdentifier.empty() ? "Core" + std::to_string(coreOrdinal) : explicitIdentifier;
      const size_t coreIndex = AddNode(NodeType::LogicalCore, parentIndex, std::move(identifier), place, domain);
      ReadCommonMembers(object, coreIndex, domain);
      domain.coreIndexes.push_back(coreIndex);
      BuildThreads(object, coreIndex, coreOrdinal, domain);
    }
  }

  // "threads": a count of plain threads or an array of thread objects; one
  // thread when absent.
  void BuildThreads(const ObjectReader& core, size_t coreIndex, uint32_t coreOrdinal, DomainState& domain) {
    const Json* threads = core.Find("threads");
    const std::string place = core.Place("threads");
    auto defaultName = [&](size_t thread) {
      return "Thread" + std::to_string(coreOrdinal) + "_" + std::to_string(thread);
    };
    if (threads && !threads->is_array() && !threads->is_number() && !threads->is_string())
      Fail(place, "expected a thread count or an array of threads, found " + Describe(*threads));
    if (!threads || !threads->is_array()) {
      const uint64_t count = threads ? ReadUnsigned(*threads, place, 1, kMaxThreadsPerCore) : 1;
      for (uint64_t thread = 0; thread < count; ++thread)
        AddNode(NodeType::LogicalThread, coreIndex, defaultName(thread), place, domain);
      return;
    }
    if (threads->empty()) Fail(place, "expected at least one element");
    if (threads->size() > kMaxThreadsPerCore)
      Fail(place, "a core has at most " + std::to_string(kMaxThreadsPerCore) + " threads");
    for (size_t thread = 0; thread < threads->size(); ++thread) {
      const std::string threadPlace = PlaceOf(place, thread);
      const ObjectReader object((*threads)[thread], threadPlace, kNodeMembers, {"debugAccess"});
      std::string identifier = ReadIdentifier(object);
      if (identifier.empty()) identifier = defaultName(thread);
      const size_t index = AddNode(NodeType::LogicalThread, coreIndex, std::move(identifier), threadPlace, domain);
      ReadCommonMembers(object, index, domain);
    }
  }

  // A node with the common members only: uncores, chipsets, interface ports.
  size_t BuildLeaf(const Json& value, const std::string& place, NodeType type, const std::string& prefix,
                   size_t parentIndex, DomainState& domain, bool debugAccessAllowed) {
    const ObjectReader object(value, place, kNodeMembers,
                              debugAccessAllowed ? std::initializer_list<std::string_view>{"debugAccess"}
                                                 : std::initializer_list<std::string_view>{});
    std::string identifier = ReadIdentifier(object);
    if (identifier.empty()) identifier = DefaultName(domain, prefix);
    const size_t index = AddNode(type, parentIndex, std::move(identifier), place, domain);
    ReadCommonMembers(object, index, domain);
    return index;
  }

  void BuildDebugPort(const Json& value, const std::string& place, DomainState& domain) {
    const ObjectReader object(value, place, kNodeMembers,
                              {"probe", "jtagChains", "i2cBuses", "pinsInterfaces", "interfacePorts"});
    std::string identifier = ReadIdentifier(object);
    if (identifier.empty()) identifier = DefaultName(domain, "DebugPort");
    const size_t index = AddNode(NodeType::Debugport, domain.domainIndex, std::move(identifier), place, domain);
    ReadCommonMembers(object, index, domain);
    domain.debugPortIndexes.push_back(index);

    DebugPortDetails details;
    if (const Json* probe = object.Find("probe")) {
      const ObjectReader reader(*probe, object.Place("probe"), {"type", "uniqueIdentifier", "details"});
      details.probe = ProbeDetails{reader.RequiredString("type", 63), reader.RequiredString("uniqueIdentifier", 127),
                                   reader.OptionalString("details", 511)};
    }
    nodes_[index].details = std::move(details);

    if (const Json* chains = object.OptionalArray("jtagChains"))
      for (size_t position = 0; position < chains->size(); ++position)
        BuildJtagChain((*chains)[position], PlaceOf(object.Place("jtagChains"), position), index, domain);
    if (const Json* buses = object.OptionalArray("i2cBuses"))
      for (size_t position = 0; position < buses->size(); ++position)
        BuildI2cBus((*buses)[position], PlaceOf(object.Place("i2cBuses"), position), index, domain);
    if (const Json* pins = object.OptionalArray("pinsInterfaces"))
      for (size_t position = 0; position < pins->size(); ++position)
        BuildPinsInterface((*pins)[position], PlaceOf(object.Place("pinsInterfaces"), position), index, domain);
    if (const Json* ports = object.OptionalArray("interfacePorts"))
      for (size_t position = 0; position < ports->size(); ++position)
        BuildLeaf((*ports)[position], PlaceOf(object.Place("interfacePorts"), position), NodeType::InterfacePort,
                  "InterfacePort", index, domain, false);
  }

  void BuildJtagChain(const Json& value, const std::string& place, size_t portIndex, DomainState& domain) {
    const ObjectReader object(value, place, kNodeMembers, {"tapControllers", "fault"});
    std::string identifier = ReadIdentifier(object);
    if (identifier.empty()) identifier = DefaultName(domain, "JtagChain");
    const size_t index = AddNode(NodeType::JTAGScanChain, portIndex, std::move(identifier), place, domain);
    ReadCommonMembers(object, index, domain);
    JtagChainDetails chain;
    chain.fault = object.OptionalString("fault", kMaxIdentifierLength);
    if (!chain.fault.empty() && chain.fault != "open" && chain.fault != "short" && chain.fault != "inverted" &&
        chain.fault != "corrupted")
      Fail(object.Place("fault"), "unknown fault '" + chain.fault + "' (open, short, inverted or corrupted)");
    nodes_[index].details = std::move(chain);
    const Json& taps = object.RequiredArray("tapControllers", true);
    for (size_t position = 0; position < taps.size(); ++position)
      BuildTapController(taps[position], PlaceOf(object.Place("tapControllers"), position), index, domain);
  }

  void BuildTapController(const Json& value, const std::string& place, size_t chainIndex, DomainState& domain) {
    const ObjectReader object(
        value, place, kNodeMembers,
        {"deviceType", "deviceSubType", "stepping", "idcode", "irLength", "instructions", "resetInstruction",
         "usercode"});
    std::string identifier = ReadIdentifier(object);
    if (identifier.empty()) identifier = DefaultName(domain, "Tap");
    const size_t index = AddNode(NodeType::TAPController, chainIndex, std::move(identifier), place, domain);
    ReadCommonMembers(object, index, domain);

    TapControllerDetails tap;
    tap.deviceType = object.RequiredString("deviceType", kMaxTapTextLength);
    tap.deviceSubType = object.OptionalString("deviceSubType", kMaxTapTextLength);
    tap.stepping = object.OptionalString("stepping", kMaxTapTextLength);
    tap.idcode = static_cast<uint32_t>(object.RequiredUnsigned("idcode", 0, 0xffffffffu));
    if ((tap.idcode & 1u) == 0) Fail(object.Place("idcode"), "an IDCODE has bit 0 set");
    tap.irLength = static_cast<uint32_t>(object.RequiredUnsigned("irLength", 2, 64));
    if (object.Find("usercode")) tap.usercode = static_cast<uint32_t>(object.RequiredUnsigned("usercode", 0, 0xffffffffu));
    const uint64_t maxOpcode = tap.irLength == 64 ? ~uint64_t{0} : (uint64_t{1} << tap.irLength) - 1;

    const Json& instructions = object.RequiredArray("instructions", true);
    std::set<uint64_t> opcodes;
    for (size_t position = 0; position < instructions.size(); ++position) {
      const std::string instructionPlace = PlaceOf(object.Place("instructions"), position);
      const ObjectReader reader(instructions[position], instructionPlace, {"name", "opcode", "drLength", "resetValue", "readOnlyMask", "reaches"});
      TapInstruction instruction;
      instruction.name = reader.RequiredString("name", kMaxIdentifierLength);
      if (!IsInstructionName(instruction.name))
        Fail(reader.Place("name"), "instruction name '" + instruction.name + "' may hold only letters, digits and '_'");
      if (tap.FindInstruction(instruction.name))
        Fail(reader.Place("name"), "duplicate instruction name '" + instruction.name + "'");
      instruction.opcode = reader.RequiredUnsigned("opcode", 0, maxOpcode);
      if (!opcodes.insert(instruction.opcode).second)
        Fail(reader.Place("opcode"), "opcode " + std::to_string(instruction.opcode) +
                                         " is already used by another instruction of this TAP controller");
      instruction.drLength = static_cast<uint32_t>(reader.RequiredUnsigned("drLength", 1, 65536));
      if (reader.Find("resetValue")) instruction.resetValue = reader.RequiredUnsigned("resetValue", 0, ~uint64_t{0});
      if (reader.Find("readOnlyMask"))
        instruction.readOnlyMask = reader.RequiredUnsigned("readOnlyMask", 0, ~uint64_t{0});
      if (reader.Find("reaches")) ReadReach(reader, tap, instruction);
      tap.instructions.push_back(std::move(instruction));
    }
    if (FindReach(tap, TapInstruction::Reach::MemoryData) && !FindReach(tap, TapInstruction::Reach::MemoryAddress))
      Fail(object.Place("instructions"), "a \"memoryData\" register needs a \"memoryAddress\" register in its TAP controller");
    tap.resetInstruction = FindResetInstruction(object, tap);
    nodes_[index].details = std::move(tap);
  }

  static bool FindReach(const TapControllerDetails& tap, TapInstruction::Reach reach) {
    for (const TapInstruction& instruction : tap.instructions)
      if (instruction.reaches == reach) return true;
    return false;
  }

  // "memoryAddress" (at most 64 bits) or "memoryData" (whole bytes, at most
  // 64 bits), one of each per TAP controller.
  static void ReadReach(const ObjectReader& reader, const TapControllerDetails& tap, TapInstruction& instruction) {
    const std::string reach = reader.RequiredString("reaches", kMaxIdentifierLength);
    if (reach == "memoryAddress")
      instruction.reaches = TapInstruction::Reach::MemoryAddress;
    else if (reach == "memoryData")
      instruction.reaches = TapInstruction::Reach::MemoryData;
    else
      Fail(reader.Place("reaches"), "a register reaches \"memoryAddress\" or \"memoryData\", not '" + reach + "'");
    if (FindReach(tap, instruction.reaches))
      Fail(reader.Place("reaches"), "only one register of a TAP controller reaches '" + reach + "'");
    const bool data = instruction.reaches == TapInstruction::Reach::MemoryData;
    if (instruction.drLength > 64 || (data && instruction.drLength % 8 != 0))
      Fail(reader.Place("drLength"), data ? "a \"memoryData\" register is 8 to 64 bits, whole bytes"
                                          : "a \"memoryAddress\" register is at most 64 bits");
  }

  // "resetInstruction", else IDCODE, else BYPASS: what Test-Logic-Reset selects.
  static size_t FindResetInstruction(const ObjectReader& object, const TapControllerDetails& tap) {
    auto indexOf = [&](std::string_view name) -> std::optional<size_t> {
      for (size_t index = 0; index < tap.instructions.size(); ++index)
        if (tap.instructions[index].name == name) return index;
      return std::nullopt;
    };
    if (object.Find("resetInstruction")) {
      const std::string name = object.RequiredString("resetInstruction", kMaxIdentifierLength);
      if (const auto index = indexOf(name)) return *index;
      Fail(object.Place("resetInstruction"),
           "unknown instruction '" + name + "' (this TAP controller has: " + JoinInstructionNames(tap) + ")");
    }
    if (const auto index = indexOf("IDCODE")) return *index;
    if (const auto index = indexOf("BYPASS")) return *index;
    Fail(object.Place(), "a TAP controller without an IDCODE or BYPASS instruction needs a 'resetInstruction'");
  }

  void BuildI2cBus(const Json& value, const std::string& place, size_t portIndex, DomainState& domain) {
    const ObjectReader object(value, place, kNodeMembers, {"devices"});
    std::string identifier = ReadIdentifier(object);
    if (identifier.empty()) identifier = DefaultName(domain, "I2cBus");
    const size_t index = AddNode(NodeType::I2cBus, portIndex, std::move(identifier), place, domain);
    ReadCommonMembers(object, index, domain);

    I2cBusDetails bus;
    if (const Json* devices = object.OptionalArray("devices")) {
      for (size_t position = 0; position < devices->size(); ++position) {
        const ObjectReader reader((*devices)[position], PlaceOf(object.Place("devices"), position),
                                  {"address", "name", "size", "kind", "pageSize", "contents", "temperature"});
        I2cDevice device;
        device.address = static_cast<uint8_t>(reader.RequiredUnsigned("address", 0, 0x7f));
        device.name = reader.RequiredString("name", kMaxIdentifierLength);
        device.size = static_cast<uint32_t>(reader.OptionalUnsigned("size", 1, 65536, 256));
        ReadI2cDeviceModel(reader, device);
        for (const I2cDevice& other : bus.devices) {
          if (other.address == device.address)
            Fail(reader.Place("address"),
                 "address " + std::to_string(device.address) + " is already used by '" + other.name + "'");
          if (other.name == device.name) Fail(reader.Place("name"), "duplicate device name '" + device.name + "'");
        }
        bus.devices.push_back(std::move(device));
      }
    }
    nodes_[index].details = std::move(bus);
  }

  // The members that say how the device behaves on the bus.
  static void ReadI2cDeviceModel(const ObjectReader& reader, I2cDevice& device) {
    device.kind = reader.OptionalString("kind", 16, "eeprom");
    if (device.kind != "eeprom" && device.kind != "temperature")
      Fail(reader.Place("kind"), "unknown I2C device kind '" + device.kind + "' (known: eeprom, temperature)");
    device.pageSize = static_cast<uint32_t>(reader.OptionalUnsigned("pageSize", 1, 256, 8));
    device.temperature = static_cast<int32_t>(reader.OptionalUnsigned("temperature", 0, 125, 25));
    const std::string contents = reader.OptionalString("contents", 2 * 65536 + 65536);
    std::string digits;
    for (char c : contents) {
      if (c == ' ') continue;
      if (!std::isxdigit(static_cast<unsigned char>(c)))
        Fail(reader.Place("contents"), "contents are hexadecimal byte pairs, optionally separated by blanks");
      digits += c;
    }
    if (digits.size() % 2 != 0 || digits.size() / 2 > device.size)
      Fail(reader.Place("contents"), "contents must be whole bytes and no more than the device's size");
    for (size_t i = 0; i < digits.size(); i += 2)
      device.contents.push_back(static_cast<uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
  }

  void BuildPinsInterface(const Json& value, const std::string& place, size_t portIndex, DomainState& domain) {
    const ObjectReader object(value, place, kNodeMembers, {"pins"});
    std::string identifier = ReadIdentifier(object);
    if (identifier.empty()) identifier = DefaultName(domain, "Pins");
    const size_t index = AddNode(NodeType::PinsInterface, portIndex, std::move(identifier), place, domain);
    ReadCommonMembers(object, index, domain);

    PinsInterfaceDetails details;
    const Json& pins = object.RequiredArray("pins", true);
    for (size_t position = 0; position < pins.size(); ++position) {
      const ObjectReader reader(pins[position], PlaceOf(object.Place("pins"), position),
                                {"name", "direction", "level"});
      Pin pin;
      pin.name = reader.RequiredString("name", kMaxIdentifierLength);
      if (!IsInstructionName(pin.name))
        Fail(reader.Place("name"), "pin name '" + pin.name + "' may hold only letters, digits and '_'");
      const std::string direction = reader.RequiredString("direction", 16);
      if (direction == "input")
        pin.direction = PinDirection::Input;
      else if (direction == "output")
        pin.direction = PinDirection::Output;
      else if (direction == "bidirectional")
        pin.direction = PinDirection::Bidirectional;
      else
        Fail(reader.Place("direction"), "direction '" + direction + "' is not one of input, output, bidirectional");
      pin.level = static_cast<uint8_t>(reader.OptionalUnsigned("level", 0, 1, 0));
      for (const Pin& other : details.pins)
        if (other.name == pin.name) Fail(reader.Place("name"), "duplicate pin name '" + pin.name + "'");
      details.pins.push_back(std::move(pin));
    }
    nodes_[index].details = std::move(details);
  }

  // Declared groups, or one group of all the domain's cores when none is.
  void BuildCoreGroups(const ObjectReader& domainObject, DomainState& domain) {
    const Json* groups = domainObject.OptionalArray("coreGroups");
    if (!groups) {
      if (domain.coreIndexes.empty()) return;
      const size_t index = AddNode(NodeType::LogicalGroupCore, domain.domainIndex, DefaultName(domain, "CoreGroup"),
                                   domainObject.Place(), domain);
      nodes_[index].details = CoreGroupDetails{};
      for (size_t core : domain.coreIndexes) JoinCoreGroup(core, index, domainObject.Place());
      return;
    }
    for (size_t position = 0; position < groups->size(); ++position) {
      const std::string place = PlaceOf(domainObject.Place("coreGroups"), position);
      const ObjectReader object((*groups)[position], place, kNodeMembers, {"members"});
      std::string identifier = ReadIdentifier(object);
      if (identifier.empty()) identifier = DefaultName(domain, "CoreGroup");
      const size_t index =
          AddNode(NodeType::LogicalGroupCore, domain.domainIndex, std::move(identifier), place, domain);
      nodes_[index].details = CoreGroupDetails{};
      ReadCommonMembers(object, index, domain);
      const Json& members = object.RequiredArray("members", true);
      for (size_t member = 0; member < members.size(); ++member) {
        const std::string memberPlace = PlaceOf(object.Place("members"), member);
        const std::string name = ReadString(members[member], memberPlace, kMaxIdentifierLength);
        const auto found = domain.indexByIdentifier.find(name);
        if (found == domain.indexByIdentifier.end())
          Fail(memberPlace, "unknown device '" + name + "' in its target domain");
        const NodeType type = nodes_[found->second].type;
        if (type != NodeType::LogicalCore && type != NodeType::LogicalDie && type != NodeType::LogicalPackage)
          Fail(memberPlace, "'" + name + "' is a " + std::string(NodeTypeName(type)) +
                                "; a core group holds cores, dies and packages");
        ForEachCoreAtOrBelow(found->second, [&](size_t core) { JoinCoreGroup(core, index, memberPlace); });
      }
    }
  }

  template <class Visit>
  void ForEachCoreAtOrBelow(size_t index, const Visit& visit) {
    if (nodes_[index].type == NodeType::LogicalCore) {
      visit(index);
      return;
    }
    // Packages hold dies and cores, dies hold cores: the walk is two levels deep at most.
    for (uint32_t childId : nodes_[index].childIds) {
      const size_t child = IndexOf(childId);
      if (nodes_[child].type == NodeType::LogicalCore || nodes_[child].type == NodeType::LogicalDie)
        ForEachCoreAtOrBelow(child, visit);
    }
  }

  void JoinCoreGroup(size_t coreIndex, size_t groupIndex, const std::string& place) {
    Node& core = nodes_[coreIndex];
    const uint32_t groupId = nodes_[groupIndex].id;
    if (core.coreGroupId != 0)
      Fail(place, "core '" + core.identifier + "' is already in core group '" +
                      nodes_[IndexOf(core.coreGroupId)].identifier + "'");
    core.coreGroupId = groupId;
    std::get<CoreGroupDetails>(nodes_[groupIndex].details).coreIds.push_back(core.id);
    for (uint32_t threadId : core.childIds) nodes_[IndexOf(threadId)].coreGroupId = groupId;
  }

  void ResolveDebugAccess(DomainState& domain) {
    for (const PendingDebugAccess& pending : domain.pendingDebugAccess) {
      const std::string tapPlace = PlaceOf(pending.place, "tap");
      const auto found = domain.indexByIdentifier.find(pending.tapIdentifier);
      if (found == domain.indexByIdentifier.end())
        Fail(tapPlace, "unknown TAP controller '" + pending.tapIdentifier + "' in its target domain");
      const Node& tapNode = nodes_[found->second];
      const TapControllerDetails* tap = tapNode.As<TapControllerDetails>();
      if (!tap)
        Fail(tapPlace, "'" + pending.tapIdentifier + "' is a " + std::string(NodeTypeName(tapNode.type)) +
                           ", not a TAP controller");
      if (!tap->FindInstruction(pending.instruction))
        Fail(PlaceOf(pending.place, "instruction"), "TAP controller '" + pending.tapIdentifier +
                                                        "' has no instruction '" + pending.instruction +
                                                        "' (it has: " + JoinInstructionNames(*tap) + ")");
      nodes_[pending.nodeIndex].debugAccess = DebugAccess{tapNode.id, pending.instruction};
    }
    // Parents come before their children, so one pass hands access down.
    for (size_t index = domain.domainIndex + 1; index < nodes_.size(); ++index) {
      Node& node = nodes_[index];
      const Node& parent = nodes_[IndexOf(node.parentId)];
      if (node.debugAccess) continue;
      const bool takesAccess = node.type == NodeType::LogicalPackage || node.type == NodeType::LogicalDie ||
                               node.type == NodeType::LogicalCore || node.type == NodeType::LogicalThread ||
                               node.type == NodeType::LogicalUncore || node.type == NodeType::LogicalChipset;
      if (takesAccess && parent.debugAccess) node.debugAccess = parent.debugAccess;
    }
  }

  // A device described as disabled (a fused-off core) takes everything
  // beneath it along. Parents come before their children.
  void DisableBelowDisabled(const DomainState& domain) {
    for (size_t index = domain.domainIndex + 1; index < nodes_.size(); ++index)
      if (!nodes_[IndexOf(nodes_[index].parentId)].enabled) nodes_[index].enabled = false;
  }

  // Below a debug port: that port. Else the port of the TAP controller that
  // debugs the node. Else the domain's only port, if it has exactly one.
  void AssignDebugPorts(DomainState& domain) {
    const uint32_t onlyPort = domain.debugPortIndexes.size() == 1 ? nodes_[domain.debugPortIndexes[0]].id : 0;
    std::vector<uint32_t> portAbove(nodes_.size() - domain.domainIndex, 0);
    for (size_t index = domain.domainIndex + 1; index < nodes_.size(); ++index) {
      const Node& node = nodes_[index];
      const size_t parent = IndexOf(node.parentId);
      portAbove[index - domain.domainIndex] = node.type == NodeType::Debugport ? node.id
                                              : parent > domain.domainIndex    ? portAbove[parent - domain.domainIndex]
                                                                               : 0;
    }
    for (size_t index = domain.domainIndex; index < nodes_.size(); ++index) {
      Node& node = nodes_[index];
      uint32_t port = portAbove[index - domain.domainIndex];
      if (port == 0 && node.debugAccess)
        port = portAbove[IndexOf(node.debugAccess->tapControllerId) - domain.domainIndex];
      node.debugPortId = port != 0 ? port : onlyPort;
    }
  }

  size_t IndexOf(uint32_t id) const { return indexById_.at(id); }

  std::vector<Node> nodes_;
  std::unordered_map<uint32_t, size_t> indexById_;
  std::array<uint32_t, kNodeTypeCount> ordinals_{};
};

}  // namespace

std::vector<Node> BuildNodes(const Json& targetDomains, const std::string& place) {
  return Builder().Build(targetDomains, place);
}

}  // namespace voxtrel::platform::target
