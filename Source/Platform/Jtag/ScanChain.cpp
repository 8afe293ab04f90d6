#include "Jtag/ScanChain.h"

#include <utility>

namespace voxtrel::platform::jtag {
namespace {

constexpr const char* kFaultNames[] = {"", "open", "short", "inverted", "corrupted"};

}  // namespace

const char* ChainFaultName(ChainFault fault) { return kFaultNames[static_cast<size_t>(fault)]; }

ChainFault ChainFaultFromName(const std::string& name) {
  for (size_t i = 1; i < std::size(kFaultNames); ++i)
    if (name == kFaultNames[i]) return static_cast<ChainFault>(i);
  return ChainFault::None;
}

ScanChain::ScanChain(uint32_t id, std::string identifier, std::vector<TapController> taps, ChainFault fault)
    : id_(id), identifier_(std::move(identifier)), taps_(std::move(taps)), fault_(fault),
      shiftRegisters_(taps_.size()) {
  AssertTrst();
}

size_t ScanChain::IndexOf(uint32_t tapId) const {
  for (size_t i = 0; i < taps_.size(); ++i)
    if (taps_[i].Id() == tapId) return i;
  return taps_.size();
}

bool ScanChain::FaultyTdo(bool tdo, bool tdi, uint64_t index) const {
  switch (fault_) {
    case ChainFault::None:
      return tdo;
    case ChainFault::Open:
      return true;
    case ChainFault::Short:
      return tdi;
    case ChainFault::Inverted:
      return !tdo;
    case ChainFault::Corrupted:
      return index % 16 == 9 ? !tdo : tdo;
  }
  return tdo;
}

void ScanChain::Enter(TapState next) {
  switch (next) {
    case TapState::TLR:
      for (TapController& tap : taps_) tap.Reset();
      break;
    case TapState::UpdDR:
      for (size_t i = 0; i < taps_.size(); ++i) taps_[i].UpdateDr(shiftRegisters_[i]);
      break;
    case TapState::UpdIR:
      for (size_t i = 0; i < taps_.size(); ++i) taps_[i].UpdateIr(shiftRegisters_[i]);
      break;
    default:
      break;
  }
  state_ = next;
}

bool ScanChain::Clock(bool tms, bool tdi) {
  if (IsShiftState(state_)) {
    const Bits tdo = Shift(Bits(1, tdi), tms);
    return tdo[0];
  }
  // Capture happens on the edge that leaves the capture state.
  if (state_ == TapState::CapDR)
    for (size_t i = 0; i < taps_.size(); ++i) shiftRegisters_[i] = taps_[i].CaptureDr();
  if (state_ == TapState::CapIR)
    for (size_t i = 0; i < taps_.size(); ++i) shiftRegisters_[i] = taps_[i].CaptureIr();
  Enter(NextTapState(state_, tms));
  return FaultyTdo(true, tdi, 0);
}

void ScanChain::Walk(const std::vector<bool>& tms) {
  for (const bool bit : tms) Clock(bit, true);
}

void ScanChain::AssertTrst() { Enter(TapState::TLR); }

size_t ScanChain::PathLength() const {
  size_t length = 0;
  for (const Bits& bits : shiftRegisters_) length += bits.size();
  return length;
}

// The path from TDO back to TDI, then the new bits: the first tdi.size()
// bits of that stream leave through TDO, and the rest stay in the path.
Bits ScanChain::Shift(const Bits& tdi, bool exitOnLast) {
  if (!IsShiftState(state_) || tdi.empty()) return {};
  Bits stream;
  for (size_t i = taps_.size(); i-- > 0;) stream.Append(shiftRegisters_[i]);
  stream.Append(tdi);
  Bits tdo = stream.Slice(0, tdi.size());
  if (fault_ != ChainFault::None)
    for (size_t i = 0; i < tdo.size(); ++i) tdo.Set(i, FaultyTdo(tdo[i], tdi[i], shiftedBits_ + i));
  shiftedBits_ += tdo.size();
  size_t position = tdi.size();
  for (size_t i = taps_.size(); i-- > 0;) {
    Bits& reg = shiftRegisters_[i];
    reg = stream.Slice(position, reg.size());
    position += reg.size();
  }
  if (exitOnLast) Enter(NextTapState(state_, true));
  return tdo;
}

}  // namespace voxtrel::platform::jtag
