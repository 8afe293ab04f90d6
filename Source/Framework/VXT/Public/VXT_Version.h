// The library's version record.
#pragma once

#include <cstdint>

inline constexpr uint32_t VXT_VERSION_SIZE = 20;
// Size of the buffer GetImplementationIdentifier fills.
inline constexpr uint32_t VXT_IMPLEMENTATION_IDENTIFIER_SIZE = 32;
// Size of the buffer GetSharedMemoryIdentifier fills.
inline constexpr uint32_t VXT_SHARED_MEMORY_IDENTIFIER_SIZE = 64;
// Size of one logging preset name buffer.
inline constexpr uint32_t VXT_LOGGING_PRESET_NAME_SIZE = 64;

struct VXT_Version {
  uint32_t structureSize;  // VXT_VERSION_SIZE
  uint32_t major;
  uint32_t minor;
  uint32_t build;
  uint32_t classification;
};

static_assert(sizeof(VXT_Version) == VXT_VERSION_SIZE);
