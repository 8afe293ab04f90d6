#include "Jtag/TapController.h"

#include "Cpu/CpuDomains.h"

namespace voxtrel::platform::jtag {
namespace {

bool IsBuiltIn(const std::string& name) { return name == "BYPASS" || name == "IDCODE" || name == "USERCODE"; }

using Reach = target::TapInstruction::Reach;

// The domain's memory; null when its CPUs do not run.
std::shared_ptr<cpu::CpuBackend> MemoryOf(uint32_t targetDomainId) {
  const cpu::CpuSelection selection = cpu::CpuDomains::Instance().Find(targetDomainId);
  return selection.result == cpu::LookupResult::Ok ? selection.domain->backend : nullptr;
}

}  // namespace

TapController::TapController(const target::Node& node, const target::TapControllerDetails& details)
    : id_(node.id), identifier_(node.identifier), targetDomainId_(node.targetDomainId), details_(details),
      registers_(details.instructions.size()) {
  Reset();
}

void TapController::Reset() {
  instruction_ = details_.instructions[details_.resetInstruction].opcode;
  for (size_t i = 0; i < registers_.size(); ++i) {
    const target::TapInstruction& instruction = details_.instructions[i];
    registers_[i].value = BitsOf(instruction.resetValue, instruction.drLength);
    registers_[i].readOnly = BitsOf(instruction.readOnlyMask, instruction.drLength);
  }
}

const target::TapInstruction* TapController::Selected() const {
  const uint64_t allOnes = details_.irLength == 64 ? ~uint64_t{0} : (uint64_t{1} << details_.irLength) - 1;
  if (instruction_ == allOnes) return nullptr;
  for (const target::TapInstruction& instruction : details_.instructions)
    if (instruction.opcode == instruction_) return instruction.name == "BYPASS" ? nullptr : &instruction;
  return nullptr;
}

std::string TapController::InstructionName() const {
  const target::TapInstruction* selected = Selected();
  return selected ? selected->name : "BYPASS";
}

Bits TapController::CaptureIr() const { return BitsOf(1, details_.irLength); }

void TapController::UpdateIr(const Bits& shifted) { instruction_ = NumberOf(shifted); }

Bits TapController::CaptureDr() const {
  const target::TapInstruction* selected = Selected();
  if (selected == nullptr) return Bits(1, false);
  if (selected->name == "IDCODE") return BitsOf(details_.idcode, 32);
  if (selected->name == "USERCODE") return BitsOf(details_.usercode, 32);
  if (selected->reaches == Reach::MemoryData) {
    std::vector<uint8_t> bytes(selected->drLength / 8, 0xFF);
    const auto memory = MemoryOf(targetDomainId_);
    if (memory == nullptr || memory->ReadPhysical(MemoryAddress(), bytes) != cpu::CpuResult::Ok)
      std::fill(bytes.begin(), bytes.end(), 0xFF);
    return BitsOf(bytes);
  }
  return registers_[IndexOf(selected)].value;
}

uint64_t TapController::MemoryAddress() const {
  for (size_t i = 0; i < registers_.size(); ++i)
    if (details_.instructions[i].reaches == Reach::MemoryAddress) return NumberOf(registers_[i].value);
  return 0;
}

void TapController::UpdateDr(const Bits& shifted) {
  const target::TapInstruction* selected = Selected();
  if (selected == nullptr || IsBuiltIn(selected->name)) return;
  if (selected->reaches == Reach::MemoryData) {
    Bits value = shifted;
    value.resize(selected->drLength, false);
    if (const auto memory = MemoryOf(targetDomainId_)) memory->WritePhysical(MemoryAddress(), BytesOf(value));
    return;
  }
  Register& reg = registers_[IndexOf(selected)];
  // Bits the scan did not reach keep their value, as read-only bits do.
  Bits kept = reg.readOnly;
  if (shifted.size() < kept.size()) {
    kept = kept.Slice(0, shifted.size());
    kept.resize(reg.readOnly.size(), true);
  }
  reg.value = Select(kept, reg.value, shifted);
}

}  // namespace voxtrel::platform::jtag
