#include "Logging/Nesting.h"

namespace voxtrel::platform::logging {
namespace {

// Trivially destructible, so it is safe to use during thread and process exit.
thread_local int depth = 0;

}  // namespace

int DepthForLine(int32_t nesting) {
  if (nesting < 0 && depth > 0) --depth;
  const int lineDepth = depth;
  if (nesting > 0) ++depth;
  return lineDepth;
}

void ResetNesting() { depth = 0; }

}  // namespace voxtrel::platform::logging
