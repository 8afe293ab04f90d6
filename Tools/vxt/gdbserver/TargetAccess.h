// The target domain as the GDB server reaches it: its threads, their
// registers and memory, run control and breakpoints, all through the
// library's services. Every call answers whether it worked; the server
// turns a failure into an error reply and the library's message stays the
// thread's last error.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "InProc_Vxt.h"
#include "RegisterTable.h"

namespace vxt::gdb {

// A region of the domain's memory map, as its description gives it.
struct MemoryRegion {
  std::string kind;  // "ram" or "rom"
  uint64_t base = 0;
  uint64_t size = 0;
};

class TargetAccess {
 public:
  // Throws when the domain has no threads.
  explicit TargetAccess(uint32_t domainId);

  uint32_t domainId() const { return domainId_; }
  const std::vector<uint32_t>& threads() const { return threads_; }
  // "0x03000000 Thread0": the id and identifier a user knows the thread by.
  std::string Describe(uint32_t thread);
  // The domain's memory map from its "MemoryRegion<N>" properties ("ram 0x0
  // 0x1000000"), in order; empty when it publishes none.
  std::vector<MemoryRegion> MemoryMap();

  // The register's bytes at GDB's width, little-endian; nullopt when the
  // target does not give it or the read failed. GDB's rip is the linear
  // address of the next instruction, cs base + rip, as its memory reads and
  // breakpoints are linear: in real mode after a reset the two differ.
  std::optional<std::vector<uint8_t>> ReadRegister(uint32_t thread, const GdbRegister& reg);
  // Every register of the table in one request.
  std::vector<std::optional<std::vector<uint8_t>>> ReadRegisters(uint32_t thread);
  bool WriteRegister(uint32_t thread, const GdbRegister& reg, const std::vector<uint8_t>& bytes);
  // The linear address of the thread's next instruction.
  std::optional<uint64_t> LinearPc(uint32_t thread);

  // Linear addresses of the thread.
  std::optional<std::vector<uint8_t>> ReadMemory(uint32_t thread, uint64_t address, uint32_t length);
  bool WriteMemory(uint32_t thread, uint64_t address, const std::vector<uint8_t>& bytes);

  bool HaltAll();
  bool GoAll();
  bool Go(uint32_t thread);
  bool Step(uint32_t thread);

  // A breakpoint on every thread of the domain; its id, or nullopt.
  std::optional<uint32_t> AddBreakpoint(VXT_BreakpointType type, uint64_t address, VXT_BreakpointDataSize size);
  bool RemoveBreakpoint(uint32_t breakpointId);

 private:
  // The token's value as bytes, or nullopt when its operation failed; the
  // token is ended either way.
  std::optional<std::vector<uint8_t>> Value(uint64_t token);
  // Whether the operation behind the token succeeded; the token is ended.
  bool Succeeded(uint64_t token);
  // A register of the service as a number.
  std::optional<uint64_t> RegisterValue(uint32_t thread, const char* name);
  bool WriteVector(const std::vector<uint8_t>& bytes, uint32_t bits, VXT_BitData& vector);

  uint32_t domainId_;
  std::vector<uint32_t> threads_;
  IInternalService_Memory& memory_;
  IInternalService_Register& registers_;
  IInternalService_RunControl& runControl_;
  IInternalService_Breakpoint& breakpoints_;
  IInternalService_OperationReceipt& receipts_;
  IInternalService_BitData& bitData_;
  IInternalService_Device& devices_;
};

}  // namespace vxt::gdb
