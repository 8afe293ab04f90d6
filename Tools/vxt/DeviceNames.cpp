#include "DeviceNames.h"

#include <cstdlib>
#include <stdexcept>

#include "Session.h"

namespace vxt::cli {
namespace {

constexpr const char* kNodeTypeNames[] = {
    "Unknown",       "LogicalRoot",    "TargetDomain",       "LogicalThread",
    "LogicalCore",   "LogicalUncore",  "LogicalChipset",     "LogicalBox",
    "LogicalDie",    "LogicalPackage", "LogicalGroupDomain", "LogicalGroupCore",
    "Debugport",     "JTAGScanChain",  "TAPController",      "InterfacePort",
    "LogicalModule", "I2cBus",         "PinsInterface",      "VirtualJTAGScanChain",
};

// A whole "0x..." number, or nothing.
bool ParseId(const std::string& text, uint32_t& id) {
  if (text.size() < 3 || text.size() > 10 || text.compare(0, 2, "0x") != 0) return false;
  char* end = nullptr;
  const unsigned long value = std::strtoul(text.c_str() + 2, &end, 16);
  if (*end != '\0') return false;
  id = static_cast<uint32_t>(value);
  return true;
}

// The id of `identifier` in the domain, or 0; a name that is not there is
// no failure here.
uint32_t FindIn(IInternalService_Device& devices, uint32_t domainId, const std::string& identifier) {
  uint32_t id = 0;
  return devices.GetDeviceIdForIdentifier(domainId, identifier.c_str(), &id) == VXT_SUCCESS ? id : 0;
}

}  // namespace

std::string NodeTypeText(VXT_NodeType type) {
  const auto index = static_cast<uint32_t>(type);
  return index < std::size(kNodeTypeNames) ? kNodeTypeNames[index] : std::to_string(index);
}

TargetDomains ReadTargetDomains(IInternalService_Device& devices) {
  TargetDomains domains;
  uint32_t count = 0;
  Check(devices.GetNumTargetDomainDeviceIds(&count), "GetNumTargetDomainDeviceIds");
  domains.ids.resize(count);
  if (count == 0) return domains;
  Check(devices.GetTargetDomainDeviceIds(count, domains.ids.data()), "GetTargetDomainDeviceIds");
  Check(devices.GetParentIdForDevice(domains.ids.front(), &domains.rootId), "GetParentIdForDevice");
  return domains;
}

std::string IdentifierOf(IInternalService_Device& devices, uint32_t deviceId) {
  char identifier[VXT_DEVICE_IDENTIFIER_SIZE] = "";
  Check(devices.GetIdentifierForDeviceId(deviceId, identifier), "GetIdentifierForDeviceId");
  return identifier;
}

uint32_t ResolveDevice(IInternalService_Device& devices, const std::string& name) {
  uint32_t id = 0;
  if (ParseId(name, id)) {
    IdentifierOf(devices, id);  // Refuses an id the target does not have
    return id;
  }
  const TargetDomains domains = ReadTargetDomains(devices);
  if (const size_t slash = name.find('/'); slash != std::string::npos) {
    const uint32_t domainId = FindIn(devices, domains.rootId, name.substr(0, slash));
    if (domainId != 0) id = FindIn(devices, domainId, name.substr(slash + 1));
    if (id == 0) throw std::invalid_argument("no device is named '" + name + "'");
    return id;
  }
  std::vector<uint32_t> found;
  if (const uint32_t top = FindIn(devices, domains.rootId, name)) found.push_back(top);
  for (uint32_t domainId : domains.ids)
    if (const uint32_t inDomain = FindIn(devices, domainId, name); inDomain != 0 && inDomain != domainId)
      found.push_back(inDomain);
  if (found.empty()) throw std::invalid_argument("no device is named '" + name + "'");
  if (found.size() > 1)
    throw std::invalid_argument("'" + name + "' names a device in several target domains; write <domain>/" + name);
  return found.front();
}

}  // namespace vxt::cli
