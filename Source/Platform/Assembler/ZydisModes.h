// The Zydis machine mode and decoder of each instruction mode.
#pragma once

#include <Zydis/Zydis.h>

#include "InstructionMode.h"

namespace voxtrel::platform::assembler {

inline ZydisMachineMode MachineMode(InstructionMode mode) {
  switch (mode) {
    case InstructionMode::Bits16:
      return ZYDIS_MACHINE_MODE_LEGACY_16;
    case InstructionMode::Bits32:
      return ZYDIS_MACHINE_MODE_LEGACY_32;
    case InstructionMode::Bits64:
      return ZYDIS_MACHINE_MODE_LONG_64;
  }
  return ZYDIS_MACHINE_MODE_LONG_64;
}

inline ZydisDecoder MakeDecoder(InstructionMode mode) {
  ZydisDecoder decoder;
  const ZydisStackWidth width = mode == InstructionMode::Bits16   ? ZYDIS_STACK_WIDTH_16
                                : mode == InstructionMode::Bits32 ? ZYDIS_STACK_WIDTH_32
                                                                  : ZYDIS_STACK_WIDTH_64;
  ZydisDecoderInit(&decoder, MachineMode(mode), width);
  return decoder;
}

}  // namespace voxtrel::platform::assembler
