// What one x86 instruction does to the flow of control, for stepping over
// calls, out of functions and to the next taken branch.
#pragma once

#include <cstdint>
#include <span>

#include "InstructionMode.h"

namespace voxtrel::platform::assembler {

enum class FlowKind : uint8_t {
  Sequential,  // Falls through to the next instruction (also HLT, IN/OUT, string instructions)
  Call,        // Near or far call: returns to the next instruction
  Return,      // Near or far return, IRET
  Branch,      // Jump, conditional jump, LOOP/JCXZ: goes to its target or falls through
  Invalid,     // No instruction decodes from the bytes
};

struct InstructionFlow {
  FlowKind kind = FlowKind::Invalid;
  uint32_t length = 0;  // Bytes the instruction takes; 0 when Invalid
};

InstructionFlow ClassifyFlow(InstructionMode mode, std::span<const uint8_t> bytes);

}  // namespace voxtrel::platform::assembler
