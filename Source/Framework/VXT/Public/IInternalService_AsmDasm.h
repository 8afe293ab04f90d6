// Service 25: one x86 instruction from text to bytes and back, in Intel
// syntax, as it would stand at instructionAddressOffset (branch targets are
// absolute addresses). The text Disassemble gives assembles again to an
// instruction that disassembles to the same text.
//
// instructionType: 16Bit, 32Bit, 64Bit; XBit is the mode the thread
// `deviceId` runs in now.
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

class IInternalService_AsmDasm {
 public:
  virtual ~IInternalService_AsmDasm() = default;

  // At most maxBufferSize bytes; an instruction longer than that fails.
  virtual VXT_Result Assemble(uint32_t deviceId, VXT_InstructionType instructionType, const char* instruction,
                              uint64_t instructionAddressOffset, uint32_t maxBufferSize, uint8_t* outputBuffer,
                              uint32_t* numBytesAssembled) = 0;
  // The first instruction of inputBuffer; `outputBuffer` holds
  // VXT_DISASSEMBLY_TEXT_SIZE characters.
  virtual VXT_Result Disassemble(uint32_t deviceId, VXT_InstructionType instructionType, uint32_t inputBufferSize,
                                 const uint8_t* inputBuffer, uint64_t instructionAddressOffset, char* outputBuffer,
                                 uint32_t* numBytesDisassembled) = 0;
};
