#include "Cpu/EmulatedMachine.h"

namespace voxtrel::platform::cpu {

EmulatedMachine::EmulatedMachine(const DomainDescription& description, std::vector<uint32_t> apicIds)
    : cpuid_(description.cpuid), apicIds_(std::move(apicIds)) {
  for (const IoDeviceDescription& device : description.ioDevices) {
    if (device.type == "uart16550")
      devices_.push_back(std::make_unique<Uart16550>(device.name, device.port));
    else
      devices_.push_back(std::make_unique<PostCodePort>(device.name, device.port));
  }
  for (size_t thread = 0; thread < apicIds_.size(); ++thread) msrs_.emplace_back(thread == 0, description.msrs);
}

IoDevice* EmulatedMachine::DeviceAt(uint16_t port) const {
  for (const auto& device : devices_)
    if (device->Claims(port)) return device.get();
  return nullptr;
}

// A wider access reaches the following ports byte by byte, low byte first,
// as the bus splits it; the first port decides whether anything answers.
bool EmulatedMachine::ReadIo(uint16_t port, uint32_t size, uint32_t& value) {
  if (!DeviceAt(port)) return false;
  value = 0;
  for (uint32_t byte = 0; byte < size; ++byte) {
    const auto at = static_cast<uint16_t>(port + byte);
    IoDevice* device = DeviceAt(at);
    const uint32_t part = device ? device->Read(static_cast<uint16_t>(at - device->FirstPort())) : 0xFF;
    value |= part << (8 * byte);
  }
  return true;
}

bool EmulatedMachine::WriteIo(uint16_t port, uint32_t size, uint32_t value) {
  if (!DeviceAt(port)) return false;
  for (uint32_t byte = 0; byte < size; ++byte) {
    const auto at = static_cast<uint16_t>(port + byte);
    if (IoDevice* device = DeviceAt(at))
      device->Write(static_cast<uint16_t>(at - device->FirstPort()), static_cast<uint8_t>(value >> (8 * byte)));
  }
  return true;
}

// The described entry of the leaf (and subleaf, where the entry names one);
// zeros for a leaf the table lacks. The thread's APIC id goes into leaf 1's
// EBX[31:24] and the x2APIC id of leaves 0xB and 0x1F.
CpuidResult EmulatedMachine::Cpuid(uint32_t thread, uint32_t leaf, uint32_t subleaf) {
  CpuidResult result;
  for (const CpuidEntry& entry : cpuid_)
    if (entry.leaf == leaf && (!entry.subleaf || *entry.subleaf == subleaf)) {
      result = entry.result;
      break;
    }
  const uint32_t apicId = thread < apicIds_.size() ? apicIds_[thread] : thread;
  if (leaf == 1) result.ebx = (result.ebx & 0x00FFFFFFu) | (apicId << 24);
  if (leaf == 0xB || leaf == 0x1F) result.edx = apicId;
  return result;
}

CpuResult EmulatedMachine::ReadMsr(uint32_t thread, uint32_t msr, uint64_t& value) {
  if (thread >= msrs_.size()) return CpuResult::UnknownThread;
  return msrs_[thread].Read(msr, value);
}

CpuResult EmulatedMachine::WriteMsr(uint32_t thread, uint32_t msr, uint64_t value) {
  if (thread >= msrs_.size()) return CpuResult::UnknownThread;
  return msrs_[thread].Write(msr, value);
}

void EmulatedMachine::Reset() {
  for (auto& device : devices_) device->Reset();
  for (MsrFile& file : msrs_) file.Reset();
}

}  // namespace voxtrel::platform::cpu
