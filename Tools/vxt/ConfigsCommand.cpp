// vxt configs: the target configurations the platform offers.
#include <ostream>
#include <vector>

#include "CommandRegistry.h"

namespace vxt::cli {
namespace {

void ListConfigurations(std::ostream& out) {
  uint32_t count = 0;
  Check(GetAvailableConfigurationCount(&count), "GetAvailableConfigurationCount");
  std::vector<VXT_ConfigurationName> names(count);
  if (count > 0) Check(GetAvailableConfigurations(count, names.data()), "GetAvailableConfigurations");
  for (const VXT_ConfigurationName& name : names) out << name.name << '\n';
}

const bool registered = RegisterCommand({"configs", "List the available target configurations",
                                         [](CLI::App&, CommandArguments&) {},
                                         [](const CommandArguments&, const SessionOptions&, std::ostream& out) {
                                           ListConfigurations(out);
                                           return 0;
                                         }});

}  // namespace
}  // namespace vxt::cli
