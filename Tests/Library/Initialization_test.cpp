// Configuration selection and FinishInitialization.
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Error.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::MakeClient;
using Strings = std::vector<std::string>;

constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);
constexpr VXT_Result kNotSupported = static_cast<VXT_Result>(0x80000003);

class InitializationTest : public vxt::test::PlatformTest {
 protected:
  void Connect() {
    VXT_Client client = MakeClient(1, "tool_1@here");
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  }

  static size_t SentEvents(const std::string& event) {
    size_t count = 0;
    for (const tc::TelemetryEvent& sent : tc::SentTelemetryEvents()) count += sent.event == event;
    return count;
  }

  // Getters and start-up calls, in the order they were made.
  static Strings StartUpCalls() {
    Strings calls;
    for (const std::string& operation : tc::RecordedOperations()) {
      const bool getter = operation.rfind("Voxtrel_Get", 0) == 0;
      const bool startUp = operation.find(".Initialize") != std::string::npos ||
                           operation == "TargetManager.FinishInitialization" ||
                           operation == "InterfacePort.SetEventCallback" || operation == "EventBroker.Subscribe";
      if (getter || startUp) calls.push_back(operation);
    }
    return calls;
  }
};

TEST_F(InitializationTest, NullPointersNeverReachTheComponent) {
  struct Case {
    std::function<VXT_Result()> call;
    std::string message;
  };
  const char* names[] = {"a"};
  const Case cases[] = {
      {[] { return SelectConfigurationByFileName(nullptr); },
       "VXT_SelectConfigurationByFileName was passed a null pointer"},
      {[] { return SelectConfigurationByName(nullptr); }, "VXT_SelectConfigurationByName was passed a null pointer"},
      {[] { return GetAvailableConfigurations(1, nullptr); },
       "VXT_GetAvailableConfigurations was passed a null pointer"},
      {[&] { return SetConfigurationParameters(1, names, nullptr); },
       "VXT_SetConfigurationParameters was passed a null pointer"},
      {[] { return SetClientInfo(nullptr, "value"); }, "VXT_SetClienInfo was passed a null pointer"},
  };
  tc::StartRecordingCalls();
  for (const Case& refused : cases) {
    EXPECT_EQ(refused.call(), kInvalidArgument) << refused.message;
    EXPECT_EQ(GetLastErrorMessage(), refused.message);
  }
  for (const std::string& operation : tc::RecordedOperations())
    EXPECT_NE(operation.rfind("Configuration.", 0), 0u) << operation;
  EXPECT_EQ(SentEvents("Client_Info"), 0u);
}

// Every configuration call with its whole trace: the In line, the Out line
// and, when it refuses a null pointer, the two lines of the last error
// between them. These calls write no error line.
TEST_F(InitializationTest, ConfigurationCallsTraceTheirArgumentsAndRefusals) {
  const char* const names[] = {"stepping", "probeSerial"};
  const char* const values[] = {"B0", "it's"};
  const std::string refused = "In  InProc ReportErrorMessage(<NULL>'";
  struct Case {
    std::function<VXT_Result()> call;
    VXT_Result result;
    Strings trace;
  };
  const Case cases[] = {
      {[] { return SelectConfigurationByName("Default"); },
       0,
       {"In  InProc_Vxt::SelectConfigurationByName(configurationName = 'Default') [ClientID: 0]",
        "Out InProc_Vxt::SelectConfigurationByName() ErrorCode = 0x00000000 [ClientID: 0]"}},
      {[] {
         tc::FailWith("Configuration.SelectConfigurationByFileName", 0x20002);
         return SelectConfigurationByFileName("board.json");
       },
       kNotSupported,
       {"In  InProc_Vxt::SelectConfigurationByFileName(fileName = 'board.json') [ClientID: 0]",
        refused + Voxtrel_ErrorGetDefaultMessage(0x20002) + "')", "Out InProc ReportErrorMessage()",
        "Out InProc_Vxt::SelectConfigurationByFileName() ErrorCode = 0x80000003 [ClientID: 0]"}},
      {[] { return GetAvailableConfigurationCount(nullptr); },
       kInvalidArgument,
       {"In  InProc_Vxt::GetAvailableConfigurationCount() [ClientID: 0]",
        refused + "VXT_GetAvailableConfigurationCount was passed a null pointer')", "Out InProc ReportErrorMessage()",
        "Out InProc_Vxt::GetAvailableConfigurationCount(configurationCount = <NULL>) ErrorCode = 0x80000001 "
        "[ClientID: 0]"}},
      {[&] { return SetConfigurationParameters(2, names, values); },
       0,
       {"In  InProc_Vxt::SetConfigurationParameters(parameterCount = 2 parameterNames = {'stepping', 'probeSerial'} "
        "parameterValues = {'B0', 'it's'}) [ClientID: 0]",
        "Out InProc_Vxt::SetConfigurationParameters() ErrorCode = 0x00000000 [ClientID: 0]"}},
      {[] { return SetClientInfo("tool", nullptr); },
       kInvalidArgument,
       {"In  InProc_Vxt::SetClientInfo(key = 'tool' value = <NULL>) [ClientID: 0]",
        refused + "VXT_SetClienInfo was passed a null pointer')", "Out InProc ReportErrorMessage()",
        "Out InProc_Vxt::SetClientInfo() ErrorCode = 0x80000001 [ClientID: 0]"}},
  };
  for (const Case& call : cases) {
    ClearTrace();
    EXPECT_EQ(call.call(), call.result) << call.trace.front();
    EXPECT_EQ(Trace(), call.trace);
  }
}

