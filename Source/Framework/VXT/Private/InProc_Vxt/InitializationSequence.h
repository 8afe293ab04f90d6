// The order in which FinishInitialization brings the components up and binds
// the services' tables.
#pragma once

#include <cstdint>

namespace vxt {

// Runs the sequence; stops at the first failing step and returns its code.
// Steps that succeeded keep their effect, and flags keep them from running
// twice when the sequence is run again.
uint32_t RunInitializationSequence();

}  // namespace vxt
