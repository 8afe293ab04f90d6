// The Authorization service on the default target, whose domain offers the
// levels "Public", "Debug" (granting MSR writes) and "Manufacturing": trace
// lines whole, a password that shows up nowhere, refused credentials and
// levels, and a privileged operation of another component gated by them.
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CpuServiceTestSupport.h"

namespace vxt::test {
namespace {

constexpr char kSecret[] = "sim-debug";  // The "debugger" user's password

class AuthorizationTest : public CpuServiceTest {
 protected:
  void SetUp() override {
    CpuServiceTest::SetUp();
    authorization = Service<IInternalService_Authorization>(VXT_Service_Authorization);
  }

  // Writes MSR 0x1A0 of the first thread with its described value.
  VXT_Result WriteMsr() {
    VXT_BitData value = Vector({0x89, 0x00, 0x85, 0, 0, 0, 0, 0});
    uint64_t token = 0;
    const VXT_Result result = registers->WriteMsr(kFirstThread, 0x1A0, &value, &token);
    if (result == 0) receipts->Destroy(token);
    bitData->Destroy(&value);
    return result;
  }
  std::string Level() {
    char level[VXT_AUTHORIZATION_LEVEL_NAME_SIZE] = "?";
    EXPECT_EQ(authorization->QueryAuthorizationLevel(kTargetDomain, level), 0);
    return level;
  }

  IInternalService_Authorization* authorization = nullptr;
};

TEST_F(AuthorizationTest, TraceLines) {
  uint32_t has = 7;
  uint32_t count = 0;
  char names[3][VXT_AUTHORIZATION_LEVEL_NAME_SIZE] = {};
  char level[VXT_AUTHORIZATION_LEVEL_NAME_SIZE] = {};
  const std::string ok = " ErrorCode = 0x00000000 [ClientID: 3]";
  struct Case {
    std::function<void()> call;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {[&] { authorization->SetCredentials(nullptr, nullptr); },
       {"In  InProc_Authorization::SetCredentials(username = <NULL> password = <OMITTED>) [ClientID: 3]",
        "Out InProc_Authorization::SetCredentials()" + ok}},
      {[&] { authorization->SetCredentials("debugger", kSecret); },
       {"In  InProc_Authorization::SetCredentials(username = debugger password = <OMITTED>) [ClientID: 3]",
        "Out InProc_Authorization::SetCredentials()" + ok}},
      {[&] { authorization->HasCredentials(&has); },
       {"In  InProc_Authorization::HasCredentials() [ClientID: 3]",
        "Out InProc_Authorization::HasCredentials(hasCredentials = True)" + ok}},
      {[&] { authorization->GetNumAuthorizationLevels(kTargetDomain, &count); },
       {"In  InProc_Authorization::GetNumAuthorizationLevels(deviceId = 0x02000000) [ClientID: 3]",
        "Out InProc_Authorization::GetNumAuthorizationLevels(numLevelNames = 3)" + ok}},
      {[&] { authorization->GetAuthorizationLevels(kFirstThread, 3, names[0]); },
       {"In  InProc_Authorization::GetAuthorizationLevels(deviceId = 0x03000000 numLevelNames = 3) [ClientID: 3]",
        "Out InProc_Authorization::GetAuthorizationLevels(levelNames = {'Public', 'Debug', 'Manufacturing'})" + ok}},
      {[&] { authorization->GetAuthorizationLevels(kFirstThread, 0, names[0]); },
       {"In  InProc_Authorization::GetAuthorizationLevels(deviceId = 0x03000000 numLevelNames = 0) [ClientID: 3]",
        "Out InProc_Authorization::GetAuthorizationLevels(levelNames = <EMPTY>)" + ok}},
      {[&] { authorization->Authorize(kTargetDomain, "Debug"); },
       {"In  InProc_Authorization::Authorize(deviceId = 0x02000000 levelName = 'Debug') [ClientID: 3]",
        "Out InProc_Authorization::Authorize()" + ok}},
      {[&] { authorization->QueryAuthorizationLevel(kFirstThread, level); },
       {"In  InProc_Authorization::QueryAuthorizationLevel(deviceId = 0x03000000) [ClientID: 3]",
        "Out InProc_Authorization::QueryAuthorizationLevel(levelName = 'Debug')" + ok}},
      {[&] { authorization->ClearCredentials(); },
       {"In  InProc_Authorization::ClearCredentials() [ClientID: 3]", "Out InProc_Authorization::ClearCredentials()" + ok}},
      {[&] { authorization->HasCredentials(nullptr); },
       {"In  InProc_Authorization::HasCredentials() [ClientID: 3]",
        "VXT Error = 'InProc_Authorization::HasCredentials() argument error (hasCredentials) : Null pointer' "
        "[ClientID: 3]",
        "In  InProc ReportErrorMessage(<NULL>'InProc_Authorization::HasCredentials() argument error (hasCredentials) : "
        "Null pointer')",
        "Out InProc ReportErrorMessage()",
        "Out InProc_Authorization::HasCredentials(hasCredentials = <NULL>) ErrorCode = 0x80000001 [ClientID: 3]"}},
  };
  for (const Case& c : cases) {
    ClearTrace();
    c.call();
    EXPECT_EQ(Trace(), c.lines);
  }
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "Authorization::Authorize"), 1u);
}

