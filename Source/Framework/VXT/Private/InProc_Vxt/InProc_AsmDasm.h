// The AsmDasm service: one instruction from text to bytes and back, done by
// the RunControl component. The service checks the pointers and forwards.
#pragma once

#include <cstdint>

#include "IInternalService_AsmDasm.h"
#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_AsmDasm : public SingletonService<InProc_AsmDasm>, public IInternalService_AsmDasm {
 public:
  static InProc_AsmDasm& Instance();

  VXT_Result Assemble(uint32_t deviceId, VXT_InstructionType instructionType, const char* instruction,
                      uint64_t instructionAddressOffset, uint32_t maxBufferSize, uint8_t* outputBuffer,
                      uint32_t* numBytesAssembled) override;
  VXT_Result Disassemble(uint32_t deviceId, VXT_InstructionType instructionType, uint32_t inputBufferSize,
                         const uint8_t* inputBuffer, uint64_t instructionAddressOffset, char* outputBuffer,
                         uint32_t* numBytesDisassembled) override;

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
};

}  // namespace vxt
