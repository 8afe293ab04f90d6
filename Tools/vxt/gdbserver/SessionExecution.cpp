// The session's packets that move the threads and set breakpoints, and the
// stop replies.
#include <algorithm>
#include <vector>

#include "GdbSession.h"
#include "RegisterTable.h"

namespace vxt::gdb {
namespace {

constexpr const char* kError = "E01";
constexpr int kSigInt = 2;
constexpr int kSigTrap = 5;

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  size_t start = 0;
  for (size_t end; (end = text.find(separator, start)) != std::string_view::npos; start = end + 1)
    parts.push_back(text.substr(start, end - start));
  parts.push_back(text.substr(start));
  return parts;
}

std::optional<VXT_BreakpointDataSize> DataSize(uint64_t length) {
  switch (length) {
    case 1: return VXT_BreakpointDataSize_Data_Size_1;
    case 2: return VXT_BreakpointDataSize_Data_Size_2;
    case 4: return VXT_BreakpointDataSize_Data_Size_4;
    case 8: return VXT_BreakpointDataSize_Data_Size_8;
    default: return std::nullopt;
  }
}

// The breakpoint type of a Z packet's type digit; a read watchpoint ('3')
// has none: the target's data breakpoints stop on writes or on every access.
std::optional<VXT_BreakpointType> TypeOf(char type) {
  switch (type) {
    case '0': return VXT_BreakpointType_SW;
    case '1': return VXT_BreakpointType_HW_Exec;
    case '2': return VXT_BreakpointType_HW_Write;
    case '4': return VXT_BreakpointType_HW_Access;
    default: return std::nullopt;
  }
}

}  // namespace

std::optional<std::string> GdbSession::Resume(std::string_view packet) {
  if (packet == "vCont?") return std::string("vCont;c;C;s;S");
  if (packet.substr(0, 6) == "vCont;") return ResumeEach(packet.substr(6));
  if (packet[0] == 'v') return std::string();  // vMustReplyEmpty and the v packets not offered
  // c [ADDR], s [ADDR], C SIG [;ADDR], S SIG [;ADDR]: the signal is not
  // delivered (there is none to give a CPU); an address sets rip first.
  std::string_view address = packet.substr(1);
  if (packet[0] == 'C' || packet[0] == 'S') {
    const size_t semicolon = address.find(';');
    address = semicolon == std::string_view::npos ? std::string_view() : address.substr(semicolon + 1);
  }
  if (!address.empty()) {
    const auto value = ParseHexNumber(address);
    if (!value) return std::string(kError);
    if (!target_.WriteRegister(Thread(continueThread_), GdbRegisters()[GdbRegisterIndex("rip")],
                               LittleEndianBytes(*value)))
      return std::string(kError);
  }
  if (packet[0] == 's' || packet[0] == 'S') return StepThread(continueThread_);
  return RunThreads({});
}

std::optional<std::string> GdbSession::ResumeEach(std::string_view actions) {
  std::vector<size_t> continued;
  bool continueAll = false;
  for (const std::string_view action : Split(actions, ';')) {
    if (action.empty()) return std::string(kError);
    const size_t colon = action.find(':');
    std::optional<long> thread = -1;
    if (colon != std::string_view::npos) thread = ParseThread(action.substr(colon + 1));
    if (!thread) return std::string(kError);
    const char kind = action[0];
    if (kind == 's' || kind == 'S') return StepThread(*thread > 0 ? static_cast<size_t>(*thread - 1) : continueThread_);
    if (kind != 'c' && kind != 'C') return std::string(kError);
    if (*thread > 0)
      continued.push_back(static_cast<size_t>(*thread - 1));
    else
      continueAll = true;
  }
  if (continueAll) continued.clear();
  return RunThreads(continued);
}

std::optional<std::string> GdbSession::StepThread(size_t index) {
  if (!target_.Step(Thread(index))) return std::string(kError);
  generalThread_ = continueThread_ = index;
  lastStop_ = StopReply(Stop{Thread(index), VXT_RunControlEvent_Break}, kSigTrap);
  return lastStop_;
}

std::optional<std::string> GdbSession::RunThreads(const std::vector<size_t>& only) {
  // A hit the debugger has not seen is its stop, before anything runs.
  while (const auto pending = stops_.Take()) {
    if (!StillStands(*pending)) continue;
    const auto& threads = target_.threads();
    generalThread_ = continueThread_ =
        static_cast<size_t>(std::find(threads.begin(), threads.end(), pending->thread) - threads.begin());
    lastStop_ = StopReply(*pending, kSigTrap);
    return lastStop_;
  }
  stops_.Arm();
  bool started = only.empty() ? target_.GoAll() : true;
  for (const size_t index : only) started = target_.Go(Thread(index)) && started;
  if (!started) {
    stops_.Disarm();
    return std::string(kError);
  }
  running_ = true;
  return std::nullopt;
}

