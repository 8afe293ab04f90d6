// vxt power cycle|status / vxt reset: the target behind a debug port.
//
//   vxt power cycle            power the target off and on again (RAM is lost)
//   vxt power status Bmc/DebugPort0
//   vxt reset                  restart the CPUs from their reset vector (RAM kept)
//
// The debug port is named by id or identifier; the first one, DebugPort0,
// when none is named.
#include <ostream>
#include <stdexcept>
#include <string>

#include "TargetCalls.h"
#include "CommandRegistry.h"
#include "DeviceNames.h"

namespace vxt::cli {
namespace {

constexpr const char* kDefaultDebugPort = "DebugPort0";

int Power(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::string& action = arguments.text.at("action");
  if (action != "cycle" && action != "status")
    throw std::runtime_error("unknown power action '" + action + "' (cycle or status)");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& platform = session.Get<IInternalService_PlatformControl>(VXT_Service_PlatformControl);
  const uint32_t port = ResolveDevice(devices, arguments.text.at("port"));
  if (action == "cycle") {
    uint64_t token = 0;
    Check(platform.PowerCycleTarget(port, &token), "PowerCycleTarget");
    AwaitCompletion(session.Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt), token,
                    "PowerCycleTarget");
    out << "power cycled\n";
  } else {
    uint32_t status = 0;
    Check(platform.GetDebugPortPowerStatus(port, &status), "GetDebugPortPowerStatus");
    out << "power " << (status != 0 ? "on" : "off") << '\n';
  }
  return 0;
}

int Reset(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& platform = session.Get<IInternalService_PlatformControl>(VXT_Service_PlatformControl);
  uint64_t token = 0;
  Check(platform.ResetTarget(ResolveDevice(devices, arguments.text.at("port")), &token), "ResetTarget");
  AwaitCompletion(session.Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt), token, "ResetTarget");
  out << "reset\n";
  return 0;
}

const bool powerRegistered = RegisterCommand(
    {"power", "Power of the target behind a debug port: cycle [PORT], status [PORT]",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("action", arguments.text["action"], "cycle or status")->required();
       arguments.text["port"] = kDefaultDebugPort;
       command.add_option("port", arguments.text["port"], "The debug port (default DebugPort0)");
     },
     &ReportingUserErrors<&Power>});

const bool resetRegistered = RegisterCommand(
    {"reset", "Reset the target behind a debug port [PORT]: its CPUs restart from the reset vector",
     [](CLI::App& command, CommandArguments& arguments) {
       arguments.text["port"] = kDefaultDebugPort;
       command.add_option("port", arguments.text["port"], "The debug port (default DebugPort0)");
     },
     &ReportingUserErrors<&Reset>});

}  // namespace
}  // namespace vxt::cli
