// Runs the vxt client as a user runs it, with the trace variables of the
// calling environment removed, and gives its exit status and output.
#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

namespace vxt::test {

struct VxtRun {
  int exitStatus = -1;
  std::string output;  // stdout and stderr, interleaved
};

inline VxtRun RunVxt(const std::string& arguments) {
  const std::string command = std::string("env -u VXT_LOG_FILE -u VXT_LOG_LEVEL ") + VXT_CLI_PATH + " " + arguments +
                              " 2>&1";
  VxtRun run;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return run;
  std::array<char, 512> chunk;
  size_t read = 0;
  while ((read = fread(chunk.data(), 1, chunk.size(), pipe)) > 0) run.output.append(chunk.data(), read);
  const int status = pclose(pipe);
  run.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

}  // namespace vxt::test
