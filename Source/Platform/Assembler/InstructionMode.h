// The instruction widths the assembler and disassembler know.
#pragma once

#include <cstdint>

namespace voxtrel::platform::assembler {

// Real mode and 16-bit protected mode code, 32-bit protected mode code,
// 64-bit long mode code.
enum class InstructionMode : uint8_t { Bits16, Bits32, Bits64 };

// The longest x86 instruction.
inline constexpr uint32_t kMaxInstructionLength = 15;

}  // namespace voxtrel::platform::assembler
