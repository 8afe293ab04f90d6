// What the CPUs of one target domain do, for the RunControl component's
// operations: the domain's physical memory and IO ports, and for each of its
// hardware threads the registers, MSRs, CPUID, APIC id, run state and
// breakpoints. The emulating backend (a module loaded at run time) is one
// implementation; an emulator reached over the GDB remote protocol or real
// hardware could stand in behind the same interface.
//
// Threads are numbered 0..ThreadCount()-1 in the order of the domain's
// LogicalThread nodes in the topology (CpuDomains.h maps device ids to them).
//
// Threading: every call is safe from any thread at any time, also while the
// domain runs. A backend serialises calls with execution: a call that needs
// the threads' state is served at an instruction boundary, between two
// slices of execution, so it sees and leaves a consistent machine. Calls may
// block for as long as one slice takes (well under a millisecond).
// Stop listeners run on the backend's own execution thread, with no lock of
// the backend held: a listener may call any operation of the backend (they
// are served at once, the thread being between slices already), but must not
// wait for another thread that waits for this backend's execution.
//
// Every operation that fails changes nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "CpuTypes.h"

namespace voxtrel::platform::cpu {

// No single memory transfer is larger; larger requests get TooLarge.
inline constexpr uint64_t kMaxTransferBytes = 64ull << 20;

using StopListener = std::function<void(const StopEvent&)>;

class CpuBackend {
 public:
  virtual ~CpuBackend() = default;

  virtual uint32_t ThreadCount() const = 0;

  // ---- Physical memory (shared by every thread of the domain) -------------
  // The whole physical address space, regions and holes, ascending.
  virtual std::vector<MemoryRegion> MemoryMap() const = 0;
  // The whole span or nothing: Unmapped when any byte lies in a hole,
  // TooLarge beyond kMaxTransferBytes or when the range wraps past 2^64.
  // Writes to ROM give ReadOnly. A write that reaches code already
  // translated is seen by the next instruction any thread executes.
  virtual CpuResult ReadPhysical(uint64_t address, std::span<uint8_t> bytes) = 0;
  virtual CpuResult WritePhysical(uint64_t address, std::span<const uint8_t> bytes) = 0;

  // ---- IO ports (the domain's IO devices) ----------------------------------
  // `size` is 1, 2 or 4 (else BadSize); a port no device claims gives
  // Unmapped. The access has the device's side effects, as the CPU's IN/OUT
  // would (reading a UART's receive register consumes a byte).
  virtual CpuResult ReadIo(uint16_t port, uint32_t size, uint32_t& value) = 0;
  virtual CpuResult WriteIo(uint16_t port, uint32_t size, uint32_t value) = 0;

  // ---- Registers of a thread -----------------------------------------------
  // The architectural file every thread of the domain has, in a fixed order:
  // general (rax..r15), rip, rflags, segment selectors and their bases
  // (cs, cs_base, ...), control (cr0, cr2, cr3, cr4, cr8, efer), debug
  // (dr0..dr3, dr6, dr7), descriptor tables (gdtr_base, gdtr_limit,
  // idtr_base, idtr_limit, ldtr, tr). Names are matched case-insensitively.
  virtual const std::vector<RegisterInfo>& Registers() const = 0;
  // `value` holds bitWidth / 8 little-endian bytes, else BadSize. Readable
  // and writable whether the thread runs or not (served between slices).
  virtual CpuResult ReadRegister(uint32_t thread, std::string_view name, std::span<uint8_t> value) = 0;
  virtual CpuResult WriteRegister(uint32_t thread, std::string_view name, std::span<const uint8_t> value) = 0;

