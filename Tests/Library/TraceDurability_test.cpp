// The trace of a call is in the log file when the call returns, so that a
// client that crashes right after it, or a reader of the file while the
// client runs, loses no line.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

namespace fs = std::filesystem;
namespace tc = voxtrel::testing;
using vxt::test::ReadLines;

class TraceDurabilityTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path = (fs::temp_directory_path() /
            ("vxt_durable_" + std::to_string(getpid()) + "_" +
             ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".log"))
               .string();
    fs::remove(path);
    setenv("VXT_LOG_FILE", path.c_str(), 1);
    setenv("VXT_LOG_LEVEL", "1", 1);
    setenv("VXT_LOG_FORMAT", "raw", 1);
    tc::ResetTestControl();  // Reads the variables again
  }
  void TearDown() override {
    for (const char* name : {"VXT_LOG_FILE", "VXT_LOG_LEVEL", "VXT_LOG_FORMAT"}) unsetenv(name);
    tc::ResetTestControl();
    fs::remove(path);
  }

  // Connects client 5 and makes two calls, one of them refused.
  static void TracedCalls() {
    VXT_Client client = vxt::test::MakeClient(5, "durable@here");
    StartNewInstance(&client, 1, 0, nullptr);
    FinishInitialization();
    void* service = nullptr;
    GetService(nullptr, VXT_Service_General, &service);
    auto* general = static_cast<IInternalService_General*>(service);
    uint32_t clients = 0;
    general->GetNumConnectedClients(&clients);
    general->GetNumConnectedClients(nullptr);
  }

  // The last `count` lines of the log file.
  std::vector<std::string> LastLines(size_t count) const {
    const std::vector<std::string> lines = ReadLines(path);
    return {lines.end() - static_cast<std::ptrdiff_t>(std::min(count, lines.size())), lines.end()};
  }

  std::string path;
};

const std::vector<std::string> kCallLines = {
    "In  InProc_General::GetNumConnectedClients() [ClientID: 5]",
    "Out InProc_General::GetNumConnectedClients(numConnectedClients = 1) ErrorCode = 0x00000000 [ClientID: 5]",
    "In  InProc_General::GetNumConnectedClients() [ClientID: 5]",
    "VXT Error = 'InProc_General::GetNumConnectedClients(): argument error (numConnectedClients) : NULL pointer' "
    "[ClientID: 5]",
    "In  InProc ReportErrorMessage(<NULL>'InProc_General::GetNumConnectedClients(): argument error "
    "(numConnectedClients) : NULL pointer')",
    "Out InProc ReportErrorMessage()",
    "Out InProc_General::GetNumConnectedClients(numConnectedClients = <NULL>) ErrorCode = 0x80000001 [ClientID: 5]",
};

TEST_F(TraceDurabilityTest, AReaderSeesACallsLinesOnceItHasReturned) {
  TracedCalls();
  EXPECT_EQ(LastLines(kCallLines.size()), kCallLines);  // No flush asked for
  Disconnect(5);
}

TEST_F(TraceDurabilityTest, AClientThatAbortsRightAfterItsCallsLosesNoLine) {
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    TracedCalls();
    std::abort();
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
  EXPECT_EQ(LastLines(kCallLines.size()), kCallLines);
}

}  // namespace
