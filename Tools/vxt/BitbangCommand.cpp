// vxt bitbang: serves a JTAG chain of the target to OpenOCD over its
// remote_bitbang protocol on 127.0.0.1, one connection at a time. The
// chain's lock is held while a client is connected, so that no other
// client of the library scans in between.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>
#include <ostream>
#include <stdexcept>
#include <string>

#include "BitbangProtocol.h"
#include "CommandRegistry.h"

namespace vxt::cli {
namespace {

// A socket closed with its scope.
class Socket {
 public:
  explicit Socket(int fd) : fd_(fd) {
    if (fd_ < 0) throw std::runtime_error(std::string("socket: ") + std::strerror(errno));
  }
  ~Socket() {
    if (fd_ >= 0) ::close(fd_);
  }
  Socket(Socket&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
  Socket& operator=(Socket&&) = delete;
  int fd() const { return fd_; }

 private:
  int fd_;
};

Socket Listen(uint16_t port) {
  Socket server(::socket(AF_INET, SOCK_STREAM, 0));
  const int yes = 1;
  ::setsockopt(server.fd(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::bind(server.fd(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || ::listen(server.fd(), 1) != 0)
    throw std::runtime_error("cannot listen on 127.0.0.1:" + std::to_string(port) + ": " + std::strerror(errno));
  return server;
}

// Answers one client until it quits or hangs up; answers are sent when the
// client has nothing more queued, as OpenOCD waits for them only then.
void Serve(int fd, BitbangProtocol& protocol) {
  char input[4096];
  std::string output;
  while (!protocol.quit()) {
    const ssize_t received = ::recv(fd, input, sizeof input, 0);
    if (received <= 0) return;
    for (ssize_t i = 0; i < received && !protocol.quit(); ++i)
      if (const auto answer = protocol.Receive(input[i])) output += *answer;
    if (!output.empty() && ::send(fd, output.data(), output.size(), MSG_NOSIGNAL) < 0) return;
    output.clear();
  }
}

int Bitbang(const CommandArguments& arguments, const SessionOptions& given, std::ostream& out) {
  SessionOptions options = given;
  if (!arguments.text.at("config").empty()) options.configuration = arguments.text.at("config");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  JtagPort port(session);
  const uint32_t chain = ResolveChain(devices, arguments.text.at("chain"));
  const auto portNumber = static_cast<uint16_t>(arguments.numbers.at("port"));
  const Socket server = Listen(portNumber);
  out << "Serving chain " << IdentifierOf(devices, chain) << " on 127.0.0.1:" << portNumber << std::endl;
  do {
    const Socket client(::accept(server.fd(), nullptr, nullptr));
    const int yes = 1;
    ::setsockopt(client.fd(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    port.Lock(chain);
    BitbangProtocol protocol(port, chain);
    try {
      Serve(client.fd(), protocol);
    } catch (...) {
      port.Unlock(chain);
      throw;
    }
    port.Unlock(chain);
  } while (!arguments.flags.at("once"));
  return 0;
}

const bool registered = RegisterCommand(
    {"bitbang", "Serve a JTAG chain to OpenOCD (adapter driver remote_bitbang) on 127.0.0.1",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("--port", arguments.numbers["port"], "TCP port to listen on")->required();
       arguments.text["config"];
       command.add_option("--config", arguments.text["config"], "Target configuration, as vxt --config takes it");
       arguments.text["chain"];
       command.add_option("--chain", arguments.text["chain"], "The chain (default: the target's first)");
       arguments.flags["once"] = false;
       command.add_flag("--once", arguments.flags["once"], "End after the first client has gone");
     },
     &ReportingUserErrors<&Bitbang>});

}  // namespace
}  // namespace vxt::cli
