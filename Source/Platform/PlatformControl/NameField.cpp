#include <algorithm>
#include <cstring>

#include "PlatformControl/PlatformControlOperations.h"

namespace voxtrel::platform::platform_control {

std::optional<std::string> FieldName(target_manager::Request& request, const char* field, const char* argument) {
  if (request.NotNull(field, argument).failed()) return std::nullopt;
  const char* end = field + kPlatformControlNameSize;
  const char* terminator = std::find(field, end, '\0');
  if (terminator == end || !std::all_of(terminator, end, [](char c) { return c == '\0'; })) {
    request.Refuse(kUnknownName, std::string(": ") + argument + " is not a name followed by zero bytes up to " +
                                     std::to_string(kPlatformControlNameSize));
    return std::nullopt;
  }
  return std::string(field, terminator);
}

}  // namespace voxtrel::platform::platform_control
