// The default target walked from the root through the Device service, and
// the same tree read from the description file by the rules of the target
// description format: both must name the same devices in the same order,
// with the same types, identifiers, properties and enabled flags.
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "DeviceTestSupport.h"

namespace {

using Json = nlohmann::ordered_json;
using Lines = std::vector<std::string>;

// One line per device, indented by depth:
// "  LogicalCore Core0 enabled {Socket=0}"
std::string DeviceLine(size_t depth, const std::string& type, const std::string& identifier, bool enabled,
                       const std::vector<std::pair<std::string, std::string>>& properties) {
  std::string line(2 * depth, ' ');
  line += type + " " + identifier + (enabled ? " enabled" : " disabled") + " {";
  for (size_t index = 0; index < properties.size(); ++index)
    line += (index ? ", " : "") + properties[index].first + "=" + properties[index].second;
  return line + "}";
}

// The tree as the description declares it.
class DescribedTree {
 public:
  explicit DescribedTree(const Json& document) {
    if (document.contains("parameters"))
      for (const auto& [name, value] : document["parameters"].items()) parameters_[name] = value.get<std::string>();
    lines_.push_back(DeviceLine(0, "LogicalRoot", "Root", true, {}));
    size_t domainNumber = 0;
    for (const Json& domain : document["targetDomains"]) AddDomain(domain, domainNumber++);
  }
  const Lines& lines() const { return lines_; }

 private:
  struct Counters {
    std::map<std::string, size_t> byKind;
    size_t Next(const std::string& kind) { return byKind[kind]++; }
  };

  std::string Substituted(std::string text) const {
    for (const auto& [name, value] : parameters_) {
      const std::string placeholder = "${" + name + "}";
      for (size_t at = text.find(placeholder); at != std::string::npos; at = text.find(placeholder))
        text.replace(at, placeholder.size(), value);
    }
    return text;
  }

  std::string Identifier(const Json& object, const std::string& givenName) const {
    return object.contains("identifier") ? Substituted(object["identifier"].get<std::string>()) : givenName;
  }

  std::string Numbered(const Json& object, const std::string& kind, Counters& counters) const {
    return Identifier(object, kind + std::to_string(counters.Next(kind)));
  }

  // Adds the device's line; returns whether it is enabled.
  bool Add(size_t depth, const std::string& type, const Json& object, const std::string& identifier,
           bool parentEnabled) {
    const bool enabled = parentEnabled && object.value("enabled", true);
    std::vector<std::pair<std::string, std::string>> properties;
    if (object.contains("properties"))
      for (const auto& [name, value] : object["properties"].items())
        properties.emplace_back(name, value.is_string() ? Substituted(value.get<std::string>()) : value.dump());
    // A memory map is published as one property a region.
    if (object.contains("memoryMap"))
      for (size_t index = 0; index < object["memoryMap"].size(); ++index) {
        const Json& region = object["memoryMap"][index];
        properties.emplace_back("MemoryRegion" + std::to_string(index), region["kind"].get<std::string>() + " " +
                                                                            region["base"].get<std::string>() + " " +
                                                                            region["size"].get<std::string>());
      }
    lines_.push_back(DeviceLine(depth, type, identifier, enabled, properties));
    return enabled;
  }

