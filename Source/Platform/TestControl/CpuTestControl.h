// Test control of the emulated CPUs' machines: what a domain's IO devices
// have seen, for tests and tools (the UART text a user reads, the POST
// codes). Included by PlatformTestControl.h. Valid while the RunControl
// component is initialized; otherwise every answer is empty.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "PlatformApi.h"

namespace voxtrel::testing {

// The target domains that run emulated CPUs, in topology order.
VOXTREL_PLATFORM_API std::vector<uint32_t> CpuTargetDomainIds();
// Everything the domain's UART of that name (e.g. "COM1") transmitted so far.
VOXTREL_PLATFORM_API std::string CpuUartText(uint32_t targetDomainId, std::string_view uart);
// Bytes for that UART's receiver, which the guest reads through RBR.
VOXTREL_PLATFORM_API void CpuUartReceive(uint32_t targetDomainId, std::string_view uart, std::string_view bytes);
// Every POST code the domain's POST code ports were written, oldest first.
VOXTREL_PLATFORM_API std::vector<uint8_t> CpuPostCodes(uint32_t targetDomainId);

}  // namespace voxtrel::testing
