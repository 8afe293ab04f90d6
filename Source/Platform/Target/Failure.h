// How the target's components report a refusal: an internal code and the
// whole message that is posted with it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace voxtrel::platform::target {

// Internal codes of the configuration and target components.
inline constexpr uint32_t kNullArgument = 0x20000;            // A required pointer is null
inline constexpr uint32_t kUnknownParameter = 0x20001;        // A parameter the description does not declare
inline constexpr uint32_t kRefusedInThisState = 0x20002;      // Not while the target is initialized, or already running
inline constexpr uint32_t kConfigurationNotFound = 0x260000;  // No configuration of that name, or no such file
inline constexpr uint32_t kInvalidDescription = 0x260002;     // The description cannot be read or is not valid

struct Failure {
  uint32_t code = 0;
  std::string message;
};

// Empty on success.
using Outcome = std::optional<Failure>;

}  // namespace voxtrel::platform::target
