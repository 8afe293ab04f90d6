// What tests see of the Logging library: while capturing, every trace line
// and usage line that is written is kept here as it was given, without
// indentation or decoration.
#pragma once

#include <atomic>
#include <mutex>
#include <string_view>
#include <vector>

#include "PlatformTestControl.h"

namespace voxtrel::platform::logging {

class TraceCapture {
 public:
  static TraceCapture& Instance();

  void Start();
  // Stops capturing and forgets what was captured.
  void Stop();
  void Clear();

  // Each gives whether the line was kept.
  bool AddTrace(uint32_t stream, uint32_t level, std::string_view text, int32_t nesting);
  bool AddUsage(std::string_view stream, std::string_view event, std::string_view text);

  std::vector<testing::TraceLine> Trace();
  std::vector<testing::UsageLine> Usage();

 private:
  // Lets a line skip the mutex when nobody captures.
  std::atomic<bool> capturing_{false};
  std::mutex mutex_;
  std::vector<testing::TraceLine> trace_;
  std::vector<testing::UsageLine> usage_;
};

}  // namespace voxtrel::platform::logging
