// Keeps exceptions inside the library.
#pragma once

#include <cstdint>

#include "Error.h"
#include "frame/InternalCodes.h"

namespace vxt::frame {

// Runs `work`, which returns an internal code. Anything thrown becomes
// code 0x20009, posted with an empty text from the given place.
template <class Work>
uint32_t CatchAll(const char* file, uint32_t line, Work&& work) {
  try {
    return work();
  } catch (...) {
    Voxtrel_ErrorPostError(code::kException, "", file, line);
    return code::kException;
  }
}

}  // namespace vxt::frame
