// The record the InterfacePort component hands to the callback the library
// set with SetEventCallback: an error of a port or a change of its state.
#pragma once

#include <cstddef>
#include <cstdint>

#include "PlatformApi.h"

namespace voxtrel::platform::events {

inline constexpr uint32_t kInterfacePortError = 0;
inline constexpr uint32_t kInterfacePortStateChange = 1;

struct InterfacePortEventData {
  uint32_t reserved;  // Offset 0
  uint32_t kind;      // Offset 4: kInterfacePortError or kInterfacePortStateChange
  union {
    uint64_t errorValue;         // Offset 8, errors
    uint32_t stateValues[2];     // Offsets 8 and 12, state changes
  };
  uint32_t interfacePortId;  // Offset 16
};
static_assert(offsetof(InterfacePortEventData, kind) == 4);
static_assert(offsetof(InterfacePortEventData, errorValue) == 8);
static_assert(offsetof(InterfacePortEventData, interfacePortId) == 16);

VOXTREL_PLATFORM_API InterfacePortEventData MakeInterfacePortErrorData(uint32_t interfacePortId,
                                                                      uint64_t errorValue);
VOXTREL_PLATFORM_API InterfacePortEventData MakeInterfacePortStateChangeData(uint32_t interfacePortId,
                                                                            uint32_t firstState,
                                                                            uint32_t secondState);

// Hands the record to the callback on the calling thread; the callback's
// code, or 0 when no callback is set.
VOXTREL_PLATFORM_API uint32_t RaiseInterfacePortEvent(const InterfacePortEventData& data);

}  // namespace voxtrel::platform::events
