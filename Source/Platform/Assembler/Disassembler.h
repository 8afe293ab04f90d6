// One x86 instruction from bytes to Intel-syntax text.
//
// The text is the one the assembler reads back (Assembler.h): memory
// operands always name their size ("dword ptr [ebx+0x04]"), RIP-relative
// operands stay relative ("[rip+0x10]"), and relative branches show their
// absolute target as the instruction stands at `address` ("jmp
// 0x0000000000001000"). In 16-bit mode `address` is taken as the offset in
// the code segment: its low 16 bits.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "InstructionMode.h"
#include "PlatformApi.h"

namespace voxtrel::platform::assembler {

struct Disassembly {
  bool ok = false;
  std::string text;     // The instruction, or why there is none
  uint32_t length = 0;  // Bytes the instruction takes; 0 when not ok
};

VOXTREL_PLATFORM_API Disassembly Disassemble(InstructionMode mode, std::span<const uint8_t> bytes, uint64_t address);

// The address an instruction is taken to stand at in `mode`.
uint64_t RuntimeAddress(InstructionMode mode, uint64_t address);

}  // namespace voxtrel::platform::assembler
