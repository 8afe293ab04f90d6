// Test control of the PlatformControl component.
#pragma once

#include <cstdint>
#include <optional>

#include "PlatformApi.h"

namespace voxtrel::testing {

// Makes the "Power" status read `value`, whatever the target's state, until
// it is called with no value.
VOXTREL_PLATFORM_API void ForcePowerStatusReading(std::optional<uint32_t> value);

}  // namespace voxtrel::testing
