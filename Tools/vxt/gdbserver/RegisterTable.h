// The registers GDB sees on an x86-64 thread, in the order of the target
// description (their number in 'p' and 'P' packets is their index here),
// and the description itself.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vxt::gdb {

struct GdbRegister {
  const char* name;     // GDB's name
  uint32_t bits;        // GDB's width
  const char* type;     // A type of the target description
  const char* feature;  // The feature it stands in
  // The Register service's name, or null for a register the target does not
  // give (x87 and SSE state): it reads as unavailable and refuses writes.
  const char* serviceName;
};

const std::vector<GdbRegister>& GdbRegisters();

// The index of GDB's register `name`, or -1.
int GdbRegisterIndex(const char* name);

// The whole description, "target.xml": architecture i386:x86-64, the core
// and SSE features GDB requires, fs_base/gs_base, and the control registers
// in a feature of this target's own.
const std::string& TargetDescription();

}  // namespace vxt::gdb
