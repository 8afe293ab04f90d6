// The "DeviceTopology" events of the TargetManager.
#pragma once

#include <cstdint>

namespace voxtrel::platform::target_manager {

inline constexpr const char* kTopologyEventType = "DeviceTopology";
// The topology of the selected description is built and can be queried.
inline constexpr const char* kTopologyCompleted = "Completed";

// Publishes "DeviceTopology" with the given name and no data, on the calling
// thread; the result is the broker's.
uint32_t PublishTopologyEvent(const char* eventName);

}  // namespace voxtrel::platform::target_manager
