// Encrypted debug of a device, switched through the TargetManager's table
// and reported by the Jtag component's configuration table.
#pragma once

#include <cstdint>

namespace voxtrel::platform::jtag {

uint32_t StartEncryptedDebug(uint32_t deviceId);
uint32_t StopEncryptedDebug(uint32_t deviceId);

}  // namespace voxtrel::platform::jtag