  // ---- Model-specific registers, CPUID, APIC id ----------------------------
  // GeneralProtection for an MSR the thread does not have or a value it
  // refuses, as RDMSR/WRMSR would fault on a real CPU.
  virtual CpuResult ReadMsr(uint32_t thread, uint32_t msr, uint64_t& value) = 0;
  virtual CpuResult WriteMsr(uint32_t thread, uint32_t msr, uint64_t value) = 0;
  // What CPUID(leaf, subleaf) gives on that thread.
  virtual CpuResult Cpuid(uint32_t thread, uint32_t leaf, uint32_t subleaf, CpuidResult& result) = 0;
  virtual CpuResult ApicId(uint32_t thread, uint32_t& apicId) = 0;

  // ---- Run control ---------------------------------------------------------
  virtual CpuResult GetRunState(uint32_t thread, RunState& state) = 0;
  // Halt returns once the thread is halted at an instruction boundary (the
  // listeners have heard it, reason HaltRequest); a halted thread stays as
  // it is and no stop is reported. Go returns once the thread may run again;
  // a running thread stays as it is. A thread resumed at an execution
  // breakpoint's address executes that instruction before the breakpoint
  // can hit again.
  virtual CpuResult Halt(uint32_t thread) = 0;
  virtual CpuResult Go(uint32_t thread) = 0;
  // Every thread of the domain at the same instruction boundary.
  virtual CpuResult HaltAll() = 0;
  virtual CpuResult GoAll() = 0;
  // Executes one instruction of a halted thread (one iteration of a REP
  // string instruction) and returns once it is halted again; listeners hear
  // reason Step, or the breakpoint that hit on the way. A thread waiting in
  // HLT completes no instruction and stays at the one after its HLT. NotHalted
  // for a running thread.
  virtual CpuResult Step(uint32_t thread) = 0;

  // ---- Breakpoints ---------------------------------------------------------
  // Ids are unique for the backend's life, from 1. BadBreakpoint for a
  // length other than 1, 2, 4, 8 or an unaligned data breakpoint,
  // UnknownThread for a thread index out of range (kAllThreads is every thread).
  virtual CpuResult AddBreakpoint(const Breakpoint& breakpoint, uint32_t& id) = 0;
  virtual CpuResult RemoveBreakpoint(uint32_t id) = 0;

  // Every listener hears every stop of every thread, in the order they
  // happen. The id removes it; after RemoveStopListener returns, the
  // listener is not running and is not called again (unless it is the
  // caller itself, from within the listener).
  virtual uint32_t AddStopListener(StopListener listener) = 0;
  virtual void RemoveStopListener(uint32_t id) = 0;

  // Every thread back to its reset state (the bootstrap thread at the reset
  // vector, the others waiting for it as the description says), RAM kept,
  // breakpoints kept, IO devices reset.
  virtual CpuResult Reset(ResetMode mode) = 0;

  // Executes `code`, one instruction, on the halted thread as if it stood
  // at the linear address `linear`, whose bytes (at `physical`, in RAM) it
  // borrows meanwhile; then puts back those bytes and the thread's rip, so
  // that the thread stands where it stood and no other thread ever sees the
  // borrowed bytes. What the instruction did to registers, memory, IO and
  // MSRs stays. No stop is reported. NotHalted for a running thread, Faulted
  // when the instruction faults (the thread is then as it was before).
  virtual CpuResult ExecuteInstruction(uint32_t thread, uint64_t linear, uint64_t physical,
                                       std::span<const uint8_t> code) {
    (void)thread;
    (void)linear;
    (void)physical;
    (void)code;
    return CpuResult::Unavailable;
  }

  // Whether the thread halts (reason Hlt, at the instruction after the HLT)
  // instead of waiting when it executes HLT. Off after construction.
  virtual CpuResult SetBreakOnHlt(uint32_t thread, bool on) {
    (void)thread;
    (void)on;
    return CpuResult::Unavailable;
  }

  // Stops execution for good and waits until the backend's own thread has
  // ended; every later call answers Unavailable (GetRunState: Halted).
  // CpuDomains calls it when the RunControl component is uninitialized.
  virtual void Shutdown() = 0;
};

}  // namespace voxtrel::platform::cpu
