// The commands of the command-line client register themselves here, each
// from its own source file, so that adding a command touches no other file.
// A registered command runs as `vxt CMD ...` and as a command of a shell
// session; the global options (--config, --trace, --preset) may come before
// or after it.
//
//   const bool registered = vxt::cli::RegisterCommand({
//       "bits", "Parse bit vectors and apply operations to them",
//       [](CLI::App& command, CommandArguments& arguments) { ... add options ... },
//       [](const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) { ...; return 0; }});
#pragma once

#include <functional>
#include <iostream>
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
  // Adds the command's options and positionals to its subcommand. Called
  // for every command line, each with fresh arguments: a default set here
  // holds for each command of a session.
  std::function<void(CLI::App& command, CommandArguments& arguments)> configure;
  // Runs the command; its exit status. Throws CallFailed when the library
  // refuses a call (or another exception: its message is shown, status 1).
  // A Session made from `options` is the command's own connection, or in a
  // shell session the session's one, with the same target for every
  // command: what a command leaves on the target (locks, state) stays.
  std::function<int(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out)> run;
};

// Called from a static initializer of the command's source file.
bool RegisterCommand(Command command);

// In the order of their names.
const std::vector<Command>& RegisteredCommands();

// A command's run whose mistakes of the user (a name, a number, a port) are
// reported on stderr with status 1; a refused library call goes on up.
template <int (*Run)(const CommandArguments&, const SessionOptions&, std::ostream&)>
int ReportingUserErrors(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  try {
    return Run(arguments, options, out);
  } catch (const CallFailed&) {
    throw;
  } catch (const std::exception& failure) {
    std::cerr << "vxt: " << failure.what() << '\n';
    return 1;
  }
}

}  // namespace vxt::cli
