#include "ControlFlow.h"

#include "ZydisModes.h"

namespace voxtrel::platform::assembler {

InstructionFlow ClassifyFlow(InstructionMode mode, std::span<const uint8_t> bytes) {
  const ZydisDecoder decoder = MakeDecoder(mode);
  ZydisDecodedInstruction instruction;
  if (!ZYAN_SUCCESS(ZydisDecoderDecodeInstruction(&decoder, nullptr, bytes.data(), bytes.size(), &instruction)))
    return {};
  InstructionFlow flow{FlowKind::Sequential, instruction.length};
  switch (instruction.meta.category) {
    case ZYDIS_CATEGORY_CALL:
      flow.kind = FlowKind::Call;
      break;
    case ZYDIS_CATEGORY_RET:
      flow.kind = FlowKind::Return;
      break;
    case ZYDIS_CATEGORY_COND_BR:
    case ZYDIS_CATEGORY_UNCOND_BR:
      flow.kind = FlowKind::Branch;
      break;
    default:
      if (instruction.mnemonic == ZYDIS_MNEMONIC_IRET || instruction.mnemonic == ZYDIS_MNEMONIC_IRETD ||
          instruction.mnemonic == ZYDIS_MNEMONIC_IRETQ)
        flow.kind = FlowKind::Return;
  }
  return flow;
}

}  // namespace voxtrel::platform::assembler
