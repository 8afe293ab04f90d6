#include "Cpu/MsrFile.h"

namespace voxtrel::platform::cpu {

namespace {
constexpr uint64_t kApicBaseAddress = 0xFEE00000;
constexpr uint64_t kApicEnable = 0x800;
constexpr uint64_t kApicBootstrap = 0x100;
// Bits of the APIC base a program may change: enable, x2APIC mode, the
// address (a 39-bit physical space). The bootstrap flag is read-only.
constexpr uint64_t kApicBaseWritable = 0x7FFFFFF000ull | kApicEnable | 0x400;
}  // namespace

MsrFile::MsrFile(bool bootstrap, const std::vector<MsrDefault>& defaults) : bootstrap_(bootstrap), defaults_(defaults) {
  Reset();
}

void MsrFile::Reset() {
  values_.clear();
  values_[kMsrApicBase] = kApicBaseAddress | kApicEnable | (bootstrap_ ? kApicBootstrap : 0);
  values_[kMsrMicrocodeSignature] = 0;
  values_[kMsrTscAux] = 0;
  for (const MsrDefault& entry : defaults_) values_[entry.msr] = entry.value;
  tscEpoch_ = std::chrono::steady_clock::now();
  tscAtEpoch_ = 0;
}

uint64_t MsrFile::Nanoseconds() const {
  return static_cast<uint64_t>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() - tscEpoch_).count());
}

CpuResult MsrFile::Read(uint32_t msr, uint64_t& value) const {
  if (msr == kMsrTsc) {
    value = tscAtEpoch_ + Nanoseconds();
    return CpuResult::Ok;
  }
  auto found = values_.find(msr);
  if (found == values_.end()) return CpuResult::GeneralProtection;
  value = found->second;
  return CpuResult::Ok;
}

CpuResult MsrFile::Write(uint32_t msr, uint64_t value) {
  if (msr == kMsrTsc) {
    tscEpoch_ = std::chrono::steady_clock::now();
    tscAtEpoch_ = value;
    return CpuResult::Ok;
  }
  auto found = values_.find(msr);
  if (found == values_.end()) return CpuResult::GeneralProtection;
  if (msr == kMsrApicBase) {
    if (value & ~(kApicBaseWritable | kApicBootstrap)) return CpuResult::GeneralProtection;
    value = (value & kApicBaseWritable) | (found->second & kApicBootstrap);
  }
  if (msr == kMsrTscAux && (value >> 32)) return CpuResult::GeneralProtection;
  found->second = value;
  return CpuResult::Ok;
}

}  // namespace voxtrel::platform::cpu
