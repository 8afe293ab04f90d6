#include "Logging/TraceCapture.h"

#include <string>

namespace voxtrel::platform::logging {

TraceCapture& TraceCapture::Instance() {
  static TraceCapture& capture = *new TraceCapture;
  return capture;
}

void TraceCapture::Start() { capturing_.store(true, std::memory_order_relaxed); }

void TraceCapture::Stop() {
  capturing_.store(false, std::memory_order_relaxed);
  Clear();
}

void TraceCapture::Clear() {
  std::lock_guard lock(mutex_);
  trace_.clear();
  usage_.clear();
}

bool TraceCapture::AddTrace(uint32_t stream, uint32_t level, std::string_view text, int32_t nesting) {
  if (!capturing_.load(std::memory_order_relaxed)) return false;
  std::lock_guard lock(mutex_);
  trace_.push_back({stream, level, std::string(text), nesting});
  return true;
}

bool TraceCapture::AddUsage(std::string_view stream, std::string_view event, std::string_view text) {
  if (!capturing_.load(std::memory_order_relaxed)) return false;
  std::lock_guard lock(mutex_);
  usage_.push_back({std::string(stream), std::string(event), std::string(text)});
  return true;
}

std::vector<testing::TraceLine> TraceCapture::Trace() {
  std::lock_guard lock(mutex_);
  return trace_;
}

std::vector<testing::UsageLine> TraceCapture::Usage() {
  std::lock_guard lock(mutex_);
  return usage_;
}

}  // namespace voxtrel::platform::logging
