// vxt: a command-line client of the InProc_Vxt library on the simulated
// target. Every command registers itself from its own source file; `shell`
// and `-e` run many of them in one session.
#include <iostream>

#include "CommandLine.h"
#include "ShellSession.h"

int main(int argc, char** argv) {
  using namespace vxt::cli;
  CommandLine commandLine(CommandLine::Scope::Process);
  if (const auto refused = commandLine.Parse(argc, argv, std::cout, std::cerr)) return *refused;
  if (const auto commands = commandLine.commands()) return RunCommandText(*commands, commandLine.options());
  if (commandLine.startsShell()) {
    if (!commandLine.script().empty()) return RunScriptFile(commandLine.script(), commandLine.options());
    return RunShell(commandLine.options());
  }
  return commandLine.Run(nullptr, std::cout);
}
