// The architectural register file of an emulated x86-64 thread: the names a
// debugger uses, their widths, and how each reaches the engine.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include <unicorn/unicorn.h>

#include "Cpu/CpuTypes.h"

namespace voxtrel::platform::cpu_engine {

enum class RegisterAccess : uint8_t {
  Plain,        // uc_reg_read/write of `id`, the low bitWidth bits
  TableBase,    // The base of a uc_x86_mmr register (gdtr, idtr)
  TableLimit,   // Its limit
  Selector,     // The selector of a uc_x86_mmr register (ldtr, tr)
  Msr,          // An MSR the engine keeps (efer), number in `id`
  SegmentBase,  // The base of cs/ds/es/ss as the thread's mode and descriptor tables give it; read-only
};

struct X86Register {
  cpu::RegisterInfo info;
  RegisterAccess access = RegisterAccess::Plain;
  int id = 0;  // Unicorn register id, MSR number, or the selector's register for SegmentBase
};

const std::vector<X86Register>& X86RegisterFile();
// Case-insensitive; null for an unknown name.
const X86Register* FindX86Register(std::string_view name);

// The base of a segment register (UC_X86_REG_CS, ...): selector * 16 in real
// mode (0xFFFF0000 for the code segment until it is first loaded after
// reset), 0 for cs/ds/es/ss in 64-bit mode, else the descriptor's base as
// the GDT gives it now. `readPhysical` reads the table.
using PhysicalReader = bool (*)(void* context, uint64_t address, std::span<uint8_t> bytes);
uint64_t SegmentBase(uc_engine* uc, int segmentRegister, PhysicalReader readPhysical, void* context);

}  // namespace voxtrel::platform::cpu_engine
