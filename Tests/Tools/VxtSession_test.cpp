// Sessions of vxt: many commands on one connection and one target, from
// -e, a script file, standard input and a terminal.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "VxtRun.h"

namespace {

using vxt::test::RunVxt;
using vxt::test::VxtRun;

const std::string kConfigs = "Default\nHostWithBmc\nTwoSocketServer\n";

std::string WriteScript(const std::string& name, const std::string& text) {
  const std::string path = ::testing::TempDir() + name;
  std::ofstream(path) << text;
  return path;
}

size_t Count(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(VxtSession, CommandsShareOneConnection) {
  const VxtRun run = RunVxt("--trace -e 'info; topology; bits 0x1 --as hex; info'");
  EXPECT_EQ(run.exitStatus, 0) << run.output;
  EXPECT_EQ(Count(run.output, "] In InProc_Vxt::FinishInitialization() [ClientID: "), 1u) << run.output;
  EXPECT_EQ(Count(run.output, "] Out InProc_Vxt::Disconnect() ErrorCode = 0x00000000\n"), 1u) << run.output;
  EXPECT_EQ(Count(run.output, "Connected clients: 1\n"), 2u) << run.output;

  // A preset one command loads stays loaded for the next.
  const VxtRun presets = RunVxt("-e 'bits 0x1 --as hex; info --preset Errors; info'");
  EXPECT_EQ(presets.exitStatus, 0) << presets.output;
  EXPECT_EQ(Count(presets.output, "Logging presets:  Default Trace InterfaceTrace Errors* Off  (* loaded)\n"), 2u)
      << presets.output;
}

TEST(VxtSession, ScriptsRunInOrderAndStopAtTheFirstFailure) {
  const std::string quits = WriteScript("quits.vxt", "# a comment\n\nconfigs\nbits 0x3 --as hex ; quit\nlock Nope\n");
  const std::string fails = WriteScript("fails.vxt", "configs\nbogus; configs\nconfigs\n");
  struct Case {
    std::string arguments;
    int exitStatus;
    std::string output;
  };
  const Case cases[] = {
      {"-e 'configs; bits 0x3 --as hex'", 0, kConfigs + "0x3\n"},
      {"-e 'configs; lock Nope; configs'", 1,
       kConfigs + "vxt: no device is named 'Nope'\nvxt: -e:1: stopped at the first failing command\n"},
      {"-e 'bits 0x1 --as hex --config TwoSocketServer; topology --config HostWithBmc'", 1,
       "0x1\nvxt: this session's target is 'TwoSocketServer'; start another session for 'HostWithBmc'\n"
       "vxt: -e:1: stopped at the first failing command\n"},
      {"-e 'help frob'", 2,
       "vxt: unknown command or argument 'frob'\nRun with --help for more information.\n"
       "vxt: -e:1: stopped at the first failing command\n"},
      {"-e '--trace'", 2, "vxt: no command; 'help' lists the commands\nvxt: -e:1: stopped at the first failing command\n"},
      // A quoted ';' stays in its argument.
      {"-e \"info --config '/no;such.json'\"", 1,
       "vxt: SelectConfigurationByFileName failed with 0x80000014: Target description file '/no;such.json' does not "
       "exist\nvxt: -e:1: stopped at the first failing command\n"},
      {"shell " + quits, 0, kConfigs + "0x3\n"},
      {"shell < " + quits, 0, kConfigs + "0x3\n"},
      {"shell " + fails, 2,
       kConfigs + "vxt: unknown command or argument 'bogus'\nRun with --help for more information.\nvxt: " + fails +
           ":2: stopped at the first failing command\n"},
  };
  for (const Case& c : cases) {
    const VxtRun run = RunVxt(c.arguments);
    EXPECT_EQ(run.exitStatus, c.exitStatus) << c.arguments << "\n" << run.output;
    EXPECT_EQ(run.output, c.output) << c.arguments;
  }
}

// The interactive shell in a terminal that tmux provides.
class Terminal {
 public:
  explicit Terminal(const std::string& command)
      : socket_("vxt_test_" + std::to_string(getpid())), home_(::testing::TempDir() + socket_ + "/") {
    std::filesystem::create_directories(home_);
    Tmux("new-session -d -s vxt -x 160 -y 50 'env HOME=" + home_ + " " + command + "'");
  }
  ~Terminal() {
    Tmux("kill-server 2>/dev/null");
    std::filesystem::remove_all(home_);
  }

  void Type(const std::string& keys) { Tmux("send-keys -t vxt " + keys); }
  // The screen once it shows `text`, or after ten seconds.
  std::string WaitFor(const std::string& text) {
    std::string screen;
    for (int tries = 0; tries < 200 && screen.find(text) == std::string::npos; ++tries) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      screen = Capture();
    }
    return screen;
  }
  bool Running() { return Tmux("has-session -t vxt 2>/dev/null") == 0; }

 private:
  int Tmux(const std::string& arguments) { return std::system(("tmux -L " + socket_ + " " + arguments).c_str()); }
  std::string Capture() {
    const std::string path = home_ + "screen.txt";
    Tmux("capture-pane -p -t vxt > " + path);
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::string socket_;
  std::string home_;
};

TEST(VxtSession, TheShellCompletesRecallsAndGoesOnAfterAFailure) {
  if (std::system("command -v tmux >/dev/null") != 0) GTEST_SKIP() << "tmux is not installed";
  Terminal terminal(std::string("env -u VXT_LOG_FILE -u VXT_LOG_LEVEL ") + VXT_CLI_PATH + " shell");
  // The screen shows no space at the end of a line.
  terminal.WaitFor("vxt>");
  terminal.Type("'lock Nope' Enter");
  terminal.WaitFor("vxt: no device is named 'Nope'\nvxt>");
  terminal.Type("conf Tab '-c Two' Tab Enter");
  terminal.WaitFor("TwoSocketServer\nvxt>");
  terminal.Type("C-p C-p Enter");  // Two lines back: the failing lock.
  const std::string session = "vxt> lock Nope\nvxt: no device is named 'Nope'\nvxt> configs -c TwoSocketServer\n" + kConfigs +
                              "vxt> lock Nope\nvxt: no device is named 'Nope'\nvxt>\n";
  const std::string screen = terminal.WaitFor(session);
  EXPECT_NE(screen.find(session), std::string::npos) << screen;
  terminal.Type("quit Enter");
  for (int tries = 0; tries < 100 && terminal.Running(); ++tries)
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_FALSE(terminal.Running());
}

}  // namespace
