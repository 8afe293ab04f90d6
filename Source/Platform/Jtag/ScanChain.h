// A JTAG scan chain: its TAP controllers from TDI to TDO, all driven by the
// same TCK, TMS and TRST, so that they are always in the same state. The
// chain is not thread-safe; JtagModel serialises the work on it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Jtag/Bits.h"
#include "Jtag/TapController.h"
#include "Jtag/TapStates.h"

namespace voxtrel::platform::jtag {

// What stands between the last TAP and the probe's TDO, or between TDI and TDO.
enum class ChainFault : uint8_t {
  None,
  Open,       // TDO floats high: every bit reads 1
  Short,      // TDI is shorted to TDO: TDO repeats TDI
  Inverted,   // TDO is inverted
  Corrupted,  // Every sixteenth bit that leaves TDO is flipped
};
// "open", "short", "inverted", "corrupted"; "" for None.
const char* ChainFaultName(ChainFault fault);
// None for "" or an unknown name.
ChainFault ChainFaultFromName(const std::string& name);

class ScanChain {
 public:
  ScanChain(uint32_t id, std::string identifier, std::vector<TapController> taps, ChainFault fault);

  uint32_t Id() const { return id_; }
  const std::string& Identifier() const { return identifier_; }
  // From TDI to TDO.
  const std::vector<TapController>& Taps() const { return taps_; }
  // Position of the TAP of that id, or taps().size().
  size_t IndexOf(uint32_t tapId) const;
  TapState State() const { return state_; }
  ChainFault Fault() const { return fault_; }
  void SetFault(ChainFault fault) { fault_ = fault; }

  // One TCK: what TDO showed before the edge.
  bool Clock(bool tms, bool tdi);
  // TCKs with these TMS values and TDI 1.
  void Walk(const std::vector<bool>& tms);
  // Moves along the shortest path to `target`.
  void MoveTo(TapState target) { Walk(TmsPath(state_, target)); }
  // TRST: every TAP to Test-Logic-Reset at once.
  void AssertTrst();
  // In a shift state: shifts `tdi` (TMS 0), the last bit with TMS 1 when
  // `exitOnLast`; the bits TDO showed. Outside a shift state: nothing.
  Bits Shift(const Bits& tdi, bool exitOnLast);
  // The length of the path a shift goes through now.
  size_t PathLength() const;

 private:
  bool FaultyTdo(bool tdo, bool tdi, uint64_t index) const;
  void Enter(TapState next);

  uint32_t id_;
  std::string identifier_;
  std::vector<TapController> taps_;
  ChainFault fault_;
  TapState state_ = TapState::TLR;
  // Each TAP's shift register of the path selected at capture.
  std::vector<Bits> shiftRegisters_;
  // Bits shifted since the chain was built; where a corrupted path flips.
  uint64_t shiftedBits_ = 0;
};

}  // namespace voxtrel::platform::jtag
