#include "BitbangProtocol.h"

namespace vxt::cli {

VXT_JtagState NextJtagState(VXT_JtagState state, bool tms) {
  using S = VXT_JtagState;
  // {after TMS 0, after TMS 1} for each state, in the order of the values.
  static constexpr S kNext[16][2] = {
      {VXT_JtagState_RTI, VXT_JtagState_TLR},     {VXT_JtagState_RTI, VXT_JtagState_SelDR},
      {VXT_JtagState_CapDR, VXT_JtagState_SelIR}, {VXT_JtagState_ShfDR, VXT_JtagState_Ex1DR},
      {VXT_JtagState_ShfDR, VXT_JtagState_Ex1DR}, {VXT_JtagState_PauDR, VXT_JtagState_UpdDR},
      {VXT_JtagState_PauDR, VXT_JtagState_Ex2DR}, {VXT_JtagState_ShfDR, VXT_JtagState_UpdDR},
      {VXT_JtagState_RTI, VXT_JtagState_SelDR},   {VXT_JtagState_CapIR, VXT_JtagState_TLR},
      {VXT_JtagState_ShfIR, VXT_JtagState_Ex1IR}, {VXT_JtagState_ShfIR, VXT_JtagState_Ex1IR},
      {VXT_JtagState_PauIR, VXT_JtagState_UpdIR}, {VXT_JtagState_PauIR, VXT_JtagState_Ex2IR},
      {VXT_JtagState_ShfIR, VXT_JtagState_UpdIR}, {VXT_JtagState_RTI, VXT_JtagState_SelDR},
  };
  return state < 16 ? kNext[state][tms ? 1 : 0] : S{};
}

bool BitbangProtocol::Clock() {
  const VXT_JtagState next = NextJtagState(state_, tms_);
  bool tdo = true;  // TDO is not driven outside the shift states; it reads high
  if (state_ == VXT_JtagState_ShfDR || state_ == VXT_JtagState_ShfIR) {
    tdo = (port_.Shift(chain_, next, 1, tdi_ ? 1 : 0) & 1) != 0;
  } else if (next != state_) {
    port_.GoToState(chain_, next);
  }
  state_ = next;
  return tdo;
}

std::optional<char> BitbangProtocol::Receive(char c) {
  if (c >= '0' && c <= '7') {
    const int pins = c - '0';
    const bool tck = (pins & 4) != 0;
    tms_ = (pins & 2) != 0;
    tdi_ = (pins & 1) != 0;
    if (tck && !tck_) {
      if (!edgeDone_) Clock();
      edgeDone_ = false;
    }
    tck_ = tck;
    return std::nullopt;
  }
  switch (c) {
    case 'R':
      if (state_ != VXT_JtagState_ShfDR && state_ != VXT_JtagState_ShfIR) return '1';
      if (!edgeDone_) {
        edgeDone_ = true;
        lastTdo_ = Clock();
      }
      return lastTdo_ ? '1' : '0';
    case 't':
    case 'u':
      port_.TapReset(chain_, VXT_JtagResetType_TRST_ONLY);
      state_ = VXT_JtagState_TLR;
      edgeDone_ = false;
      return std::nullopt;
    case 'Q':
      quit_ = true;
      return std::nullopt;
    default:  // 'r', 's', the LED, sleeps and the SWD characters
      return std::nullopt;
  }
}

}  // namespace vxt::cli
