// Reads one instruction in the Intel syntax the disassembler writes into a
// request for the Zydis encoder.
//
//   [prefixes] mnemonic [far] [operand {, operand}]
//
// prefixes   lock, rep, repe/repz, repne/repnz, bnd, xacquire, xrelease, notrack
// operand    a register                          rax, xmm1, cr3, st1
//            an immediate                        0x10, -0x10, 16
//            a far pointer                       0xF000:0xFFF0
//            memory: [size ptr] [seg:] [terms]   dword ptr fs:[rax+rcx*4-0x08]
// decorators after an operand: {k1}..{k7} (mask), {z}, {1toN} (broadcast)
//
// Case does not matter. A relative branch names its absolute target; an
// operand relative to RIP is written relative, as [rip+0x10].
#pragma once

#include <Zydis/Zydis.h>

#include <string>
#include <string_view>

#include "InstructionMode.h"

namespace voxtrel::platform::assembler {

struct ParsedInstruction {
  bool ok = false;
  std::string error;  // Why the text is no instruction, when not ok
  ZydisEncoderRequest request{};
  // An operand is relative to RIP: the request holds no absolute address.
  bool ripRelative = false;
};

ParsedInstruction ParseInstruction(InstructionMode mode, std::string_view text);

}  // namespace voxtrel::platform::assembler
