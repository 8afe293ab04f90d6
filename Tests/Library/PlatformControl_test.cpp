// The PlatformControl service: its trace lines and checks, the deprecated
// status operation, and power cycles and resets seen from the emulated CPUs
// and from target events.
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "RunControlTestSupport.h"

namespace vxt::test {
namespace {

constexpr uint32_t kDebugPort = 0x0c000000;

class PlatformControlTest : public RunControlTest {
 protected:
  void SetUp() override {
    RunControlTest::SetUp();
    platform = Service<IInternalService_PlatformControl>(VXT_Service_PlatformControl);
  }

  uint64_t SharedCount() {
    const VXT_Address address = Physical(0x1000);
    uint64_t token = 0;
    EXPECT_EQ(memory->ReadMemory(kFirstThread, &address, 8, &token), 0) << GetLastErrorMessage();
    const std::vector<uint8_t> bytes = Bytes(token);
    uint64_t value = 0;
    for (size_t i = bytes.size(); i-- > 0;) value = value << 8 | bytes[i];
    return value;
  }
  // Waits for the action's receipt; it must complete.
  void Await(VXT_Result result, uint64_t token) {
    ASSERT_EQ(result, 0) << GetLastErrorMessage();
    ASSERT_EQ(receipts->Flush(token), 0);
    OperationStatus status{};
    EXPECT_EQ(receipts->GetOperationStatus(token, &status), 0);
    EXPECT_EQ(status, VXT_OperationStatus_Completed);
    receipts->Destroy(token);
  }
  // The target events seen, once `count` of them have arrived.
  std::vector<std::string> TargetEvents(size_t count) {
    std::vector<std::string> seen;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (seen.size() < count && std::chrono::steady_clock::now() < deadline) {
      for (std::string& event : Deliveries::All().TakenDescriptions()) seen.push_back(std::move(event));
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return seen;
  }

  IInternalService_PlatformControl* platform = nullptr;
};

TEST_F(PlatformControlTest, TraceLinesAndChecks) {
  uint64_t token = 0;
  uint32_t status = 7;
  VXT_Preference prefer{};
  VXT_SurvivabilityPreset preset{};
  const std::string ok = " ErrorCode = 0x00000000 [ClientID: 3]";
  auto refused = [](const std::string& op, const std::string& message, const std::string& out) {
    return std::vector<std::string>{"VXT Error = '" + message + "' [ClientID: 3]",
                                    "In  InProc ReportErrorMessage(<NULL>'" + message + "')",
                                    "Out InProc ReportErrorMessage()",
                                    "Out InProc_PlatformControl::" + op + "(" + out + ")" + " ErrorCode = " +
                                        (message.find("Null pointer") != std::string::npos ? "0x80000001"
                                                                                            : "0x80000002") +
                                        " [ClientID: 3]"};
  };
  auto with = [](std::vector<std::string> lines, const std::vector<std::string>& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
  };
  struct Case {
    std::function<void()> call;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {[&] { platform->ResetTarget(kDebugPort, nullptr); },
       with({"In  InProc_PlatformControl::ResetTarget(debugPortId = 0x0c000000) [ClientID: 3]"},
            refused("ResetTarget", "InProc_PlatformControl::ResetTarget() argument error (operationToken) : Null pointer",
                    "operationToken = <NULL>"))},
      {[&] { platform->GetDebugPortPowerStatus(kDebugPort, &status); },
       {"In  InProc_PlatformControl::GetDebugPortPowerStatus() [ClientID: 3]",
        "Out InProc_PlatformControl::GetDebugPortPowerStatus(status = True)" + ok}},
      {[&] { platform->SetPreferHighBandwidthTransports(kTargetDomain, VXT_Preference_Disfavor); },
       {"In  InProc_PlatformControl::SetPreferHighBandwidthTransports(targetDomainId = 0x02000000, prefer = Disfavor) "
        "[ClientID: 3]",
        "Out InProc_PlatformControl::SetPreferHighBandwidthTransports()" + ok}},
      {[&] { platform->SetPreferHighBandwidthTransports(kTargetDomain, static_cast<VXT_Preference>(7)); },
       with({"In  InProc_PlatformControl::SetPreferHighBandwidthTransports(targetDomainId = 0x02000000, prefer = "
             "<UNKNOWN>) [ClientID: 3]"},
            refused("SetPreferHighBandwidthTransports",
                    "PlatformControl.SetPreferHighBandwidthTransports: 7 is no preference (0 Dont_Care, 1 Prefer, 2 "
                    "Disfavor)",
                    ""))},
      {[&] { platform->GetPreferHighBandwidthTransports(kTargetDomain, &prefer); },
       {"In  InProc_PlatformControl::GetPreferHighBandwidthTransports(targetDomainId = 0x02000000) [ClientID: 3]",
        "Out InProc_PlatformControl::GetPreferHighBandwidthTransports(prefer = Disfavor)" + ok}},
      {[&] { platform->SetFeatureSurvivabilityPreset(kTargetDomain, VXT_TransportFeature_Trace,
                                                     VXT_SurvivabilityPreset_LowPower); },
       {"In  InProc_PlatformControl::SetFeatureSurvivabilityPreset(targetDomainId = 0x02000000, feature = Trace, "
        "preset = LowPower) [ClientID: 3]",
        "Out InProc_PlatformControl::SetFeatureSurvivabilityPreset()" + ok}},
      {[&] { platform->GetFeatureSurvivabilityPreset(kTargetDomain, VXT_TransportFeature_Trace, &preset); },
       {"In  InProc_PlatformControl::GetFeatureSurvivabilityPreset(targetDomainId = 0x02000000, feature = Trace) "
        "[ClientID: 3]",
        "Out InProc_PlatformControl::GetFeatureSurvivabilityPreset(preset = LowPower)" + ok}},
      {[&] { platform->GetFeatureSurvivabilityPreset(kTargetDomain, VXT_TransportFeature_Transport, nullptr); },
       with({"In  InProc_PlatformControl::GetFeatureSurvivabilityPreset(targetDomainId = 0x02000000, feature = "
             "Transport) [ClientID: 3]"},
            refused("GetFeatureSurvivabilityPreset",
                    "InProc_PlatformControl::GetFeatureSurvivabilityPreset() argument error (preset) : Null pointer",
                    "preset = <NULL>"))},
      {[&] { platform->GetPreferHighBandwidthTransports(kTargetDomain, nullptr); },
       with({"In  InProc_PlatformControl::GetPreferHighBandwidthTransports(targetDomainId = 0x02000000) [ClientID: 3]"},
            refused("GetPreferHighBandwidthTransports",
                    "InProc_PlatformControl::GetPreferHighBandwidthTransports() argument error (prefer) : Null pointer",
                    "prefer = <NULL>"))},
  };
  for (const Case& c : cases) {
    ClearTrace();
    c.call();
    EXPECT_EQ(Trace(), c.lines);
  }
  EXPECT_EQ(status, 1u);
  ClearTrace();
  ASSERT_EQ(platform->PowerCycleTarget(kDebugPort, &token), 0);
  char expected[80];
  std::snprintf(expected, sizeof expected, "operationToken = 0x%016llx", static_cast<unsigned long long>(token));
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_PlatformControl::PowerCycleTarget(debugPortId = 0x0c000000) [ClientID: 3]",
                         "Out InProc_PlatformControl::PowerCycleTarget(" + std::string(expected) + ")" + ok}));
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method",
                                               "PlatformControl::PowerCycleTarget"), 1u);
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method",
                                               "PlatformControl::GetPreferHighBandwidthTransports"), 0u);
}

