// vxt probes / probe select / scenario list|select: the probes a target is
// reached through and its scenarios.
//
//   vxt probes                       every connected probe
//   vxt probe select VxtSim [ID]     select a probe by type (and identifier) and initialize it
//   vxt scenario list
//   vxt scenario select ColdBoot
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandRegistry.h"

namespace vxt::cli {
namespace {

IInternalService_Initialization& Initialization(Session& session) {
  return session.Get<IInternalService_Initialization>(VXT_Service_Initialization);
}

int Probes(const CommandArguments&, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& init = Initialization(session);
  uint32_t count = 0;
  Check(init.GetConnectedProbeCount(&count), "GetConnectedProbeCount");
  std::vector<VXT_Probe> probes(count);
  Check(init.GetConnectedProbes(count, probes.data()), "GetConnectedProbes");
  for (const VXT_Probe& probe : probes)
    out << probe.type << "  " << probe.uniqueIdentifier << "  " << probe.details << '\n';
  return 0;
}

int Probe(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::vector<std::string>& values = arguments.lists.at("values");
  if (arguments.text.at("action") != "select" || values.empty() || values.size() > 2)
    throw std::runtime_error("probe takes: select TYPE [IDENTIFIER]");
  Session session(options);
  auto& init = Initialization(session);
  VXT_Probe probe{VXT_PROBE_SIZE, {}, {}, {}};
  std::strncpy(probe.type, values[0].c_str(), sizeof probe.type - 1);
  if (values.size() == 2) std::strncpy(probe.uniqueIdentifier, values[1].c_str(), sizeof probe.uniqueIdentifier - 1);
  uint32_t debugPort = 0;
  Check(init.SelectProbe(&probe, &debugPort), "SelectProbe");
  Check(init.InitializeProbe(debugPort), "InitializeProbe");
  out << "selected " << probe.type << ' ' << probe.uniqueIdentifier << '\n';
  return 0;
}

int Scenario(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::string& action = arguments.text.at("action");
  const std::vector<std::string>& values = arguments.lists.at("values");
  Session session(options);
  auto& init = Initialization(session);
  if (action == "select" && values.size() == 1) {
    Check(init.SelectScenario(values[0].c_str()), "SelectScenario");
    out << "scenario " << values[0] << '\n';
    return 0;
  }
  if (action != "list" || !values.empty()) throw std::runtime_error("scenario takes: list, or select NAME");
  uint32_t count = 0;
  Check(init.GetAvailableScenarioCount(&count), "GetAvailableScenarioCount");
  std::vector<char> names(size_t{count} * VXT_INITIALIZATION_NAME_SIZE + 1);
  Check(init.GetAvailableScenarios(count, names.data()), "GetAvailableScenarios");
  for (uint32_t i = 0; i < count; ++i) out << &names[i * VXT_INITIALIZATION_NAME_SIZE] << '\n';
  return 0;
}

void ActionAndValues(CLI::App& command, CommandArguments& arguments, const char* actions) {
  command.add_option("action", arguments.text["action"], actions)->required();
  command.add_option("values", arguments.lists["values"], "Its arguments");
}

const bool probesRegistered = RegisterCommand(
    {"probes", "The connected probes: type, identifier, details", [](CLI::App&, CommandArguments&) {},
     &ReportingUserErrors<&Probes>});
const bool probeRegistered = RegisterCommand(
    {"probe", "select TYPE [IDENTIFIER]: debug through that probe, and initialize it",
     [](CLI::App& command, CommandArguments& arguments) { ActionAndValues(command, arguments, "select"); },
     &ReportingUserErrors<&Probe>});
const bool scenarioRegistered = RegisterCommand(
    {"scenario", "The target's scenarios: list, select NAME",
     [](CLI::App& command, CommandArguments& arguments) { ActionAndValues(command, arguments, "list or select"); },
     &ReportingUserErrors<&Scenario>});

}  // namespace
}  // namespace vxt::cli
