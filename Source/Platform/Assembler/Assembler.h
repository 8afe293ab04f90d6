// One x86 instruction from Intel-syntax text to bytes, as it would stand at
// `address`: the text that the disassembler writes (Disassembler.h) gives an
// instruction that disassembles to that same text again. The syntax is told
// in AssemblyParser.h.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "InstructionMode.h"
#include "PlatformApi.h"

namespace voxtrel::platform::assembler {

struct Assembly {
  bool ok = false;
  std::string error;           // Why there are no bytes, when not ok
  std::vector<uint8_t> bytes;  // The instruction, 1 to 15 bytes
};

VOXTREL_PLATFORM_API Assembly Assemble(InstructionMode mode, std::string_view text, uint64_t address);

}  // namespace voxtrel::platform::assembler
