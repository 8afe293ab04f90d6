// The entry of every component operation of the simulated platform.
//
// `VOXTREL_COMPONENT_CALL("Common.RegisterClient", "clientId=", id)` at the top
// of an operation records the call when recording is on and applies the
// behaviour test control set for it (return a code, post, throw). While test
// control is idle this costs one relaxed atomic load.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>

namespace voxtrel::platform {

// True while recording or any behaviour is set.
extern std::atomic<bool> componentControlActive;

// Records and applies a behaviour; the returned code replaces the operation.
std::optional<uint32_t> InterceptComponentCall(const char* operation, const std::string& arguments);

template <class... Parts>
std::string DescribeArguments(const Parts&... parts) {
  if constexpr (sizeof...(Parts) == 0) {
    return {};
  } else {
    std::ostringstream text;
    ((text << parts), ...);
    return text.str();
  }
}

}  // namespace voxtrel::platform

#define VOXTREL_COMPONENT_CALL(operation, ...)                                                          \
  do {                                                                                                  \
    if (::voxtrel::platform::componentControlActive.load(std::memory_order_relaxed)) {                \
      if (auto injected = ::voxtrel::platform::InterceptComponentCall(                                \
              operation, ::voxtrel::platform::DescribeArguments(__VA_ARGS__)))                          \
        return *injected;                                                                               \
    }                                                                                                   \
  } while (0)
