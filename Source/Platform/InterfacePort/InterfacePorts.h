// The interface ports of the built target: each port's state, its window
// and the bytes that pass through it. A port is the byte channel of its
// target domain's first UART: what the target transmits arrives on the
// port, and what is written to the port waits in the UART's receiver for
// the target to read.
//
// A platform thread of the component follows the UARTs (a domain that stops
// or starts running takes its ports offline or back online), keeps the
// windows' captures up to date and delivers the ports' events. Events are
// queued under the ports' lock and delivered after it is released, so a
// subscriber may call any operation of the ports.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "../Target/Failure.h"
#include "VXT_Records.h"

namespace voxtrel::platform::interface_port {

inline constexpr uint32_t kValueOutOfRange = 0x20001;
inline constexpr uint32_t kRefusedInThisState = 0x20002;
inline constexpr uint32_t kCaptureFailed = 0x20004;
inline constexpr uint32_t kStructureSize = 0x2000a;

// Bytes a Stream window keeps for Read; older ones are dropped past this.
inline constexpr size_t kMaxWaiting = size_t{1} << 20;
// Bytes that may wait in a UART's receiver for the target to read them.
inline constexpr size_t kMaxToTarget = 4096;
// How often the platform thread looks at the ports, in milliseconds.
inline constexpr int kFollowMilliseconds = 10;

// The `errorValue` of the ports' error events.
inline constexpr uint64_t kErrorBytesLost = 1;     // Arrived bytes were dropped before Read took them
inline constexpr uint64_t kErrorCaptureWrite = 2;  // The capture file could not be written

// Where a port is: its id, its target domain and its name for messages.
struct PortPlace {
  uint32_t portId;
  uint32_t targetDomainId;
  const std::string& name;
};

// Every operation is safe from any thread.
class Ports {
 public:
  static Ports& Instance();

  // A new topology: every port starts again, with no window, and the
  // platform thread runs.
  void Restart();

  VXT_InterfacePortState State(const PortPlace& place);
  void Configuration(const PortPlace& place, VXT_InterfacePortConfiguration& configuration);
  target::Outcome Open(const PortPlace& place, const VXT_InterfacePortConfiguration& configuration);
  target::Outcome Close(const PortPlace& place);
  bool Available(const PortPlace& place);
  target::Outcome Read(const PortPlace& place, std::span<uint8_t> buffer, uint32_t& returned);
  target::Outcome Write(const PortPlace& place, std::span<const uint8_t> bytes, uint32_t& written);

  // One round of the platform thread, for tests that want it now.
  void Follow();
};

}  // namespace voxtrel::platform::interface_port