TEST_F(InitializationTest, ComponentRefusalBecomesThePublicCodeAndItsMessage) {
  tc::SetBehaviour("Configuration.SelectConfigurationByName", {0x20002, "refused for the test"});
  EXPECT_EQ(SelectConfigurationByName("Default"), kNotSupported);
  EXPECT_STREQ(GetLastErrorMessage(), "refused for the test");
}

TEST_F(InitializationTest, EachClientInfoSendsOneEventAndFinishSendsAnother) {
  Connect();
  EXPECT_EQ(SetClientInfo("tool", "vxt"), 0);
  EXPECT_EQ(SetClientInfo("mode", "batch"), 0);
  EXPECT_EQ(SentEvents("Client_Info"), 2u);
  EXPECT_EQ(FinishInitialization(), 0);
  EXPECT_EQ(SentEvents("Client_Info"), 3u);
  EXPECT_EQ(SentEvents("Server_Initialization"), 1u);

  tc::StartRecordingCalls();
  EXPECT_EQ(FinishInitialization(), 0);  // Nothing to do, yet the events go out
  EXPECT_EQ(tc::CallCount("TargetManager.FinishInitialization"), 0u);
  EXPECT_EQ(SentEvents("Client_Info"), 4u);
  EXPECT_EQ(SentEvents("Server_Initialization"), 2u);
  Disconnect(1);
}

TEST_F(InitializationTest, ComponentsComeUpInTheirFixedOrder) {
  Connect();
  tc::SetLogLevel(5);  // Trace trailers would ask Common for the client id
  tc::StartRecordingCalls();
  ASSERT_EQ(FinishInitialization(), 0);
  EXPECT_EQ(StartUpCalls(), (Strings{
                                "Voxtrel_GetTargetManager", "TargetManager.FinishInitialization",
                                // The topology event starts RunControl early.
                                "Voxtrel_GetRunControl", "RunControl.Initialize", "Voxtrel_GetCommon",
                                "Voxtrel_GetEventBroker", "EventBroker.Subscribe",
                                "Voxtrel_GetRunControl",                                   // RunControl
                                "Voxtrel_GetRunControl",                                   // RunControlConfiguration
                                "Voxtrel_GetPlatformControl", "Voxtrel_GetRunControl",     // Break
                                "Voxtrel_GetTargetManager",                                //
                                "Voxtrel_GetRunControl", "Voxtrel_GetRunControl",          // Breakpoint, -Management
                                "Voxtrel_GetRunControl", "Voxtrel_GetRunControl",          // Memory, Register
                                "Voxtrel_GetStatePort", "StatePort.Initialize",            // StatePort
                                "Voxtrel_GetPlatformControl",                              // PlatformControl
                                "Voxtrel_GetInterfacePort", "InterfacePort.Initialize",    // InterfacePort
                                "InterfacePort.SetEventCallback",                          //
                                "Voxtrel_GetRunControl",                                   // AsmDasm
                                "Voxtrel_GetInterfacePins", "Voxtrel_GetPlatformControl",  // InterfacePins
                                "Voxtrel_GetPrecondition", "Voxtrel_GetDma",               // Precondition, Dma
                            }));
  Disconnect(1);
}

