#include "Jtag/Scans.h"

#include <bit>

namespace voxtrel::platform::jtag {
namespace {

constexpr uint64_t kMarker = 0x5a3c96e1u;
constexpr size_t kMarkerBits = 32;
// A marker that differs from the one sent in this many bits or fewer has
// come through a corrupting path.
constexpr size_t kCorruptionTolerance = 6;

// The target's bits at its place in a chain-wide stream, the other TAPs'
// given by `other(tapIndex)`, from the TDO end.
template <class Other>
Bits Spread(const ChainTarget& target, const Bits& own, Other other) {
  if (target.WholeChain()) return own;
  Bits stream;
  for (size_t i = target.chain.Taps().size(); i-- > 0;) stream.Append(i == target.tap ? own : other(i));
  return stream;
}

// Offset of the target's bits in a data path of one bypass bit per other TAP.
size_t DrOffset(const ChainTarget& target) {
  return target.WholeChain() ? 0 : target.chain.Taps().size() - 1 - target.tap;
}

// `expected` is at most 64 bits long.
size_t Mismatches(const Bits& seen, size_t offset, const Bits& expected, bool inverted) {
  const uint64_t mask = expected.size() >= 64 ? ~uint64_t{0} : (uint64_t{1} << expected.size()) - 1;
  const uint64_t differing = (seen.Word(offset) ^ (inverted ? ~uint64_t{0} : 0) ^ expected.Word(0)) & mask;
  return static_cast<size_t>(std::popcount(differing));
}

}  // namespace

size_t IrScanLength(const ChainTarget& target) {
  if (!target.WholeChain()) return target.chain.Taps()[target.tap].IrLength();
  size_t length = 0;
  for (const TapController& tap : target.chain.Taps()) length += tap.IrLength();
  return length;
}

Bits ScanIr(ChainTarget& target, const Bits& ir) {
  const auto& taps = target.chain.Taps();
  const Bits stream = Spread(target, ir, [&](size_t i) { return Bits(taps[i].IrLength(), true); });
  target.chain.MoveTo(TapState::ShfIR);
  Bits tdo = target.chain.Shift(stream, true);
  target.chain.MoveTo(TapState::RTI);
  if (target.WholeChain()) return tdo;
  size_t offset = 0;
  for (size_t i = taps.size() - 1; i > target.tap; --i) offset += taps[i].IrLength();
  return tdo.Slice(offset, ir.size());
}

bool HoldsInstruction(const ChainTarget& target, const Bits& ir) {
  const auto& taps = target.chain.Taps();
  const Bits stream = Spread(target, ir, [&](size_t i) { return Bits(taps[i].IrLength(), true); });
  size_t offset = 0;
  for (size_t i = taps.size(); i-- > 0;) {
    const uint32_t length = taps[i].IrLength();
    if (NumberOf(stream.Slice(offset, length)) != taps[i].Instruction()) return false;
    offset += length;
  }
  return true;
}

Bits ScanDr(ChainTarget& target, const Bits& dr) {
  const Bits stream = Spread(target, dr, [](size_t) { return Bits(1, false); });
  target.chain.MoveTo(TapState::ShfDR);
  Bits tdo = target.chain.Shift(stream, true);
  target.chain.MoveTo(TapState::RTI);
  const size_t offset = DrOffset(target);
  return tdo.Slice(offset, dr.size());
}

PathReading ReadPath(ScanChain& chain, size_t maxLength) {
  if (maxLength > kMaxScanBits) maxLength = kMaxScanBits;
  const Bits marker = BitsOf(kMarker, kMarkerBits);
  Bits sent = marker;
  sent.resize(maxLength + kMarkerBits, false);
  const Bits seen = chain.Shift(sent, false);

  PathReading reading;
  if (seen.AllOnes()) {
    reading.traits = kOpen;
    return reading;
  }
  // The first delay at which the marker comes out whole, plain or inverted;
  // else the one where it comes out least damaged.
  std::optional<size_t> closest;
  size_t closestMismatches = kCorruptionTolerance + 1;
  bool closestInverted = false;
  for (size_t delay = 0; delay <= maxLength && !reading.length; ++delay) {
    for (const bool inverted : {false, true}) {
      const size_t mismatches = Mismatches(seen, delay, marker, inverted);
      if (mismatches == 0) {
        reading.length = delay;
        reading.traits = (inverted ? kInverted : kGood) | (delay == 0 ? kShort : kGood);
        closestInverted = inverted;
        break;
      }
      if (mismatches < closestMismatches) {
        closest = delay;
        closestMismatches = mismatches;
        closestInverted = inverted;
      }
    }
  }
  if (!reading.length) {
    reading.traits = kCorruption | (closestInverted ? kInverted : kGood);
    if (!closest) return reading;
    reading.length = closest;
  }
  reading.captured = seen.Slice(0, *reading.length);
  if (closestInverted) reading.captured.flip();
  chain.Shift(reading.captured, false);
  return reading;
}

}  // namespace voxtrel::platform::jtag
