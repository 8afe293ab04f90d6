// `vxt shell` at a terminal: libedit reads the lines, with editing, a
// history kept in ~/.vxt_history and completion of the session's commands.
//
// Signals: SIGINT and SIGTERM are blocked before the session's connection
// starts any thread of the library, so that no thread of it is ended by
// Ctrl-C; `events` takes Ctrl-C with sigwait to stop, as it does outside a
// session. A Ctrl-C typed at the prompt is discarded before the next line;
// Ctrl-D or `quit` ends the session.
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <editline/readline.h>

#include "ShellSession.h"
#include "StopSignals.h"

namespace vxt::cli {
namespace {

// Offers, one call at a time, the candidates that start with `text`;
// `state` is 0 on the first call of a completion.
char* NextCompletion(const std::vector<std::string>& candidates, const char* text, int state) {
  static size_t next = 0;
  if (state == 0) next = 0;
  const size_t length = std::strlen(text);
  while (next < candidates.size()) {
    const std::string& candidate = candidates[next++];
    if (candidate.compare(0, length, text) == 0) return strdup(candidate.c_str());
  }
  return nullptr;
}

char* NextCommandName(const char* text, int state) {
  static const std::vector<std::string> names = SessionCommandNames();
  return NextCompletion(names, text, state);
}

// Asked once a completion, so that a configuration file added during the
// session is offered; a refusal offers nothing.
char* NextConfigurationName(const char* text, int state) {
  static std::vector<std::string> names;
  if (state == 0) {
    try {
      names = AvailableConfigurations();
    } catch (const CallFailed&) {
      names.clear();
    }
  }
  return NextCompletion(names, text, state);
}

// A command name where a command starts (at the start of the line, after
// ';' or after "help"), a configuration name after --config; elsewhere
// libedit's own completion of file names.
char** Complete(const char* text, int start, int) {
  std::string before(rl_line_buffer, static_cast<size_t>(start));
  if (const size_t separator = before.rfind(';'); separator != std::string::npos) before.erase(0, separator + 1);
  std::istringstream wordStream(before);
  const std::vector<std::string> words{std::istream_iterator<std::string>(wordStream), {}};
  if (words.empty() || (words.size() == 1 && words.front() == "help"))
    return rl_completion_matches(text, &NextCommandName);
  if (words.back() == "-c" || words.back() == "--config") return rl_completion_matches(text, &NextConfigurationName);
  return nullptr;
}

std::string HistoryFile() {
  const char* home = std::getenv("HOME");
  return home != nullptr && *home != '\0' ? std::string(home) + "/.vxt_history" : std::string();
}

int RunInteractive(const SessionOptions& options) {
  BlockStopSignals();
  rl_readline_name = "vxt";
  rl_attempted_completion_function = &Complete;
  const std::string history = HistoryFile();
  using_history();
  stifle_history(1000);
  if (!history.empty()) read_history(history.c_str());

  ShellSession session(options);
  std::cout << "vxt shell: 'help' lists the commands, 'quit' or Ctrl-D ends the session.\n";
  for (;;) {
    DiscardPendingStopSignals();
    const std::unique_ptr<char, decltype(&std::free)> line(readline("vxt> "), &std::free);
    if (!line) break;
    if (*line.get() != '\0') add_history(line.get());
    if (session.RunLine(line.get(), false).quit) break;
  }
  if (!history.empty()) write_history(history.c_str());
  std::cout << '\n';
  return 0;
}

}  // namespace

int RunShell(const SessionOptions& options) {
  if (!isatty(STDIN_FILENO)) return RunScript(std::cin, "standard input", options);
  return RunInteractive(options);
}

}  // namespace vxt::cli
