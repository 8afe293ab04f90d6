#include "ShellSession.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>

#include "CommandLine.h"
#include "CommandRegistry.h"

namespace vxt::cli {
namespace {

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// "help" and "help CMD" are the command line's own help; "help" of what is
// no command is refused as that command would be.
std::string AsHelpRequest(const std::string& command) {
  std::istringstream words(command);
  std::string help, topic;
  words >> help >> topic;
  if (topic.empty()) return "--help";
  const std::vector<Command>& commands = RegisteredCommands();
  const bool known = std::any_of(commands.begin(), commands.end(),
                                 [&](const Command& registered) { return registered.name == topic; });
  return known ? topic + " --help" : topic;
}

bool StartsWithWord(const std::string& command, const std::string& word) {
  return command.compare(0, word.size(), word) == 0 &&
         (command.size() == word.size() || command[word.size()] == ' ' || command[word.size()] == '\t');
}

}  // namespace

std::vector<std::string> SplitCommands(const std::string& line) {
  std::vector<std::string> commands;
  std::string current;
  char quote = '\0';
  for (const char c : line) {
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == ';') {
      commands.push_back(Trimmed(current));
      current.clear();
      continue;
    }
    current += c;
  }
  commands.push_back(Trimmed(current));
  std::erase_if(commands, [](const std::string& command) { return command.empty(); });
  return commands;
}

ShellSession::Outcome ShellSession::RunLine(const std::string& line, bool stopAtFailure) {
  Outcome line_outcome;
  for (const std::string& command : SplitCommands(line)) {
    const Outcome outcome = RunCommand(command);
    std::cout.flush();
    if (outcome.quit) return {line_outcome.status, true};
    if (outcome.status != 0 && line_outcome.status == 0) line_outcome.status = outcome.status;
    if (outcome.status != 0 && stopAtFailure) break;
  }
  return line_outcome;
}

ShellSession::Outcome ShellSession::RunCommand(const std::string& command) {
  if (command.front() == '#') return {};
  if (command == "quit" || command == "exit") return {0, true};
  CommandLine commandLine(CommandLine::Scope::Session);
  const std::string words = StartsWithWord(command, "help") ? AsHelpRequest(command) : command;
  if (const auto refused = commandLine.Parse(words, std::cout, std::cerr)) return {*refused, false};
  return {commandLine.Run(&connection_, std::cout), false};
}

int RunScript(std::istream& lines, const std::string& name, const SessionOptions& options) {
  ShellSession session(options);
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    const ShellSession::Outcome outcome = session.RunLine(line, true);
    if (outcome.status != 0) {
      std::cerr << "vxt: " << name << ':' << number << ": stopped at the first failing command\n";
      return outcome.status;
    }
    if (outcome.quit) break;
  }
  return 0;
}

int RunScriptFile(const std::string& path, const SessionOptions& options) {
  std::ifstream file(path);
  if (!file) {
    std::cerr << "vxt: cannot read the script '" << path << "'\n";
    return kExitBadCommandLine;
  }
  return RunScript(file, path, options);
}

int RunCommandText(const std::string& text, const SessionOptions& options) {
  std::istringstream lines(text);
  return RunScript(lines, "-e", options);
}

std::vector<std::string> SessionCommandNames() {
  std::vector<std::string> names{"help", "quit"};
  for (const Command& command : RegisteredCommands()) names.push_back(command.name);
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace vxt::cli
