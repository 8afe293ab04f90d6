// What Common knows of the process itself: its GUID and the run's name.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace voxtrel::platform::common {

// Random, made on first use and the same for the rest of the process.
const std::array<uint8_t, 16>& ProcessGuid();

void SetRunName(std::string name);
// Empty until a name is set.
std::string RunName();

}  // namespace voxtrel::platform::common
