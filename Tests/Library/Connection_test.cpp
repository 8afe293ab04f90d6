// Entering and leaving the library.
#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Common.h"
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
constexpr VXT_Result kStructureSize = static_cast<VXT_Result>(0x80000010);

class ConnectionTest : public vxt::test::PlatformTest {
 protected:
  // What Common recorded of the connected clients.
  static std::vector<VXT_Client> RecordedClients() {
    const CommonComponent* common = nullptr;
    Voxtrel_GetCommon(&common);
    std::vector<VXT_Client> records(8);
    uint32_t count = 0;
    common->GetConnectedClients(static_cast<uint32_t>(records.size()), &count, records.data());
    records.resize(count);
    return records;
  }

  // The operations recorded, kept to those named.
  static Strings RecordedAmong(const Strings& names) {
    Strings kept;
    for (const std::string& operation : tc::RecordedOperations())
      if (std::find(names.begin(), names.end(), operation) != names.end()) kept.push_back(operation);
    return kept;
  }

  // The fields of the latest connection's event.
  static std::vector<std::pair<std::string, std::string>> ConnectFields() {
    const std::vector<tc::TelemetryEvent> events = tc::SentTelemetryEvents();
    for (auto event = events.rbegin(); event != events.rend(); ++event)
      if (event->event == "Client_Connect") return event->fields;
    return {};
  }
};

TEST_F(ConnectionTest, RefusalsLeaveNothingConnected) {
  struct Case {
    VXT_Client* client;
    uint32_t hostingType;
    void* port;
    std::string message;
  };
  VXT_Client client = MakeClient(1, "tool_1@here");
  int port = 0;
  const Case cases[] = {
      {nullptr, 0, nullptr, "The given client structure is NULL"},
      {&client, 0, &port,
       "A port was passed in to InProc_Vxt::StartNewInstance(). This is not supported at the moment"},
      {&client, 1, &port,
       "A port was passed in to InProc_Vxt::StartNewInstance(). This is not supported at the moment"},
      {&client, 1, nullptr, "VXT_ServerHostingType_In_Process_Allow_Connections is not supported"},
  };
  for (const Case& refused : cases) {
    const VXT_Result expected = refused.client == nullptr ? kInvalidArgument : kNotSupported;
    EXPECT_EQ(StartNewInstance(refused.client, 1, refused.hostingType, refused.port), expected) << refused.message;
    EXPECT_EQ(GetLastErrorMessage(), refused.message);
    EXPECT_EQ(IsConnected(), 0u);
  }
  EXPECT_TRUE(RecordedClients().empty());
}

// Where StartNewInstance stops, what it reports and whether the id stays.
TEST_F(ConnectionTest, FailingStartStepReportsItsCodeAndLeavesTheIdAsItSays) {
  struct Case {
    const char* failing;
    uint32_t times;  // Calls that fail; 0: every call
    bool staysConnected;
    bool brokerStarted;
  };
  const Case cases[] = {
      {"Common.SetRunName", 0, false, false},
      {"Voxtrel_GetCommon", 1, false, false},  // The run name's getter
      {"Voxtrel_GetEventBroker", 0, true, false},
      {"Common.RegisterClient", 0, true, true},
  };
  for (const Case& failure : cases) {
    tc::Behaviour behaviour;
    behaviour.returnCode = 0x20002;
    behaviour.times = failure.times;
    tc::SetLogLevel(2);  // Lines without a trailer only: nothing else asks Common
    tc::StartRecordingCalls();
    ClearTrace();
    tc::ClearTelemetryCalls();
    tc::SetBehaviour(failure.failing, behaviour);
    VXT_Client client = MakeClient(5, "tool_5@here");
    EXPECT_EQ(StartNewInstance(&client, 1, 0, nullptr), kNotSupported) << failure.failing;
    tc::ClearBehaviour(failure.failing);

    EXPECT_STREQ(GetLastErrorMessage(), Voxtrel_ErrorGetDefaultMessage(0x20002)) << failure.failing;
    EXPECT_EQ(Trace().front(), "New client connection. ClientID: 5, ClientIdentifier: 'tool_5@here'")
        << failure.failing;
    EXPECT_EQ(IsConnected(), failure.staysConnected ? 1u : 0u) << failure.failing;
    EXPECT_EQ(tc::CallCount("EventBroker.Initialize"), failure.brokerStarted ? 1u : 0u) << failure.failing;
    EXPECT_TRUE(RecordedClients().empty()) << failure.failing;
    EXPECT_TRUE(ConnectFields().empty()) << failure.failing;
    // The target side starts on every path.
    EXPECT_EQ(tc::CallCount("TargetManager.StartInitialization"), 1u) << failure.failing;
    if (failure.staysConnected) {
      EXPECT_EQ(Disconnect(5), 0) << failure.failing;
    }
  }
}

