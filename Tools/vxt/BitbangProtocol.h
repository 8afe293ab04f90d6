// OpenOCD's remote_bitbang protocol on one chain: each character the
// client sends sets the pins or asks for TDO.
//
//   '0'..'7'  TCK, TMS, TDI as bits 2, 1, 0: a rising TCK clocks the chain
//   'R'       TDO, answered '0' or '1'
//   'r'..'u'  TRST and SRST as bits 1, 0 (TRST asserted resets the TAPs)
//   'B' 'b'   the LED, 'Q' the end of the session; others are ignored
//
// The chain is driven through the JtagAccess service, which moves it by
// whole states and shifts: a clock in a shift state is a one-bit Shift,
// any other clock a move to the next state. A probe samples TDO before the
// rising edge, so 'R' in a shift state makes that edge's shift with the
// pins as they stand and answers the bit that left; the edge itself then
// has nothing left to do.
#pragma once

#include <cstdint>
#include <optional>

#include "JtagSession.h"

namespace vxt::cli {

class BitbangProtocol {
 public:
  BitbangProtocol(JtagPort& port, uint32_t chain) : port_(port), chain_(chain) {}

  // The answer to `c`, if it has one.
  std::optional<char> Receive(char c);
  bool quit() const { return quit_; }

 private:
  // One TCK with the pins as they stand; TDO before the edge.
  bool Clock();

  JtagPort& port_;
  uint32_t chain_;
  VXT_JtagState state_ = VXT_JtagState_TLR;  // Where the chain is; it starts reset
  bool tck_ = false;
  bool tms_ = false;
  bool tdi_ = false;
  bool edgeDone_ = false;  // 'R' made the coming rising edge's shift
  bool lastTdo_ = true;    // What that shift saw
  bool quit_ = false;
};

// The state one TCK later with this TMS.
VXT_JtagState NextJtagState(VXT_JtagState state, bool tms);

}  // namespace vxt::cli
