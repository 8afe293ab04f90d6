// Where trace and usage lines are written, through a spdlog sink: the log
// file, or standard error when there is none. Either way a line reaches the
// operating system before the call that wrote it returns. While a trace capture runs,
// lines meant for standard error are kept in the capture only, so tests stay
// quiet; a log file is written as always.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include <spdlog/sinks/sink.h>

namespace voxtrel::platform::logging {

class LogSink {
 public:
  static LogSink& Instance();

  // Closes the current file, if any, and appends to `path` from now on.
  // No path: lines go to standard error.
  void Open(const std::optional<std::string>& path, bool rawFormat);

  // `depth` is the nesting depth of the writing thread; the decorated format
  // indents the text by two blanks per level, the raw format writes the text
  // alone. `captured`: the line is in a trace capture.
  void WriteTrace(uint32_t stream, uint32_t level, std::string_view text, int depth, bool captured);
  void WriteUsage(std::string_view stream, std::string_view event, std::string_view text, bool captured);

  uint32_t Flush();
  uint32_t Clear();
  uint32_t Archive();

 private:
  void Write(std::string_view name, int spdlogLevel, std::string_view text, int depth, bool captured);
  // Opens path_ afresh; posts and returns a code on failure. Mutex held.
  uint32_t Reopen(bool truncate);
  void SetFormat();

  std::mutex mutex_;
  std::string path_;  // Empty: standard error
  bool rawFormat_ = false;
  std::unique_ptr<spdlog::sinks::sink> sink_;
  std::string indented_;  // The text of an indented line, reused under mutex_
};

}  // namespace voxtrel::platform::logging
