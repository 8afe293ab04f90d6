// vxt break|watch: execution and data breakpoints on the target's threads.
//
//   vxt break add ADDRESS [-t DEVICE]        an execution breakpoint (every thread of the domain by default)
//   vxt break list
//   vxt break enable|disable|remove ID
//   vxt watch ADDRESS [write|access] [LENGTH] [-t DEVICE]
//                                            stops after a write (or any access) of LENGTH bytes (1, 2, 4, 8)
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"
#include "NumberArguments.h"
#include "ThreadView.h"

namespace vxt::cli {
namespace {

IInternalService_Breakpoint& Breakpoints() {
  return Session::Get<IInternalService_Breakpoint>(VXT_Service_Breakpoint);
}
IInternalService_BreakpointManagement& Management() {
  return Session::Get<IInternalService_BreakpointManagement>(VXT_Service_BreakpointManagement);
}

// The device a breakpoint is set on: the one named, else the first domain.
uint32_t BreakDevice(IInternalService_Device& devices, const std::string& name) {
  if (!name.empty()) return ResolveDevice(devices, name);
  const TargetDomains domains = ReadTargetDomains(devices);
  if (domains.ids.empty()) throw std::invalid_argument("the target has no target domain");
  return domains.ids.front();
}

VXT_Breakpoint NewRecord(uint32_t device, uint64_t address) {
  VXT_Breakpoint record{};
  record.structureSize = VXT_BREAKPOINT_SIZE;
  record.threadDeviceId = device;
  record.breakpointAddress = address;
  record.enabled = 1;
  return record;
}

std::string KindText(const VXT_Breakpoint& record) {
  switch (record.breakpointType) {
    case VXT_BreakpointType_HW_Write:
      return "write " + std::to_string(1u << record.dataSize);
    case VXT_BreakpointType_HW_Access:
      return "access " + std::to_string(1u << record.dataSize);
    default:
      return "execution";
  }
}

void List(IInternalService_Device& devices, std::ostream& out) {
  for (const uint32_t domain : ReadTargetDomains(devices).ids) {
    uint32_t count = 0;
    Check(Management().GetNumBreakpoints(domain, &count), "GetNumBreakpoints");
    std::vector<uint32_t> ids(count);
    if (count != 0) Check(Management().GetBreakpointIds(domain, static_cast<int32_t>(count), ids.data()), "GetBreakpointIds");
    for (const uint32_t id : ids) {
      VXT_Breakpoint record{};
      record.structureSize = VXT_BREAKPOINT_SIZE;
      Check(Management().GetBreakpoint(id, &record), "GetBreakpoint");
      out << id << ' ' << KindText(record) << ' ' << AddressText(record.breakpointAddress) << ' '
          << IdentifierOf(devices, record.threadDeviceId) << (record.enabled ? " enabled" : " disabled") << '\n';
    }
  }
}

int Break(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::string& action = arguments.text.at("action");
  const std::vector<std::string>& values = arguments.lists.at("values");
  const size_t needed = action == "list" ? 0 : 1;
  if (action != "add" && action != "list" && action != "enable" && action != "disable" && action != "remove")
    throw std::invalid_argument("unknown break action '" + action + "' (add, list, enable, disable or remove)");
  if (values.size() != needed) throw std::invalid_argument("break " + action + " takes " + std::to_string(needed) +
                                                           " argument(s); see --help");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  if (action == "list") {
    List(devices, out);
    return 0;
  }
  if (action == "add") {
    VXT_Breakpoint record = NewRecord(BreakDevice(devices, arguments.text.at("thread")),
                                      ParseNumber(values[0], UINT64_MAX, "address"));
    record.breakpointType = VXT_BreakpointType_HW_Exec;
    Check(Breakpoints().CreateBreakpoint(&record), "CreateBreakpoint");
    out << "breakpoint " << record.breakpointId << " at " << AddressText(record.breakpointAddress) << '\n';
    return 0;
  }
  const auto id = static_cast<uint32_t>(ParseNumber(values[0], UINT32_MAX, "breakpoint id"));
  if (action == "enable") Check(Management().EnableBreakpoint(id), "EnableBreakpoint");
  if (action == "disable") Check(Management().DisableBreakpoint(id), "DisableBreakpoint");
  if (action == "remove") Check(Breakpoints().RemoveBreakpointById(id), "RemoveBreakpointById");
  out << "breakpoint " << id << ' ' << action << "d\n";
  return 0;
}

int Watch(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::vector<std::string>& values = arguments.lists.at("values");
  if (values.empty() || values.size() > 3)
    throw std::invalid_argument("watch takes ADDRESS [write|access] [LENGTH]; see --help");
  const std::string access = values.size() > 1 ? values[1] : "write";
  if (access != "write" && access != "access")
    throw std::invalid_argument("unknown access '" + access + "' (write or access)");
  const uint64_t length = values.size() > 2 ? ParseNumber(values[2], 8, "length (1, 2, 4 or 8)") : 1;
  const uint32_t sizeCode = length == 1 ? 0 : length == 2 ? 1 : length == 4 ? 2 : length == 8 ? 3 : 4;
  if (sizeCode == 4) throw std::invalid_argument("'" + values[2] + "' is no length (1, 2, 4 or 8)");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  VXT_Breakpoint record =
      NewRecord(BreakDevice(devices, arguments.text.at("thread")), ParseNumber(values[0], UINT64_MAX, "address"));
  record.breakpointType = access == "write" ? VXT_BreakpointType_HW_Write : VXT_BreakpointType_HW_Access;
  record.dataSize = static_cast<VXT_BreakpointDataSize>(sizeCode);
  Check(Breakpoints().CreateBreakpoint(&record), "CreateBreakpoint");
  out << "breakpoint " << record.breakpointId << " on " << access << " of " << length << " byte(s) at "
      << AddressText(record.breakpointAddress) << '\n';
  return 0;
}

void ThreadOption(CLI::App& command, CommandArguments& arguments) {
  command.add_option("-t,--thread", arguments.text["thread"], "The thread, core or domain (the first domain by default)");
}

const bool breakRegistered = RegisterCommand(
    {"break", "Execution breakpoints: add ADDRESS [-t DEVICE], list, enable ID, disable ID, remove ID",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("action", arguments.text["action"], "add, list, enable, disable or remove")->required();
       command.add_option("values", arguments.lists["values"], "The address or the breakpoint's id");
       ThreadOption(command, arguments);
     },
     &ReportingUserErrors<&Break>});

const bool watchRegistered = RegisterCommand(
    {"watch", "A data breakpoint: ADDRESS [write|access] [LENGTH]; the thread stops after the access",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("values", arguments.lists["values"], "The address, the access and the length");
       ThreadOption(command, arguments);
     },
     &ReportingUserErrors<&Watch>});

}  // namespace
}  // namespace vxt::cli
