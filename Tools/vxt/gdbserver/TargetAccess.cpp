#include "TargetAccess.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "RspPacket.h"
#include "Session.h"

namespace vxt::gdb {
namespace {

using vxt::cli::Check;
using vxt::cli::Session;

VXT_Address Linear(uint64_t offset) { return VXT_Address{VXT_ADDRESS_SIZE, 0, 0, offset, VXT_AddressType_Linear}; }

std::vector<uint32_t> ThreadsOf(IInternalService_Device& devices, uint32_t domainId) {
  uint32_t count = 0;
  Check(devices.GetNumDescendantIdsForType(domainId, VXT_NodeType_LogicalThread, 0, &count),
        "GetNumDescendantIdsForType");
  std::vector<uint32_t> threads(count);
  if (count > 0)
    Check(devices.GetDescendantIdsForType(domainId, VXT_NodeType_LogicalThread, 0, count, threads.data()),
          "GetDescendantIdsForType");
  if (threads.empty()) throw std::runtime_error("the target domain has no threads to debug");
  return threads;
}

// GDB's pc is the linear address of the next instruction, as its memory
// reads and breakpoints are: in real mode, cs base + ip.
bool IsPc(const GdbRegister& reg) { return reg.serviceName != nullptr && std::string_view(reg.serviceName) == "rip"; }

// The service's width of a register, from the width GDB gives it.
uint32_t ServiceBits(const GdbRegister& reg) {
  const std::string name = reg.serviceName;
  if (name == "cs" || name == "ss" || name == "ds" || name == "es" || name == "fs" || name == "gs") return 16;
  return std::max<uint32_t>(reg.bits, 64);
}

}  // namespace

TargetAccess::TargetAccess(uint32_t domainId)
    : domainId_(domainId),
      memory_(Session::Get<IInternalService_Memory>(VXT_Service_Memory)),
      registers_(Session::Get<IInternalService_Register>(VXT_Service_Register)),
      runControl_(Session::Get<IInternalService_RunControl>(VXT_Service_RunControl)),
      breakpoints_(Session::Get<IInternalService_Breakpoint>(VXT_Service_Breakpoint)),
      receipts_(Session::Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt)),
      bitData_(Session::Get<IInternalService_BitData>(VXT_Service_BitData)),
      devices_(Session::Get<IInternalService_Device>(VXT_Service_Device)) {
  threads_ = ThreadsOf(devices_, domainId);
}

std::string TargetAccess::Describe(uint32_t thread) {
  char id[16];
  std::snprintf(id, sizeof id, "0x%08x", thread);
  std::string text = id;
  char identifier[VXT_DEVICE_IDENTIFIER_SIZE] = {};
  if (devices_.GetIdentifierForDeviceId(thread, identifier) == VXT_SUCCESS) {
    text += ' ';
    text += identifier;
  }
  return text;
}

std::vector<MemoryRegion> TargetAccess::MemoryMap() {
  std::vector<MemoryRegion> regions;
  uint32_t count = 0;
  if (devices_.GetNumDevicePropertyNames(domainId_, &count) != VXT_SUCCESS || count == 0) return regions;
  std::vector<VXT_PropertyName> names(count);
  if (devices_.GetDevicePropertyNames(domainId_, count, names.data()) != VXT_SUCCESS) return regions;
  for (const VXT_PropertyName& name : names) {
    if (std::string_view(name).rfind("MemoryRegion", 0) != 0) continue;
    char value[VXT_PROPERTY_VALUE_SIZE] = {};
    if (devices_.GetDeviceProperty(domainId_, name, value) != VXT_SUCCESS) continue;
    std::istringstream fields(value);
    MemoryRegion region;
    std::string base, size;
    if (!(fields >> region.kind >> base >> size) || (region.kind != "ram" && region.kind != "rom")) continue;
    region.base = std::strtoull(base.c_str(), nullptr, 0);
    region.size = std::strtoull(size.c_str(), nullptr, 0);
    if (region.size != 0) regions.push_back(region);
  }
  return regions;
}

