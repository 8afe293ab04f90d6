#include "Cpu/CpuDomains.h"
#include "Cpu/EmulatedMachine.h"
#include "CpuTestControl.h"

namespace voxtrel::testing {

namespace {

using platform::cpu::CpuDomains;
using platform::cpu::EmulatedMachine;

std::shared_ptr<EmulatedMachine> MachineOf(uint32_t targetDomainId) {
  for (const auto& domain : CpuDomains::Instance().Domains())
    if (domain->targetDomainId == targetDomainId) return domain->machine;
  return nullptr;
}

template <class Device>
Device* Find(const EmulatedMachine& machine, std::string_view name) {
  for (const auto& device : machine.Devices())
    if (auto* typed = dynamic_cast<Device*>(device.get()); typed && (name.empty() || device->Name() == name))
      return typed;
  return nullptr;
}

}  // namespace

std::vector<uint32_t> CpuTargetDomainIds() {
  std::vector<uint32_t> ids;
  for (const auto& domain : CpuDomains::Instance().Domains()) ids.push_back(domain->targetDomainId);
  return ids;
}

std::string CpuUartText(uint32_t targetDomainId, std::string_view uart) {
  auto machine = MachineOf(targetDomainId);
  auto* device = machine ? Find<platform::cpu::Uart16550>(*machine, uart) : nullptr;
  return device ? device->Text() : std::string();
}

void CpuUartReceive(uint32_t targetDomainId, std::string_view uart, std::string_view bytes) {
  auto machine = MachineOf(targetDomainId);
  if (auto* device = machine ? Find<platform::cpu::Uart16550>(*machine, uart) : nullptr)
    device->Receive(std::string(bytes));
}

std::vector<uint8_t> CpuPostCodes(uint32_t targetDomainId) {
  auto machine = MachineOf(targetDomainId);
  std::vector<uint8_t> codes;
  if (!machine) return codes;
  for (const auto& device : machine->Devices())
    if (auto* port = dynamic_cast<platform::cpu::PostCodePort*>(device.get())) {
      std::vector<uint8_t> seen = port->Codes();
      codes.insert(codes.end(), seen.begin(), seen.end());
    }
  return codes;
}

}  // namespace voxtrel::testing
