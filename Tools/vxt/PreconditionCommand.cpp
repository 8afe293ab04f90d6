// vxt precondition list|require: the preconditions of a device.
//
//   vxt precondition list                      every precondition of TargetDomain0, its states
//   vxt precondition list Core0
//   vxt precondition require "probe mode" true [DEVICE]
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "TargetCalls.h"
#include "CommandRegistry.h"
#include "DeviceNames.h"

namespace vxt::cli {
namespace {

constexpr const char* kStateNames[] = {"false", "true", "unknown"};

const char* StateText(VXT_PreconditionState state) { return state <= 2 ? kStateNames[state] : "?"; }

VXT_PreconditionState StateNamed(const std::string& name) {
  for (uint32_t i = 0; i < 2; ++i)
    if (name == kStateNames[i]) return static_cast<VXT_PreconditionState>(i);
  throw std::runtime_error("unknown state '" + name + "' (true or false)");
}

void List(IInternalService_Precondition& preconditions, uint32_t device, std::ostream& out) {
  uint32_t count = 0;
  Check(preconditions.GetNumPreconditions(device, &count), "GetNumPreconditions");
  std::vector<char> names(size_t{count} * VXT_PRECONDITION_NAME_SIZE + 1);
  Check(preconditions.GetPreconditions(device, count, names.data()), "GetPreconditions");
  for (uint32_t id = 1; id <= count; ++id) {
    VXT_PreconditionState current{}, byDefault{};
    uint32_t suppressed = 0;
    Check(preconditions.GetCurrentState(device, id, &current), "GetCurrentState");
    Check(preconditions.GetDefaultState(device, id, &byDefault), "GetDefaultState");
    Check(preconditions.IsSuppressed(device, id, &suppressed), "IsSuppressed");
    out << id << "  " << &names[(id - 1) * VXT_PRECONDITION_NAME_SIZE] << "  " << StateText(current)
        << " (default " << StateText(byDefault) << ")" << (suppressed ? "  suppressed" : "") << '\n';
  }
}

int Precondition(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::string& action = arguments.text.at("action");
  const std::vector<std::string>& values = arguments.lists.at("values");
  const bool list = action == "list";
  if (!list && action != "require") throw std::runtime_error("unknown precondition action '" + action + "' (list or require)");
  const size_t named = list ? 0 : 2;
  if (values.size() < named || values.size() > named + 1)
    throw std::runtime_error("precondition " + action + " takes " + (list ? "[DEVICE]" : "NAME STATE [DEVICE]"));
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& preconditions = session.Get<IInternalService_Precondition>(VXT_Service_Precondition);
  const uint32_t device = ResolveDevice(devices, values.size() > named ? values[named] : "TargetDomain0");
  if (list) {
    List(preconditions, device, out);
    return 0;
  }
  uint32_t id = 0;
  Check(preconditions.GetPreconditionId(device, values[0].c_str(), &id), "GetPreconditionId");
  uint64_t token = 0;
  Check(preconditions.Require(device, id, StateNamed(values[1]), &token), "Require");
  AwaitCompletion(session.Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt), token, "Require");
  out << values[0] << ": " << values[1] << '\n';
  return 0;
}

const bool registered = RegisterCommand(
    {"precondition", "Preconditions of a device: list [DEVICE], require NAME true|false [DEVICE]",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("action", arguments.text["action"], "list or require")->required();
       command.add_option("values", arguments.lists["values"], "The precondition, its state and the device");
     },
     &ReportingUserErrors<&Precondition>});

}  // namespace
}  // namespace vxt::cli
