// The default target description, built into the library from
// Configurations/Default.json so that a target exists without any file.
#pragma once

#include <string_view>

namespace voxtrel::platform::target {

inline constexpr std::string_view kDefaultConfigurationName = "Default";
inline constexpr std::string_view kDefaultDescriptionOrigin = "Default (built in)";

// The text of Configurations/Default.json as it was at build time.
std::string_view DefaultDescriptionText();

}  // namespace voxtrel::platform::target
