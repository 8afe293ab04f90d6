// The commands of the command-line client register themselves here, each
// from its own source file, so that adding a command touches no other file.
//
//   const bool registered = vxt::cli::RegisterCommand({
//       "bits", "Parse bit vectors and apply operations to them",
//       [](CLI::App& command, CommandArguments& arguments) { ... add options ... },
//       [](const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) { ...; return 0; }});
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "Session.h"

namespace vxt::cli {

// What a command's options parsed into; each command keeps its own fields
// behind the name it chooses.
struct CommandArguments {
  std::map<std::string, std::string> text;
  std::map<std::string, std::vector<std::string>> lists;
  std::map<std::string, uint64_t> numbers;
  std::map<std::string, bool> flags;
};

struct Command {
  std::string name;
  std::string help;
  // Adds the command's options and positionals to its subcommand.
  std::function<void(CLI::App& command, CommandArguments& arguments)> configure;
  // Runs the command; the process's exit status. Throws CallFailed when
  // the library refuses a call.
  std::function<int(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out)> run;
};

// Called from a static initializer of the command's source file.
bool RegisterCommand(Command command);

// In the order of their names.
const std::vector<Command>& RegisteredCommands();

}  // namespace vxt::cli
