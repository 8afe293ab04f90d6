// Texts in the fixed-size fields of event data records.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace voxtrel::platform::events {

// Copies at most Size - 1 characters of `text` into `field` and zero-fills
// the rest, so that the field is always terminated.
template <size_t Size>
void CopyEventText(char (&field)[Size], std::string_view text) {
  const size_t length = std::min(text.size(), Size - 1);
  // An empty view may hold no pointer at all, which memcpy must not be given.
  if (length != 0) std::memcpy(field, text.data(), length);
  std::memset(field + length, 0, Size - length);
}

}  // namespace voxtrel::platform::events
