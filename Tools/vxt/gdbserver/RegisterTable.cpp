#include "RegisterTable.h"

#include <cstring>

namespace vxt::gdb {
namespace {

constexpr const char* kCore = "org.gnu.gdb.i386.core";
constexpr const char* kSse = "org.gnu.gdb.i386.sse";
constexpr const char* kSegments = "org.gnu.gdb.i386.segments";
constexpr const char* kSystem = "com.voxtrel.x86.system";

std::vector<GdbRegister> BuildTable() {
  std::vector<GdbRegister> table;
  const char* general[] = {"rax", "rbx", "rcx", "rdx", "rsi", "rdi", "rbp", "rsp",
                           "r8",  "r9",  "r10", "r11", "r12", "r13", "r14", "r15"};
  for (const char* name : general) {
    const bool pointer = std::strcmp(name, "rbp") == 0 || std::strcmp(name, "rsp") == 0;
    table.push_back({name, 64, pointer ? "data_ptr" : "int64", kCore, name});
  }
  table.push_back({"rip", 64, "code_ptr", kCore, "rip"});
  table.push_back({"eflags", 32, "i386_eflags", kCore, "rflags"});
  for (const char* name : {"cs", "ss", "ds", "es", "fs", "gs"}) table.push_back({name, 32, "int32", kCore, name});
  static const char* const stack[] = {"st0", "st1", "st2", "st3", "st4", "st5", "st6", "st7"};
  for (const char* name : stack) table.push_back({name, 80, "i387_ext", kCore, nullptr});
  for (const char* name : {"fctrl", "fstat", "ftag", "fiseg", "fioff", "foseg", "fooff", "fop"})
    table.push_back({name, 32, "int", kCore, nullptr});
  static const char* const xmm[] = {"xmm0", "xmm1", "xmm2",  "xmm3",  "xmm4",  "xmm5",  "xmm6",  "xmm7",
                                    "xmm8", "xmm9", "xmm10", "xmm11", "xmm12", "xmm13", "xmm14", "xmm15"};
  for (const char* name : xmm) table.push_back({name, 128, "uint128", kSse, nullptr});
  table.push_back({"mxcsr", 32, "int", kSse, nullptr});
  table.push_back({"fs_base", 64, "int", kSegments, "fs_base"});
  table.push_back({"gs_base", 64, "int", kSegments, "gs_base"});
  for (const char* name : {"cr0", "cr2", "cr3", "cr4", "cr8", "efer"})
    table.push_back({name, 64, "int", kSystem, name});
  return table;
}

std::string BuildDescription() {
  std::string xml =
      "<?xml version=\"1.0\"?>\n<!DOCTYPE target SYSTEM \"gdb-target.dtd\">\n<target version=\"1.0\">\n"
      "<architecture>i386:x86-64</architecture>\n";
  const std::vector<GdbRegister>& table = GdbRegisters();
  const char* open = nullptr;
  for (size_t index = 0; index < table.size(); ++index) {
    const GdbRegister& reg = table[index];
    if (open == nullptr || std::strcmp(open, reg.feature) != 0) {
      if (open != nullptr) xml += "</feature>\n";
      open = reg.feature;
      xml += "<feature name=\"";
      xml += reg.feature;
      xml += "\">\n";
      if (std::strcmp(reg.feature, kCore) == 0)
        xml +=
            "<flags id=\"i386_eflags\" size=\"4\"><field name=\"CF\" start=\"0\" end=\"0\"/>"
            "<field name=\"PF\" start=\"2\" end=\"2\"/><field name=\"AF\" start=\"4\" end=\"4\"/>"
            "<field name=\"ZF\" start=\"6\" end=\"6\"/><field name=\"SF\" start=\"7\" end=\"7\"/>"
            "<field name=\"TF\" start=\"8\" end=\"8\"/><field name=\"IF\" start=\"9\" end=\"9\"/>"
            "<field name=\"DF\" start=\"10\" end=\"10\"/><field name=\"OF\" start=\"11\" end=\"11\"/></flags>\n";
    }
    xml += "<reg name=\"";
    xml += reg.name;
    xml += "\" bitsize=\"" + std::to_string(reg.bits) + "\" type=\"";
    xml += reg.type;
    xml += "\" regnum=\"" + std::to_string(index) + "\"/>\n";
  }
  xml += "</feature>\n</target>\n";
  return xml;
}

}  // namespace

const std::vector<GdbRegister>& GdbRegisters() {
  static const std::vector<GdbRegister> table = BuildTable();
  return table;
}

int GdbRegisterIndex(const char* name) {
  const std::vector<GdbRegister>& table = GdbRegisters();
  for (size_t index = 0; index < table.size(); ++index)
    if (std::strcmp(table[index].name, name) == 0) return static_cast<int>(index);
  return -1;
}

const std::string& TargetDescription() {
  static const std::string description = BuildDescription();
  return description;
}

}  // namespace vxt::gdb
