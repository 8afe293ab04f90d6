// vxt jtag and vxt bitbang, with Debian's OpenOCD as an independent JTAG
// implementation: it must find our TAP controllers by its own auto-probe
// and read from them what the JtagAccess service reads.
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VxtRun.h"

namespace vxt::test {
namespace {

// A port nobody listens on now.
int FreePort() {
  const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  socklen_t size = sizeof address;
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
  ::close(fd);
  return ntohs(address.sin_port);
}

// `vxt bitbang --once` running until its one client has gone.
class BitbangServer {
 public:
  BitbangServer(int port, const std::string& config) {
    const std::string command = std::string(VXT_CLI_PATH) + " bitbang --once --port " + std::to_string(port) +
                                (config.empty() ? "" : " --config " + config) + " 2>&1";
    pipe_ = popen(command.c_str(), "r");
    std::array<char, 256> line{};
    if (pipe_ != nullptr && fgets(line.data(), line.size(), pipe_) != nullptr) banner_ = line.data();
  }
  ~BitbangServer() {
    if (pipe_ != nullptr) pclose(pipe_);
  }
  BitbangServer(const BitbangServer&) = delete;
  BitbangServer& operator=(const BitbangServer&) = delete;
  const std::string& banner() const { return banner_; }

 private:
  FILE* pipe_ = nullptr;
  std::string banner_;
};

std::string RunOpenOcd(int port, const std::vector<std::string>& commands) {
  std::string command = "timeout 60 openocd -c 'adapter driver remote_bitbang; remote_bitbang port " +
                        std::to_string(port) + "; transport select jtag' -c init";
  for (const std::string& each : commands) command += " -c '" + each + "'";
  command += " -c shutdown 2>&1";
  std::string output;
  FILE* pipe = popen(command.c_str(), "r");
  std::array<char, 512> chunk{};
  size_t read = 0;
  while (pipe != nullptr && (read = fread(chunk.data(), 1, chunk.size(), pipe)) > 0) output.append(chunk.data(), read);
  if (pipe != nullptr) pclose(pipe);
  return output;
}

// OpenOCD's auto-probe: (IR length, IDCODE) of each TAP from the TDO end.
std::vector<std::pair<int, std::string>> ProbedTaps(const std::string& output) {
  static const std::regex tap(
      R"re(AUTO auto\d+\.tap - use "jtag newtap auto\d+ tap -irlen (\d+) -expected-id (0x[0-9a-f]+)")re");
  std::vector<std::pair<int, std::string>> taps;
  for (auto it = std::sregex_iterator(output.begin(), output.end(), tap); it != std::sregex_iterator(); ++it)
    taps.emplace_back(std::stoi((*it)[1]), (*it)[2]);
  return taps;
}

TEST(VxtJtag, OpenOcdAutoProbeFindsEveryDescribedTap) {
  struct Case {
    const char* config;
    std::vector<std::pair<int, std::string>> taps;  // From the TDO end
  };
  const Case cases[] = {
      {"", {{4, "0x2c0101eb"}, {6, "0x1b0051eb"}, {8, "0x1b0041eb"}}},
      {"TwoSocketServer", {{4, "0x3c0201eb"}, {8, "0x2b0061eb"}, {8, "0x2b0061eb"}}},
      {"HostWithBmc", {{5, "0x4b0071eb"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.config);
    const int port = FreePort();
    BitbangServer server(port, c.config);
    ASSERT_NE(server.banner().find("Serving chain"), std::string::npos) << server.banner();
    EXPECT_EQ(ProbedTaps(RunOpenOcd(port, {})), c.taps);
  }
}

// Each row: OpenOCD's scans through vxt bitbang, and the same scans through
// the JtagAccess service (vxt jtag drscan --ir) in a fresh process.
TEST(VxtJtag, OpenOcdScansReadWhatTheAccessServiceReads) {
  const int port = FreePort();
  BitbangServer server(port, "");
  const std::string output =
      RunOpenOcd(port, {"irscan auto2.tap 0x02", "echo \"idcode=[drscan auto2.tap 32 0]\"",
                        "irscan auto1.tap 0x14", "echo \"old=[drscan auto1.tap 48 0x123456789abc]\"",
                        "echo \"new=[drscan auto1.tap 48 0]\"", "irscan auto0.tap 0x6",
                        "echo \"hub=[drscan auto0.tap 16 0xbeef]\""});
  EXPECT_NE(output.find("idcode=1b0041eb"), std::string::npos) << output;
  EXPECT_NE(output.find("old=000000000000"), std::string::npos) << output;
  EXPECT_NE(output.find("new=123456789abc"), std::string::npos) << output;
  EXPECT_NE(output.find("hub=0000"), std::string::npos) << output;

  EXPECT_EQ(RunVxt("jtag drscan CpuTap 32 0 --ir 0x02").output, "0x1b0041eb\n");
  EXPECT_EQ(RunVxt("jtag drscan UncoreTap 48 0x123456789abc --ir 0x14").output, "0x000000000000\n");
  EXPECT_EQ(RunVxt("jtag drscan ChipsetTap 16 0xbeef --ir 0x6").output, "0x0000\n");
}

TEST(VxtJtag, ChainAndDiagnoseShowTheProbedChain) {
  const VxtRun chain = RunVxt("jtag chain");
  ASSERT_EQ(chain.exitStatus, 0) << chain.output;
  EXPECT_NE(chain.output.find("  UncoreTap  irlen 6  idcode 0x1b0051eb  manufacturer 0x0f5 (bank 2, id 0x75), part "
                              "0xb005, version 0x1\n"),
            std::string::npos)
      << chain.output;
  const VxtRun diagnose = RunVxt("jtag diagnose");
  EXPECT_NE(diagnose.output.find("  IR lengths from TDO: 4 6 8\n"), std::string::npos) << diagnose.output;
  EXPECT_EQ(RunVxt("jtag irscan CpuTap 0x1ff").exitStatus, 1) << "nine bits for an 8-bit instruction register";
}

}  // namespace
}  // namespace vxt::test