  void AddDomain(const Json& domain, size_t number) {
    Counters counters;
    const bool enabled =
        Add(1, "TargetDomain", domain, Identifier(domain, "TargetDomain" + std::to_string(number)), true);
    bool hasCores = false;
    for (const Json& package : domain.value("packages", Json::array())) {
      const bool packageEnabled = Add(2, "LogicalPackage", package, Numbered(package, "Package", counters), enabled);
      for (const Json& die : package.value("dies", Json::array())) {
        const bool dieEnabled = Add(3, "LogicalDie", die, Numbered(die, "Die", counters), packageEnabled);
        hasCores |= AddCoresAndUncores(die, 4, dieEnabled, counters);
      }
      hasCores |= AddCoresAndUncores(package, 3, packageEnabled, counters);
    }
    for (const Json& chipset : domain.value("chipsets", Json::array()))
      Add(2, "LogicalChipset", chipset, Numbered(chipset, "Chipset", counters), enabled);
    for (const Json& port : domain.value("debugPorts", Json::array())) AddDebugPort(port, enabled, counters);
    if (domain.contains("coreGroups")) {
      for (const Json& group : domain["coreGroups"])
        Add(2, "LogicalGroupCore", group, Numbered(group, "CoreGroup", counters), enabled);
    } else if (hasCores) {
      lines_.push_back(DeviceLine(2, "LogicalGroupCore", "CoreGroup0", enabled, {}));
    }
  }

  bool AddCoresAndUncores(const Json& parent, size_t depth, bool parentEnabled, Counters& counters) {
    bool any = false;
    for (const Json& core : parent.value("cores", Json::array())) {
      for (size_t copy = 0; copy < core.value("count", 1u); ++copy) {
        any = true;
        const size_t coreNumber = counters.Next("Core");
        const bool coreEnabled =
            Add(depth, "LogicalCore", core, Identifier(core, "Core" + std::to_string(coreNumber)), parentEnabled);
        const Json threads = core.value("threads", Json(1));
        const size_t threadCount = threads.is_array() ? threads.size() : threads.get<size_t>();
        for (size_t thread = 0; thread < threadCount; ++thread) {
          const Json object = threads.is_array() ? threads[thread] : Json::object();
          Add(depth + 1, "LogicalThread", object,
              Identifier(object, "Thread" + std::to_string(coreNumber) + "_" + std::to_string(thread)), coreEnabled);
        }
      }
    }
    for (const Json& uncore : parent.value("uncores", Json::array()))
      Add(depth, "LogicalUncore", uncore, Numbered(uncore, "Uncore", counters), parentEnabled);
    return any;
  }

  void AddDebugPort(const Json& port, bool domainEnabled, Counters& counters) {
    const bool enabled = Add(2, "Debugport", port, Numbered(port, "DebugPort", counters), domainEnabled);
    for (const Json& chain : port.value("jtagChains", Json::array())) {
      const bool chainEnabled = Add(3, "JTAGScanChain", chain, Numbered(chain, "JtagChain", counters), enabled);
      for (const Json& tap : chain["tapControllers"])
        Add(4, "TAPController", tap, Numbered(tap, "Tap", counters), chainEnabled);
    }
    const std::pair<const char*, std::pair<const char*, const char*>> leaves[] = {
        {"i2cBuses", {"I2cBus", "I2cBus"}},
        {"pinsInterfaces", {"PinsInterface", "Pins"}},
        {"interfacePorts", {"InterfacePort", "InterfacePort"}},
    };
    for (const auto& [member, kind] : leaves) {
      for (const Json& leaf : port.value(member, Json::array()))
        Add(3, kind.first, leaf, Numbered(leaf, kind.second, counters), enabled);
    }
  }

  std::map<std::string, std::string> parameters_;
  Lines lines_;
};

class DeviceTopologyWalkTest : public vxt::test::DeviceTest {
 protected:
  std::vector<uint32_t> Children(uint32_t deviceId) {
    uint32_t count = 0;
    EXPECT_EQ(devices->GetNumChildrenIds(deviceId, &count), 0);
    std::vector<uint32_t> ids(count + 1);
    EXPECT_EQ(devices->GetChildrenIds(deviceId, count, ids.data()), 0);
    ids.pop_back();
    return ids;
  }