TEST_F(AuthorizationTest, CredentialsAndLevelsAreJudgedAndGateMsrWrites) {
  struct Step {
    const char* user;
    const char* password;
    const char* level;
    VXT_Result result;
    std::string message;
  };
  const std::string debug = "Authorization.Authorize: the credentials held do not grant level \"Debug\"";
  const Step steps[] = {
      {nullptr, nullptr, "Debug", static_cast<VXT_Result>(0x80000003),
       "Authorization.Authorize: no credentials are held; SetCredentials gives them"},
      {"debugger", "sim-debuG", "Debug", static_cast<VXT_Result>(0x80000003), debug},
      {"intruder", kSecret, "Debug", static_cast<VXT_Result>(0x80000003), debug},
      {"debugger", kSecret, "Root", static_cast<VXT_Result>(0x80000002),
       "Authorization.Authorize: device 0x02000000 (TargetDomain0) has no authorization level \"Root\""},
      {"debugger", kSecret, "Manufacturing", static_cast<VXT_Result>(0x80000003),
       "Authorization.Authorize: the credentials held do not grant level \"Manufacturing\""},
  };
  for (const Step& step : steps) {
    if (step.user != nullptr) {
      ASSERT_EQ(authorization->SetCredentials(step.user, step.password), 0);
    }
    EXPECT_EQ(authorization->Authorize(kTargetDomain, step.level), step.result) << step.level;
    EXPECT_EQ(std::string(GetLastErrorMessage()), step.message);
    EXPECT_EQ(Level(), "Public");
  }
  EXPECT_EQ(WriteMsr(), static_cast<VXT_Result>(0x80000003));
  EXPECT_EQ(std::string(GetLastErrorMessage()),
            "WriteMsr needs authorization level \"Debug\" on device 0x02000000 (TargetDomain0), and \"Public\" is in force");

  ASSERT_EQ(authorization->SetCredentials("debugger", kSecret), 0);
  EXPECT_EQ(authorization->Authorize(kTargetDomain, "Debug"), 0) << GetLastErrorMessage();
  EXPECT_EQ(Level(), "Debug");
  EXPECT_EQ(WriteMsr(), 0) << GetLastErrorMessage();
  // The factory user's level includes the debugger's.
  ASSERT_EQ(authorization->SetCredentials("factory", "sim-factory"), 0);
  EXPECT_EQ(authorization->Authorize(kFirstThread, "Manufacturing"), 0) << GetLastErrorMessage();
  EXPECT_EQ(authorization->Authorize(kFirstThread, "Debug"), 0) << GetLastErrorMessage();
  // The lowest level needs no credentials, and going down to it takes the grant away.
  ASSERT_EQ(authorization->ClearCredentials(), 0);
  EXPECT_EQ(authorization->Authorize(kTargetDomain, "Public"), 0);
  EXPECT_EQ(WriteMsr(), static_cast<VXT_Result>(0x80000003));
}

TEST_F(AuthorizationTest, APasswordAppearsInNoTraceMessageOrTelemetry) {
  voxtrel::testing::SetLogLevel(1);
  voxtrel::testing::StartRecordingCalls();
  authorization->SetCredentials("debugger", kSecret);
  authorization->Authorize(kTargetDomain, "Manufacturing");
  const std::string refusal = GetLastErrorMessage();
  authorization->Authorize(kTargetDomain, "Debug");
  voxtrel::testing::FailWith("Authorization.SetCredentials", 0x20002);
  authorization->SetCredentials("debugger", kSecret);
  const std::string failure = GetLastErrorMessage();

  std::vector<std::string> seen = Trace();
  seen.push_back(refusal);
  seen.push_back(failure);
  for (const auto& call : voxtrel::testing::TelemetryCalls())
    for (const std::string& arg : call.args) seen.push_back(arg);
  for (const auto& call : voxtrel::testing::RecordedCalls()) seen.push_back(call.arguments);
  for (const std::string& text : seen) EXPECT_EQ(text.find(kSecret), std::string::npos) << text;
  EXPECT_GT(seen.size(), 8u);
}

TEST_F(AuthorizationTest, AFailingComponentReadsAsHoldingNoCredentials) {
  ASSERT_EQ(authorization->SetCredentials("debugger", kSecret), 0);
  voxtrel::testing::FailWith("Authorization.HasCredentials", 0x20002);
  uint32_t has = 7;
  EXPECT_EQ(authorization->HasCredentials(&has), static_cast<VXT_Result>(0x80000003));
  EXPECT_EQ(has, 0u);
}

}  // namespace
}  // namespace vxt::test
