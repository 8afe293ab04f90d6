// The one place where internal codes become the public codes clients see.
#pragma once

#include <cstdint>

namespace vxt::frame {

// The public code of an internal code. Codes without a row of their own,
// already-public codes among them, become 0x8000000f. Thread-safe.
int32_t TranslateErrorCode(uint32_t internalCode);

}  // namespace vxt::frame
