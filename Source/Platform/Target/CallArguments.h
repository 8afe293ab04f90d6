// How the target's components show their arguments to call recording.
#pragma once

#include <string>
#include <string_view>

namespace voxtrel::platform::target {

// A caller's text in double quotes, or "<NULL>". Appended piece by piece:
// the optimizer warns wrongly of an overlapping copy in operator+ chains.
inline std::string QuotedArgument(std::string_view text) {
  std::string quoted = "\"";
  quoted += text;
  quoted += '"';
  return quoted;
}
inline std::string QuotedArgument(const char* text) {
  return text ? QuotedArgument(std::string_view(text)) : std::string("<NULL>");
}

}  // namespace voxtrel::platform::target
