// Trace lines and messages read the same whatever locale the client process
// has made global.
#include <cstring>
#include <locale>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::MakeClient;
using Strings = std::vector<std::string>;

// Groups digits by threes with a comma, as many locales do.
struct GroupingPunctuation : std::numpunct<char> {
  char do_thousands_sep() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

class TextLocaleTest : public vxt::test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    former = std::locale::global(std::locale(std::locale::classic(), new GroupingPunctuation));
  }
  void TearDown() override {
    std::locale::global(former);
    PlatformTest::TearDown();
  }
  std::locale former;
};

TEST_F(TextLocaleTest, NumbersAreNeverGrouped) {
  tc::SetUsageLogging(true);
  VXT_Client client = MakeClient(12345, "tool_12345@here");
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  ASSERT_EQ(FinishInitialization(), 0);
  VXT_Client unsized = MakeClient(23456, "tool_23456@here", 5000);
  EXPECT_NE(StartNewInstance(&unsized, 1, 0, nullptr), 0);
  EXPECT_STREQ(GetLastErrorMessage(), "VXT_Client structureSize is invalid: 5000");
  EXPECT_EQ(tc::CapturedUsage().at(0).text, "ClientID: 12345, ClientIdentifier: 'tool_12345@here'");

  void* service = nullptr;
  ASSERT_EQ(GetService(nullptr, VXT_Service_General, &service), 0);
  auto* general = static_cast<IInternalService_General*>(service);
  VXT_Client records[1]{};
  records[0].structureSize = 5000;
  uint32_t count = 0;
  ClearTrace();
  EXPECT_NE(general->GetConnectedClients(1000, &count, records), 0);
  const Strings trace = Trace();
  const std::string message = "InProc_General::GetConnectedClients(): connectedClients[0] structureSize is: 5000";
  EXPECT_STREQ(GetLastErrorMessage(), message.c_str());
  EXPECT_EQ(trace.front(), "In  InProc_General::GetConnectedClients(maxNumConnectedClients = 1000) [ClientID: 12345]");
  EXPECT_EQ(
      trace.back(),
      "Out InProc_General::GetConnectedClients(numConnectedClients = 1) ErrorCode = 0x80000010 [ClientID: 12345]");

  ClearTrace();
  EXPECT_EQ(Disconnect(23456), 0);
  EXPECT_EQ(Trace().front(), "In  InProc_Vxt::Disconnect(clientId = 23456)");
  EXPECT_EQ(tc::CapturedUsage().back().text, "ClientID: 23456");
  EXPECT_EQ(Disconnect(12345), 0);
}

}  // namespace