TEST_F(ConnectionTest, RunNameIsTheLocalTimeAndTheIdentifier) {
  tc::StartRecordingCalls();
  VXT_Client client = MakeClient(5, "tool_5@here");
  ASSERT_EQ(StartNewInstance(&client, 2, 0, nullptr), 0);
  std::vector<std::string> runNames;
  for (const tc::RecordedCall& call : tc::RecordedCalls())
    if (call.operation == "Common.SetRunName") runNames.push_back(call.arguments);
  ASSERT_EQ(runNames.size(), 1u);
  EXPECT_TRUE(
      std::regex_match(runNames[0], std::regex(R"(name="\d{4}-\d{2}-\d{2}_\d{2}-\d{2}-\d{2}_tool_5@here", flag=1)")))
      << runNames[0];
  // Any isLocal but 1 records a remote client, yet telemetry calls every
  // nonzero value local.
  EXPECT_EQ(RecordedClients().at(0).isLocal, 0);
  EXPECT_EQ(ConnectFields().back(), (std::pair<std::string, std::string>{"islocal", "True"}));
}

TEST_F(ConnectionTest, EveryRecordFormReachesCommonAsAFullRecord) {
  for (const uint32_t size : {VXT_CLIENT_SIZE, VXT_CLIENT_SHORT_SIZE, 0u}) {
    VXT_Client client = MakeClient(7, "tool_1@here", size);
    std::fill(std::begin(client.clientData), std::end(client.clientData), 0xAB);
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0) << size;

    const std::vector<VXT_Client> records = RecordedClients();
    ASSERT_EQ(records.size(), 1u);
    const VXT_Client& record = records[0];
    EXPECT_EQ(record.structureSize, VXT_CLIENT_SIZE);
    EXPECT_EQ(record.clientId, 7u);
    EXPECT_STREQ(record.identifier, "tool_1@here");
    EXPECT_EQ(record.isLocal, 1);
    EXPECT_TRUE(std::regex_match(record.startTime, std::regex(R"(\d{4}-[A-Z][a-z]{2}-\d{2} \d{2}:\d{2}:\d{2})")))
        << record.startTime;
    // A short record ends before the further client data, which stays zero.
    EXPECT_EQ(record.clientData[0], size == VXT_CLIENT_SIZE ? 0xAB : 0) << size;
    ASSERT_EQ(Disconnect(7), 0);
  }
}

TEST_F(ConnectionTest, OverlongIdentifierOfAShortRecordIsCutTo255) {
  VXT_Client client = MakeClient(3, "", VXT_CLIENT_SHORT_SIZE);
  std::fill(std::begin(client.identifier), std::end(client.identifier), 'x');  // No terminator at all
  ASSERT_EQ(StartNewInstance(&client, 0, 0, nullptr), 0);
  const std::vector<VXT_Client> records = RecordedClients();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(std::string(records[0].identifier), std::string(255, 'x'));
  EXPECT_EQ(records[0].isLocal, 0);
}

TEST_F(ConnectionTest, TelemetryNamesTheClientFromItsIdentifier) {
  struct Case {
    const char* identifier;
    const char* name;  // Null: no such field
  };
  for (const Case& named : {Case{"tool_1234@place", "tool"}, Case{"a_b_12@h", "a_b"}, Case{"tool", nullptr},
                            Case{"x_@y", "x"}, Case{"tool_12@a@b", nullptr}}) {
    VXT_Client client = MakeClient(0x2a, named.identifier);
    ASSERT_EQ(StartNewInstance(&client, 0, 0, nullptr), 0);
    std::vector<std::pair<std::string, std::string>> expected{{"clientid", "0x0000002a"}};
    if (named.name != nullptr) expected.emplace_back("clientidname_str", named.name);
    expected.emplace_back("islocal", "False");
    EXPECT_EQ(ConnectFields(), expected) << named.identifier;
    ASSERT_EQ(Disconnect(0x2a), 0);
  }
}

