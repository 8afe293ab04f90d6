// vxt events run as a user runs it: it prints its own client's arrival,
// waits, and on Ctrl-C (or a termination request) disconnects cleanly,
// printing the departure, and exits with status 0.
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

extern char** environ;

namespace {

// Only guards against a client that never answers; a working one answers
// in milliseconds.
constexpr auto kGuard = std::chrono::seconds(10);

// A running `vxt events`, its standard output and error on one pipe.
class ListeningClient {
 public:
  ListeningClient() {
    int fds[2];
    if (pipe(fds) != 0) return;
    output_ = fds[0];
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fds[1], STDERR_FILENO);
    posix_spawn_file_actions_addclose(&actions, fds[0]);
    posix_spawn_file_actions_addclose(&actions, fds[1]);
    // As a user runs it, without the trace variables of the calling
    // environment; env keeps its process id when it starts vxt.
    std::string path = VXT_CLI_PATH;
    std::vector<std::string> arguments = {"env", "-u", "VXT_LOG_FILE", "-u", "VXT_LOG_LEVEL", path, "events"};
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    if (posix_spawnp(&pid_, "env", &actions, nullptr, argv.data(), environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
  }
  ~ListeningClient() {
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    if (output_ >= 0) close(output_);
  }

  pid_t pid() const { return pid_; }
  const std::string& output() const { return text_; }

  // Reads until `text` has appeared, or the output ends; false on the
  // latter or when the guard runs out.
  bool ReadUntil(const std::string& text) {
    const auto deadline = std::chrono::steady_clock::now() + kGuard;
    while (text_.find(text) == std::string::npos) {
      if (!ReadSome(deadline)) return false;
    }
    return true;
  }

  // Reads to the end of the output and reaps the client: its exit status,
  // or -1 when it did not exit normally in time.
  int Finish() {
    const auto deadline = std::chrono::steady_clock::now() + kGuard;
    while (ReadSome(deadline)) {
    }
    if (!ended_) return -1;
    int status = 0;
    if (waitpid(pid_, &status, 0) != pid_) return -1;
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  bool ReadSome(std::chrono::steady_clock::time_point deadline) {
    if (ended_) return false;
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    pollfd readable{output_, POLLIN, 0};
    if (poll(&readable, 1, static_cast<int>(left.count())) <= 0) return false;
    char chunk[512];
    const ssize_t read = ::read(output_, chunk, sizeof chunk);
    if (read <= 0) {
      ended_ = true;
      return false;
    }
    text_.append(chunk, static_cast<size_t>(read));
    return true;
  }

  pid_t pid_ = -1;
  int output_ = -1;
  bool ended_ = false;
  std::string text_;
};

std::string HostName() {
  char host[64] = "localhost";
  gethostname(host, sizeof host - 1);
  return host;
}

TEST(VxtEvents, PrintsItsOwnClientAndStopsCleanlyOnASignal) {
  const struct {
    int signal;
    const char* name;
  } stops[] = {{SIGINT, "SIGINT"}, {SIGTERM, "SIGTERM"}};
  for (const auto& stop : stops) {
    SCOPED_TRACE(stop.name);
    ListeningClient client;
    ASSERT_GT(client.pid(), 0);
    const std::string listening = "; Ctrl-C to stop.\n";
    ASSERT_TRUE(client.ReadUntil(listening)) << client.output();
    ASSERT_EQ(kill(client.pid(), stop.signal), 0);
    const pid_t pid = client.pid();
    EXPECT_EQ(client.Finish(), 0) << client.output();

    const std::string id = std::to_string(pid);
    const std::string name = "'vxt_" + id + "@" + HostName() + "'";
    EXPECT_EQ(client.output(), "client " + id + " " + name + " connected\n" + "Listening for events as client " + id +
                                   listening + "Stopping on " + stop.name + ".\n" + "client " + id + " " + name +
                                   " disconnected\n" + "Disconnected after 2 events.\n");
  }
}

}  // namespace
