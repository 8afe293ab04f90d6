// `vxt gdbserver` run as a user runs it, on a free port, and a client that
// speaks the remote protocol packet by packet: for the tests and the
// benchmarks alike.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <deque>
#include <string>
#include <vector>

#include "RspPacket.h"

extern char** environ;

namespace vxt::test {

// The 8 bytes at `offset` of a reply in hex, read little-endian; 0 when the
// reply is too short or no hex.
inline uint64_t LittleEndian(const std::string& hex, size_t offset = 0) {
  const auto bytes = gdb::FromHex(hex);
  uint64_t value = 0;
  if (!bytes || bytes->size() < offset + 8) return 0;
  for (size_t i = 8; i-- > 0;) value = value << 8 | (*bytes)[offset + i];
  return value;
}

// The server on a free port, stopped with SIGTERM at the end.
class GdbServerProcess {
 public:
  GdbServerProcess() {
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipeEnds[0]);
    const char* argv[] = {VXT_CLI_PATH, "gdbserver", "--port", "0", nullptr};
    if (posix_spawn(&pid_, VXT_CLI_PATH, &actions, nullptr, const_cast<char**>(argv), environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(pipeEnds[1]);
    output_ = pipeEnds[0];
    // "Listening for GDB on 127.0.0.1:PORT, target domain 0x02000000"
    std::string line;
    char c = 0;
    pollfd readable{output_, POLLIN, 0};
    while (poll(&readable, 1, 20000) > 0 && read(output_, &c, 1) == 1 && c != '\n') line += c;
    const size_t colon = line.find("127.0.0.1:");
    if (colon != std::string::npos) port_ = std::stoi(line.substr(colon + 10));
  }
  ~GdbServerProcess() {
    if (pid_ > 0) {
      kill(pid_, SIGTERM);
      int status = 0;
      waitpid(pid_, &status, 0);
    }
    if (output_ >= 0) close(output_);
  }
  int port() const { return port_; }

 private:
  pid_t pid_ = -1;
  int output_ = -1;
  int port_ = 0;
};

// Speaks the protocol packet by packet; every wait ends after 10 s.
class RawGdbClient {
 public:
  explicit RawGdbClient(int port) {
    socket_ = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    connected_ = connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  }
  ~RawGdbClient() { close(socket_); }
  bool connected() const { return connected_; }

  void SendBytes(const std::string& bytes) { send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
  void Send(const std::string& payload) { SendBytes(gdb::Frame(payload)); }
  // A frame whose payload goes out as it is, escapes or not.
  void SendUnescaped(const std::string& payload) {
    unsigned sum = 0;
    for (const char c : payload) sum += static_cast<uint8_t>(c);
    char checksum[4];
    std::snprintf(checksum, sizeof checksum, "%02x", sum & 0xff);
    SendBytes("$" + payload + "#" + checksum);
  }

  // The next thing the server sent: "+", "-", "$payload", or "" when nothing
  // came in time or the server closed the connection.
  std::string Next() {
    while (pending_.empty()) {
      pollfd readable{socket_, POLLIN, 0};
      char buffer[65536];
      if (poll(&readable, 1, 10000) <= 0) return "";
      const ssize_t got = recv(socket_, buffer, sizeof buffer, 0);
      if (got <= 0) return "";
      std::vector<gdb::Incoming> items;
      reader_.Feed(std::string_view(buffer, static_cast<size_t>(got)), items);
      for (gdb::Incoming& item : items) {
        if (item.kind == gdb::Incoming::Kind::Ack) pending_.push_back("+");
        if (item.kind == gdb::Incoming::Kind::Nak) pending_.push_back("-");
        if (item.kind == gdb::Incoming::Kind::Packet) pending_.push_back("$" + item.payload);
        if (item.kind == gdb::Incoming::Kind::BadPacket) pending_.push_back("bad");
      }
    }
    std::string next = pending_.front();
    pending_.pop_front();
    return next;
  }
  // Sends a packet, takes its acknowledgement (while there are) and gives
  // the reply's payload, still escaped.
  std::string Ask(const std::string& payload) {
    Send(payload);
    std::string reply = Next();
    if (acknowledged_ && reply == "+") reply = Next();
    return reply.empty() ? "<none>" : reply.substr(1);
  }
  void StopAcknowledging() { acknowledged_ = false; }

 private:
  int socket_ = -1;
  bool connected_ = false;
  bool acknowledged_ = true;
  gdb::PacketReader reader_{1 << 20};
  std::deque<std::string> pending_;
};

}  // namespace vxt::test
