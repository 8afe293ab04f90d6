// An address as text, the one form AddressToString writes and
// AddressFromString reads:
//
//   phys:0x1000  lin:0x1000  gphys:0x1000        Physical, Linear, GuestPhysical
//   cs:0x1000  ds:0x1000  ss:0x1000              One-field logical
//   0x0010:0x1000                                segsel:offset
//   0x0008:0x0010:0x1000                         ldtsel:segsel:offset
//
// Numbers are hexadecimal with "0x" or decimal; case and blanks around the
// parts do not matter. Fields the type does not use are not written, and
// read back as 0, so every address whose unused fields are 0 comes back
// from its text as it was.
#pragma once

#include <string>
#include <string_view>

#include "../Target/Failure.h"
#include "PlatformApi.h"
#include "VXT_Records.h"

namespace voxtrel::platform::run_control {

VOXTREL_PLATFORM_API target::Outcome AddressToText(const VXT_Address& address, std::string& text);
VOXTREL_PLATFORM_API target::Outcome AddressFromText(std::string_view text, VXT_Address& address);

}  // namespace voxtrel::platform::run_control
