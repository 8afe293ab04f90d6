#include "CommandRegistry.h"

#include <algorithm>

namespace vxt::cli {
namespace {

// A function-local list: commands register from static initializers of
// other files, whose order is not known.
std::vector<Command>& Registry() {
  static std::vector<Command> commands;
  return commands;
}

}  // namespace

bool RegisterCommand(Command command) {
  std::vector<Command>& commands = Registry();
  const auto place = std::lower_bound(commands.begin(), commands.end(), command.name,
                                      [](const Command& c, const std::string& name) { return c.name < name; });
  commands.insert(place, std::move(command));
  return true;
}

const std::vector<Command>& RegisteredCommands() { return Registry(); }

}  // namespace vxt::cli