std::optional<std::vector<uint8_t>> TargetAccess::Value(uint64_t token) {
  std::optional<std::vector<uint8_t>> value;
  VXT_Result failure = 0;
  uint32_t size = 0;
  if (receipts_.GetOperationErrorResult(token, &failure) == VXT_SUCCESS && failure == VXT_SUCCESS &&
      receipts_.GetValueAsRawBytes(token, nullptr, 0, &size) == VXT_SUCCESS) {
    std::vector<uint8_t> bytes(size);
    if (size == 0 || receipts_.GetValueAsRawBytes(token, bytes.data(), size, &size) == VXT_SUCCESS) value = bytes;
  }
  receipts_.Destroy(token);
  return value;
}

bool TargetAccess::Succeeded(uint64_t token) {
  VXT_Result failure = 0;
  const bool succeeded = receipts_.GetOperationErrorResult(token, &failure) == VXT_SUCCESS && failure == VXT_SUCCESS;
  receipts_.Destroy(token);
  return succeeded;
}

std::optional<std::vector<uint8_t>> TargetAccess::ReadRegister(uint32_t thread, const GdbRegister& reg) {
  if (reg.serviceName == nullptr) return std::nullopt;
  if (IsPc(reg)) {
    const auto pc = LinearPc(thread);
    return pc ? std::optional(LittleEndianBytes(*pc)) : std::nullopt;
  }
  uint64_t token = 0;
  if (registers_.ReadRegister(thread, reg.serviceName, &token) != VXT_SUCCESS) return std::nullopt;
  std::optional<std::vector<uint8_t>> value = Value(token);
  if (value) value->resize(reg.bits / 8, 0);
  return value;
}

std::vector<std::optional<std::vector<uint8_t>>> TargetAccess::ReadRegisters(uint32_t thread) {
  const std::vector<GdbRegister>& table = GdbRegisters();
  std::vector<const char*> names;
  std::vector<size_t> indices;
  for (size_t index = 0; index < table.size(); ++index) {
    if (table[index].serviceName == nullptr) continue;
    names.push_back(table[index].serviceName);
    indices.push_back(index);
  }
  names.push_back("cs_base");
  std::vector<std::optional<std::vector<uint8_t>>> values(table.size());
  std::vector<uint64_t> tokens(names.size());
  if (registers_.ReadRegisters(thread, names.data(), tokens.data(), static_cast<uint32_t>(names.size())) !=
      VXT_SUCCESS)
    return values;
  const auto codeBase = Value(tokens.back());
  for (size_t i = 0; i < indices.size(); ++i) {
    auto& value = values[indices[i]];
    value = Value(tokens[i]);
    if (value && IsPc(table[indices[i]]))
      value = codeBase ? std::optional(LittleEndianBytes(LittleEndianValue(*value) + LittleEndianValue(*codeBase)))
                       : std::nullopt;
    if (value) value->resize(table[indices[i]].bits / 8, 0);
  }
  return values;
}

std::optional<uint64_t> TargetAccess::RegisterValue(uint32_t thread, const char* name) {
  uint64_t token = 0;
  if (registers_.ReadRegister(thread, name, &token) != VXT_SUCCESS) return std::nullopt;
  const auto bytes = Value(token);
  return bytes ? std::optional(LittleEndianValue(*bytes)) : std::nullopt;
}

std::optional<uint64_t> TargetAccess::LinearPc(uint32_t thread) {
  const auto base = RegisterValue(thread, "cs_base");
  const auto rip = RegisterValue(thread, "rip");
  return base && rip ? std::optional(*base + *rip) : std::nullopt;
}