TEST_F(ConnectionTest, ConnectionAndDisconnectionAreReportedToTelemetryAndUsage) {
  tc::SetUsageLogging(true);
  VXT_Client client = MakeClient(5, "tool_1@here");
  ASSERT_EQ(StartNewInstance(&client, 2, 0, nullptr), 0);
  ASSERT_EQ(Disconnect(5), 0);

  EXPECT_EQ(tc::CapturedUsage(), (std::vector<tc::UsageLine>{
                                     {"VxtInterface", "Start", "ClientID: 5, ClientIdentifier: 'tool_1@here'"},
                                     {"VxtInterface", "Stop", "ClientID: 5"},
                                 }));
  std::vector<tc::TelemetryCall> calls = tc::TelemetryCalls();
  ASSERT_GE(calls.size(), 4u);
  EXPECT_EQ(calls[0].function, "BeginSession");
  EXPECT_EQ(calls[0].args[0], "Client_Lifespan");
  EXPECT_EQ(calls[0].args[1], "processguid");
  EXPECT_TRUE(
      std::regex_match(calls[0].args[2], std::regex("[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}")))
      << calls[0].args[2];
  const std::vector<tc::TelemetryCall> tail(calls.end() - 3, calls.end());
  EXPECT_EQ(tail, (std::vector<tc::TelemetryCall>{
                      {"BuildDataSet", {"Client_Disconnect", "clientid", "0x00000005"}},
                      {"SendEvent", {"Client_Lifespan", "Client_Disconnect"}},
                      {"EndSession", {"Client_Lifespan"}},
                  }));
}

TEST_F(ConnectionTest, OnlyTheLastClientStopsThePlatform) {
  VXT_Client first = MakeClient(1, "a_1@h");
  VXT_Client second = MakeClient(2, "b_2@h");
  ASSERT_EQ(StartNewInstance(&first, 1, 0, nullptr), 0);
  ASSERT_EQ(StartNewInstance(&second, 1, 0, nullptr), 0);
  ClearTrace();
  tc::StartRecordingCalls();

  EXPECT_EQ(Disconnect(99), 0);  // Never connected: no error, nothing changes
  EXPECT_EQ(Disconnect(1), 0);
  EXPECT_EQ(IsConnected(), 1u);
  EXPECT_EQ(tc::CallCount("EventBroker.Uninitialize"), 0u);

  ClearTrace();
  EXPECT_EQ(Disconnect(2), 0);
  EXPECT_EQ(IsConnected(), 0u);
  EXPECT_EQ(Trace(), (Strings{
                         "In  InProc_Vxt::Disconnect(clientId = 2)",
                         "InProc Event Service ClientEventHandler with eventType: Disconnected, client name: 'b_2@h'",
                         "Begin Uninitialization",
                         "End Uninitialization",
                         "Out InProc_Vxt::Disconnect() ErrorCode = 0x00000000",
                     }));
  EXPECT_EQ(RecordedAmong({"StatePort.Uninitialize", "TargetManager.Uninitialize", "EventBroker.Uninitialize"}),
            (Strings{"StatePort.Uninitialize", "TargetManager.Uninitialize", "EventBroker.Uninitialize"}));
}

TEST_F(ConnectionTest, FailingStopStepSkipsTheRestOfItsGroupOnly) {
  struct Case {
    const char* failing;
    Strings called;
  };
  const Strings watched{"RunControl.Uninitialize", "StatePort.Uninitialize", "TargetManager.Uninitialize",
                        "EventBroker.Uninitialize"};
  const Case cases[] = {
      {"RunControl.Uninitialize",
       {"RunControl.Uninitialize", "TargetManager.Uninitialize", "EventBroker.Uninitialize"}},
      {"StatePort.Uninitialize",
       {"RunControl.Uninitialize", "StatePort.Uninitialize", "TargetManager.Uninitialize", "EventBroker.Uninitialize"}},
      {"TargetManager.Uninitialize",
       {"RunControl.Uninitialize", "StatePort.Uninitialize", "TargetManager.Uninitialize"}},
  };
  for (const Case& failure : cases) {
    VXT_Client client = MakeClient(1, "a_1@h");
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    ASSERT_EQ(FinishInitialization(), 0);
    tc::StartRecordingCalls();
    tc::FailWith(failure.failing, 0x20002);
    EXPECT_EQ(Disconnect(1), kNotSupported) << failure.failing;
    EXPECT_EQ(RecordedAmong(watched), failure.called) << failure.failing;
    EXPECT_EQ(IsConnected(), 0u);
    tc::ClearBehaviour(failure.failing);
  }
}

