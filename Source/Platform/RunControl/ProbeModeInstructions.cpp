// RunControl.SubmitInstruction and GetInstructionResult: a debugger runs one
// instruction on a halted thread, as a probe does in probe mode, and reads
// the general registers it left.
//
// The text is assembled for the code width the thread runs in and executed
// in the thread's context without moving it: its rip stays where it stands.
// The bytes are placed for the time of the instruction 4 KiB below the
// thread's stack pointer (memory the thread can fetch from, which the
// backend puts back), so a RIP-relative operand counts from there. An
// instruction that sends the thread elsewhere (a jump, call or return) is
// refused: rip would not follow it.
#include <array>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "../Assembler/Assembler.h"
#include "../Assembler/ControlFlow.h"
#include "CpuThreads.h"
#include "MemoryAccess.h"
#include "OperationResult.h"
#include "RunControlCodes.h"
#include "RunOperations.h"
#include "Support/ComponentCall.h"
#include "ThreadAddressing.h"

namespace voxtrel::platform::run_control {
namespace {

using target::Failure;
using target::Outcome;

// In the order of their numbers in an instruction's encoding: the offset
// GetInstructionResult takes.
constexpr const char* kGeneralRegisters[] = {"rax", "rcx", "rdx", "rbx", "rsp", "rbp", "rsi", "rdi",
                                             "r8",  "r9",  "r10", "r11", "r12", "r13", "r14", "r15"};
constexpr uint32_t kNumGeneralRegisters = std::size(kGeneralRegisters);
constexpr uint64_t kBelowStack = 0x1000;

std::mutex resultsMutex;
std::map<uint32_t, std::array<uint64_t, kNumGeneralRegisters>> results;  // By thread id

// 'text', built by appending: the compiler's restrict check misreads
// "'" + std::string(text) in an optimized build.
std::string Quoted(const char* text) {
  std::string quoted(1, '\'');
  quoted.append(text);
  quoted.push_back('\'');
  return quoted;
}

assembler::InstructionMode ModeOfBits(uint32_t bits) {
  return bits == 16 ? assembler::InstructionMode::Bits16
         : bits == 32 ? assembler::InstructionMode::Bits32
                      : assembler::InstructionMode::Bits64;
}

// Where the instruction is placed: its linear and physical address.
Outcome PlaceBelowStack(ThreadAddressing& addressing, uint64_t size, uint64_t& linear, uint64_t& physical) {
  uint64_t rsp = 0;
  if (auto refused = addressing.Register("rsp", rsp)) return refused;
  if (rsp < kBelowStack) return Failure{kOperationFailed, "the thread's stack pointer leaves no room below it"};
  const VXT_Address below{VXT_ADDRESS_SIZE, 0, 0, rsp - kBelowStack, VXT_AddressType_OneFieldStackLogical};
  VXT_Address asLinear{};
  if (auto refused = addressing.Convert(below, VXT_AddressType_Linear, asLinear)) return refused;
  std::vector<PhysicalPiece> pieces;
  if (auto refused = addressing.Pieces(asLinear, size, pieces)) return refused;
  if (pieces.size() != 1)
    return Failure{kOperationFailed, "the memory below the thread's stack is not one physical stretch"};
  linear = asLinear.offset;
  physical = pieces[0].physical;
  return std::nullopt;
}

Outcome SubmitWork(uint32_t threadId, const char* instructionBuffer) {
  CpuThread cpu;
  if (auto refused = CheckNotNull(instructionBuffer, "instructionBuffer")) return refused;
  if (auto refused = FindThread(threadId, cpu)) return refused;
  cpu::RunState state = cpu::RunState::Running;
  if (const auto result = cpu.backend().GetRunState(cpu.thread, state); result != cpu::CpuResult::Ok)
    return CpuFailure(result, "reading the thread's run state");
  if (state != cpu::RunState::Halted)
    return Failure{kNotSupported, "the thread runs: an instruction is submitted to a halted thread"};
  ThreadAddressing addressing(cpu.backend(), cpu.thread);
  uint32_t bits = 0;
  if (auto refused = addressing.CodeBits(bits)) return refused;
  const assembler::InstructionMode mode = ModeOfBits(bits);
  // Placed before it is assembled: a first assembly gives its length.
  const auto sized = assembler::Assemble(mode, instructionBuffer, 0);
  if (!sized.ok)
    return Failure{kInvalidArgument, "cannot assemble " + Quoted(instructionBuffer) + ": " + sized.error};
  uint64_t linear = 0;
  uint64_t physical = 0;
  if (auto refused = PlaceBelowStack(addressing, sized.bytes.size(), linear, physical)) return refused;
  const auto assembly = assembler::Assemble(mode, instructionBuffer, linear);
  if (!assembly.ok)
    return Failure{kInvalidArgument, "cannot assemble " + Quoted(instructionBuffer) + ": " + assembly.error};
  if (assembler::ClassifyFlow(mode, assembly.bytes).kind != assembler::FlowKind::Sequential)
    return Failure{kInvalidArgument,
                   Quoted(instructionBuffer) + " sends the thread elsewhere; a submitted instruction leaves it where it is"};
  if (const auto result = cpu.backend().ExecuteInstruction(cpu.thread, linear, physical, assembly.bytes);
      result != cpu::CpuResult::Ok)
    return CpuFailure(result, "executing " + Quoted(instructionBuffer));
  std::array<uint64_t, kNumGeneralRegisters> registers{};
  for (uint32_t index = 0; index < kNumGeneralRegisters; ++index)
    if (auto refused = addressing.Register(kGeneralRegisters[index], registers[index])) return refused;
  const std::lock_guard lock(resultsMutex);
  results[threadId] = registers;
  return std::nullopt;
}

Outcome ResultWork(uint32_t threadId, uint32_t offset, uint64_t* result) {
  CpuThread cpu;
  if (auto refused = CheckNotNull(result, "result")) return refused;
  if (auto refused = FindThread(threadId, cpu)) return refused;
  if (offset >= kNumGeneralRegisters)
    return Failure{kValueOutOfRange, "offset " + std::to_string(offset) +
                                         " is past the general registers (0 rax, 1 rcx, ... 15 r15)"};
  const std::lock_guard lock(resultsMutex);
  const auto found = results.find(threadId);
  if (found == results.end())
    return Failure{kOperationFailed, "no instruction was submitted to thread " + HexText(threadId)};
  *result = found->second[offset];
  return std::nullopt;
}

}  // namespace

uint32_t GetInstructionResult(uint32_t threadId, uint32_t offset, uint64_t* result) {
  VOXTREL_COMPONENT_CALL("RunControl.GetInstructionResult", "threadId=", HexText(threadId), ", offset=", offset);
  return VOXTREL_ANSWER(ResultWork(threadId, offset, result));
}

uint32_t SubmitInstruction(uint32_t threadId, const char* instructionBuffer) {
  VOXTREL_COMPONENT_CALL("RunControl.SubmitInstruction", "threadId=", HexText(threadId));
  return VOXTREL_ANSWER(SubmitWork(threadId, instructionBuffer));
}

}  // namespace voxtrel::platform::run_control