  std::vector<std::pair<std::string, std::string>> Properties(uint32_t deviceId) {
    uint32_t count = 0;
    EXPECT_EQ(devices->GetNumDevicePropertyNames(deviceId, &count), 0);
    std::vector<VXT_PropertyName> names(count + 1);
    std::vector<VXT_PropertyValue> values(count + 1);
    EXPECT_EQ(devices->GetDevicePropertyNames(deviceId, count, names.data()), 0);
    EXPECT_EQ(devices->GetDeviceProperties(deviceId, count, names.data(), values.data()), 0);
    std::vector<std::pair<std::string, std::string>> properties;
    for (uint32_t index = 0; index < count; ++index) properties.emplace_back(names[index], values[index]);
    return properties;
  }

  // Walks depth first, checking each child's way back to its parent and
  // its identifier's way to its id.
  void Walk(uint32_t deviceId, uint32_t targetDomainId, size_t depth, Lines& lines) {
    VXT_Device device{};
    device.structureSize = VXT_DEVICE_SIZE;
    ASSERT_EQ(devices->GetDevice(deviceId, &device), 0);
    uint32_t enabled = 0;
    ASSERT_EQ(devices->IsDeviceEnabled(deviceId, &enabled), 0);
    static const char* const kNames[] = {
        "Unknown",       "LogicalRoot",    "TargetDomain",       "LogicalThread",
        "LogicalCore",   "LogicalUncore",  "LogicalChipset",     "LogicalBox",
        "LogicalDie",    "LogicalPackage", "LogicalGroupDomain", "LogicalGroupCore",
        "Debugport",     "JTAGScanChain",  "TAPController",      "InterfacePort",
        "LogicalModule", "I2cBus",         "PinsInterface",      "VirtualJTAGScanChain"};
    ASSERT_LT(device.nodeType, 20u);
    lines.push_back(DeviceLine(depth, kNames[device.nodeType], device.identifier, enabled == 1, Properties(deviceId)));

    if (device.nodeType == VXT_NodeType_TargetDomain) targetDomainId = deviceId;
    uint32_t found = 0;
    if (targetDomainId != 0) {
      EXPECT_EQ(devices->GetDeviceIdForIdentifier(targetDomainId, device.identifier, &found), 0);
      EXPECT_EQ(found, deviceId) << device.identifier;
    }
    for (uint32_t childId : Children(deviceId)) {
      uint32_t parentId = 0;
      EXPECT_EQ(devices->GetParentIdForDevice(childId, &parentId), 0);
      EXPECT_EQ(parentId, deviceId);
      Walk(childId, targetDomainId, depth + 1, lines);
    }
  }
};

// Each sample description, walked after the client selected it.
TEST_F(DeviceTopologyWalkTest, EachTargetIsItsDescriptionFile) {
  const std::pair<const char*, size_t> configurations[] = {
      {"Default", 19}, {"TwoSocketServer", 43}, {"HostWithBmc", 28}};
  for (const auto& [configuration, deviceCount] : configurations) {
    SCOPED_TRACE(configuration);
    Disconnect(client.clientId);
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    ASSERT_EQ(SelectConfigurationByName(configuration), 0);
    ASSERT_EQ(FinishInitialization(), 0);

    std::ifstream file(std::string(VXT_TEST_CONFIGURATIONS_DIR "/") + configuration + ".json");
    ASSERT_TRUE(file.is_open());
    const DescribedTree described(Json::parse(file));

    uint32_t domainCount = 0;
    ASSERT_EQ(devices->GetNumTargetDomainDeviceIds(&domainCount), 0);
    ASSERT_GT(domainCount, 0u);
    std::vector<uint32_t> domains(domainCount);
    ASSERT_EQ(devices->GetTargetDomainDeviceIds(domainCount, domains.data()), 0);
    uint32_t root = 0;
    ASSERT_EQ(devices->GetParentIdForDevice(domains[0], &root), 0);
    EXPECT_EQ(Children(root), domains);

    Lines walked;
    Walk(root, 0, 0, walked);
    EXPECT_EQ(walked, described.lines());
    EXPECT_EQ(walked.size(), deviceCount);
  }
}

}  // namespace