TEST_F(PlatformControlTest, StatusThatIsNeitherOnNorOffAndTheDeprecatedStatusFail) {
  voxtrel::testing::ForcePowerStatusReading(2);
  uint32_t status = 9;
  EXPECT_EQ(platform->GetDebugPortPowerStatus(kDebugPort, &status), static_cast<VXT_Result>(0x80000003));
  EXPECT_EQ(std::string(GetLastErrorMessage()), "Unable to determine Power status");
  EXPECT_EQ(status, 9u);
  voxtrel::testing::ForcePowerStatusReading(std::nullopt);

  ClearTrace();
  EXPECT_EQ(platform->GetTargetPowerStatus(kDebugPort, &status), static_cast<VXT_Result>(0x80000005));
  const std::string text = "GetTargetPowerStatus() has been deprecated, please use GetDebugPortPowerStatus()";
  EXPECT_EQ(Trace(), (std::vector<std::string>{"In  InProc ReportErrorMessage(<NULL>'" + text + "')",
                                               "Out InProc ReportErrorMessage()"}));
  EXPECT_EQ(std::string(GetLastErrorMessage()), text);
  EXPECT_EQ(status, 9u);
}

TEST_F(PlatformControlTest, ActionsTheComponentRefuse) {
  uint64_t token = 0;
  EXPECT_EQ(platform->ResetTarget(kFirstThread, &token), static_cast<VXT_Result>(0x80040007));
  EXPECT_EQ(std::string(GetLastErrorMessage()),
            "PlatformControl.ExecuteAction needs a Debugport, and device 0x03000000 (Thread0_0) is a LogicalThread");
  EXPECT_EQ(platform->PowerCycleTarget(0x0c0000ff, &token), static_cast<VXT_Result>(0x80040004));
  EXPECT_EQ(std::string(GetLastErrorMessage()), "PlatformControl.ExecuteAction knows no device 0x0c0000ff");
}

