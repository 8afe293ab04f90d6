// The machine around a domain's emulated CPUs, as its description builds
// it: the IO devices on their ports, the CPUID table with each thread's
// APIC id put in, and each thread's model-specific registers.
#pragma once

#include <memory>
#include <vector>

#include "DomainDescription.h"
#include "EngineSetup.h"
#include "IoDevices.h"
#include "MsrFile.h"

namespace voxtrel::platform::cpu {

class EmulatedMachine final : public DomainMachine {
 public:
  EmulatedMachine(const DomainDescription& description, std::vector<uint32_t> apicIds);

  bool ReadIo(uint16_t port, uint32_t size, uint32_t& value) override;
  bool WriteIo(uint16_t port, uint32_t size, uint32_t value) override;
  CpuidResult Cpuid(uint32_t thread, uint32_t leaf, uint32_t subleaf) override;
  CpuResult ReadMsr(uint32_t thread, uint32_t msr, uint64_t& value) override;
  CpuResult WriteMsr(uint32_t thread, uint32_t msr, uint64_t value) override;
  void Reset() override;

  // For test control and tools: the devices as described, in order.
  const std::vector<std::unique_ptr<IoDevice>>& Devices() const { return devices_; }

 private:
  IoDevice* DeviceAt(uint16_t port) const;

  std::vector<std::unique_ptr<IoDevice>> devices_;
  std::vector<CpuidEntry> cpuid_;
  std::vector<uint32_t> apicIds_;
  std::vector<MsrFile> msrs_;
};

}  // namespace voxtrel::platform::cpu
