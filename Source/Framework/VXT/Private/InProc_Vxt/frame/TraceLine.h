// The one routine through which every trace line of the library goes.
//
// A line is given as the pieces that make it up (literals, values, rendering
// helpers) and is rendered only when its level is enabled and logging is not
// suppressed; otherwise the cost is the two checks.
#pragma once

#include <cstdint>
#include <ostream>
#include <sstream>

#include "Common.h"
#include "Logging.h"
#include "frame/ServiceLogger.h"
#include "frame/LineStream.h"

namespace vxt::frame {

inline bool IsTraceOn(const ServiceLogger& logger, uint32_t level) {
  return Voxtrel_LoggingIsLogEnabled(logger.handle, level) && !Voxtrel_LoggingIsLoggingSuppressed();
}

// " [ClientID: <id>]": the calling thread's client, fetched when rendered.
// Lines are written outside the frame's catch-all too, so a Common component
// that throws here leaves the id at 0 rather than escape the library.
struct ClientIdTrailer {
  friend std::ostream& operator<<(std::ostream& out, ClientIdTrailer) {
    int32_t clientId = 0;
    try {
      const CommonComponent* common = nullptr;
      Voxtrel_GetCommon(&common);
      if (common != nullptr) common->GetClientId(&clientId);
    } catch (...) {
      clientId = 0;
    }
    return out << " [ClientID: " << std::dec << clientId << "]";
  }
};
inline constexpr ClientIdTrailer kTrailer{};

// Out of line, so that a call whose trace is off does not carry the
// rendering's stack and registers.
template <class... Pieces>
[[gnu::noinline]] void RenderAndLog(const ServiceLogger& logger, uint32_t level, int32_t nesting, const Pieces&... pieces) {
  LineStream line;
  (line.stream() << ... << pieces);
  Voxtrel_LoggingLog(logger.handle, level, line.c_str(), nesting);
}

template <class... Pieces>
void TraceLine(const ServiceLogger& logger, uint32_t level, const Pieces&... pieces) {
  if (IsTraceOn(logger, level)) RenderAndLog(logger, level, 0, pieces...);
}

// A line that opens (nesting 1) or closes (-1) a nested stretch.
template <class... Pieces>
void NestedTraceLine(const ServiceLogger& logger, uint32_t level, int32_t nesting, const Pieces&... pieces) {
  if (IsTraceOn(logger, level)) RenderAndLog(logger, level, nesting, pieces...);
}

}  // namespace vxt::frame
