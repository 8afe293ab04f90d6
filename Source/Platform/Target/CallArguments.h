// How the target's components show their arguments to call recording.
#pragma once

#include <string>

namespace voxtrel::platform::target {

// A caller's text in double quotes, or "<NULL>".
inline std::string QuotedArgument(const char* text) {
  return text ? "\"" + std::string(text) + "\"" : std::string("<NULL>");
}

}  // namespace voxtrel::platform::target
