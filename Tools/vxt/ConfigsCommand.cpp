// vxt configs: the target configurations the platform offers.
#include <ostream>
#include <string>

#include "CommandRegistry.h"

namespace vxt::cli {
namespace {

const bool registered = RegisterCommand({"configs", "List the available target configurations",
                                         [](CLI::App&, CommandArguments&) {},
                                         [](const CommandArguments&, const SessionOptions&, std::ostream& out) {
                                           for (const std::string& name : AvailableConfigurations())
                                             out << name << '\n';
                                           return 0;
                                         }});

}  // namespace
}  // namespace vxt::cli
