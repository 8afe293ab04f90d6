#include "Logging/LogLevels.h"

#include <array>

namespace voxtrel::platform::logging {
namespace {

struct Switches {
  Switches() {
    for (uint32_t stream = 0; stream < kStreamCount; ++stream) loggers[stream].stream = stream;
  }
  std::array<StreamLogger, kStreamCount> loggers;
  std::atomic<bool> suppressed{false};
  std::atomic<bool> usage{false};
};

// Immortal: the interface library's static destructors may still log.
Switches& TheSwitches() {
  static Switches& switches = *new Switches;
  return switches;
}

}  // namespace

StreamLogger& LoggerOf(uint32_t stream) {
  Switches& switches = TheSwitches();
  return switches.loggers[stream < kStreamCount ? stream : 0];
}

StreamLogger& LoggerOf(void* handle) {
  return handle != nullptr ? *static_cast<StreamLogger*>(handle) : LoggerOf(uint32_t{0});
}

void SetLowestLevel(uint32_t stream, uint32_t level) {
  LoggerOf(stream).lowestLevel.store(level, std::memory_order_relaxed);
}

void SetLowestLevelOfAllStreams(uint32_t level) {
  for (uint32_t stream = 0; stream < kStreamCount; ++stream) SetLowestLevel(stream, level);
}

bool IsSuppressed() { return TheSwitches().suppressed.load(std::memory_order_relaxed); }
void SetSuppressed(bool suppressed) { TheSwitches().suppressed.store(suppressed, std::memory_order_relaxed); }

bool IsUsageOn() { return TheSwitches().usage.load(std::memory_order_relaxed); }
void SetUsageOn(bool on) { TheSwitches().usage.store(on, std::memory_order_relaxed); }

}  // namespace voxtrel::platform::logging
