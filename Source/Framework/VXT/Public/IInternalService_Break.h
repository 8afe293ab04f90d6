// Service 22: the conditions on which a target breaks (named 32-bit values
// of a device), and the system stalls of a debug port or target domain. The
// condition "Reset" of some devices is kept by platform control rather than
// run control; the service lists and routes it.
#pragma once

#include <cstdint>

#include "VXT_ErrorCodes.h"

// Characters of one break condition or stall name, terminating zero
// included; a list of names is a block of such buffers, an empty one an
// entry not in use.
inline constexpr uint32_t VXT_BREAK_NAME_SIZE = 260;

class IInternalService_Break {
 public:
  virtual ~IInternalService_Break() = default;

  virtual VXT_Result GetNumBreakConditions(uint32_t deviceId, uint32_t* numBreakNames) = 0;
  virtual VXT_Result GetBreakConditions(uint32_t deviceId, uint32_t numBreakNames,
                                        char (*breakNames)[VXT_BREAK_NAME_SIZE]) = 0;
  virtual VXT_Result GetBreakCondition(uint32_t deviceId, const char* breakName, uint32_t* value) = 0;
  virtual VXT_Result SetBreakCondition(uint32_t deviceId, const char* breakName, uint32_t value) = 0;
  virtual VXT_Result GetNumSystemStalls(uint32_t debugportOrTargetDomainId, uint32_t* numStallNames) = 0;
  virtual VXT_Result GetSystemStalls(uint32_t debugportOrTargetDomainId, uint32_t numStallNames,
                                     char (*stallNames)[VXT_BREAK_NAME_SIZE]) = 0;
  virtual VXT_Result GetSystemStall(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t* value) = 0;
  virtual VXT_Result SetSystemStall(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t value) = 0;
};