bool TargetAccess::WriteVector(const std::vector<uint8_t>& bytes, uint32_t bits, VXT_BitData& vector) {
  vector = VXT_BitData{VXT_BITDATA_SIZE, 0, 0};
  return bitData_.CreateFromRawBits(&vector, bits, bytes.data(), static_cast<uint32_t>(bytes.size())) ==
         VXT_SUCCESS;
}

bool TargetAccess::WriteRegister(uint32_t thread, const GdbRegister& reg, const std::vector<uint8_t>& bytes) {
  if (reg.serviceName == nullptr || bytes.size() != reg.bits / 8) return false;
  // GDB's width may be wider (segment selectors) or narrower (eflags) than
  // the register's: the bits beyond the narrower one are zero.
  const uint32_t bits = ServiceBits(reg);
  std::vector<uint8_t> value(bytes);
  if (IsPc(reg)) {
    const auto base = RegisterValue(thread, "cs_base");
    if (!base) return false;
    value = LittleEndianBytes(LittleEndianValue(bytes) - *base);
  }
  value.resize(bits / 8, 0);
  VXT_BitData vector{};
  if (!WriteVector(value, bits, vector)) return false;
  uint64_t token = 0;
  const bool written =
      registers_.WriteRegister(thread, reg.serviceName, &vector, &token) == VXT_SUCCESS && Succeeded(token);
  bitData_.Destroy(&vector);
  return written;
}

std::optional<std::vector<uint8_t>> TargetAccess::ReadMemory(uint32_t thread, uint64_t address, uint32_t length) {
  const VXT_Address where = Linear(address);
  uint64_t token = 0;
  if (length == 0) return std::vector<uint8_t>{};
  if (memory_.ReadMemory(thread, &where, static_cast<int32_t>(length), &token) != VXT_SUCCESS) return std::nullopt;
  return Value(token);
}

bool TargetAccess::WriteMemory(uint32_t thread, uint64_t address, const std::vector<uint8_t>& bytes) {
  if (bytes.empty()) return true;
  const VXT_Address where = Linear(address);
  VXT_BitData vector{};
  if (!WriteVector(bytes, static_cast<uint32_t>(8 * bytes.size()), vector)) return false;
  uint64_t token = 0;
  const bool written =
      memory_.WriteMemory(thread, &where, static_cast<int32_t>(bytes.size()), &vector, &token) == VXT_SUCCESS &&
      Succeeded(token);
  bitData_.Destroy(&vector);
  return written;
}

bool TargetAccess::HaltAll() {
  uint64_t token = 0;
  return runControl_.HaltAllInDomain(domainId_, &token) == VXT_SUCCESS && Succeeded(token);
}

bool TargetAccess::GoAll() {
  uint64_t token = 0;
  return runControl_.GoAllInDomain(domainId_, &token) == VXT_SUCCESS && Succeeded(token);
}

bool TargetAccess::Go(uint32_t thread) {
  uint64_t token = 0;
  return runControl_.Go(thread, &token) == VXT_SUCCESS && Succeeded(token);
}

bool TargetAccess::Step(uint32_t thread) {
  uint64_t token = 0;
  return runControl_.Step(thread, VXT_StepType_Into, 1, &token) == VXT_SUCCESS && Succeeded(token);
}

std::optional<uint32_t> TargetAccess::AddBreakpoint(VXT_BreakpointType type, uint64_t address,
                                                    VXT_BreakpointDataSize size) {
  VXT_Breakpoint record{};
  record.structureSize = VXT_BREAKPOINT_SHORT_SIZE;
  record.threadDeviceId = domainId_;
  record.breakpointType = type;
  record.dataSize = size;
  record.breakpointAddress = address;
  record.enabled = 1;
  if (breakpoints_.CreateBreakpoint(&record) != VXT_SUCCESS) return std::nullopt;
  return record.breakpointId;
}

bool TargetAccess::RemoveBreakpoint(uint32_t breakpointId) {
  return breakpoints_.RemoveBreakpointById(breakpointId) == VXT_SUCCESS;
}

}  // namespace vxt::gdb
