#include "RspChannel.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace vxt::gdb {

RspChannel::~RspChannel() { close(socket_); }

bool RspChannel::Receive(std::vector<Incoming>& incoming) {
  char buffer[4096];
  ssize_t got = 0;
  do {
    got = recv(socket_, buffer, sizeof buffer, 0);
  } while (got < 0 && errno == EINTR);
  if (got <= 0) return false;
  reader_.Feed(std::string_view(buffer, static_cast<size_t>(got)), incoming);
  return true;
}

bool RspChannel::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(sent));
  }
  return true;
}

bool RspChannel::Send(std::string_view payload) {
  lastFrame_ = Frame(payload);
  return Write(lastFrame_);
}

bool RspChannel::Acknowledge(bool taken) { return !acknowledging_ || Write(taken ? "+" : "-"); }

bool RspChannel::Resend() { return lastFrame_.empty() || Write(lastFrame_); }

}  // namespace vxt::gdb
