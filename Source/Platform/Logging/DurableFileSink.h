// A log file sink that hands every line to the operating system as it is
// written: one write(2) per line, no buffer in the process. A client that
// crashes, aborts or calls _exit right after a call loses none of the lines
// that call wrote, and a reader of the file sees them as soon as the call has
// returned. Not thread-safe by itself: LogSink serialises its callers.
#pragma once

#include <string>

#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>

namespace voxtrel::platform::logging {

class DurableFileSink final : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
 public:
  // Opens `path` for appending (creating it), emptied first if `truncate`.
  // Throws spdlog::spdlog_ex with the system's reason when it cannot.
  DurableFileSink(const std::string& path, bool truncate);
  ~DurableFileSink() override;
  DurableFileSink(const DurableFileSink&) = delete;
  DurableFileSink& operator=(const DurableFileSink&) = delete;

 protected:
  void sink_it_(const spdlog::details::log_msg& message) override;
  // Nothing is held back, so there is nothing to flush.
  void flush_() override {}

 private:
  int fd_ = -1;
  spdlog::memory_buf_t line_;  // Reused, so a line costs no allocation
};

}  // namespace voxtrel::platform::logging
