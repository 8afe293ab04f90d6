// The model-specific registers a thread has beside those its engine keeps:
// the time-stamp counter (advancing with host time at a nominal 1 GHz, from
// 0 at reset), the APIC base (enabled, at 0xFEE00000, the bootstrap flag on
// thread 0), TSC_AUX, the microcode signature, and the description's "msrs"
// with their defaults. Any other MSR is refused as a #GP would be.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <vector>

#include "CpuTypes.h"
#include "DomainDescription.h"

namespace voxtrel::platform::cpu {

inline constexpr uint32_t kMsrTsc = 0x10;
inline constexpr uint32_t kMsrApicBase = 0x1B;
inline constexpr uint32_t kMsrMicrocodeSignature = 0x8B;
inline constexpr uint32_t kMsrTscAux = 0xC0000103;

class MsrFile {
 public:
  MsrFile(bool bootstrap, const std::vector<MsrDefault>& defaults);

  CpuResult Read(uint32_t msr, uint64_t& value) const;
  CpuResult Write(uint32_t msr, uint64_t value);
  // The values after reset; the TSC starts again from 0.
  void Reset();

 private:
  uint64_t Nanoseconds() const;

  bool bootstrap_;
  std::vector<MsrDefault> defaults_;
  std::map<uint32_t, uint64_t> values_;  // Every MSR but the TSC
  std::chrono::steady_clock::time_point tscEpoch_;
  uint64_t tscAtEpoch_ = 0;
};

}  // namespace voxtrel::platform::cpu
