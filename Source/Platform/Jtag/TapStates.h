// The sixteen states of a TAP controller and the moves TMS makes between
// them, as IEEE 1149.1 defines them. The values are those of VXT_JtagState.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace voxtrel::platform::jtag {

enum class TapState : uint8_t {
  TLR, RTI, SelDR, CapDR, ShfDR, Ex1DR, PauDR, Ex2DR, UpdDR, SelIR, CapIR, ShfIR, Ex1IR, PauIR, Ex2IR, UpdIR
};
inline constexpr uint32_t kTapStateCount = 16;

// "TLR", "RTI", ... "UpdIR".
const char* TapStateName(TapState state);
// The state for a VXT_JtagState value; empty past UpdIR.
std::optional<TapState> TapStateFromValue(uint32_t value);

// The state one TCK later with this TMS.
TapState NextTapState(TapState state, bool tms);

// The TMS values of the shortest walk from `from` to `to`; empty when they
// are the same state.
const std::vector<bool>& TmsPath(TapState from, TapState to);

// The TMS value that keeps the controller in a state it can stay in (TLR,
// RTI, the shift and pause states); empty for the others.
std::optional<bool> StayingTms(TapState state);

bool IsShiftState(TapState state);

}  // namespace voxtrel::platform::jtag
