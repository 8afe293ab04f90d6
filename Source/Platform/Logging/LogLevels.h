// The lowest level written on each stream, and the switches that hold all
// trace off or turn usage lines on.
//
// These are read around every trace line of the interface library, so they
// are plain relaxed atomics: no lock, no allocation.
#pragma once

#include <atomic>
#include <cstdint>

namespace voxtrel::platform::logging {

// Streams 0 ("Unknown") to 30 ("Configuration").
inline constexpr uint32_t kStreamCount = 31;

// Levels of a line: 1 most detailed to 4 most severe. A stream whose lowest
// level is kSilentLevel writes nothing.
inline constexpr uint32_t kMostDetailedLevel = 1;
inline constexpr uint32_t kMostSevereLevel = 4;
inline constexpr uint32_t kSilentLevel = 5;

// What a logger handle points to.
struct StreamLogger {
  uint32_t stream = 0;
  std::atomic<uint32_t> lowestLevel{kSilentLevel};

  bool Writes(uint32_t level) const {
    return level >= kMostDetailedLevel && level <= kMostSevereLevel &&
           level >= lowestLevel.load(std::memory_order_relaxed);
  }
};

// The logger of a stream. Numbers outside the table share the logger of
// stream 0, so that any number gives a usable handle.
StreamLogger& LoggerOf(uint32_t stream);
// The logger behind a handle; a null handle is stream 0's.
StreamLogger& LoggerOf(void* handle);

void SetLowestLevel(uint32_t stream, uint32_t level);
void SetLowestLevelOfAllStreams(uint32_t level);

bool IsSuppressed();
void SetSuppressed(bool suppressed);

bool IsUsageOn();
void SetUsageOn(bool on);

}  // namespace voxtrel::platform::logging
