// The breakpoints the RunControl component owns: their records as clients
// gave them, their ids, and the backend breakpoints that stand for the
// enabled ones.
//
// No lock is held while a backend is called: a client's subscriber may
// remove a breakpoint from the backend's own thread while another client
// waits for that thread.
#pragma once

#include <cstdint>

#include "RunControl.h"

namespace voxtrel::platform::run_control {

// The component's id of the breakpoint the backend knows as `backendId` in
// the domain `targetDomainId`; 0 if none.
uint32_t ComponentBreakpointId(uint32_t targetDomainId, uint32_t backendId);

// The domain's break-all setting, as a client set it.
bool BreaksAll(uint32_t targetDomainId);

// Forgets every breakpoint (the domains they were set on are gone).
void ForgetBreakpoints();

}  // namespace voxtrel::platform::run_control
