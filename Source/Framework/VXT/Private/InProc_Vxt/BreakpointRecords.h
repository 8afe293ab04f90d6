// The breakpoint record in trace lines, and its checks, shared by the
// Breakpoint and BreakpointManagement services.
#pragma once

#include <cstdint>
#include <ostream>

#include "IInternalService_Breakpoint.h"
#include "frame/Frame.h"

namespace vxt {

// "{breakpointId = 1 threadDeviceId = 0x03000000 breakpointType = SW ...}",
// or "<NULL>". Behind byte 104 only the long record with a full address is read.
struct BreakpointText {
  const VXT_Breakpoint* record;
};
std::ostream& operator<<(std::ostream& out, BreakpointText value);

// Records `stride` bytes apart, the stride settled by the first record.
struct BreakpointsText {
  const VXT_Breakpoint* records;
  uint32_t count;
};
std::ostream& operator<<(std::ostream& out, BreakpointsText value);

// A record's check: not null, a size of 104 or 128.
frame::Call& CheckBreakpoint(frame::Call& call, const VXT_Breakpoint* record, const char* argument);
// Every record of an array, in order, up to the first that fails.
frame::Call& CheckBreakpoints(frame::Call& call, const VXT_Breakpoint* records, uint32_t count);

}  // namespace vxt
