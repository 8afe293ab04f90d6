// Firmware images assembled from Firmware/*.s at build time and built into
// the platform, by the name a description's ROM region gives as its "image".
#pragma once

#include <optional>
#include <string_view>

namespace voxtrel::platform::target {
std::string_view DefaultFirmwareImage();
}

namespace voxtrel::platform::cpu {

// Empty for a name that is no built-in image.
inline std::optional<std::string_view> BuiltInFirmware(std::string_view name) {
  if (name == "Default") return target::DefaultFirmwareImage();
  return std::nullopt;
}

}  // namespace voxtrel::platform::cpu
