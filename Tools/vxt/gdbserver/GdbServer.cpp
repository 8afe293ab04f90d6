#include "GdbServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>

namespace vxt::gdb {
namespace {

// A descriptor closed with its scope.
class Descriptor {
 public:
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  ~Descriptor() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

int Listen(const ServerOptions& options, uint16_t& port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(options.port);
  if (inet_pton(AF_INET, options.address.c_str(), &address.sin_addr) != 1)
    throw std::invalid_argument("'" + options.address + "' is no IPv4 address");
  const int listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listening < 0) throw std::runtime_error("cannot open a socket");
  const int yes = 1;
  setsockopt(listening, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  if (bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || listen(listening, 1) != 0) {
    close(listening);
    throw std::runtime_error("cannot listen on " + options.address + ":" + std::to_string(options.port));
  }
  socklen_t size = sizeof address;
  getsockname(listening, reinterpret_cast<sockaddr*>(&address), &size);
  port = ntohs(address.sin_port);
  return listening;
}

int StopSignalDescriptor() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  const int descriptor = signalfd(-1, &signals, SFD_CLOEXEC);
  if (descriptor < 0) throw std::runtime_error("cannot make a signalfd for SIGINT and SIGTERM");
  return descriptor;
}

}  // namespace

int RunServer(const ServerOptions& options, TargetAccess& target, const GdbSession::Monitor& monitor,
              std::ostream& out) {
  uint16_t port = 0;
  const Descriptor listening(Listen(options, port));
  const Descriptor stopSignal(StopSignalDescriptor());
  StopEvents stops(target.threads());
  char domain[16];
  std::snprintf(domain, sizeof domain, "0x%08x", target.domainId());
  out << "Listening for GDB on " << options.address << ':' << port << ", target domain " << domain << std::endl;
  for (;;) {
    pollfd watched[] = {{listening.get(), POLLIN, 0}, {stopSignal.get(), POLLIN, 0}};
    if (poll(watched, 2, -1) < 0) continue;
    if (watched[1].revents != 0) return 0;
    const int connection = accept4(listening.get(), nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) continue;
    // Replies are small and waited for: no coalescing delay.
    const int yes = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    RspChannel channel(connection, kPacketSize);
    GdbSession session(target, stops, channel, monitor);
    if (session.Serve(stopSignal.get()) == GdbSession::End::Stopped) return 0;
  }
}

}  // namespace vxt::gdb
