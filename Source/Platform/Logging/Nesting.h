// Nesting of trace lines, kept per thread: a line with nesting 1 indents the
// lines after it on the same thread, the line with nesting -1 ends that and
// stands at the depth of the line that opened it. Other threads' lines are
// not affected, so interleaved threads never indent each other.
#pragma once

#include <cstdint>

namespace voxtrel::platform::logging {

// The depth at which the calling thread's line stands; moves the depth on.
// The depth never drops below 0, so an unmatched close does no harm.
int DepthForLine(int32_t nesting);
// Back to depth 0 on the calling thread.
void ResetNesting();

}  // namespace voxtrel::platform::logging
