// Service 2: creating and removing breakpoints, and the break-all setting of
// a target domain; service 11 lists, reads, changes, enables and disables
// them. The RunControl component owns the breakpoints and gives their ids.
#pragma once

#include <cstddef>
#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

inline constexpr uint32_t VXT_BREAKPOINT_SHORT_SIZE = 104;
inline constexpr uint32_t VXT_BREAKPOINT_SIZE = 128;
// Characters of a breakpoint's name, terminating zero included.
inline constexpr uint32_t VXT_BREAKPOINT_NAME_SIZE = 68;

// A breakpoint. Its short form ends after breakpointName; the long form adds
// fullBreakpointAddress, which counts when its own structureSize is not 0.
struct VXT_Breakpoint {
  uint32_t structureSize;  // VXT_BREAKPOINT_SHORT_SIZE or VXT_BREAKPOINT_SIZE, set by the caller
  uint32_t breakpointId;
  uint32_t threadDeviceId;
  VXT_BreakpointType breakpointType;
  VXT_DebugRegister debugRegister;
  VXT_BreakpointDataSize dataSize;
  uint64_t breakpointAddress;
  uint32_t enabled;
  char breakpointName[VXT_BREAKPOINT_NAME_SIZE];
  VXT_Address fullBreakpointAddress;
};

static_assert(offsetof(VXT_Breakpoint, breakpointAddress) == 24);
static_assert(offsetof(VXT_Breakpoint, breakpointName) == 36);
static_assert(offsetof(VXT_Breakpoint, fullBreakpointAddress) == VXT_BREAKPOINT_SHORT_SIZE);
static_assert(sizeof(VXT_Breakpoint) == VXT_BREAKPOINT_SIZE);

class IInternalService_Breakpoint {
 public:
  virtual ~IInternalService_Breakpoint() = default;

  virtual VXT_Result CreateBreakpoint(VXT_Breakpoint* breakpoint) = 0;
  // The records stand 104 bytes apart when the first is short, else 128.
  virtual VXT_Result CreateBreakpoints(uint32_t numBreakpoints, VXT_Breakpoint* breakpoints) = 0;
  // Only the record's breakpointId counts.
  virtual VXT_Result RemoveBreakpoint(const VXT_Breakpoint* breakpoint) = 0;
  virtual VXT_Result RemoveBreakpointById(uint32_t breakpointId) = 0;
  virtual VXT_Result RemoveBreakpoints(uint32_t numBreakpoints, const VXT_Breakpoint* breakpoints) = 0;
  virtual VXT_Result RemoveBreakpointsById(uint32_t numBreakpointIds, const uint32_t* breakpointIds) = 0;
  virtual VXT_Result GetBreakAllSetting(uint32_t targetDomainId, VXT_BreakAllSetting* breakAllSetting) = 0;
  virtual VXT_Result SetBreakAllSetting(uint32_t targetDomainId, VXT_BreakAllSetting breakAllSetting) = 0;
};

class IInternalService_BreakpointManagement {
 public:
  virtual ~IInternalService_BreakpointManagement() = default;

  virtual VXT_Result GetNumBreakpoints(uint32_t targetDomainId, uint32_t* numBreakpoints) = 0;
  virtual VXT_Result GetBreakpointIds(uint32_t targetDomainId, int32_t maxBreakpoints, uint32_t* breakpointIds) = 0;
  // The record's structureSize is set by the caller first.
  virtual VXT_Result GetBreakpoint(uint32_t breakpointId, VXT_Breakpoint* breakpoint) = 0;
  virtual VXT_Result ChangeBreakpoint(VXT_Breakpoint* breakpoint) = 0;
  virtual VXT_Result EnableBreakpoint(uint32_t breakpointId) = 0;
  virtual VXT_Result EnableAllBreakpoints(uint32_t targetDomainId) = 0;
  virtual VXT_Result DisableBreakpoint(uint32_t breakpointId) = 0;
  virtual VXT_Result DisableAllBreakpoints(uint32_t targetDomainId) = 0;
};
