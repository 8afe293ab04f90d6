// The AsmDasm service: Assemble and Disassemble, forwarded to the
// RunControl component after their null checks.
#include "InProc_AsmDasm.h"

#include <algorithm>
#include <ostream>

#include "GluedArg.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_AsmDasm instance;

using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;
using frame::InstructionTypeName;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;
using Table = RunControlComponent;
using InstructionTypeText = Enum<&InstructionTypeName>;

// The assembled bytes: as many as `*numBytesAssembled` says, no more than
// the caller's buffer holds, "<EMPTY>" when the count is null.
struct AssembledBytes {
  const uint8_t* buffer;
  const uint32_t* numBytesAssembled;
  uint32_t maxBufferSize;

  friend std::ostream& operator<<(std::ostream& out, const AssembledBytes& shown) {
    const uint32_t count = shown.numBytesAssembled == nullptr ? 0 : *shown.numBytesAssembled;
    return out << frame::Bytes(shown.buffer, std::min(count, shown.maxBufferSize));
  }
};

}  // namespace

InProc_AsmDasm& InProc_AsmDasm::Instance() { return instance; }

VXT_Result InProc_AsmDasm::Assemble(uint32_t deviceId, VXT_InstructionType instructionType, const char* instruction,
                                    uint64_t instructionAddressOffset, uint32_t maxBufferSize, uint8_t* outputBuffer,
                                    uint32_t* numBytesAssembled) {
  return RunOperation(logger, VXT_OPERATION(AsmDasm, Assemble).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "instructionType", InstructionTypeText{instructionType},
                                "instruction", Quoted{instruction}, "instructionAddressOffset",
                                Hex16{instructionAddressOffset}, "maxBufferSize", Dec{maxBufferSize}),
                      TraceArgs("instruction", Quoted{instruction}, "outputBuffer",
                                AssembledBytes{outputBuffer, numBytesAssembled, maxBufferSize}, "numBytesAssembled",
                                Out<Dec>(numBytesAssembled)),
                      [&](Call& call) {
                        return call.NotNull(instruction, "instruction")
                            .NotNull(outputBuffer, "outputBuffer")
                            .NotNull(numBytesAssembled, "numBytesAssembled")
                            .Core(runControl, [&](const Table& t) {
                              return t.Assemble(deviceId, instructionType, instruction, instructionAddressOffset,
                                                maxBufferSize, outputBuffer, numBytesAssembled);
                            });
                      });
}

// The In line shows deviceId in decimal and glues inputBuffer to the size.
VXT_Result InProc_AsmDasm::Disassemble(uint32_t deviceId, VXT_InstructionType instructionType, uint32_t inputBufferSize,
                                       const uint8_t* inputBuffer, uint64_t instructionAddressOffset,
                                       char* outputBuffer, uint32_t* numBytesDisassembled) {
  return RunOperation(
      logger, VXT_OPERATION(AsmDasm, Disassemble).Counted(),
      TraceArgs("deviceId", Dec{deviceId}, "instructionType", InstructionTypeText{instructionType}, "inputBufferSize",
                Glued(Hex8{inputBufferSize}, "inputBuffer", frame::Bytes(inputBuffer, inputBufferSize)),
                "instructionAddressOffset", Hex16{instructionAddressOffset}),
      TraceArgs("outputBuffer", Quoted{outputBuffer, VXT_DISASSEMBLY_TEXT_SIZE}, "numBytesDisassembled",
                Out<Dec>(numBytesDisassembled)),
      [&](Call& call) {
        return call.NotNull(inputBuffer, "inputBuffer")
            .NotNull(outputBuffer, "outputBuffer")
            .NotNull(numBytesDisassembled, "numBytesDisassembled")
            .Core(runControl, [&](const Table& t) {
              return t.Disassemble(deviceId, instructionType, inputBufferSize, inputBuffer, instructionAddressOffset,
                                   outputBuffer, numBytesDisassembled);
            });
      });
}

}  // namespace vxt
