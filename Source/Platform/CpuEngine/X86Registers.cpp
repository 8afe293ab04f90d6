#include "CpuEngine/X86Registers.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>

namespace voxtrel::platform::cpu_engine {

using cpu::RegisterGroup;

namespace {

X86Register Make(const char* name, uint32_t bits, RegisterGroup group, RegisterAccess access, int id) {
  return {{name, bits, group}, access, id};
}

std::vector<X86Register> BuildFile() {
  using A = RegisterAccess;
  std::vector<X86Register> file;
  const std::pair<const char*, int> general[] = {
      {"rax", UC_X86_REG_RAX}, {"rbx", UC_X86_REG_RBX}, {"rcx", UC_X86_REG_RCX}, {"rdx", UC_X86_REG_RDX},
      {"rsi", UC_X86_REG_RSI}, {"rdi", UC_X86_REG_RDI}, {"rbp", UC_X86_REG_RBP}, {"rsp", UC_X86_REG_RSP},
      {"r8", UC_X86_REG_R8},   {"r9", UC_X86_REG_R9},   {"r10", UC_X86_REG_R10}, {"r11", UC_X86_REG_R11},
      {"r12", UC_X86_REG_R12}, {"r13", UC_X86_REG_R13}, {"r14", UC_X86_REG_R14}, {"r15", UC_X86_REG_R15}};
  for (auto [name, id] : general) file.push_back(Make(name, 64, RegisterGroup::General, A::Plain, id));
  file.push_back(Make("rip", 64, RegisterGroup::InstructionPointer, A::Plain, UC_X86_REG_RIP));
  file.push_back(Make("rflags", 64, RegisterGroup::Flags, A::Plain, UC_X86_REG_RFLAGS));
  const std::pair<const char*, int> segments[] = {{"cs", UC_X86_REG_CS}, {"ds", UC_X86_REG_DS}, {"es", UC_X86_REG_ES},
                                                  {"fs", UC_X86_REG_FS}, {"gs", UC_X86_REG_GS}, {"ss", UC_X86_REG_SS}};
  for (auto [name, id] : segments) file.push_back(Make(name, 16, RegisterGroup::Segment, A::Plain, id));
  for (auto [name, id] : segments) {
    const std::string base = std::string(name) + "_base";
    if (id == UC_X86_REG_FS || id == UC_X86_REG_GS)
      file.push_back({{base, 64, RegisterGroup::Segment},
                      A::Plain,
                      id == UC_X86_REG_FS ? UC_X86_REG_FS_BASE : UC_X86_REG_GS_BASE});
    else
      file.push_back({{base, 64, RegisterGroup::Segment}, A::SegmentBase, id});
  }
  const std::pair<const char*, int> control[] = {{"cr0", UC_X86_REG_CR0},
                                                 {"cr2", UC_X86_REG_CR2},
                                                 {"cr3", UC_X86_REG_CR3},
                                                 {"cr4", UC_X86_REG_CR4},
                                                 {"cr8", UC_X86_REG_CR8}};
  for (auto [name, id] : control) file.push_back(Make(name, 64, RegisterGroup::Control, A::Plain, id));
  file.push_back(Make("efer", 64, RegisterGroup::Control, A::Msr, 0xC0000080));
  const std::pair<const char*, int> debug[] = {{"dr0", UC_X86_REG_DR0}, {"dr1", UC_X86_REG_DR1},
                                               {"dr2", UC_X86_REG_DR2}, {"dr3", UC_X86_REG_DR3},
                                               {"dr6", UC_X86_REG_DR6}, {"dr7", UC_X86_REG_DR7}};
  for (auto [name, id] : debug) file.push_back(Make(name, 64, RegisterGroup::Debug, A::Plain, id));
  file.push_back(Make("gdtr_base", 64, RegisterGroup::Table, A::TableBase, UC_X86_REG_GDTR));
  file.push_back(Make("gdtr_limit", 16, RegisterGroup::Table, A::TableLimit, UC_X86_REG_GDTR));
  file.push_back(Make("idtr_base", 64, RegisterGroup::Table, A::TableBase, UC_X86_REG_IDTR));
  file.push_back(Make("idtr_limit", 16, RegisterGroup::Table, A::TableLimit, UC_X86_REG_IDTR));
  file.push_back(Make("ldtr", 16, RegisterGroup::Table, A::Selector, UC_X86_REG_LDTR));
  file.push_back(Make("tr", 16, RegisterGroup::Table, A::Selector, UC_X86_REG_TR));
  return file;
}

bool SameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
         });
}

}  // namespace

const std::vector<X86Register>& X86RegisterFile() {
  static const std::vector<X86Register> file = BuildFile();
  return file;
}

const X86Register* FindX86Register(std::string_view name) {
  for (const X86Register& reg : X86RegisterFile())
    if (SameName(reg.info.name, name)) return &reg;
  return nullptr;
}

uint64_t SegmentBase(uc_engine* uc, int segmentRegister, PhysicalReader readPhysical, void* context) {
  uint64_t selector = 0, cr0 = 0;
  uc_reg_read(uc, segmentRegister, &selector);
  uc_reg_read(uc, UC_X86_REG_CR0, &cr0);
  uc_x86_msr msr{0xC0000080, 0};
  uc_reg_read(uc, UC_X86_REG_MSR, &msr);
  const uint64_t efer = msr.value;
  // Real mode's base. The code segment keeps the reset base while its
  // selector is the reset one: the firmwares this platform runs leave real
  // mode without reloading it. A selector no descriptor backs in protected
  // mode is still the one real mode loaded: between setting CR0.PE and the
  // far jump, the code segment's cache is real mode's.
  const uint64_t realModeBase =
      segmentRegister == UC_X86_REG_CS && selector == 0xF000 ? 0xFFFF0000u : (selector & 0xFFFF) << 4;
  if (!(cr0 & 1)) return realModeBase;
  if (efer & 0x400) return 0;  // Long mode: only fs and gs have bases, and the engine keeps those
  uc_x86_mmr gdtr{};
  uc_reg_read(uc, UC_X86_REG_GDTR, &gdtr);
  const uint64_t index = selector & ~7ull;
  if (index == 0 || (selector & 4) || index + 7 > gdtr.limit) return realModeBase;
  uint8_t descriptor[8] = {};
  if (!readPhysical(context, gdtr.base + index, std::span<uint8_t>(descriptor))) return realModeBase;
  return static_cast<uint64_t>(descriptor[2]) | static_cast<uint64_t>(descriptor[3]) << 8 |
         static_cast<uint64_t>(descriptor[4]) << 16 | static_cast<uint64_t>(descriptor[7]) << 24;
}

}  // namespace voxtrel::platform::cpu_engine
