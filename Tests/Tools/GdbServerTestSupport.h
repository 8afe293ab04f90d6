// `vxt gdbserver` run as a user runs it, a client that speaks the remote
// protocol byte by byte, and Debian's gdb in batch mode against it.
#pragma once

#include <poll.h>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <deque>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "RspPacket.h"

extern char** environ;

namespace vxt::test {

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

// The firmware boots for a while before its loop: waits until every thread
// has counted an iteration of it (0x1100 + 8 * APIC id), connecting anew
// each time so that the threads run in between.
inline void WaitUntilLooping(int port, int threads) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  for (;;) {
    RawGdbClient client(port);
    ASSERT_TRUE(client.connected());
    const std::string counts = client.Ask("m1100," + std::to_string(8 * threads));
    client.Ask("D");
    const auto bytes = gdb::FromHex(counts);
    ASSERT_TRUE(bytes) << counts;
    bool looping = true;
    for (int thread = 0; thread < threads; ++thread) {
      uint64_t count = 0;
      for (int i = 7; i >= 0; --i) count = count << 8 | (*bytes)[8 * thread + i];
      looping = looping && count != 0;
    }
    if (looping) return;
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "the threads never reached their loop";
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

inline bool GdbInstalled() { return std::system("gdb --version >/dev/null 2>&1") == 0; }

// gdb -batch connected to the server, running `commands` in order; its
// output, stdout and stderr interleaved.
inline std::string RunGdb(int port, const std::vector<std::string>& commands) {
  std::string line = "timeout 120 gdb -batch -nx -ex 'set pagination off' -ex 'target remote 127.0.0.1:" +
                     std::to_string(port) + "'";
  for (const std::string& command : commands) line += " -ex '" + command + "'";
  line += " 2>&1";
  std::string output;
  FILE* pipe = popen(line.c_str(), "r");
  if (pipe == nullptr) return output;
  std::array<char, 4096> chunk;
  size_t got = 0;
  while ((got = fread(chunk.data(), 1, chunk.size(), pipe)) > 0) output.append(chunk.data(), got);
  pclose(pipe);
  return output;
}

}  // namespace vxt::test
