// vxt topology: the target's devices as a tree, from the root down, one line
// each: id, node type, identifier, and "(disabled)" for a device that is
// disabled or stands below one.
#include <algorithm>
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"

namespace vxt::cli {
namespace {

// Node types are padded to this width, so that identifiers line up among
// siblings.
constexpr size_t kTypeWidth = 16;

struct Walker {
  IInternalService_Device& devices;
  bool withProperties;
  std::ostream& out;

  std::vector<uint32_t> Children(uint32_t deviceId) {
    uint32_t count = 0;
    Check(devices.GetNumChildrenIds(deviceId, &count), "GetNumChildrenIds");
    std::vector<uint32_t> ids(count);
    if (count > 0) Check(devices.GetChildrenIds(deviceId, count, ids.data()), "GetChildrenIds");
    return ids;
  }

  // " {Name=Value, ...}", or nothing for a device without properties.
  std::string Properties(uint32_t deviceId) {
    uint32_t count = 0;
    Check(devices.GetNumDevicePropertyNames(deviceId, &count), "GetNumDevicePropertyNames");
    if (count == 0) return {};
    std::vector<VXT_PropertyName> names(count);
    std::vector<VXT_PropertyValue> values(count);
    Check(devices.GetDevicePropertyNames(deviceId, count, names.data()), "GetDevicePropertyNames");
    Check(devices.GetDeviceProperties(deviceId, count, names.data(), values.data()), "GetDeviceProperties");
    std::string text = " {";
    for (uint32_t index = 0; index < count; ++index)
      text += std::string(index ? ", " : "") + names[index] + "=" + values[index];
    return text + "}";
  }

  void Show(uint32_t deviceId, size_t depth) {
    VXT_Device device{};
    device.structureSize = VXT_DEVICE_SIZE;
    Check(devices.GetDevice(deviceId, &device), "GetDevice");
    uint32_t enabled = 0;
    Check(devices.IsDeviceEnabled(deviceId, &enabled), "IsDeviceEnabled");
    char id[11];
    std::snprintf(id, sizeof id, "0x%08x", deviceId);
    std::string type = NodeTypeText(device.nodeType);
    type.resize(std::max<size_t>(type.size(), kTypeWidth), ' ');
    out << std::string(2 * depth, ' ') << id << "  " << type << "  " << device.identifier
        << (enabled ? "" : "  (disabled)") << (withProperties ? Properties(deviceId) : "") << '\n';
    for (uint32_t child : Children(deviceId)) Show(child, depth + 1);
  }
};

int ShowTopology(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  const TargetDomains domains = ReadTargetDomains(devices);
  if (domains.ids.empty()) return 0;
  Walker{devices, arguments.flags.at("properties"), out}.Show(domains.rootId, 0);
  return 0;
}

const bool registered = RegisterCommand(
    {"topology", "Show the target's devices as a tree: id, node type, identifier, and whether disabled",
     [](CLI::App& command, CommandArguments& arguments) {
       arguments.flags["properties"] = false;
       command.add_flag("-P,--properties", arguments.flags["properties"], "Show each device's properties too");
     },
     &ShowTopology});

}  // namespace
}  // namespace vxt::cli
