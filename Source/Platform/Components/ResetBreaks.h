// Platform control's reset breaks and system stalls.
//
// A reset break belongs to a target domain or a debug port; platform
// control reports it (reset break mode 1) on target domains, so that the
// Break service routes "Reset" of a domain here. Its value: 0 off, 1 the threads of the
// domain halt at their reset state after the next reset, 2 after every
// reset.
//
// A system stall is a named value of a debug port or target domain. The
// one stall, "CpuStall", stops every emulated thread behind the device
// while it is 1 and lets them go when it is set back to 0; each change is
// a "SystemStall" event ("Hit" or "Released").
#pragma once

#include <cstdint>

namespace voxtrel::platform::platform_control {

uint32_t GetNumSystemStalls(uint32_t debugportOrTargetDomainId, uint32_t* numStallNames);
uint32_t GetSystemStalls(uint32_t debugportOrTargetDomainId, uint32_t numStallNames, char (*stallNames)[260]);
uint32_t GetSystemStall(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t* value);
uint32_t SetSystemStall(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t value);
uint32_t GetResetBreakMode(uint32_t target, int32_t* mode);
uint32_t GetResetBreak(uint32_t target, uint32_t* value);
uint32_t SetResetBreak(uint32_t target, uint32_t value);

// Whether a reset of the target domain now is to halt its threads, as the
// reset break of the domain or of a debug port in it says; a break set for
// the next reset only is used up.
bool ConsumeResetBreak(uint32_t targetDomainId);

// Every reset break and stall forgotten (a new target).
void ForgetResetBreaksAndStalls();

}  // namespace voxtrel::platform::platform_control
