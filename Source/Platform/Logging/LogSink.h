// The file that trace and usage lines are written to, through a spdlog sink.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include <spdlog/sinks/basic_file_sink.h>

namespace voxtrel::platform::logging {

class LogSink {
 public:
  static LogSink& Instance();

  // Closes the current file, if any, and appends to `path` from now on.
  // No path: lines are written nowhere.
  void Open(const std::optional<std::string>& path, bool rawFormat);

  // `depth` is the nesting depth of the writing thread; the decorated format
  // indents the text by two blanks per level, the raw format writes the text
  // alone.
  void WriteTrace(uint32_t stream, uint32_t level, std::string_view text, int depth);
  void WriteUsage(std::string_view stream, std::string_view event, std::string_view text);

  uint32_t Flush();
  uint32_t Clear();
  uint32_t Archive();

 private:
  using Sink = spdlog::sinks::basic_file_sink_st;

  void Write(std::string_view name, int spdlogLevel, std::string_view text, int depth);
  // Opens path_ afresh; posts and returns a code on failure. Mutex held.
  uint32_t Reopen(bool truncate);

  std::mutex mutex_;
  // Lets a line skip the mutex when there is no file.
  std::atomic<bool> hasPath_{false};
  std::string path_;
  bool rawFormat_ = false;
  std::unique_ptr<Sink> sink_;
};

}  // namespace voxtrel::platform::logging
