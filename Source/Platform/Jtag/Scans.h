// Scans as a probe makes them on a chain: instruction and data register
// scans of the whole chain or of one TAP controller (the others in BYPASS),
// and the reading of a path whose length the probe does not know.
//
// A chain-wide value lists the bits from the TDO end: bit 0 is bit 0 of the
// TAP controller nearest TDO.
#pragma once

#include <cstdint>
#include <optional>

#include "Jtag/Bits.h"
#include "Jtag/JtagModel.h"

namespace voxtrel::platform::jtag {

// Bits of the instruction registers a scan of `target` shifts.
size_t IrScanLength(const ChainTarget& target);
// Loads `ir` (IrScanLength bits; the other TAPs get all ones) and ends in
// Run-Test/Idle; the captured bits, from the TDO end.
Bits ScanIr(ChainTarget& target, const Bits& ir);
// True when every TAP already holds what ScanIr(ir) would load.
bool HoldsInstruction(const ChainTarget& target, const Bits& ir);
// Shifts `dr` through the data path and ends in Run-Test/Idle; for one TAP,
// the others are taken to be in BYPASS and get one bit each. What the
// target's part of the path captured.
Bits ScanDr(ChainTarget& target, const Bits& dr);

// Traits of a TDI-TDO path, as the values of VXT_JtagTdiTdoContinuity.
inline constexpr int32_t kGood = 0;
inline constexpr int32_t kOpen = 1;
inline constexpr int32_t kShort = 2;
inline constexpr int32_t kInverted = 4;
inline constexpr int32_t kCorruption = 8;

struct PathReading {
  std::optional<size_t> length;  // Empty when the marker never came out
  Bits captured;                 // What the path held, `length` bits (corrected when inverted)
  int32_t traits = kGood;
};
// In a shift state: shifts a marker through the path, at most maxLength
// bits long, finds where it comes out and how, then shifts the captured
// bits back so that the path holds what it held. Stays in the shift state.
PathReading ReadPath(ScanChain& chain, size_t maxLength);

}  // namespace voxtrel::platform::jtag