void GdbSession::TakeStop() {
  const auto stop = stops_.Take();
  if (!stop || !running_) return;
  running_ = false;
  target_.HaltAll();
  const auto& threads = target_.threads();
  generalThread_ = continueThread_ =
      static_cast<size_t>(std::find(threads.begin(), threads.end(), stop->thread) - threads.begin());
  lastStop_ = StopReply(*stop, kSigTrap);
  channel_.Send(lastStop_);
}

bool GdbSession::StillStands(const Stop& stop) {
  if (stop.eventType != VXT_RunControlEvent_Breakpoint || stop.data) return false;
  const bool set = std::any_of(breakpoints_.begin(), breakpoints_.end(),
                               [&](const auto& entry) { return entry.second == stop.breakpointId; });
  return set && target_.LinearPc(stop.thread) == stop.address;
}

void GdbSession::Interrupt() {
  stops_.Disarm();
  running_ = false;
  target_.HaltAll();
  lastStop_ = StopReply(Stop{Thread(continueThread_), VXT_RunControlEvent_Halt}, kSigInt);
  channel_.Send(lastStop_);
}

std::string GdbSession::StopReply(const Stop& stop, int signal) {
  std::string reply = "T";
  reply += ToHex(std::string(1, static_cast<char>(signal)));
  // The frame registers GDB reads first come with the stop.
  for (const char* name : {"rbp", "rsp", "rip"}) {
    const int index = GdbRegisterIndex(name);
    if (const auto value = target_.ReadRegister(stop.thread, GdbRegisters()[index]))
      reply += HexNumber(static_cast<uint64_t>(index)) + ":" + ToHex(*value) + ";";
  }
  const auto& threads = target_.threads();
  const auto position = std::find(threads.begin(), threads.end(), stop.thread);
  reply += "thread:" + HexNumber(static_cast<uint64_t>(position - threads.begin()) + 1) + ";";
  if (stop.eventType != VXT_RunControlEvent_Breakpoint) return reply;
  char type = 0;
  for (const auto& [key, id] : breakpoints_)
    if (id == stop.breakpointId) type = std::get<0>(key);
  switch (type) {
    case '0': return reply + "swbreak:;";
    case '1': return reply + "hwbreak:;";
    case '2': return reply + "watch:" + HexNumber(stop.dataAddress) + ";";
    case '4': return reply + "awatch:" + HexNumber(stop.dataAddress) + ";";
    default: return reply;
  }
}

std::string GdbSession::ChangeBreakpoint(std::string_view packet, bool insert) {
  // TYPE,ADDR,KIND[;conditions...]: conditions are not evaluated here.
  const std::vector<std::string_view> fields = Split(packet.substr(0, packet.find(';')), ',');
  if (fields.size() != 3 || fields[0].size() != 1) return kError;
  const auto type = TypeOf(fields[0][0]);
  if (!type) return std::string();
  const auto address = ParseHexNumber(fields[1]);
  const auto kind = ParseHexNumber(fields[2]);
  if (!address || !kind) return kError;
  const auto key = std::make_tuple(fields[0][0], *address, *kind);
  const auto existing = breakpoints_.find(key);
  if (!insert) {
    if (existing == breakpoints_.end()) return kError;
    const bool removed = target_.RemoveBreakpoint(existing->second);
    breakpoints_.erase(existing);
    return removed ? "OK" : kError;
  }
  if (existing != breakpoints_.end()) return "OK";
  const bool data = *type == VXT_BreakpointType_HW_Write || *type == VXT_BreakpointType_HW_Access;
  const auto size = data ? DataSize(*kind) : VXT_BreakpointDataSize_Data_Size_1;
  if (!size) return kError;
  const auto id = target_.AddBreakpoint(*type, *address, *size);
  if (!id) return kError;
  breakpoints_[key] = *id;
  return "OK";
}

void GdbSession::Release() {
  stops_.Disarm();
  for (const auto& [key, id] : breakpoints_) target_.RemoveBreakpoint(id);
  breakpoints_.clear();
  running_ = false;
  target_.GoAll();
}

}  // namespace vxt::gdb
