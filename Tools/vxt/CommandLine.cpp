#include "CommandLine.h"

#include <exception>
#include <iostream>

namespace vxt::cli {

CommandLine::CommandLine(Scope scope) {
  app_.require_subcommand(0, 1);
  // Inherited by the commands: an option a command does not know goes to
  // the global ones, so that they may follow the command.
  app_.fallthrough();
  app_.add_option("-c,--config", options_.configuration,
                  "Target configuration: a name that 'vxt configs' lists, or a description file");
  app_.add_flag("-t,--trace", trace_, "Show the library's trace (loads the \"Trace\" logging preset)");
  app_.add_option("-p,--preset", options_.loggingPreset, "Load this logging preset after connecting");

  for (const Command& command : RegisteredCommands()) {
    Registered& entry = registered_.emplace_back(
        Registered{app_.add_subcommand(command.name, command.help), &command, CommandArguments{}});
    command.configure(*entry.app, entry.arguments);
  }
  if (scope == Scope::Process) {
    commandsOption_ = app_.add_option("-e", commands_, "Run these commands in one session, separated by ';'");
    shell_ = app_.add_subcommand("shell", "A session: one connection and one target for many commands, read from "
                                          "the terminal with line editing, or from FILE");
    shell_->add_option("file", script_, "Commands to run, one line each");
  } else {
    app_.footer("In a session: 'help [COMMAND]', 'quit'; several commands on a line are separated by ';'.");
  }
  // Set after the commands are added, which would inherit it: a command's
  // own stray arguments stay errors; an unknown command is reported below.
  app_.allow_extras();
}

std::optional<int> CommandLine::Parse(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  return ParseWith([&] { app_.parse(argc, argv); }, out, err);
}

std::optional<int> CommandLine::Parse(const std::string& line, std::ostream& out, std::ostream& err) {
  return ParseWith([&] { app_.parse(line, false); }, out, err);
}

template <class ParseWords>
std::optional<int> CommandLine::ParseWith(ParseWords parse, std::ostream& out, std::ostream& err) {
  try {
    parse();
  } catch (const CLI::ParseError& refusal) {
    // Help is written by CLI11 and succeeds; every refusal is a bad command
    // line, whatever CLI11's own code for it.
    const int status = app_.exit(refusal, out, err);
    return status == 0 ? 0 : kExitBadCommandLine;
  }
  return Check(err);
}

std::optional<int> CommandLine::Check(std::ostream& err) {
  const std::vector<std::string> unknown = app_.remaining();
  if (!unknown.empty()) {
    err << "vxt: unknown command or argument '" << unknown.front() << "'\nRun with --help for more information.\n";
    return kExitBadCommandLine;
  }
  if (commandsOption_ != nullptr && commandsOption_->count() > 0 && !app_.get_subcommands().empty()) {
    err << "vxt: -e runs its own commands; give it no other command\n";
    return kExitBadCommandLine;
  }
  if (Parsed() == nullptr && !startsShell() && !commands()) {
    // A session's line of options alone is a slip; the usage would bury it.
    err << (shell_ != nullptr ? app_.help() : "vxt: no command; 'help' lists the commands\n");
    return kExitBadCommandLine;
  }
  return std::nullopt;
}

SessionOptions CommandLine::options() const {
  SessionOptions options = options_;
  if (trace_) options.loggingPreset = "Trace";
  return options;
}

std::optional<std::string> CommandLine::commands() const {
  if (commandsOption_ == nullptr || commandsOption_->count() == 0) return std::nullopt;
  return commands_;
}

const CommandLine::Registered* CommandLine::Parsed() const {
  for (const Registered& entry : registered_)
    if (entry.app->parsed()) return &entry;
  return nullptr;
}

int CommandLine::Run(LastingConnection* lasting, std::ostream& out) const {
  const Registered* parsed = Parsed();
  if (parsed == nullptr) return kExitBadCommandLine;
  SessionOptions options = this->options();
  options.lasting = lasting;
  try {
    return parsed->command->run(parsed->arguments, options, out);
  } catch (const std::exception& failure) {
    std::cerr << "vxt: " << failure.what() << '\n';
    return kExitFailure;
  }
}

}  // namespace vxt::cli
