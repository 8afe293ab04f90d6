// A sequence of calls read from bytes, run against the default target: the
// fuzzer's input format, replayed by the regression test and written by the
// seed writer.
//
// Each call is: two bytes choosing the operation (0 StartNewInstance, 1
// FinishInitialization, 2 Disconnect, then every operation of every service
// interface in the order of the generated list), one byte choosing the
// thread (bit 0) and the client (bit 1), then one byte per parameter
// choosing its value from a small pool (see ArgumentPool.h); some choices
// read a few more bytes. Missing bytes read as 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vxt::fuzz {

inline constexpr size_t kMaxCalls = 48;
inline constexpr uint16_t kStartNewInstance = 0;
inline constexpr uint16_t kFinishInitialization = 1;
inline constexpr uint16_t kDisconnect = 2;
inline constexpr uint16_t kFirstOperation = 3;

struct SequenceOutcome {
  size_t calls = 0;
  // What went wrong: a private code returned, a client left connected.
  std::vector<std::string> problems;
};

// Runs the calls and ends with every client disconnected. A call that does
// not return within its deadline aborts the process: that is a hang.
SequenceOutcome RunCallSequence(const uint8_t* data, size_t size);

// The selector of an operation ("Memory", "Read"); -1 when none is declared.
int OperationSelector(const std::string& service, const std::string& name);

// The sizes of every record an operation takes, for the dictionary.
std::vector<uint32_t> RecordSizes();

}  // namespace vxt::fuzz
