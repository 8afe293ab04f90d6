// Test control of the simulated JTAG chains: put a fault on a chain's
// TDI-TDO path as a description's "fault" member would.
#pragma once

#include <cstdint>
#include <string>

#include "PlatformApi.h"

namespace voxtrel::testing {

// `fault` is "open", "short", "inverted", "corrupted" or "" (none). False
// when no chain of that id is built or the name is unknown.
VOXTREL_PLATFORM_API bool SetJtagChainFault(uint32_t jtagChainId, const std::string& fault);

}  // namespace voxtrel::testing
