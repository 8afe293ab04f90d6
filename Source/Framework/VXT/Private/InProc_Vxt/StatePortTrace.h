// Trace arguments shared by the StatePort service's operations.
#pragma once

#include <cstdint>

#include "frame/Frame.h"

namespace vxt {

// "deviceId = ..., statePortName = '...', numAddressFields = n, addressFields = {...}"
// and what follows them.
template <class... Rest>
auto PortAccessArgs(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                    const uint64_t* addressFields, Rest... rest) {
  return frame::CommaArgs("deviceId", frame::Hex8{deviceId}, "statePortName", frame::Quoted{statePortName},
                          "numAddressFields", frame::Dec{numAddressFields}, "addressFields",
                          frame::List<frame::Hex16>(addressFields, numAddressFields), std::move(rest)...);
}

inline auto TokenOut(const uint64_t* operationToken) {
  return frame::CommaArgs("operationToken", frame::Out<frame::Hex16>(operationToken));
}

}  // namespace vxt
