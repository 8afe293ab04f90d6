#include "Jtag/TapStates.h"

#include <array>
#include <deque>

namespace voxtrel::platform::jtag {
namespace {

using S = TapState;

// next[state] = {state after TMS 0, state after TMS 1}
constexpr std::array<std::array<S, 2>, kTapStateCount> kNext{{
    {S::RTI, S::TLR},      // TLR
    {S::RTI, S::SelDR},    // RTI
    {S::CapDR, S::SelIR},  // SelDR
    {S::ShfDR, S::Ex1DR},  // CapDR
    {S::ShfDR, S::Ex1DR},  // ShfDR
    {S::PauDR, S::UpdDR},  // Ex1DR
    {S::PauDR, S::Ex2DR},  // PauDR
    {S::ShfDR, S::UpdDR},  // Ex2DR
    {S::RTI, S::SelDR},    // UpdDR
    {S::CapIR, S::TLR},    // SelIR
    {S::ShfIR, S::Ex1IR},  // CapIR
    {S::ShfIR, S::Ex1IR},  // ShfIR
    {S::PauIR, S::UpdIR},  // Ex1IR
    {S::PauIR, S::Ex2IR},  // PauIR
    {S::ShfIR, S::UpdIR},  // Ex2IR
    {S::RTI, S::SelDR},    // UpdIR
}};

constexpr std::array<const char*, kTapStateCount> kNames{"TLR",   "RTI",   "SelDR", "CapDR", "ShfDR", "Ex1DR",
                                                         "PauDR", "Ex2DR", "UpdDR", "SelIR", "CapIR", "ShfIR",
                                                         "Ex1IR", "PauIR", "Ex2IR", "UpdIR"};

size_t Index(S state) { return static_cast<size_t>(state); }

// Shortest TMS paths between every pair of states, by a breadth-first walk
// from each state; built once.
using Paths = std::array<std::array<std::vector<bool>, kTapStateCount>, kTapStateCount>;
Paths BuildPaths() {
  Paths paths;
  for (size_t from = 0; from < kTapStateCount; ++from) {
    std::array<bool, kTapStateCount> seen{};
    seen[from] = true;
    std::deque<size_t> queue{from};
    while (!queue.empty()) {
      const size_t here = queue.front();
      queue.pop_front();
      for (const bool tms : {false, true}) {
        const size_t next = Index(kNext[here][tms ? 1 : 0]);
        if (seen[next]) continue;
        seen[next] = true;
        paths[from][next] = paths[from][here];
        paths[from][next].push_back(tms);
        queue.push_back(next);
      }
    }
  }
  return paths;
}

}  // namespace

const char* TapStateName(TapState state) { return kNames[Index(state)]; }

std::optional<TapState> TapStateFromValue(uint32_t value) {
  if (value >= kTapStateCount) return std::nullopt;
  return static_cast<TapState>(value);
}

TapState NextTapState(TapState state, bool tms) { return kNext[Index(state)][tms ? 1 : 0]; }

const std::vector<bool>& TmsPath(TapState from, TapState to) {
  static const Paths paths = BuildPaths();
  return paths[Index(from)][Index(to)];
}

std::optional<bool> StayingTms(TapState state) {
  for (const bool tms : {false, true})
    if (NextTapState(state, tms) == state) return tms;
  return std::nullopt;
}

bool IsShiftState(TapState state) { return state == S::ShfDR || state == S::ShfIR; }

}  // namespace voxtrel::platform::jtag
