#include "Disassembler.h"

#include <Zydis/Zydis.h>

#include "ZydisModes.h"

namespace voxtrel::platform::assembler {
namespace {

// Sizes always shown and RIP-relative operands kept relative: without
// them the text would not say which instruction it was.
ZydisFormatter MakeFormatter() {
  ZydisFormatter formatter;
  ZydisFormatterInit(&formatter, ZYDIS_FORMATTER_STYLE_INTEL);
  ZydisFormatterSetProperty(&formatter, ZYDIS_FORMATTER_PROP_FORCE_SIZE, ZYAN_TRUE);
  ZydisFormatterSetProperty(&formatter, ZYDIS_FORMATTER_PROP_FORCE_RELATIVE_RIPREL, ZYAN_TRUE);
  return formatter;
}

}  // namespace

uint64_t RuntimeAddress(InstructionMode mode, uint64_t address) {
  switch (mode) {
    case InstructionMode::Bits16:
      return address & 0xFFFF;
    case InstructionMode::Bits32:
      return address & 0xFFFFFFFF;
    case InstructionMode::Bits64:
      return address;
  }
  return address;
}

Disassembly Disassemble(InstructionMode mode, std::span<const uint8_t> bytes, uint64_t address) {
  static const ZydisFormatter formatter = MakeFormatter();
  const ZydisDecoder decoder = MakeDecoder(mode);

  ZydisDecodedInstruction instruction;
  ZydisDecodedOperand operands[ZYDIS_MAX_OPERAND_COUNT];
  if (!ZYAN_SUCCESS(ZydisDecoderDecodeFull(&decoder, bytes.data(), bytes.size(), &instruction, operands)))
    return {false, bytes.empty() ? "no bytes to disassemble" : "the bytes are no valid instruction", 0};

  char text[256];
  if (!ZYAN_SUCCESS(ZydisFormatterFormatInstruction(&formatter, &instruction, operands,
                                                    instruction.operand_count_visible, text, sizeof text,
                                                    RuntimeAddress(mode, address), nullptr)))
    return {false, "the instruction cannot be written as text", 0};
  return {true, text, instruction.length};
}

}  // namespace voxtrel::platform::assembler
