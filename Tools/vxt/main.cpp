// vxt: a command-line client of the InProc_Vxt library on the simulated
// target. Every command registers itself from its own source file.
#include <iostream>
#include <list>
#include <utility>
#include <vector>
#include <string>

#include <CLI/CLI.hpp>

#include "CommandRegistry.h"
#include "Session.h"

int main(int argc, char** argv) {
  CLI::App app{"vxt: hardware debug from the command line, through InProc_Vxt"};
  app.require_subcommand(0, 1);

  vxt::cli::SessionOptions options;
  bool trace = false;
  app.add_option("-c,--config", options.configuration,
                 "Target configuration: a name that 'vxt configs' lists, or a description file");
  app.add_flag("-t,--trace", trace, "Show the library's trace (loads the \"Trace\" logging preset)");
  app.add_option("-p,--preset", options.loggingPreset, "Load this logging preset after connecting");

  // One argument set per command; a list keeps their addresses stable.
  std::list<vxt::cli::CommandArguments> arguments;
  std::vector<std::pair<CLI::App*, const vxt::cli::Command*>> subcommands;
  for (const vxt::cli::Command& command : vxt::cli::RegisteredCommands()) {
    CLI::App* subcommand = app.add_subcommand(command.name, command.help);
    command.configure(*subcommand, arguments.emplace_back());
    subcommands.emplace_back(subcommand, &command);
  }

  // Set after the commands are added, which would inherit it: a command's
  // own stray arguments stay errors; an unknown command is reported below.
  app.allow_extras();
  CLI11_PARSE(app, argc, argv);
  if (trace) options.loggingPreset = "Trace";

  try {
    auto argumentsOfCommand = arguments.begin();
    for (const auto& [subcommand, command] : subcommands) {
      if (subcommand->parsed()) return command->run(*argumentsOfCommand, options, std::cout);
      ++argumentsOfCommand;
    }
    const std::vector<std::string> unknown = app.remaining();
    if (!unknown.empty())
      std::cerr << "vxt: unknown command or argument '" << unknown.front() << "'\n";
    std::cerr << app.help();
    return 2;
  } catch (const vxt::cli::CallFailed& failure) {
    std::cerr << "vxt: " << failure.what() << '\n';
    return 1;
  }
}
