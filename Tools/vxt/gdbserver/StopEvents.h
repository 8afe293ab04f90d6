// The "RunControl" events of the debugged domain's threads, handed from the
// threads that deliver them to the server's loop through an eventfd: the
// loop sleeps in poll() on the socket and this descriptor together, and
// nothing polls the target.
//
// Breakpoint hits are always kept: one that comes while the debugger looks
// (another thread's hit while the domain halts, a hit while a monitor
// command lets the threads run) waits to be reported at the next resume.
// Other stops are kept only while armed: the server arms before it lets
// the threads run and disarms when it reports a stop, so that the halts
// and steps it makes itself are not taken for new stops.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "InProc_Vxt.h"

namespace vxt::gdb {

struct Stop {
  uint32_t thread = 0;
  uint32_t eventType = 0;  // A VXT_RunControlEventType
  uint32_t breakpointId = 0;
  uint64_t address = 0;       // Where the thread stopped
  bool data = false;          // A data breakpoint: `dataAddress` is the access
  uint64_t dataAddress = 0;
};

class StopEvents {
 public:
  // Subscribes for the life of the object.
  explicit StopEvents(std::vector<uint32_t> threads);
  ~StopEvents();
  StopEvents(const StopEvents&) = delete;
  StopEvents& operator=(const StopEvents&) = delete;

  // Readable while a stop waits (may stay readable while only hits wait
  // that came while disarmed: watch it only while the threads run).
  int descriptor() const { return eventFd_; }
  void Arm();
  // Disarms and drops what waits but breakpoint hits.
  void Disarm();
  // The first stop that waits, which disarms; nullopt when none.
  std::optional<Stop> Take();

 private:
  static void Receive(const VXT_RunControlEvent* event, void* userData);

  std::vector<uint32_t> threads_;
  int eventFd_ = -1;
  std::mutex mutex_;
  bool armed_ = false;
  std::deque<Stop> stops_;
};

}  // namespace vxt::gdb
