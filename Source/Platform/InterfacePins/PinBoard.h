// The sideband pins of every pins interface and debug port, and the board's
// rule of which a probe may drive. Driven pins keep their state per device;
// the pins wired to the target read from it and act on it.
#pragma once

#include <cstdint>

#include "TargetManager/Request.h"
#include "VXT_Enumerations.h"

namespace voxtrel::platform::pins {

inline constexpr uint32_t kOutOfRange = 0x20001;       // No such signal
inline constexpr uint32_t kReadOnlyPin = 0x20002;      // The board drives it; a probe only reads it

// The pins interface or debug port of that id, or null, refused.
const target::Node* PinsDevice(target_manager::Request& request, uint32_t id);

// Refuses (0x20002) a signal the target drives: PRDY and PWRGOOD; and
// (0x20001) one that does not exist.
uint32_t CheckDrivable(target_manager::Request& request, VXT_PinsSignal signal);

VXT_PinsState ReadPin(const target::Node& device, VXT_PinsSignal signal);
void DrivePin(const target::Node& device, VXT_PinsSignal signal, VXT_PinsState state);

}  // namespace voxtrel::platform::pins
