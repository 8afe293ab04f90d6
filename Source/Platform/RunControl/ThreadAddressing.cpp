#include "ThreadAddressing.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string>

#include "RunControlCodes.h"

namespace voxtrel::platform::run_control {
namespace {

constexpr uint64_t kCr0ProtectionEnable = 1ull << 0;
constexpr uint64_t kCr0Paging = 1ull << 31;
constexpr uint64_t kCr4PageSizeExtension = 1ull << 4;
constexpr uint64_t kCr4PhysicalAddressExtension = 1ull << 5;
constexpr uint64_t kCr4FiveLevelPaging = 1ull << 12;
constexpr uint64_t kEferLongModeActive = 1ull << 10;
constexpr uint64_t kPresent = 1ull << 0;
constexpr uint64_t kLargePage = 1ull << 7;
constexpr uint64_t kTableAddressMask = 0x000FFFFFFFFFF000ull;
constexpr uint16_t kSelectorUsesLdt = 1u << 2;

target::Failure NotMapped(uint64_t linear, const char* why) {
  return {kAddressTranslationFailed, "linear address " + HexText(linear) + " is not mapped: " + why};
}

// The base of a segment descriptor: bits 16-39 and 56-63.
uint64_t DescriptorBase(uint64_t descriptor) {
  return ((descriptor >> 16) & 0xFFFFFF) | (((descriptor >> 56) & 0xFF) << 24);
}

}  // namespace

target::Outcome ThreadAddressing::Register(std::string_view name, uint64_t& value) {
  const auto& registers = backend_.Registers();
  const auto info =
      std::find_if(registers.begin(), registers.end(), [&](const cpu::RegisterInfo& r) { return r.name == name; });
  if (info == registers.end() || info->bitWidth > 64)
    return target::Failure{kRegisterNotFound, "the thread has no register '" + std::string(name) + "'"};
  std::array<uint8_t, 8> bytes{};
  if (const auto result = backend_.ReadRegister(thread_, name, std::span(bytes.data(), info->bitWidth / 8));
      result != cpu::CpuResult::Ok)
    return CpuFailure(result, "reading " + std::string(name));
  value = 0;
  std::memcpy(&value, bytes.data(), bytes.size());
  return std::nullopt;
}

target::Outcome ThreadAddressing::LongMode(bool& longMode) {
  uint64_t efer = 0;
  if (auto refused = Register("efer", efer)) return refused;
  longMode = (efer & kEferLongModeActive) != 0;
  return std::nullopt;
}

target::Outcome ThreadAddressing::TableEntry(uint64_t physical, uint32_t size, uint64_t& entry) {
  entry = 0;
  const auto result = backend_.ReadPhysical(physical, std::span(reinterpret_cast<uint8_t*>(&entry), size));
  if (result != cpu::CpuResult::Ok)
    return CpuFailure(result, "reading a page table entry at physical " + HexText(physical));
  return std::nullopt;
}

target::Outcome ThreadAddressing::ToPhysical(uint64_t linear, uint64_t& physical, uint64_t& pageRest) {
  uint64_t cr0 = 0;
  uint64_t cr3 = 0;
  uint64_t cr4 = 0;
  bool longMode = false;
  if (auto refused = Register("cr0", cr0)) return refused;
  if (auto refused = LongMode(longMode)) return refused;
  if (!longMode) linear &= 0xFFFFFFFF;
  if ((cr0 & kCr0Paging) == 0) {
    physical = linear;
    // The bytes up to the end of the address space; 2^64 does not fit.
    pageRest = !longMode ? 0x100000000ull - linear : linear == 0 ? std::numeric_limits<uint64_t>::max() : 0 - linear;
    return std::nullopt;
  }
  if (auto refused = Register("cr3", cr3)) return refused;
  if (auto refused = Register("cr4", cr4)) return refused;

  // Each level: the bit its index starts at, the index's width, the entry
  // size; a large page ends the walk at a level whose pages it may hold.
  struct Level {
    uint32_t shift;
    uint32_t indexBits;
    bool mayBeLarge;
  };
  std::vector<Level> levels;
  uint32_t entrySize = 8;
  uint64_t table = cr3 & kTableAddressMask;
  if (longMode) {
    if ((cr4 & kCr4FiveLevelPaging) != 0) levels.push_back({48, 9, false});
    levels.insert(levels.end(), {{39, 9, false}, {30, 9, true}, {21, 9, true}, {12, 9, false}});
    const uint32_t bits = (cr4 & kCr4FiveLevelPaging) != 0 ? 57 : 48;
    const auto high = static_cast<int64_t>(linear) >> (bits - 1);
    if (high != 0 && high != -1) return NotMapped(linear, "it is not canonical");
  } else if ((cr4 & kCr4PhysicalAddressExtension) != 0) {
    table = cr3 & 0xFFFFFFE0;
    levels = {{30, 2, false}, {21, 9, true}, {12, 9, false}};
  } else {
    entrySize = 4;
    table = cr3 & 0xFFFFF000;
    levels = {{22, 10, (cr4 & kCr4PageSizeExtension) != 0}, {12, 10, false}};
  }

  for (const Level& level : levels) {
    const uint64_t index = (linear >> level.shift) & ((1ull << level.indexBits) - 1);
    uint64_t entry = 0;
    if (auto refused = TableEntry(table + index * entrySize, entrySize, entry)) return refused;
    if ((entry & kPresent) == 0) return NotMapped(linear, "a page table entry is not present");
    const bool last = level.shift == 12;
    if (last || (level.mayBeLarge && (entry & kLargePage) != 0)) {
      const uint64_t pageSize = 1ull << level.shift;
      const uint64_t frameMask = (entrySize == 4 ? 0xFFFFF000ull : kTableAddressMask) & ~(pageSize - 1);
      physical = (entry & frameMask) | (linear & (pageSize - 1));
      pageRest = pageSize - (linear & (pageSize - 1));
      return std::nullopt;
    }
    table = entry & (entrySize == 4 ? 0xFFFFF000ull : kTableAddressMask);
  }
  return NotMapped(linear, "the page tables end early");
}

target::Outcome ThreadAddressing::ReadLinear(uint64_t linear, uint64_t& value) {
  uint64_t physical = 0;
  uint64_t pageRest = 0;
  if (auto refused = ToPhysical(linear, physical, pageRest)) return refused;
  if (pageRest < sizeof value) return NotMapped(linear, "a descriptor crosses a page");
  return TableEntry(physical, sizeof value, value);
}

target::Outcome ThreadAddressing::Descriptor(uint16_t selector, uint64_t tableBase, uint64_t& descriptor) {
  return ReadLinear(tableBase + (selector & ~7u), descriptor);
}

target::Outcome ThreadAddressing::SegmentBase(uint16_t selector, const uint16_t* ldtSelector, uint64_t& base) {
  uint64_t cr0 = 0;
  if (auto refused = Register("cr0", cr0)) return refused;
  if ((cr0 & kCr0ProtectionEnable) == 0) {
    base = uint64_t{selector} << 4;
    return std::nullopt;
  }
  // A selector the thread holds in a segment register has its cached base.
  if (ldtSelector == nullptr) {
    for (const char* segment : {"cs", "ds", "es", "ss", "fs", "gs"}) {
      uint64_t held = 0;
      if (auto refused = Register(segment, held)) return refused;
      if (held == selector) return Register(std::string(segment) + "_base", base);
    }
  }
  bool longMode = false;
  if (auto refused = LongMode(longMode)) return refused;
  if (longMode) {
    base = 0;
    return std::nullopt;
  }
  uint64_t table = 0;
  if (auto refused = Register("gdtr_base", table)) return refused;
  if ((selector & kSelectorUsesLdt) != 0 || ldtSelector != nullptr) {
    uint64_t ldt = 0;
    if (ldtSelector != nullptr) {
      ldt = *ldtSelector;
    } else if (auto refused = Register("ldtr", ldt)) {
      return refused;
    }
    uint64_t ldtDescriptor = 0;
    if (auto refused = Descriptor(static_cast<uint16_t>(ldt), table, ldtDescriptor)) return refused;
    table = DescriptorBase(ldtDescriptor);
  }
  uint64_t descriptor = 0;
  if (auto refused = Descriptor(selector, table, descriptor)) return refused;
  base = DescriptorBase(descriptor);
  return std::nullopt;
}

target::Outcome ThreadAddressing::ToLinear(const VXT_Address& address, uint64_t& linear) {
  uint64_t base = 0;
  switch (address.addressType) {
    case VXT_AddressType_Linear:
      linear = address.offset;
      return std::nullopt;
    case VXT_AddressType_OneFieldCodeLogical:
      if (auto refused = Register("cs_base", base)) return refused;
      break;
    case VXT_AddressType_OneFieldDataLogical:
      if (auto refused = Register("ds_base", base)) return refused;
      break;
    case VXT_AddressType_OneFieldStackLogical:
      if (auto refused = Register("ss_base", base)) return refused;
      break;
    case VXT_AddressType_TwoFieldLogical:
      if (auto refused = SegmentBase(address.segsel, nullptr, base)) return refused;
      break;
    case VXT_AddressType_ThreeFieldLogical:
      if (auto refused = SegmentBase(address.segsel, &address.ldtsel, base)) return refused;
      break;
    default:
      return target::Failure{kAddressTypeNotSupported,
                             "address type " + std::to_string(address.addressType) + " has no linear address"};
  }
  bool longMode = false;
  if (auto refused = LongMode(longMode)) return refused;
  linear = base + address.offset;
  if (!longMode) linear &= 0xFFFFFFFF;
  return std::nullopt;
}

target::Outcome ThreadAddressing::Pieces(const VXT_Address& address, uint64_t size,
                                         std::vector<PhysicalPiece>& pieces) {
  pieces.clear();
  if (address.addressType == VXT_AddressType_Physical || address.addressType == VXT_AddressType_GuestPhysical) {
    pieces.push_back({address.offset, size});
    return std::nullopt;
  }
  uint64_t linear = 0;
  if (auto refused = ToLinear(address, linear)) return refused;
  for (uint64_t done = 0; done < size;) {
    uint64_t physical = 0;
    uint64_t pageRest = 0;
    if (auto refused = ToPhysical(linear + done, physical, pageRest)) return refused;
    const uint64_t length = std::min(pageRest, size - done);
    if (!pieces.empty() && pieces.back().physical + pieces.back().length == physical) {
      pieces.back().length += length;
    } else {
      pieces.push_back({physical, length});
    }
    done += length;
  }
  return std::nullopt;
}

target::Outcome ThreadAddressing::Convert(const VXT_Address& address, uint32_t type, VXT_Address& converted) {
  converted = address;
  if (type == address.addressType) return std::nullopt;
  const bool physicalSource =
      address.addressType == VXT_AddressType_Physical || address.addressType == VXT_AddressType_GuestPhysical;
  converted.ldtsel = 0;
  converted.segsel = 0;
  converted.addressType = static_cast<VXT_AddressType>(type);
  if (type == VXT_AddressType_Physical || type == VXT_AddressType_GuestPhysical) {
    if (physicalSource) return std::nullopt;
    std::vector<PhysicalPiece> pieces;
    if (auto refused = Pieces(address, 1, pieces)) return refused;
    converted.offset = pieces.front().physical;
    return std::nullopt;
  }
  if (type == VXT_AddressType_Linear && !physicalSource) return ToLinear(address, converted.offset);
  return target::Failure{kAddressTypeNotSupported, "an address of type " + std::to_string(address.addressType) +
                                                       " cannot be converted to type " + std::to_string(type)};
}

target::Outcome ThreadAddressing::CodeBits(uint32_t& bits) {
  uint64_t cr0 = 0;
  uint64_t cs = 0;
  uint64_t table = 0;
  bool longMode = false;
  if (auto refused = Register("cr0", cr0)) return refused;
  if ((cr0 & kCr0ProtectionEnable) == 0) {
    bits = 16;
    return std::nullopt;
  }
  if (auto refused = LongMode(longMode)) return refused;
  if (auto refused = Register("cs", cs)) return refused;
  if (auto refused = Register("gdtr_base", table)) return refused;
  uint64_t descriptor = 0;
  // A thread that never loaded a descriptor table runs the mode it was
  // started in: long mode 64-bit, protected mode 32-bit.
  if (Descriptor(static_cast<uint16_t>(cs), table, descriptor)) {
    bits = longMode ? 64 : 32;
    return std::nullopt;
  }
  const bool longSegment = (descriptor >> 53) & 1;
  const bool defaultBig = (descriptor >> 54) & 1;
  bits = longMode && longSegment ? 64 : defaultBig ? 32 : 16;
  return std::nullopt;
}

}  // namespace voxtrel::platform::run_control