// The connection calls report a failure through the last error alone: no
// error line stands between their In and Out lines.
TEST_F(ConnectionTest, FailedStopAndFailedStartAreReportedWithoutAnErrorLine) {
  const std::string standing = Voxtrel_ErrorGetDefaultMessage(0x20002);
  VXT_Client client = MakeClient(1, "a_1@h");
  tc::FailWith("StatePort.Uninitialize", 0x20002);
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  ClearTrace();
  EXPECT_EQ(Disconnect(1), kNotSupported);
  EXPECT_EQ(Trace(), (Strings{
                         "In  InProc_Vxt::Disconnect(clientId = 1)",
                         "InProc Event Service ClientEventHandler with eventType: Disconnected, client name: 'a_1@h'",
                         "Begin Uninitialization",
                         "End Uninitialization",
                         "In  InProc ReportErrorMessage(<NULL>'" + standing + "')",
                         "Out InProc ReportErrorMessage()",
                         "Out InProc_Vxt::Disconnect() ErrorCode = 0x80000003",
                     }));
  EXPECT_EQ(tc::CapturedTrace()[2].nesting, 1);
  EXPECT_EQ(tc::CapturedTrace()[3].nesting, -1);

  ClearTrace();
  tc::FailWith("Common.RegisterClient", 0x20002);
  EXPECT_EQ(StartNewInstance(&client, 1, 0, nullptr), kNotSupported);
  EXPECT_EQ(Trace(), (Strings{
                         "New client connection. ClientID: 1, ClientIdentifier: 'a_1@h'",
                         "In  InProc ReportErrorMessage(<NULL>'" + standing + "')",
                         "Out InProc ReportErrorMessage()",
                     }));
  tc::ClearBehaviour("Common.RegisterClient");

  // Common never knew the client, so the thread acts for none.
  ClearTrace();
  tc::FailWith("Voxtrel_GetDma", 0x20002);
  EXPECT_EQ(FinishInitialization(), kNotSupported);
  EXPECT_EQ(Trace(), (Strings{
                         "In InProc_Vxt::FinishInitialization() [ClientID: 0]",
                         "In  InProc ReportErrorMessage(<NULL>'" + standing + "')",
                         "Out InProc ReportErrorMessage()",
                         "Out InProc_Vxt::FinishInitialization() ErrorCode = 0x80000003 [ClientID: 0]",
                     }));
}

// Every StartNewInstance of an id counts, a refused record size too, until
// its Disconnect; ConnectExistingInstance connects nothing.
TEST_F(ConnectionTest, EachStartOfAnIdNeedsItsOwnDisconnect) {
  VXT_Client client = MakeClient(1, "a_1@h");
  EXPECT_EQ(ConnectExistingInstance(&client, 1, nullptr), kNotSupported);
  EXPECT_EQ(IsConnected(), 0u);
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  client.structureSize = 100;
  EXPECT_EQ(StartNewInstance(&client, 1, 0, nullptr), kStructureSize);
  EXPECT_STREQ(GetLastErrorMessage(), "VXT_Client structureSize is invalid: 100");
  EXPECT_EQ(Disconnect(1), 0);
  EXPECT_EQ(DisconnectIfLastClient(1, nullptr), kInvalidArgument);
  EXPECT_EQ(IsConnected(), 1u);
  uint32_t disconnected = 0;
  EXPECT_EQ(DisconnectIfLastClient(1, &disconnected), 0);
  EXPECT_EQ(disconnected, 1u);
  EXPECT_EQ(IsConnected(), 0u);
}