TEST_F(InitializationTest, FailingStepStopsTheSequenceAndARetryFinishesIt) {
  const char* const steps[] = {
      "Voxtrel_GetTargetManager",
      "TargetManager.FinishInitialization",
      "Voxtrel_GetCommon",
      "Voxtrel_GetEventBroker",
      "RunControl.Initialize",
      "Voxtrel_GetPlatformControl",
      "Voxtrel_GetStatePort",
      "StatePort.Initialize",
      "Voxtrel_GetInterfacePort",
      "InterfacePort.Initialize",
      "InterfacePort.SetEventCallback",
      "Voxtrel_GetPrecondition",
      "Voxtrel_GetDma",
  };
  for (const char* step : steps) {
    Connect();
    tc::SetLogLevel(5);
    const size_t clientSubscribers = tc::BrokerSubscriberCount("Client");
    tc::FailWith(step, 0x20002);
    EXPECT_EQ(FinishInitialization(), kNotSupported) << step;
    // The topology subscription survives only a TargetManager that cannot be had.
    EXPECT_EQ(tc::BrokerSubscriberCount("DeviceTopology"), std::string(step) == "Voxtrel_GetTargetManager" ? 1u : 0u)
        << step;
    tc::ClearBehaviour(step);

    tc::StartRecordingCalls();
    EXPECT_EQ(FinishInitialization(), 0) << step;
    EXPECT_LE(tc::BrokerSubscriberCount("Client"), clientSubscribers + 1) << step;
    // The RunControl component starts once: at the first topology event the
    // TargetManager sends when it finishes, or at its own step.
    const bool startsOnRetry = std::string(step) == "Voxtrel_GetTargetManager" ||
                               std::string(step) == "TargetManager.FinishInitialization" ||
                               std::string(step) == "RunControl.Initialize";
    EXPECT_EQ(tc::CallCount("RunControl.Initialize"), startsOnRetry ? 1u : 0u) << step;
    tc::SetLogLevel(1);
    // Without Common the general service never subscribed its close
    // callback, so the last client's unsubscription of it fails.
    const bool commonMissing = std::string(step) == "Voxtrel_GetCommon";
    ASSERT_EQ(Disconnect(1), commonMissing ? static_cast<VXT_Result>(0x80000002) : 0) << step;
    if (commonMissing) {
      EXPECT_STREQ(GetLastErrorMessage(), "EventBroker.Unsubscribe found no subscription to 'Client'");
    }
  }
}

TEST_F(InitializationTest, GeneralCloseCallbackIsSubscribedOnceAcrossRetries) {
  Connect();
  const size_t before = tc::BrokerSubscriberCount("Client");
  tc::FailWith("Voxtrel_GetRunControl", 0x20002);
  EXPECT_EQ(FinishInitialization(), kNotSupported);
  tc::ClearBehaviour("Voxtrel_GetRunControl");
  EXPECT_EQ(FinishInitialization(), 0);
  EXPECT_EQ(tc::BrokerSubscriberCount("Client"), before + 1);
  Disconnect(1);
  EXPECT_EQ(tc::BrokerSubscriberCount("Client"), 0u);  // The last client leaves no subscriber behind
}

TEST_F(InitializationTest, FinishInitializationLinesOpenAndCloseANestedStretch) {
  Connect();
  ClearTrace();
  ASSERT_EQ(FinishInitialization(), 0);
  const std::vector<tc::TraceLine> lines = tc::CapturedTrace();
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines.front(), (tc::TraceLine{1, 2, "In InProc_Vxt::FinishInitialization() [ClientID: 1]", 1}));
  EXPECT_EQ(lines.back(),
            (tc::TraceLine{1, 2, "Out InProc_Vxt::FinishInitialization() ErrorCode = 0x00000000 [ClientID: 1]", -1}));
  Disconnect(1);
}

TEST_F(InitializationTest, DynamicInitializationGoesToTheTargetManager) {
  Connect();
  tc::StartRecordingCalls();
  EXPECT_EQ(BeginDynamicInitialization(), 0);
  EXPECT_EQ(CancelDynamicInitialization(), 0);
  EXPECT_EQ(tc::CallCount("TargetManager.BeginDynamicInitialization"), 1u);
  EXPECT_EQ(tc::CallCount("TargetManager.CancelDynamicInitialization"), 1u);
  tc::FailWith("TargetManager.BeginDynamicInitialization", 0x20002);
  EXPECT_EQ(BeginDynamicInitialization(), kNotSupported);
  Disconnect(1);
}

}  // namespace
