// The session's loop and the packets that read and write the target.
#include "GdbSession.h"

#include <poll.h>

#include <algorithm>
#include <vector>

#include "RegisterTable.h"

namespace vxt::gdb {
namespace {

constexpr const char* kError = "E01";

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// "ADDR,LENGTH" in hex.
std::optional<std::pair<uint64_t, uint64_t>> ParseRange(std::string_view text) {
  const size_t comma = text.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  const auto address = ParseHexNumber(text.substr(0, comma));
  const auto length = ParseHexNumber(text.substr(comma + 1));
  if (!address || !length) return std::nullopt;
  return std::make_pair(*address, *length);
}

std::string Unavailable(uint32_t bits) { return std::string(bits / 4, 'x'); }

}  // namespace

GdbSession::End GdbSession::Serve(int stopDescriptor) {
  stops_.Disarm();
  target_.HaltAll();
  lastStop_ = StopReply(Stop{Thread(0), VXT_RunControlEvent_Halt}, 5);
  std::vector<Incoming> incoming;
  while (!end_) {
    pollfd watched[] = {{channel_.descriptor(), POLLIN, 0}, {running_ ? stops_.descriptor() : -1, POLLIN, 0},
                        {stopDescriptor, POLLIN, 0}};
    if (poll(watched, 3, -1) < 0) continue;
    if (watched[2].revents != 0) {
      end_ = End::Stopped;
      break;
    }
    if (watched[1].revents != 0) TakeStop();
    if (watched[0].revents == 0) continue;
    incoming.clear();
    if (!channel_.Receive(incoming)) {
      end_ = End::Gone;
      break;
    }
    for (const Incoming& item : incoming) {
      if (end_) break;
      switch (item.kind) {
        case Incoming::Kind::Packet:
          channel_.Acknowledge(true);
          if (const auto reply = Handle(item.payload)) channel_.Send(*reply);
          break;
        case Incoming::Kind::BadPacket:
          channel_.Acknowledge(false);
          break;
        case Incoming::Kind::Nak:
          channel_.Resend();
          break;
        case Incoming::Kind::Interrupt:
          if (running_) Interrupt();
          break;
        case Incoming::Kind::Ack:
          break;
      }
    }
  }
  Release();
  return *end_;
}

std::optional<std::string> GdbSession::Handle(const std::string& packet) {
  if (packet.empty()) return std::string();
  const std::string_view rest = std::string_view(packet).substr(1);
  switch (packet[0]) {
    case '?':
      return lastStop_;
    case 'g':
      return ReadAllRegisters();
    case 'G':
      return WriteAllRegisters(rest);
    case 'p':
      return ReadOneRegister(rest);
    case 'P':
      return WriteOneRegister(rest);
    case 'm':
      return ReadMemory(rest);
    case 'M':
      return WriteMemory(rest, false);
    case 'X':
      return WriteMemory(rest, true);
    case 'H':
      return SelectThread(rest);
    case 'T':
      return ParseThread(rest).value_or(-1) > 0 ? "OK" : kError;
    case 'c':
    case 'C':
    case 's':
    case 'S':
    case 'v':
      return Resume(packet);
    case 'Z':
      return ChangeBreakpoint(rest, true);
    case 'z':
      return ChangeBreakpoint(rest, false);
    case 'D':
      end_ = End::Detached;
      return std::string("OK");
    case 'k':
      end_ = End::Detached;
      return std::nullopt;
    case 'q':
    case 'Q':
      return Query(packet);
    default:
      return std::string();
  }
}

std::string GdbSession::Query(std::string_view packet) {
  if (StartsWith(packet, "qSupported"))
    return "PacketSize=" + HexNumber(kPacketSize) + ";QStartNoAckMode+;qXfer:features:read+" +
           (memoryMap_.empty() ? "" : ";qXfer:memory-map:read+") + ";swbreak+;hwbreak+;vContSupported+";
  if (packet == "QStartNoAckMode") {
    // This packet's own acknowledgement went out already.
    channel_.StopAcknowledging();
    return "OK";
  }
  constexpr std::string_view kFeatures = "qXfer:features:read:";
  if (StartsWith(packet, kFeatures)) return Transfer(TargetDescription(), "target.xml", packet.substr(kFeatures.size()));
  constexpr std::string_view kMemoryMap = "qXfer:memory-map:read:";
  if (StartsWith(packet, kMemoryMap) && !memoryMap_.empty())
    return Transfer(memoryMap_, "", packet.substr(kMemoryMap.size()));
  if (packet == "qAttached") return "1";
  if (packet == "qC") return "QC" + HexNumber(generalThread_ + 1);
  if (packet == "qfThreadInfo") {
    std::string reply = "m";
    for (size_t index = 0; index < target_.threads().size(); ++index) {
      if (index > 0) reply += ',';
      reply += HexNumber(index + 1);
    }
    return reply;
  }
  if (packet == "qsThreadInfo") return "l";
  constexpr std::string_view kExtraInfo = "qThreadExtraInfo,";
  if (StartsWith(packet, kExtraInfo)) {
    const auto thread = ParseThread(packet.substr(kExtraInfo.size()));
    if (!thread || *thread <= 0) return kError;
    return ToHex(target_.Describe(Thread(static_cast<size_t>(*thread - 1))));
  }
  if (StartsWith(packet, "qRcmd,")) return RunMonitor(packet.substr(6));
  if (packet == "qSymbol::") return "OK";
  return std::string();
}

// ANNEX:OFFSET,LENGTH of a qXfer read: as much of the document as a reply
// holds, 'm' while more follows, 'l' with the last of it.
std::string GdbSession::Transfer(const std::string& document, std::string_view annex, std::string_view request) {
  const size_t colon = request.find(':');
  if (colon == std::string_view::npos || request.substr(0, colon) != annex) return "E00";
  const auto range = ParseRange(request.substr(colon + 1));
  if (!range) return "E00";
  if (range->first >= document.size()) return "l";
  const std::string chunk = document.substr(range->first, std::min<uint64_t>(range->second, kPacketSize - 16));
  return (range->first + chunk.size() >= document.size() ? "l" : "m") + chunk;
}

std::optional<long> GdbSession::ParseThread(std::string_view text) const {
  if (text == "-1") return -1;
  if (text == "0") return 0;
  const auto id = ParseHexNumber(text);
  if (!id || *id == 0 || *id > target_.threads().size()) return std::nullopt;
  return static_cast<long>(*id);
}

std::string GdbSession::SelectThread(std::string_view request) {
  if (request.empty() || (request[0] != 'g' && request[0] != 'c')) return kError;
  const auto thread = ParseThread(request.substr(1));
  if (!thread) return kError;
  // "Any" and "all" keep the thread in use.
  if (*thread > 0) (request[0] == 'g' ? generalThread_ : continueThread_) = static_cast<size_t>(*thread - 1);
  return "OK";
}

std::string GdbSession::ReadAllRegisters() {
  const std::vector<GdbRegister>& table = GdbRegisters();
  const auto values = target_.ReadRegisters(Thread(generalThread_));
  std::string reply;
  for (size_t index = 0; index < table.size(); ++index)
    reply += values[index] ? ToHex(*values[index]) : Unavailable(table[index].bits);
  return reply;
}

std::string GdbSession::WriteAllRegisters(std::string_view hex) {
  const std::vector<GdbRegister>& table = GdbRegisters();
  size_t offset = 0;
  const auto current = target_.ReadRegisters(Thread(generalThread_));
  for (size_t index = 0; index < table.size(); ++index) {
    const size_t digits = table[index].bits / 4;
    if (offset + digits > hex.size()) return kError;
    const std::string_view text = hex.substr(offset, digits);
    offset += digits;
    const auto bytes = FromHex(text);
    // Registers left unavailable, or unchanged, are not written.
    if (!bytes || !current[index] || *bytes == *current[index]) continue;
    if (!target_.WriteRegister(Thread(generalThread_), table[index], *bytes)) return kError;
  }
  return offset == hex.size() ? "OK" : kError;
}

std::string GdbSession::ReadOneRegister(std::string_view number) {
  const auto index = ParseHexNumber(number);
  const std::vector<GdbRegister>& table = GdbRegisters();
  if (!index || *index >= table.size()) return kError;
  const auto value = target_.ReadRegister(Thread(generalThread_), table[*index]);
  return value ? ToHex(*value) : Unavailable(table[*index].bits);
}

std::string GdbSession::WriteOneRegister(std::string_view assignment) {
  const size_t equals = assignment.find('=');
  if (equals == std::string_view::npos) return kError;
  const auto index = ParseHexNumber(assignment.substr(0, equals));
  const auto bytes = FromHex(assignment.substr(equals + 1));
  const std::vector<GdbRegister>& table = GdbRegisters();
  if (!index || !bytes || *index >= table.size()) return kError;
  return target_.WriteRegister(Thread(generalThread_), table[*index], *bytes) ? "OK" : kError;
}

std::string GdbSession::ReadMemory(std::string_view request) {
  const auto range = ParseRange(request);
  if (!range) return kError;
  // A reply holds two digits a byte; a shorter read is a valid answer.
  const auto length = static_cast<uint32_t>(std::min<uint64_t>(range->second, kPacketSize / 2));
  const auto bytes = target_.ReadMemory(Thread(generalThread_), range->first, length);
  return bytes ? ToHex(*bytes) : kError;
}

std::string GdbSession::WriteMemory(std::string_view request, bool binary) {
  const size_t colon = request.find(':');
  if (colon == std::string_view::npos) return kError;
  const auto range = ParseRange(request.substr(0, colon));
  if (!range) return kError;
  const std::string_view data = request.substr(colon + 1);
  std::optional<std::vector<uint8_t>> bytes;
  if (binary) {
    if (const auto raw = Unescape(data)) bytes = std::vector<uint8_t>(raw->begin(), raw->end());
  } else {
    bytes = FromHex(data);
  }
  if (!bytes || bytes->size() != range->second) return kError;
  return target_.WriteMemory(Thread(generalThread_), range->first, *bytes) ? "OK" : kError;
}

std::string GdbSession::RunMonitor(std::string_view hexLine) {
  const auto line = FromHex(hexLine);
  if (!line) return kError;
  const std::string output = monitor_(std::string(line->begin(), line->end()));
  // A command may have let threads run (a reset restarts them): the
  // debugger still sees them halted, and so they are again.
  target_.HaltAll();
  // Console output goes out in 'O' packets before the final reply.
  constexpr size_t kChunk = kPacketSize / 2 - 16;
  for (size_t offset = 0; offset < output.size(); offset += kChunk) {
    std::string packet = "O";
    packet += ToHex(std::string_view(output).substr(offset, kChunk));
    channel_.Send(packet);
  }
  return "OK";
}

}  // namespace vxt::gdb
