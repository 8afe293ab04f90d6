// One debugger's connection: the socket, the packet reader, the
// acknowledgements (until the debugger turns them off with
// QStartNoAckMode) and the last packet sent, sent again on a NAK.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "RspPacket.h"

namespace vxt::gdb {

class RspChannel {
 public:
  RspChannel(int socket, size_t maxPayload) : socket_(socket), reader_(maxPayload) {}
  ~RspChannel();
  RspChannel(const RspChannel&) = delete;
  RspChannel& operator=(const RspChannel&) = delete;

  int descriptor() const { return socket_; }
  // Reads what has arrived; false once the debugger has gone.
  bool Receive(std::vector<Incoming>& incoming);
  bool Send(std::string_view payload);
  // '+' for a packet taken, '-' for one to send again; nothing without acks.
  bool Acknowledge(bool taken);
  bool Resend();
  void StopAcknowledging() { acknowledging_ = false; }

 private:
  bool Write(std::string_view bytes);

  int socket_;
  PacketReader reader_;
  bool acknowledging_ = true;
  std::string lastFrame_;
};

}  // namespace vxt::gdb
