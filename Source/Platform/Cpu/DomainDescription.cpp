#include "Cpu/DomainDescription.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "Cpu/FirmwareImages.h"
#include "Target/FacetChecks.h"
#include "Target/JsonReader.h"

namespace voxtrel::platform::cpu {

using target::Json;
using target::ObjectReader;

namespace {

constexpr size_t kMaxNameLength = 63;
constexpr size_t kMaxImageLength = 4095;

void RequireDomain(const target::Node& node, const std::string& place) {
  if (node.type != target::NodeType::TargetDomain) target::Fail(place, "only a target domain has this member");
}

std::vector<RegionDescription> ReadMemoryMap(const Json& facet, const std::string& place) {
  std::vector<RegionDescription> regions;
  for (size_t index = 0; index < facet.size(); ++index) {
    const ObjectReader object(facet[index], target::PlaceOf(place, index), {"name", "kind", "base", "size", "image"});
    RegionDescription region;
    region.region.name = object.RequiredString("name", kMaxNameLength);
    const std::string kind = object.RequiredString("kind", 8);
    if (kind != "ram" && kind != "rom") target::Fail(object.Place("kind"), "expected \"ram\" or \"rom\"");
    region.region.kind = kind == "ram" ? RegionKind::Ram : RegionKind::Rom;
    region.region.base = object.RequiredUnsigned("base", 0, kPhysicalLimit - kRegionAlignment);
    region.region.size = object.RequiredUnsigned("size", kRegionAlignment, kPhysicalLimit - region.region.base);
    if (region.region.base % kRegionAlignment || region.region.size % kRegionAlignment)
      target::Fail(object.Place(), "base and size must be multiples of 0x1000");
    if (region.region.kind == RegionKind::Rom) {
      region.image = object.RequiredString("image", kMaxImageLength);
      if (LoadImage(region.image, object.Place("image")).size() > region.region.size)
        target::Fail(object.Place("image"), "the image is larger than the region");
    } else if (object.Find("image")) {
      target::Fail(object.Place("image"), "only a ROM region has an image");
    }
    regions.push_back(std::move(region));
  }
  std::sort(regions.begin(), regions.end(), [](const auto& a, const auto& b) { return a.region.base < b.region.base; });
  for (size_t index = 1; index < regions.size(); ++index)
    if (regions[index - 1].region.base + regions[index - 1].region.size > regions[index].region.base)
      target::Fail(place,
                   "regions '" + regions[index - 1].region.name + "' and '" + regions[index].region.name + "' overlap");
  return regions;
}

std::vector<IoDeviceDescription> ReadIoDevices(const Json& facet, const std::string& place) {
  std::vector<IoDeviceDescription> devices;
  for (size_t index = 0; index < facet.size(); ++index) {
    const ObjectReader object(facet[index], target::PlaceOf(place, index), {"name", "type", "port"});
    IoDeviceDescription device;
    device.name = object.RequiredString("name", kMaxNameLength);
    device.type = object.RequiredString("type", 16);
    if (device.type != "uart16550" && device.type != "postCodes")
      target::Fail(object.Place("type"), "expected \"uart16550\" or \"postCodes\"");
    const uint64_t ports = device.type == "uart16550" ? 8 : 1;
    device.port = static_cast<uint16_t>(object.RequiredUnsigned("port", 0, 0x10000 - ports));
    for (const IoDeviceDescription& other : devices) {
      const uint64_t otherPorts = other.type == "uart16550" ? 8 : 1;
      if (device.port < other.port + otherPorts && other.port < device.port + ports)
        target::Fail(object.Place("port"), "the ports overlap those of '" + other.name + "'");
    }
    devices.push_back(std::move(device));
  }
  return devices;
}

std::vector<CpuidEntry> ReadCpuid(const Json& facet, const std::string& place) {
  std::vector<CpuidEntry> entries;
  for (size_t index = 0; index < facet.size(); ++index) {
    const ObjectReader object(facet[index], target::PlaceOf(place, index),
                              {"leaf", "subleaf", "eax", "ebx", "ecx", "edx"});
    CpuidEntry entry;
    entry.leaf = static_cast<uint32_t>(object.RequiredUnsigned("leaf", 0, UINT32_MAX));
    if (object.Find("subleaf"))
      entry.subleaf = static_cast<uint32_t>(object.RequiredUnsigned("subleaf", 0, UINT32_MAX));
    entry.result.eax = static_cast<uint32_t>(object.OptionalUnsigned("eax", 0, UINT32_MAX, 0));
    entry.result.ebx = static_cast<uint32_t>(object.OptionalUnsigned("ebx", 0, UINT32_MAX, 0));
    entry.result.ecx = static_cast<uint32_t>(object.OptionalUnsigned("ecx", 0, UINT32_MAX, 0));
    entry.result.edx = static_cast<uint32_t>(object.OptionalUnsigned("edx", 0, UINT32_MAX, 0));
    entries.push_back(entry);
  }
  return entries;
}

std::vector<MsrDefault> ReadMsrs(const Json& facet, const std::string& place) {
  std::vector<MsrDefault> msrs;
  for (size_t index = 0; index < facet.size(); ++index) {
    const ObjectReader object(facet[index], target::PlaceOf(place, index), {"msr", "value"});
    msrs.push_back({static_cast<uint32_t>(object.RequiredUnsigned("msr", 0, UINT32_MAX)),
                    object.RequiredUnsigned("value", 0, UINT64_MAX)});
  }
  return msrs;
}

std::vector<uint32_t> ReadApicIds(const Json& facet, const std::string& place) {
  std::vector<uint32_t> ids;
  for (size_t index = 0; index < facet.size(); ++index) {
    const uint32_t id =
        static_cast<uint32_t>(target::ReadUnsigned(facet[index], target::PlaceOf(place, index), 0, 0xFF));
    if (std::find(ids.begin(), ids.end(), id) != ids.end())
      target::Fail(target::PlaceOf(place, index), "APIC id " + std::to_string(id) + " is given twice");
    ids.push_back(id);
  }
  return ids;
}

template <auto Reader>
void CheckDomainFacet(const Json& facet, const std::string& place, const target::Node& node) {
  RequireDomain(node, place);
  Reader(facet, place);
}

// The checks run when a description is selected, so a mistake is reported then.
const bool registered = [] {
  target::RegisterFacetCheck("memoryMap", &CheckDomainFacet<&ReadMemoryMap>);
  target::RegisterFacetCheck("ioDevices", &CheckDomainFacet<&ReadIoDevices>);
  target::RegisterFacetCheck("cpuid", &CheckDomainFacet<&ReadCpuid>);
  target::RegisterFacetCheck("msrs", &CheckDomainFacet<&ReadMsrs>);
  target::RegisterFacetCheck("apicIds", &CheckDomainFacet<&ReadApicIds>);
  return true;
}();

}  // namespace

std::vector<uint8_t> LoadImage(const std::string& image, const std::string& place) {
  if (std::optional<std::string_view> builtIn = BuiltInFirmware(image)) return {builtIn->begin(), builtIn->end()};
  std::ifstream file(image, std::ios::binary);
  if (image.empty() || image.front() != '/' || !file)
    target::Fail(place, "no built-in firmware and no file is named \"" + image + "\"");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::optional<DomainDescription> ReadDomainDescription(const target::Node& domain) {
  const Json* memoryMap = domain.FindFacet("memoryMap");
  if (!memoryMap) return std::nullopt;
  DomainDescription description;
  description.regions = ReadMemoryMap(*memoryMap, "memoryMap");
  if (const Json* facet = domain.FindFacet("ioDevices")) description.ioDevices = ReadIoDevices(*facet, "ioDevices");
  if (const Json* facet = domain.FindFacet("cpuid")) description.cpuid = ReadCpuid(*facet, "cpuid");
  if (const Json* facet = domain.FindFacet("msrs")) description.msrs = ReadMsrs(*facet, "msrs");
  if (const Json* facet = domain.FindFacet("apicIds")) description.apicIds = ReadApicIds(*facet, "apicIds");
  return description;
}

}  // namespace voxtrel::platform::cpu
