// One debugger's session with the target domain, in all-stop mode: the
// threads are halted while the debugger looks at them and all run together
// on a continue. A step moves only the thread it names.
//
// The session halts the domain when the debugger connects and, however it
// ends (detach, kill, the debugger leaving, the server stopping), removes
// its breakpoints and lets every thread run again.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "MemoryMapDocument.h"
#include "RspChannel.h"
#include "StopEvents.h"
#include "TargetAccess.h"

namespace vxt::gdb {

// What the server advertises and reads at most in one packet.
inline constexpr size_t kPacketSize = 0x4000;

class GdbSession {
 public:
  // Runs a `monitor` line; its output.
  using Monitor = std::function<std::string(const std::string& line)>;
  GdbSession(TargetAccess& target, StopEvents& stops, RspChannel& channel, Monitor monitor)
      : target_(target),
        stops_(stops),
        channel_(channel),
        monitor_(std::move(monitor)),
        memoryMap_(MemoryMapDocument(target.MemoryMap())) {}

  enum class End { Detached, Gone, Stopped };
  // Serves until the session ends; `stopDescriptor` readable stops it.
  End Serve(int stopDescriptor);

 private:
  // The reply, or nullopt when the threads now run and the reply is the
  // stop to come.
  std::optional<std::string> Handle(const std::string& packet);
  std::string Query(std::string_view packet);
  static std::string Transfer(const std::string& document, std::string_view annex, std::string_view request);
  std::string ReadAllRegisters();
  std::string WriteAllRegisters(std::string_view hex);
  std::string ReadOneRegister(std::string_view number);
  std::string WriteOneRegister(std::string_view assignment);
  std::string ReadMemory(std::string_view request);
  std::string WriteMemory(std::string_view request, bool binary);
  std::string SelectThread(std::string_view request);
  std::string RunMonitor(std::string_view hexLine);
  std::optional<std::string> Resume(std::string_view packet);
  std::optional<std::string> ResumeEach(std::string_view actions);
  std::optional<std::string> StepThread(size_t index);
  std::optional<std::string> RunThreads(const std::vector<size_t>& only);
  std::string ChangeBreakpoint(std::string_view packet, bool insert);
  void TakeStop();
  // A breakpoint hit that waited while the threads were halted still
  // stands: the thread is where it hit, at a breakpoint still set.
  bool StillStands(const Stop& stop);
  void Interrupt();
  std::string StopReply(const Stop& stop, int signal);
  void Release();

  // Thread ids are 1 + the thread's index; nullopt for none of ours, -1
  // for "all".
  std::optional<long> ParseThread(std::string_view text) const;
  uint32_t Thread(size_t index) const { return target_.threads()[index]; }

  TargetAccess& target_;
  StopEvents& stops_;
  RspChannel& channel_;
  Monitor monitor_;
  const std::string memoryMap_;  // GDB's memory map document; empty without a map
  bool running_ = false;
  std::optional<End> end_;
  size_t generalThread_ = 0;
  size_t continueThread_ = 0;
  std::string lastStop_;
  // (Z type, address, kind) -> the breakpoint's id.
  std::map<std::tuple<char, uint64_t, uint64_t>, uint32_t> breakpoints_;
};

}  // namespace vxt::gdb
