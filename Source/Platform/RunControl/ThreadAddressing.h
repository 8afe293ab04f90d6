// The addresses of one thread: from logical to linear through its segment
// registers and descriptor tables, from linear to physical through its page
// tables, as the thread itself would see them at this moment.
//
// - Physical and GuestPhysical addresses are the target domain's memory as
//   they stand (the target runs no guests, so both name the same bytes).
// - Linear addresses go through the page tables while CR0.PG is set: the
//   two-level 32-bit tables (with 4 MiB pages under CR4.PSE), PAE, and the
//   four- or five-level tables of long mode; else they are physical.
//   Outside long mode a linear address has 32 bits.
// - OneField{Code,Data,Stack}Logical add the base of CS, DS or SS;
//   TwoFieldLogical (segsel:offset) the base of that selector: the thread's
//   own segment register when one holds it, in real mode selector * 16,
//   else the descriptor's base from the GDT or, for a selector with TI set,
//   the LDT; ThreeFieldLogical (ldtsel:segsel:offset) reads segsel from the
//   LDT that ldtsel selects. In long mode only FS and GS have a base.
//   Limits and access rights are not checked: a debugger reads what an
//   address names, also where the thread could not.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "../Cpu/CpuBackend.h"
#include "../Target/Failure.h"
#include "PlatformApi.h"
#include "VXT_Records.h"

namespace voxtrel::platform::run_control {

// A stretch of physical memory that a stretch of an address maps to.
struct PhysicalPiece {
  uint64_t physical = 0;
  uint64_t length = 0;
};

class VOXTREL_PLATFORM_API ThreadAddressing {
 public:
  ThreadAddressing(cpu::CpuBackend& backend, uint32_t thread) : backend_(backend), thread_(thread) {}

  // The physical stretches `size` bytes from `address` map to, in order.
  target::Outcome Pieces(const VXT_Address& address, uint64_t size, std::vector<PhysicalPiece>& pieces);
  // `address` as an address of type `type`: Physical, GuestPhysical or
  // Linear, or its own type.
  target::Outcome Convert(const VXT_Address& address, uint32_t type, VXT_Address& converted);
  // The width of the code the thread runs now: 16, 32 or 64 bits.
  target::Outcome CodeBits(uint32_t& bits);

  // A register of the thread up to 64 bits wide.
  target::Outcome Register(std::string_view name, uint64_t& value);

 private:
  target::Outcome ToLinear(const VXT_Address& address, uint64_t& linear);
  target::Outcome ToPhysical(uint64_t linear, uint64_t& physical, uint64_t& pageRest);
  target::Outcome SegmentBase(uint16_t selector, const uint16_t* ldtSelector, uint64_t& base);
  target::Outcome Descriptor(uint16_t selector, uint64_t tableBase, uint64_t& descriptor);
  target::Outcome TableEntry(uint64_t physical, uint32_t size, uint64_t& entry);
  target::Outcome ReadLinear(uint64_t linear, uint64_t& value);
  target::Outcome LongMode(bool& longMode);

  cpu::CpuBackend& backend_;
  uint32_t thread_;
};

}  // namespace voxtrel::platform::run_control
