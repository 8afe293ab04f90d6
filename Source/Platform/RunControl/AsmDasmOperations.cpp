// RunControl.Assemble and Disassemble: one instruction between text and
// bytes, in the mode the instruction type names. XBit is the mode the
// thread `deviceId` runs its code in now; the other types use no device.
#include <algorithm>
#include <cstring>
#include <span>
#include <string>

#include "../Assembler/Assembler.h"
#include "../Assembler/Disassembler.h"
#include "CpuThreads.h"
#include "MemoryAccess.h"
#include "OperationResult.h"
#include "RunControlCodes.h"
#include "RunControlOperations.h"
#include "Support/ComponentCall.h"
#include "ThreadAddressing.h"
#include "VXT_Enumerations.h"

namespace voxtrel::platform::run_control {
namespace {

using assembler::InstructionMode;
using target::Failure;
using target::Outcome;

Outcome ModeOf(uint32_t deviceId, uint32_t instructionType, InstructionMode& mode) {
  switch (instructionType) {
    case VXT_InstructionType_16Bit:
      mode = InstructionMode::Bits16;
      return std::nullopt;
    case VXT_InstructionType_32Bit:
      mode = InstructionMode::Bits32;
      return std::nullopt;
    case VXT_InstructionType_64Bit:
      mode = InstructionMode::Bits64;
      return std::nullopt;
    case VXT_InstructionType_XBit:
      break;
    default:
      return Failure{kValueOutOfRange, "the instruction type " + std::to_string(instructionType) + " is unknown"};
  }
  CpuThread cpu;
  uint32_t bits = 0;
  if (auto refused = FindThread(deviceId, cpu)) return refused;
  if (auto refused = ThreadAddressing(cpu.backend(), cpu.thread).CodeBits(bits)) return refused;
  mode = bits == 16 ? InstructionMode::Bits16 : bits == 32 ? InstructionMode::Bits32 : InstructionMode::Bits64;
  return std::nullopt;
}

Outcome AssembleWork(uint32_t deviceId, uint32_t instructionType, const char* instruction, uint64_t address,
                     uint32_t maxBufferSize, uint8_t* outputBuffer, uint32_t* numBytesAssembled) {
  InstructionMode mode = InstructionMode::Bits64;
  if (auto refused = CheckNotNull(instruction, "instruction")) return refused;
  if (auto refused = CheckNotNull(outputBuffer, "outputBuffer")) return refused;
  if (auto refused = CheckNotNull(numBytesAssembled, "numBytesAssembled")) return refused;
  if (auto refused = ModeOf(deviceId, instructionType, mode)) return refused;
  const auto assembly = assembler::Assemble(mode, instruction, address);
  if (!assembly.ok)
    return Failure{kInvalidArgument, "cannot assemble '" + std::string(instruction) + "': " + assembly.error};
  const auto size = static_cast<uint32_t>(assembly.bytes.size());
  if (size > maxBufferSize) {
    // The caller learns the size it needs.
    *numBytesAssembled = size;
    return Failure{kBufferTooSmall, "the instruction takes " + std::to_string(size) + " bytes, the buffer holds " +
                                        std::to_string(maxBufferSize)};
  }
  std::copy(assembly.bytes.begin(), assembly.bytes.end(), outputBuffer);
  *numBytesAssembled = size;
  return std::nullopt;
}

Outcome DisassembleWork(uint32_t deviceId, uint32_t instructionType, uint32_t inputBufferSize,
                        const uint8_t* inputBuffer, uint64_t address, char* outputBuffer,
                        uint32_t* numBytesDisassembled) {
  InstructionMode mode = InstructionMode::Bits64;
  if (inputBufferSize > 0) {
    if (auto refused = CheckNotNull(inputBuffer, "inputBuffer")) return refused;
  }
  if (auto refused = CheckNotNull(outputBuffer, "outputBuffer")) return refused;
  if (auto refused = CheckNotNull(numBytesDisassembled, "numBytesDisassembled")) return refused;
  if (auto refused = ModeOf(deviceId, instructionType, mode)) return refused;
  // No instruction is longer; more bytes are not looked at.
  const uint32_t size = std::min(inputBufferSize, assembler::kMaxInstructionLength);
  const auto disassembly = assembler::Disassemble(mode, std::span(inputBuffer, size), address);
  if (!disassembly.ok) return Failure{kInvalidArgument, "cannot disassemble: " + disassembly.text};
  const size_t length = std::min<size_t>(disassembly.text.size(), VXT_DISASSEMBLY_TEXT_SIZE - 1);
  std::memcpy(outputBuffer, disassembly.text.data(), length);
  outputBuffer[length] = '\0';
  *numBytesDisassembled = disassembly.length;
  return std::nullopt;
}

}  // namespace

uint32_t Assemble(uint32_t deviceId, uint32_t instructionType, const char* instruction,
                  uint64_t instructionAddressOffset, uint32_t maxBufferSize, uint8_t* outputBuffer,
                  uint32_t* numBytesAssembled) {
  VOXTREL_COMPONENT_CALL("RunControl.Assemble", "deviceId=", HexText(deviceId), ", instructionType=", instructionType,
                         ", maxBufferSize=", maxBufferSize);
  return VOXTREL_ANSWER(AssembleWork(deviceId, instructionType, instruction, instructionAddressOffset, maxBufferSize,
                                     outputBuffer, numBytesAssembled));
}

uint32_t Disassemble(uint32_t deviceId, uint32_t instructionType, uint32_t inputBufferSize, const uint8_t* inputBuffer,
                     uint64_t instructionAddressOffset, char* outputBuffer, uint32_t* numBytesDisassembled) {
  VOXTREL_COMPONENT_CALL("RunControl.Disassemble", "deviceId=", HexText(deviceId),
                         ", instructionType=", instructionType, ", inputBufferSize=", inputBufferSize);
  return VOXTREL_ANSWER(DisassembleWork(deviceId, instructionType, inputBufferSize, inputBuffer,
                                        instructionAddressOffset, outputBuffer, numBytesDisassembled));
}

}  // namespace voxtrel::platform::run_control
