// The layout of a BundleScan bundle: records one after the other, each a
// kind byte and its fields, numbers little-endian:
//   0x01 state:u8 numClocks:u32             move to the state, stay the clocks
//   0x02 state:u8 count:u32 tdi:(count+7)/8 shift count bits, then move on
//   0x03                                    TRST
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Jtag/Bits.h"
#include "Jtag/TapStates.h"

namespace voxtrel::platform::jtag {

struct BundleStep {
  enum class Kind : uint8_t { Move = 1, Shift = 2, Reset = 3 };
  Kind kind = Kind::Reset;
  TapState state = TapState::TLR;
  uint32_t count = 0;
  Bits tdi;
};

// The steps of the whole bundle, or what is wrong with it.
std::optional<std::string> ParseBundle(const uint8_t* bundle, uint32_t size, std::vector<BundleStep>& steps);

}  // namespace voxtrel::platform::jtag
