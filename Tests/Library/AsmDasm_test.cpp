// The AsmDasm service: its trace forms, its checks, and instructions
// assembled and disassembled for the target's threads.
#include <chrono>
#include <string>
#include <vector>

#include "CpuServiceTestSupport.h"

namespace {

using vxt::test::kFirstThread;

class AsmDasmTest : public vxt::test::CpuServiceTest {};

TEST_F(AsmDasmTest, TraceOfAnAssemblyAndADisassembly) {
  uint8_t bytes[16] = {};
  uint32_t size = 0;
  ASSERT_EQ(asmDasm->Assemble(1, VXT_InstructionType_32Bit, "nop", 0x1000, 16, bytes, &size), 0);
  char text[VXT_DISASSEMBLY_TEXT_SIZE] = {};
  const uint8_t code[] = {0xEB, 0xFE};
  ASSERT_EQ(asmDasm->Disassemble(1, VXT_InstructionType_32Bit, 2, code, 0x1000, text, &size), 0);
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_AsmDasm::Assemble(deviceId = 0x00000001 instructionType = 32Bit instruction = "
                         "'nop' instructionAddressOffset = 0x0000000000001000 maxBufferSize = 16) [ClientID: 3]",
                         "Out InProc_AsmDasm::Assemble(instruction = 'nop' outputBuffer = {0x90} numBytesAssembled = "
                         "1) ErrorCode = 0x00000000 [ClientID: 3]",
                         "In  InProc_AsmDasm::Disassemble(deviceId = 1 instructionType = 32Bit inputBufferSize = "
                         "0x00000002inputBuffer = {0xeb, 0xfe} instructionAddressOffset = 0x0000000000001000) "
                         "[ClientID: 3]",
                         "Out InProc_AsmDasm::Disassemble(outputBuffer = 'jmp 0x00001000' numBytesDisassembled = 2) "
                         "ErrorCode = 0x00000000 [ClientID: 3]",
                     }));
}

TEST_F(AsmDasmTest, RefusalsAndTheirOutLines) {
  uint8_t bytes[2] = {};
  uint32_t size = 0;
  char text[VXT_DISASSEMBLY_TEXT_SIZE] = {};
  const std::string head = "InProc_AsmDasm::";
  ExpectRefusals({
      {[&] { return asmDasm->Assemble(1, VXT_InstructionType_64Bit, "nop", 0, 2, nullptr, &size); },
       static_cast<VXT_Result>(0x80000001), head + "Assemble() argument error (outputBuffer) : Null pointer"},
      {[&] { return asmDasm->Assemble(1, VXT_InstructionType_64Bit, "frob rax", 0, 2, bytes, &size); },
       static_cast<VXT_Result>(0x80000001), "cannot assemble 'frob rax': unknown mnemonic 'frob'"},
      {[&] {
         return asmDasm->Assemble(1, VXT_InstructionType_64Bit, "mov rax, 0x1122334455667788", 0, 2, bytes, &size);
       },
       static_cast<VXT_Result>(0x80000013), "the instruction takes 10 bytes, the buffer holds 2"},
      {[&] { return asmDasm->Assemble(1, static_cast<VXT_InstructionType>(4), "nop", 0, 2, bytes, &size); },
       static_cast<VXT_Result>(0x80000002), "the instruction type 4 is unknown"},
      {[&] { return asmDasm->Disassemble(1, VXT_InstructionType_16Bit, 0, bytes, 0, text, &size); },
       static_cast<VXT_Result>(0x80000001), "cannot disassemble: no bytes to disassemble"},
  });
  EXPECT_EQ(size, 10u) << "a short buffer learns the size it needs";
  ClearTrace();
  asmDasm->Assemble(1, VXT_InstructionType_64Bit, "nop", 0, 2, bytes, nullptr);
  EXPECT_EQ(Trace().back(),
            "Out InProc_AsmDasm::Assemble(instruction = 'nop' outputBuffer = <EMPTY> "
            "numBytesAssembled = <NULL>) ErrorCode = 0x80000001 [ClientID: 3]");
}

TEST_F(AsmDasmTest, TheThreadsOwnModeAssemblesWhatItDisassembles) {
  uint8_t bytes[16] = {};
  uint32_t size = 0;
  char text[VXT_DISASSEMBLY_TEXT_SIZE] = {};
  const uint8_t code[] = {0x0F, 0x01, 0x10};  // lgdt: its operand's size depends on the mode
  // The firmware starts in real mode; wait until it runs 64-bit code, where
  // the operand is [rax].
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  do {
    ASSERT_EQ(asmDasm->Disassemble(kFirstThread, VXT_InstructionType_XBit, 3, code, 0, text, &size), 0)
        << GetLastErrorMessage();
  } while (std::string(text).find("rax") == std::string::npos && std::chrono::steady_clock::now() < deadline);
  ASSERT_EQ(asmDasm->Assemble(kFirstThread, VXT_InstructionType_XBit, text, 0, 16, bytes, &size), 0)
      << GetLastErrorMessage();
  EXPECT_EQ(std::vector<uint8_t>(bytes, bytes + size), std::vector<uint8_t>(code, code + 3)) << text;
  EXPECT_EQ(asmDasm->Assemble(vxt::test::kTargetDomain, VXT_InstructionType_XBit, "nop", 0, 16, bytes, &size),
            static_cast<VXT_Result>(0x80040007));
}

}  // namespace
