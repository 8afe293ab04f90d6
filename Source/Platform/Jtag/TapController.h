// One TAP controller as a description declares it: an instruction register
// of its length that captures ...01, and the data registers its
// instructions select. BYPASS (and every opcode no instruction names, and
// all ones) selects the one-bit bypass register, which captures 0; IDCODE
// captures the IDCODE, USERCODE the user code; any other instruction
// selects a register of its own, with its reset value and read-only bits.
//
// A register that reaches "memoryData" is the domain's physical memory at
// the address its "memoryAddress" register holds: Capture-DR reads the
// register's bytes there (all ones where nothing answers, as a floating
// bus reads) and Update-DR writes them (a write nothing takes is lost).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Jtag/Bits.h"
#include "Target/Topology.h"

namespace voxtrel::platform::jtag {

class TapController {
 public:
  TapController(const target::Node& node, const target::TapControllerDetails& details);

  uint32_t Id() const { return id_; }
  const std::string& Identifier() const { return identifier_; }
  uint32_t IdCode() const { return details_.idcode; }
  uint32_t IrLength() const { return details_.irLength; }
  uint64_t Instruction() const { return instruction_; }
  // The name of the current instruction; "BYPASS" for an opcode that none names.
  std::string InstructionName() const;

  // Test-Logic-Reset: the reset instruction, registers at their reset values.
  void Reset();
  Bits CaptureIr() const;
  void UpdateIr(const Bits& shifted);
  Bits CaptureDr() const;
  void UpdateDr(const Bits& shifted);

 private:
  struct Register {
    Bits value;
    Bits readOnly;
  };
  // The instruction behind the current opcode; null for BYPASS.
  const target::TapInstruction* Selected() const;
  size_t IndexOf(const target::TapInstruction* instruction) const {
    return static_cast<size_t>(instruction - details_.instructions.data());
  }
  // The physical address the "memoryAddress" register holds.
  uint64_t MemoryAddress() const;

  uint32_t id_;
  std::string identifier_;
  uint32_t targetDomainId_;
  target::TapControllerDetails details_;
  uint64_t instruction_ = 0;
  std::vector<Register> registers_;  // By instruction index
};

}  // namespace voxtrel::platform::jtag
