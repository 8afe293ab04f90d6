// The command line of vxt, and each command of a shell session: the global
// options, before or after the command, and at most one registered command
// with its own options and arguments.
#pragma once

#include <list>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "CommandRegistry.h"
#include "Session.h"

namespace vxt::cli {

// Exit statuses besides a command's own: a refusal of the library or
// another failure of the command, and a command line the parser refuses.
inline constexpr int kExitFailure = 1;
inline constexpr int kExitBadCommandLine = 2;

class CommandLine {
 public:
  // The process's command line also offers what starts a session (`shell`,
  // `-e`); a command inside a session cannot start another.
  enum class Scope { Process, Session };
  explicit CommandLine(Scope scope);
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  // Both parse; nullopt when there is a command to run. Otherwise the exit
  // status: 0 after help was asked for and written to `out`, 2 after a
  // refusal written to `err`.
  std::optional<int> Parse(int argc, const char* const* argv, std::ostream& out, std::ostream& err);
  std::optional<int> Parse(const std::string& line, std::ostream& out, std::ostream& err);

  // The global options as given, `--trace` as the preset it loads.
  SessionOptions options() const;

  // What starts a session; only in the process's scope.
  bool startsShell() const { return shell_ != nullptr && shell_->parsed(); }
  const std::string& script() const { return script_; }
  // The text of `-e`, when given.
  std::optional<std::string> commands() const;

  // Runs the parsed command, in `lasting`'s connection when not null; the
  // command's exit status. A failure is written to standard error.
  int Run(LastingConnection* lasting, std::ostream& out) const;

 private:
  template <class ParseWords>
  std::optional<int> ParseWith(ParseWords parse, std::ostream& out, std::ostream& err);
  std::optional<int> Check(std::ostream& err);
  CLI::App app_{"vxt: hardware debug from the command line, through InProc_Vxt", "vxt"};
  SessionOptions options_;
  bool trace_ = false;
  struct Registered {
    CLI::App* app;
    const Command* command;
    CommandArguments arguments;
  };
  // A list keeps the addresses of the argument sets stable.
  std::list<Registered> registered_;
  const Registered* Parsed() const;
  CLI::App* shell_ = nullptr;
  std::string script_;
  CLI::Option* commandsOption_ = nullptr;
  std::string commands_;
};

}  // namespace vxt::cli