// The threads are halted and the shared count set far ahead of anything
// the firmware can reach, so that where it stands after the action tells
// whether RAM kept it; the threads' own counts start at 0, so that the
// firmware is seen to reach its loop again.
TEST_F(PlatformControlTest, PowerCycleAndResetRestartTheFirmwareAndAreAnnounced) {
  constexpr uint64_t kFarAhead = 1ull << 40;
  ASSERT_EQ(events->SubscribeTargetEvents(&Receive<1, VXT_TargetEvent>, nullptr), 0);
  struct Case {
    std::function<VXT_Result(uint64_t*)> action;
    bool ramKept;
    std::vector<std::string> events;
  };
  const std::string tail = " device=201326592 feature=null/0 domain=null";
  const Case cases[] = {
      {[&](uint64_t* t) { return platform->ResetTarget(kDebugPort, t); }, true,
       {"Target size=48 type=32 state='Asserted'" + tail, "Target size=48 type=32 state='Deasserted'" + tail}},
      {[&](uint64_t* t) { return platform->PowerCycleTarget(kDebugPort, t); }, false,
       {"Target size=48 type=1 state='Off'" + tail, "Target size=48 type=1 state='On'" + tail}},
  };
  for (const Case& c : cases) {
    uint64_t token = 0;
    Done(runControl->HaltAll(&token), token);
    // The shared count far ahead, each thread's own count (from 0x1100) at 0.
    std::vector<uint8_t> counts(0x110, 0);
    counts[5] = 1;
    const VXT_Address start = Physical(0x1000);
    VXT_BitData far = Vector(counts);
    Done(memory->WriteMemory(kFirstThread, &start, static_cast<int32_t>(counts.size()), &far, &token), token);
    bitData->Destroy(&far);
    const size_t postsBefore = voxtrel::testing::CpuPostCodes(kTargetDomain).size();

    const VXT_Result started = c.action(&token);
    Await(started, token);
    // The bootstrap thread starts from its reset vector: its first POST code
    // comes again, and the threads run their loop once more.
    WaitUntilLooping(0);
    const std::vector<uint8_t> posts = voxtrel::testing::CpuPostCodes(kTargetDomain);
    ASSERT_GT(posts.size(), postsBefore);
    EXPECT_EQ(posts[postsBefore], 0x01);
    EXPECT_EQ(SharedCount() >= kFarAhead, c.ramKept);
    EXPECT_EQ(TargetEvents(2), c.events);
    uint32_t status = 0;
    EXPECT_EQ(platform->GetDebugPortPowerStatus(kDebugPort, &status), 0);
    EXPECT_EQ(status, 1u);
  }
}


// The reset break, set through the Break service on the target domain, halts
// every thread at its reset vector after a reset through platform control:
// once for 1, after every reset for 2.
TEST_F(PlatformControlTest, AResetHaltsAtTheResetVectorAsTheResetBreakSays) {
  auto* breaks = Service<IInternalService_Break>(VXT_Service_Break);
  struct Case {
    std::optional<uint32_t> resetBreak;  // Set before the reset
    bool halts;
  };
  const Case cases[] = {{1, true}, {std::nullopt, false}, {2, true}, {std::nullopt, true}, {0, false}};
  for (size_t i = 0; i < std::size(cases); ++i) {
    const Case& c = cases[i];
    if (c.resetBreak) {
      ASSERT_EQ(breaks->SetBreakCondition(kTargetDomain, "Reset", *c.resetBreak), 0) << GetLastErrorMessage();
    }
    uint64_t token = 0;
    const VXT_Result started = platform->ResetTarget(kDebugPort, &token);
    Await(started, token);
    for (const uint32_t thread : {kFirstThread, kSecondThread}) {
      EXPECT_EQ(Status(thread), c.halts ? VXT_RunStatus_Halted : VXT_RunStatus_Running) << "case " << i;
      if (!c.halts) continue;
      EXPECT_EQ(Rip(thread), 0xFFF0u) << "case " << i;
      EXPECT_EQ(BreakType(thread), "Reset") << "case " << i;
    }
    if (c.halts) Done(runControl->GoAll(&token), token);
  }

  // A reset pulse on the debug port's pins is a reset like any other.
  ASSERT_EQ(breaks->SetBreakCondition(kTargetDomain, "Reset", 1), 0) << GetLastErrorMessage();
  auto* pins = Service<IInternalService_InterfacePins>(VXT_Service_InterfacePins);
  ASSERT_EQ(pins->PulsePinState(0x12000000, VXT_PinsSignal_Reset, VXT_PinsState_Assert, 1), 0) << GetLastErrorMessage();
  for (const uint32_t thread : {kFirstThread, kSecondThread}) {
    EXPECT_EQ(Status(thread), VXT_RunStatus_Halted);
    EXPECT_EQ(Rip(thread), 0xFFF0u);
  }
}

}  // namespace
}  // namespace vxt::test
