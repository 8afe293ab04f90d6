// What the Dma component moves memory with: the configuration access
// methods of a device, and the error each method keeps once a transfer on
// it has failed.
//
// A device of a target domain that runs emulated CPUs offers two methods
// onto that domain's physical memory: its own path ("SystemBus" for the
// CPUs' devices and uncores, "ChipsetDma" for a chipset) as the default,
// and "DebugPort", the probe's way in, which moves at most 4 KiB a
// transfer. Other devices offer none.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "../Cpu/CpuDomains.h"
#include "../TargetManager/Request.h"

namespace voxtrel::platform::dma {

inline constexpr uint32_t kDebugPortTransferBytes = 4096;

// The methods of the device, the default first; empty for a device that
// reaches no memory.
std::vector<std::string> MethodsOf(const target::Node& device);

// One method of one device, ready for a transfer.
struct Engine {
  std::shared_ptr<const cpu::CpuDomain> domain;  // Keeps the backend alive for the transfer
  std::string method;
  uint32_t maxTransferBytes = 0;
  std::string where;  // "SystemBus of 0x02000000 (TargetDomain0)", for messages
};

// The device's method `configMethod`, or null with the request refused.
std::unique_ptr<Engine> FindEngine(target_manager::Request& request, uint32_t deviceId, const char* configMethod);

// A method's pending error, kept per target domain and method: a failed
// transfer leaves it, and every later transfer on the method is refused
// until ClearError ends it.
struct PendingError {
  uint32_t clientId = 0;  // The client whose transfer failed
  std::string message;
};

// Refuses the transfer when the method holds an error.
uint32_t RefuseIfPending(target_manager::Request& request, const Engine& engine);
void LeaveError(const Engine& engine, uint32_t clientId, const std::string& message);
// Ends the method's error. Without `force`, only the client that left it may.
uint32_t EndError(target_manager::Request& request, const Engine& engine, uint32_t clientId, bool force);

}  // namespace voxtrel::platform::dma
