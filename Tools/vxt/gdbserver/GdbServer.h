// The listening side: a TCP socket on one address, debuggers served one
// after the other, until SIGINT or SIGTERM.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "GdbSession.h"

namespace vxt::gdb {

struct ServerOptions {
  std::string address = "127.0.0.1";
  uint16_t port = 0;  // 0: any free port, written in the first line
};

// Listens, then writes "Listening for GDB on ADDRESS:PORT, target domain
// 0xDDDDDDDD" to `out`. SIGINT and SIGTERM must be blocked on every thread
// of the process (see StopSignals.h). Returns 0 after a stop signal; throws
// when it cannot listen.
int RunServer(const ServerOptions& options, TargetAccess& target, const GdbSession::Monitor& monitor,
              std::ostream& out);

}  // namespace vxt::gdb
