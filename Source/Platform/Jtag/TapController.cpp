#include "Jtag/TapController.h"

namespace voxtrel::platform::jtag {
namespace {

bool IsBuiltIn(const std::string& name) { return name == "BYPASS" || name == "IDCODE" || name == "USERCODE"; }

}  // namespace

TapController::TapController(const target::Node& node, const target::TapControllerDetails& details)
    : id_(node.id), identifier_(node.identifier), details_(details), registers_(details.instructions.size()) {
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
  return registers_[static_cast<size_t>(selected - details_.instructions.data())].value;
}

void TapController::UpdateDr(const Bits& shifted) {
  const target::TapInstruction* selected = Selected();
  if (selected == nullptr || IsBuiltIn(selected->name)) return;
  Register& reg = registers_[static_cast<size_t>(selected - details_.instructions.data())];
  for (size_t i = 0; i < reg.value.size() && i < shifted.size(); ++i)
    if (!reg.readOnly[i]) reg.value[i] = shifted[i];
}

}  // namespace voxtrel::platform::jtag
