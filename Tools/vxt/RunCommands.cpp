// vxt halt|go|step|status: stopping, resuming and stepping the target's
// threads, and where each one stands.
//
//   vxt halt [DEVICE]                          every thread, or those of the device
//   vxt go [DEVICE]
//   vxt step [into|over|out|branch] [N] [-t THREAD]   N steps of the thread (the first one by default)
//   vxt status [DEVICE]                        running, or why halted and the instruction there
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"
#include "ThreadView.h"

namespace vxt::cli {
namespace {

IInternalService_RunControl& RunControl() {
  return Session::Get<IInternalService_RunControl>(VXT_Service_RunControl);
}

// The threads a device holds: itself when it is one; every thread when no
// device is named.
std::vector<uint32_t> ThreadsOf(IInternalService_Device& devices, const std::string& name) {
  if (name.empty()) return AllThreads(devices);
  const uint32_t device = ResolveDevice(devices, name);
  VXT_NodeType type = VXT_NodeType_Unknown;
  Check(devices.GetNodeType(device, &type), "GetNodeType");
  if (type == VXT_NodeType_LogicalThread) return {device};
  uint32_t count = 0;
  Check(devices.GetNumDescendantIdsForType(device, VXT_NodeType_LogicalThread, 0, &count),
        "GetNumDescendantIdsForType");
  std::vector<uint32_t> threads(count);
  if (count != 0)
    Check(devices.GetDescendantIdsForType(device, VXT_NodeType_LogicalThread, 0, count, threads.data()),
          "GetDescendantIdsForType");
  return threads;
}

void PrintStatus(IInternalService_Device& devices, const std::vector<uint32_t>& threads, std::ostream& out) {
  for (const uint32_t thread : threads) {
    VXT_RunStatus status = VXT_RunStatus_Other;
    Check(RunControl().GetRunStatus(thread, &status), "GetRunStatus");
    if (status == VXT_RunStatus_Halted)
      out << StopLine(devices, thread) << '\n';
    else
      out << IdentifierOf(devices, thread) << " Running\n";
  }
}

const std::string& DeviceArgument(const CommandArguments& arguments) { return arguments.text.at("device"); }

int HaltOrGo(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out, bool halt) {
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  const std::string& name = DeviceArgument(arguments);
  const std::vector<uint32_t> threads = ThreadsOf(devices, name);
  const std::string call = halt ? "Halt" : "Go";
  uint64_t token = 0;
  if (name.empty())
    Check(halt ? RunControl().HaltAll(&token) : RunControl().GoAll(&token), call + "All");
  else {
    const uint32_t device = ResolveDevice(devices, name);
    Check(halt ? RunControl().Halt(device, &token) : RunControl().Go(device, &token), call);
  }
  FinishReceipt(token, call);
  PrintStatus(devices, threads, out);
  return 0;
}

int Halt(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  return HaltOrGo(arguments, options, out, true);
}

int Go(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  return HaltOrGo(arguments, options, out, false);
}

int Status(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  PrintStatus(devices, ThreadsOf(devices, DeviceArgument(arguments)), out);
  return 0;
}

VXT_StepType StepTypeNamed(const std::string& name) {
  if (name == "into") return VXT_StepType_Into;
  if (name == "over") return VXT_StepType_Over;
  if (name == "out") return VXT_StepType_Out;
  if (name == "branch") return VXT_StepType_Branch;
  return VXT_StepType_INVALID;
}

// `step`, `step over`, `step 5`, `step out 2`.
int Step(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::vector<std::string>& values = arguments.lists.at("values");
  VXT_StepType type = VXT_StepType_Into;
  size_t next = 0;
  if (next < values.size() && StepTypeNamed(values[next]) != VXT_StepType_INVALID) type = StepTypeNamed(values[next++]);
  int32_t count = 1;
  if (next < values.size()) {
    const std::string& text = values[next];
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos)
      throw std::invalid_argument("step takes [into|over|out|branch] [COUNT]; '" + text + "' is neither");
    const unsigned long long parsed = std::stoull(text);
    if (parsed < 1 || parsed > 1000000) throw std::invalid_argument("'" + text + "' is no step count (1 to 1000000)");
    count = static_cast<int32_t>(parsed);
    ++next;
  }
  if (next != values.size())
    throw std::invalid_argument("step takes [into|over|out|branch] [COUNT]; '" + values[next] + "' is neither");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  const uint32_t thread = ThreadNamed(devices, arguments.text.at("thread"));
  uint64_t token = 0;
  Check(RunControl().Step(thread, type, count, &token), "Step");
  FinishReceipt(token, "Step");
  out << StopLine(devices, thread) << '\n';
  return 0;
}

void DeviceOption(CLI::App& command, CommandArguments& arguments, const char* help) {
  command.add_option("device", arguments.text["device"], help);
}

const bool haltRegistered = RegisterCommand(
    {"halt", "Halt every thread, or the threads of DEVICE, and show where they stopped",
     [](CLI::App& command, CommandArguments& arguments) { DeviceOption(command, arguments, "A thread, core or domain"); },
     &ReportingUserErrors<&Halt>});

const bool goRegistered = RegisterCommand(
    {"go", "Let every thread, or the threads of DEVICE, run",
     [](CLI::App& command, CommandArguments& arguments) { DeviceOption(command, arguments, "A thread, core or domain"); },
     &ReportingUserErrors<&Go>});

const bool statusRegistered = RegisterCommand(
    {"status", "Whether each thread runs, and where a halted one stands",
     [](CLI::App& command, CommandArguments& arguments) { DeviceOption(command, arguments, "A thread, core or domain"); },
     &ReportingUserErrors<&Status>});

const bool stepRegistered = RegisterCommand(
    {"step", "Step a halted thread: [into|over|out|branch] [COUNT], into once by default",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("values", arguments.lists["values"], "The kind of step and the count");
       command.add_option("-t,--thread", arguments.text["thread"], "The thread (the first one by default)");
     },
     &ReportingUserErrors<&Step>});

}  // namespace
}  // namespace vxt::cli
