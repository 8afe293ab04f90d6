// What the StatePort component knows between its Initialize and its
// Uninitialize: the ports of the bound topology's devices and the values
// written to stored ports. Both start afresh when the topology is built
// again. Thread-safe.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../TargetManager/Request.h"
#include "StatePortDescription.h"

namespace voxtrel::platform::state_port {

inline constexpr uint32_t kNotInitialized = 0x20010;
inline constexpr uint32_t kValueOutOfRange = 0x20001;
inline constexpr uint32_t kNotSupported = 0x20002;

// A port found for an operation.
struct FoundPort {
  const target::Node* device = nullptr;  // Valid while `topology` is held
  std::shared_ptr<target::LiveTopology> topology;
  PortDescription port;
};

// The device's ports, or nothing with the request refused (not initialized,
// an unknown device).
std::optional<std::vector<PortDescription>> PortsOf(target_manager::Request& request, uint32_t deviceId,
                                                    std::shared_ptr<target::LiveTopology>* topology = nullptr);
// The port `name` of the device, or nothing with the request refused.
std::optional<FoundPort> FindPort(target_manager::Request& request, uint32_t deviceId, const char* name);

// The stored value at the address, the port's reset value if never written.
uint64_t StoredValue(const FoundPort& found, const std::vector<uint64_t>& address);
// Replaces the stored value with change(value) in one step, so that
// read-modify-writes of several threads do not lose each other's bits;
// gives the value replaced.
uint64_t UpdateValue(const FoundPort& found, const std::vector<uint64_t>& address,
                     const std::function<uint64_t(uint64_t former)>& change);

}  // namespace voxtrel::platform::state_port
