// A session of vxt: many commands, one connection and one target. The
// commands come from the terminal (`vxt shell`), from a script file
// (`vxt shell FILE`) or from the command line (`vxt -e 'info; topology'`).
//
// A command of a session is written as on vxt's command line, without
// "vxt"; several on a line are separated by ';' (quotes keep a ';' in an
// argument), and a command starting with '#' is a comment. `help [COMMAND]`
// and `quit` are the session's own.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "Session.h"

namespace vxt::cli {

class ShellSession {
 public:
  explicit ShellSession(const SessionOptions& options) : connection_(options) {}

  struct Outcome {
    int status = 0;  // Of the first failing command, 0 when none failed
    bool quit = false;
  };
  // Runs the commands of a line in order. A failing command has written its
  // error; the rest of the line runs unless `stopAtFailure`.
  Outcome RunLine(const std::string& line, bool stopAtFailure);

 private:
  Outcome RunCommand(const std::string& command);

  LastingConnection connection_;
};

// The commands of a line, split at the ';' outside quotes, trimmed, empty
// ones dropped.
std::vector<std::string> SplitCommands(const std::string& line);

// Scripts stop at the first failing command and end with its exit status,
// after saying where it was; 0 when every command succeeded.
int RunScript(std::istream& lines, const std::string& name, const SessionOptions& options);
int RunScriptFile(const std::string& path, const SessionOptions& options);
int RunCommandText(const std::string& text, const SessionOptions& options);

// From a terminal: a prompt with line editing, history and completion; a
// failing command does not end the session. From anything else: a script.
int RunShell(const SessionOptions& options);

// The words a session understands first on a line: every command, "help"
// and "quit", in order.
std::vector<std::string> SessionCommandNames();

}  // namespace vxt::cli
