#include "BreakpointRecords.h"

#include <cstring>

namespace vxt {
namespace {

using frame::Bool;
using frame::BreakpointDataSizeName;
using frame::BreakpointTypeName;
using frame::Dec;
using frame::DebugRegisterName;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;

bool HasFullAddress(const VXT_Breakpoint& record) {
  return record.structureSize == VXT_BREAKPOINT_SIZE && record.fullBreakpointAddress.structureSize != 0;
}

size_t Stride(const VXT_Breakpoint* first, uint32_t count) {
  return count != 0 && first->structureSize == VXT_BREAKPOINT_SHORT_SIZE ? VXT_BREAKPOINT_SHORT_SIZE
                                                                         : VXT_BREAKPOINT_SIZE;
}

const VXT_Breakpoint* At(const VXT_Breakpoint* records, size_t stride, uint32_t index) {
  return reinterpret_cast<const VXT_Breakpoint*>(reinterpret_cast<const uint8_t*>(records) + stride * index);
}

}  // namespace

std::ostream& operator<<(std::ostream& out, BreakpointText value) {
  if (value.record == nullptr) return out << "<NULL>";
  const VXT_Breakpoint& record = *value.record;
  out << "{breakpointId = " << Dec{record.breakpointId} << " threadDeviceId = " << Hex8{record.threadDeviceId}
      << " breakpointType = " << Enum<&BreakpointTypeName>{record.breakpointType}
      << " debugRegister = " << Enum<&DebugRegisterName>{record.debugRegister}
      << " dataSize = " << Enum<&BreakpointDataSizeName>{record.dataSize};
  if (HasFullAddress(record)) {
    out << " fullBreakpointAddress = " << frame::AddressText{&record.fullBreakpointAddress};
  } else {
    out << " breakpointAddress = " << Hex16{record.breakpointAddress};
  }
  return out << " enabled = " << Bool{record.enabled} << " breakpointName = "
             << std::string(record.breakpointName, strnlen(record.breakpointName, sizeof record.breakpointName))
             << "}";
}

std::ostream& operator<<(std::ostream& out, BreakpointsText value) {
  if (value.records == nullptr) return out << "<NULL>";
  if (value.count == 0) return out << "<EMPTY>";
  const size_t stride = Stride(value.records, value.count);
  out << "{";
  for (uint32_t i = 0; i < value.count; ++i)
    out << (i == 0 ? "" : ", ") << BreakpointText{At(value.records, stride, i)};
  return out << "}";
}

frame::Call& CheckBreakpoint(frame::Call& call, const VXT_Breakpoint* record, const char* argument) {
  call.NotNull(record, argument);
  if (!call.failed() && record->structureSize != VXT_BREAKPOINT_SHORT_SIZE &&
      record->structureSize != VXT_BREAKPOINT_SIZE)
    call.ArgumentError(code::kStructureSize, argument, "Structure size not initialized");
  return call;
}

frame::Call& CheckBreakpoints(frame::Call& call, const VXT_Breakpoint* records, uint32_t count) {
  call.NotNull(records, "breakpoints");
  if (call.failed()) return call;
  const size_t stride = Stride(records, count);
  for (uint32_t i = 0; i < count && !call.failed(); ++i) CheckBreakpoint(call, At(records, stride, i), "breakpoints");
  return call;
}

}  // namespace vxt
