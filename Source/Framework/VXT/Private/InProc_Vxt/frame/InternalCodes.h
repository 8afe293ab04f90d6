// Internal codes the library itself raises. Components speak the same codes;
// only the frame's translation turns them into public ones.
#pragma once

#include <cstdint>

namespace vxt::code {

inline constexpr uint32_t kSuccess = 0;
inline constexpr uint32_t kInvalidArgument = 0x20000;  // Null pointer or unusable argument
inline constexpr uint32_t kOutOfRange = 0x20001;       // A value out of range
inline constexpr uint32_t kNotSupported = 0x20002;
inline constexpr uint32_t kNotImplemented = 0x20003;
inline constexpr uint32_t kUnknownDevice = 0x20005;
inline constexpr uint32_t kException = 0x20009;  // Caught by the frame; no public row
inline constexpr uint32_t kStructureSize = 0x2000a;
inline constexpr uint32_t kWrongDeviceType = 0x2000d;
inline constexpr uint32_t kInvalidHandle = 0x2000e;

}  // namespace vxt::code
