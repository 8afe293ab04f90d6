// The address of a client's callback in a trace line: "0x" and sixteen
// zero-filled lower-case hexadecimal digits, or "<NULL>".
#pragma once

#include <cstdint>
#include <ostream>
#include <type_traits>

#include "frame/RenderScalars.h"

namespace vxt::frame {

struct CallbackAddress {
  template <class Function>
    requires std::is_function_v<Function>
  CallbackAddress(Function* callback) : address(reinterpret_cast<uintptr_t>(callback)) {}
  uint64_t address;

  friend std::ostream& operator<<(std::ostream& out, CallbackAddress value) {
    if (value.address == 0) return out << "<NULL>";
    return out << Hex16{value.address};
  }
};

}  // namespace vxt::frame
