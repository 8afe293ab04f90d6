// Plain types the CPU backend interface speaks in: results, run states, stop
// reasons, register descriptions and breakpoints.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace voxtrel::platform::cpu {

// What a backend call gives back. Every call either succeeds whole or fails
// and changes nothing.
enum class CpuResult : uint32_t {
  Ok = 0,
  UnknownThread,      // The thread index is not one of the domain's threads
  Unmapped,           // A byte of the range lies in a hole or outside every region
  ReadOnly,           // A write reaches a ROM region
  TooLarge,           // The span is larger than kMaxTransferBytes, or address + size wraps
  BadSize,            // An IO access that is not 1, 2 or 4 bytes; a register value of the wrong width
  UnknownRegister,    // No register of that name
  ReadOnlyRegister,   // The register cannot be written (e.g. "tsc_aux" on a backend without it)
  GeneralProtection,  // An MSR the thread does not have, or a value it refuses: a real CPU's #GP
  UnknownBreakpoint,  // RemoveBreakpoint of an id that is not set
  BadBreakpoint,      // A length other than 1, 2, 4, 8, or an unaligned data breakpoint
  NotHalted,          // Step of a thread that is running
  Unavailable,        // The backend cannot serve the call (engine missing, domain stopped)
  Faulted,            // An instruction the backend was given to execute raised a fault
};

// Short English text of a result, for messages ("unmapped address").
std::string_view CpuResultText(CpuResult result);

// One piece of a domain's physical address space, in ascending order, with
// no gaps between them: what no region names is a Hole.
enum class RegionKind : uint8_t { Ram, Rom, Hole };

struct MemoryRegion {
  uint64_t base = 0;
  uint64_t size = 0;
  RegionKind kind = RegionKind::Hole;
  std::string name;  // As the description names it; empty for an unnamed hole
};

enum class RunState : uint8_t {
  Running,  // Executing, or waiting in HLT for an event that never comes (as a real CPU waits)
  Halted,   // Stopped in debug mode: registers, memory and breakpoints may be changed
};

// Why a thread went from Running to Halted.
enum class StopReason : uint8_t {
  HaltRequest,          // Halt or HaltAll asked it
  Step,                 // Step completed its instruction
  ExecutionBreakpoint,  // About to execute an instruction at a breakpoint's address
  DataBreakpoint,       // Just completed an access that a data breakpoint covers
  Reset,                // Reset with HaltAfterReset: stopped at the reset vector
  Shutdown,             // The engine cannot go on (invalid instruction, fetch from a hole, triple fault)
  Hlt,                  // Executed HLT while it breaks on HLT (SetBreakOnHlt): stopped after it
};

std::string_view StopReasonText(StopReason reason);

// A stop as the listener hears it. `address` is the linear address of the
// next instruction the thread will execute (the one at the breakpoint for an
// execution breakpoint; the one after the access for a data breakpoint).
// `dataAddress` is the accessed linear address for a data breakpoint, else 0.
// `breakpointId` is the breakpoint that hit, 0 for other reasons.
struct StopEvent {
  uint32_t threadIndex = 0;
  StopReason reason = StopReason::HaltRequest;
  uint64_t address = 0;
  uint64_t dataAddress = 0;
  uint32_t breakpointId = 0;
};

enum class RegisterGroup : uint8_t { General, InstructionPointer, Flags, Segment, Control, Debug, Table, Model };

// One register of a thread's architectural file. Values travel as
// little-endian bytes, bitWidth / 8 of them (widths are whole bytes).
struct RegisterInfo {
  std::string name;  // Lower case: "rax", "rip", "rflags", "cs", "cs_base", "cr0", "dr7", "gdtr_base", ...
  uint32_t bitWidth = 0;
  RegisterGroup group = RegisterGroup::General;
};

struct CpuidResult {
  uint32_t eax = 0;
  uint32_t ebx = 0;
  uint32_t ecx = 0;
  uint32_t edx = 0;
};

enum class BreakpointKind : uint8_t { Execution, Data };

enum class DataAccess : uint8_t { Read = 1, Write = 2, ReadWrite = 3 };

inline constexpr uint32_t kAllThreads = 0xFFFFFFFFu;

// A breakpoint on linear addresses (equal to physical ones while paging is
// off), as the thread sees them, like the hardware's debug registers.
struct Breakpoint {
  BreakpointKind kind = BreakpointKind::Execution;
  uint64_t address = 0;
  DataAccess access = DataAccess::Write;  // Data breakpoints only
  uint32_t length = 1;                    // Data: 1, 2, 4 or 8, address aligned to it; execution: 1
  uint32_t threadIndex = kAllThreads;     // One thread, or every thread of the domain
};

enum class ResetMode : uint8_t {
  Run,             // Every thread starts again from its reset state and runs
  HaltAfterReset,  // Every thread stops before its first instruction (reason Reset)
};

}  // namespace voxtrel::platform::cpu