TEST_F(ConnectionTest, FirstTopologyEventStartsRunControlOnce) {
  VXT_Client client = MakeClient(1, "a_1@h");
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  EXPECT_EQ(tc::BrokerSubscriberCount("DeviceTopology"), 1u);  // Replaced, not added

  tc::StartRecordingCalls();
  // The component starts, as it does once the target's topology is there.
  tc::FailWith("RunControl.Initialize", 0);
  tc::PublishBrokerEvent("DeviceTopology", "Completed", nullptr);
  tc::PublishBrokerEvent("DeviceTopology", "Completed", nullptr);
  EXPECT_EQ(tc::CallCount("RunControl.Initialize"), 1u);

  ASSERT_EQ(FinishInitialization(), 0);
  EXPECT_EQ(tc::BrokerSubscriberCount("DeviceTopology"), 0u);
  EXPECT_EQ(tc::CallCount("RunControl.Initialize"), 1u);
}

TEST_F(ConnectionTest, ASecondCycleWorksAsTheFirst) {
  for (int cycle = 0; cycle < 2; ++cycle) {
    tc::StartRecordingCalls();
    VXT_Client client = MakeClient(1, "a_1@h");
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    ASSERT_EQ(FinishInitialization(), 0);
    EXPECT_EQ(tc::CallCount("EventBroker.Initialize"), 1u) << cycle;
    EXPECT_EQ(tc::CallCount("TargetManager.FinishInitialization"), 1u) << cycle;
    EXPECT_EQ(tc::CallCount("RunControl.Initialize"), 1u) << cycle;
    ASSERT_EQ(Disconnect(1), 0);
    EXPECT_EQ(tc::CallCount("EventBroker.Uninitialize"), 1u) << cycle;
  }
}

// A component that throws fails the step it was called for, as a failing
// code would; nothing it throws leaves the library, no subscription that the
// broker keeps calls into freed memory, and the next cycle starts from a
// clean slate.
TEST_F(ConnectionTest, ThrowingComponentFailsItsStepAndTheNextCycleIsClean) {
  constexpr VXT_Result kThrown = static_cast<VXT_Result>(0x8000000f);
  tc::Behaviour throws;
  throws.throwException = true;
  tc::Behaviour refuses;
  refuses.returnCode = 0x20002;
  struct Case {
    const char* operation;
    tc::Behaviour behaviour;
    VXT_Result started;
    VXT_Result finished;
    VXT_Result disconnected;
  };
  const Case cases[] = {
      {"TargetManager.StartInitialization", throws, 0, 0, 0},
      {"EventBroker.Subscribe", throws, kThrown, kThrown, 0},
      // The general service's callback was never subscribed, so its
      // unsubscription is refused in turn.
      {"EventBroker.Subscribe", refuses, 0, 0, static_cast<VXT_Result>(0x80000002)},
      {"EventBroker.Unsubscribe", throws, 0, 0, kThrown},
      {"EventBroker.Unsubscribe", refuses, 0, 0, kNotSupported},
      {"Common.GetClientId", throws, 0, 0, 0},
      {"RunControl.Uninitialize", throws, 0, 0, kThrown},
      {"TargetManager.Uninitialize", throws, 0, 0, kThrown},
  };
  for (const Case& failure : cases) {
    VXT_Client client = MakeClient(1, "a_1@h");
    tc::SetBehaviour(failure.operation, failure.behaviour);
    EXPECT_EQ(StartNewInstance(&client, 1, 0, nullptr), failure.started) << failure.operation;
    EXPECT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0) << failure.operation;  // Replaces the subscription
    EXPECT_EQ(FinishInitialization(), failure.finished) << failure.operation;
    tc::PublishBrokerEvent("DeviceTopology", "Completed", nullptr);
    EXPECT_EQ(Disconnect(1), 0) << failure.operation;
    EXPECT_EQ(Disconnect(1), failure.disconnected) << failure.operation;
    EXPECT_EQ(IsConnected(), 0u) << failure.operation;
    tc::ClearBehaviour(failure.operation);

    tc::StartRecordingCalls();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0) << failure.operation;
    ASSERT_EQ(FinishInitialization(), 0) << failure.operation;
    EXPECT_EQ(tc::CallCount("TargetManager.FinishInitialization"), 1u) << failure.operation;
    ASSERT_EQ(Disconnect(1), 0) << failure.operation;
    EXPECT_EQ(tc::CallCount("EventBroker.Uninitialize"), 1u) << failure.operation;
  }
}

}  // namespace
