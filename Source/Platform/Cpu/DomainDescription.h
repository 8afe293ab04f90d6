// What a target domain's description says about its CPUs: the members
// "memoryMap", "ioDevices", "cpuid", "msrs" and "apicIds" of the domain
// (docs/target-description.md). A domain without "memoryMap" runs no CPUs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "../Target/Topology.h"
#include "CpuTypes.h"

namespace voxtrel::platform::cpu {

struct RegionDescription {
  MemoryRegion region;  // Ram or Rom
  std::string image;    // Rom: a built-in image's name or a file's absolute path
};

struct IoDeviceDescription {
  std::string name;
  std::string type;  // "uart16550" or "postCodes"
  uint16_t port = 0;
};

struct CpuidEntry {
  uint32_t leaf = 0;
  std::optional<uint32_t> subleaf;  // Empty: every subleaf
  CpuidResult result;
};

struct MsrDefault {
  uint32_t msr = 0;
  uint64_t value = 0;
};

struct DomainDescription {
  std::vector<RegionDescription> regions;  // Ascending, not overlapping
  std::vector<IoDeviceDescription> ioDevices;
  std::vector<CpuidEntry> cpuid;
  std::vector<MsrDefault> msrs;
  std::vector<uint32_t> apicIds;  // By thread index; threads beyond get their index
};

// Regions are 4 KiB aligned and lie below 2^52, the widest physical space.
inline constexpr uint64_t kRegionAlignment = 0x1000;
inline constexpr uint64_t kPhysicalLimit = 1ull << 52;

// Empty when the domain has no "memoryMap". Throws DescriptionProblem (the
// facet checks refuse such a description when it is selected already).
std::optional<DomainDescription> ReadDomainDescription(const target::Node& domain);

// A ROM image's bytes; throws DescriptionProblem at `place` when it cannot be read.
std::vector<uint8_t> LoadImage(const std::string& image, const std::string& place);

}  // namespace voxtrel::platform::cpu
