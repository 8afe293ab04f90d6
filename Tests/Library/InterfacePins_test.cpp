// The InterfacePins service on the default target's pins interface: trace
// lines whole, the pin-change rule before every change, and the pins wired
// to the emulated CPUs.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "BitDataTestSupport.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace vxt::test {
namespace {

constexpr uint32_t kPins = 0x12000000;

class PinsTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), VXT_SUCCESS);
    ASSERT_EQ(FinishInitialization(), VXT_SUCCESS);
    pins = GetServiceAs<IInternalService_InterfacePins>(VXT_Service_InterfacePins);
    ClearTrace();
  }
  void TearDown() override {
    if (IsConnected() != 0) Disconnect(client.clientId);
    PlatformTest::TearDown();
  }
  VXT_PinsState Read(VXT_PinsSignal signal) {
    VXT_PinsState state = static_cast<VXT_PinsState>(7);
    EXPECT_EQ(pins->GetPinState(kPins, signal, &state), VXT_SUCCESS);
    return state;
  }

  VXT_Client client = MakeClient(3, "tool_3@here");
  IInternalService_InterfacePins* pins = nullptr;
};

TEST_F(PinsTest, TraceLinesAndTheRefusalsOfTheBoard) {
  VXT_PinsState state = VXT_PinsState_Deassert;
  const std::string ok = " ErrorCode = 0x00000000 [ClientID: 3]";
  auto error = [](const std::string& message) {
    return std::vector<std::string>{"VXT Error = '" + message + "' [ClientID: 3]",
                                    "In  InProc ReportErrorMessage(<NULL>'" + message + "')",
                                    "Out InProc ReportErrorMessage()"};
  };
  struct Case {
    std::function<VXT_Result()> call;
    VXT_Result code;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {[&] { return pins->SetPinState(kPins, VXT_PinsSignal_HOOK3, VXT_PinsState_Assert); }, VXT_SUCCESS,
       {"In  InProc_InterfacePins::SetPinState(pinsInterfaceOrDebugPortId = 0x12000000 pinsSignal = HOOK3 "
        "pinsState = Assert) [ClientID: 3]",
        "Out InProc_InterfacePins::SetPinState()" + ok}},
      {[&] { return pins->GetPinState(kPins, VXT_PinsSignal_HOOK3, &state); }, VXT_SUCCESS,
       {"In  InProc_InterfacePins::GetPinState(pinsInterfaceOrDebugPortId = 0x12000000 pinsSignal = HOOK3) "
        "[ClientID: 3]",
        "Out InProc_InterfacePins::GetPinState(pinsState = Assert)" + ok}},
      {[&] { return pins->PulsePinState(kPins, VXT_PinsSignal_HOOK0, VXT_PinsState_Assert, 255); }, VXT_SUCCESS,
       {"In  InProc_InterfacePins::PulsePinState(pinsInterfaceOrDebugPortId = 0x12000000 pinsSignal = HOOK0 "
        "pinsState = Assert pulseWidth = ff) [ClientID: 3]",
        "Out InProc_InterfacePins::PulsePinState()" + ok}},
      {[&] { return pins->GetPinState(kPins, static_cast<VXT_PinsSignal>(13), nullptr); },
       static_cast<VXT_Result>(0x80000001), {}},
      {[&] { return pins->GetPinState(kPins, static_cast<VXT_PinsSignal>(13), &state); },
       static_cast<VXT_Result>(0x80000002), {}},
      {[&] { return pins->SetPinState(kPins, VXT_PinsSignal_PWRGOOD, VXT_PinsState_Deassert); },
       static_cast<VXT_Result>(0x80000003), {}},
      {[&] { return pins->PulsePinState(0x0d000000, VXT_PinsSignal_Reset, VXT_PinsState_Assert, 1); },
       static_cast<VXT_Result>(0x80040007), {}},
  };
  // The refusals' lines: In, the message, Out with the code.
  const std::vector<std::string> refusals[] = {
      {"In  InProc_InterfacePins::GetPinState(pinsInterfaceOrDebugPortId = 0x12000000 pinsSignal = <UNKNOWN>) "
       "[ClientID: 3]",
       "InterfacePins.GetPinState was given a null pinsState",
       "Out InProc_InterfacePins::GetPinState(pinsState = <NULL>) ErrorCode = 0x80000001 [ClientID: 3]"},
      {"In  InProc_InterfacePins::GetPinState(pinsInterfaceOrDebugPortId = 0x12000000 pinsSignal = <UNKNOWN>) "
       "[ClientID: 3]",
       "InterfacePins.GetPinState: 13 is no pins signal",
       "Out InProc_InterfacePins::GetPinState(pinsState = Assert) ErrorCode = 0x80000002 [ClientID: 3]"},
      {"In  InProc_InterfacePins::SetPinState(pinsInterfaceOrDebugPortId = 0x12000000 pinsSignal = PWRGOOD "
       "pinsState = Deassert) [ClientID: 3]",
       "PlatformControl.CheckPinChange: the target drives PWRGOOD; a probe can only read it",
       "Out InProc_InterfacePins::SetPinState() ErrorCode = 0x80000003 [ClientID: 3]"},
      {"In  InProc_InterfacePins::PulsePinState(pinsInterfaceOrDebugPortId = 0x0d000000 pinsSignal = Reset "
       "pinsState = Assert pulseWidth = 1) [ClientID: 3]",
       "PlatformControl.CheckPinChange needs a PinsInterface or a Debugport, and device 0x0d000000 (JtagChain0) is "
       "a JTAGScanChain",
       "Out InProc_InterfacePins::PulsePinState() ErrorCode = 0x80040007 [ClientID: 3]"},
  };
  size_t refusal = 0;
  for (const Case& c : cases) {
    ClearTrace();
    EXPECT_EQ(c.call(), c.code);
    std::vector<std::string> lines = c.lines;
    if (lines.empty()) {
      const std::vector<std::string>& r = refusals[refusal++];
      lines = {r[0]};
      for (const std::string& line : error(r[1])) lines.push_back(line);
      lines.push_back(r[2]);
    }
    EXPECT_EQ(Trace(), lines);
  }
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "InterfacePins::SetPinState"),
            2u);
}

TEST_F(PinsTest, ARefusedChangeLeavesThePinAlone) {
  ASSERT_EQ(pins->SetPinState(kPins, VXT_PinsSignal_DBR, VXT_PinsState_Deassert), VXT_SUCCESS);
  voxtrel::testing::FailWith("PlatformControl.CheckPinChange", 0xe0005);
  EXPECT_EQ(pins->SetPinState(kPins, VXT_PinsSignal_DBR, VXT_PinsState_Assert), static_cast<VXT_Result>(0x80040008));
  EXPECT_EQ(Read(VXT_PinsSignal_DBR), VXT_PinsState_Deassert);
}

TEST_F(PinsTest, PinsWiredToTheCpus) {
  EXPECT_EQ(Read(VXT_PinsSignal_PWRGOOD), VXT_PinsState_Assert);
  EXPECT_EQ(Read(VXT_PinsSignal_PRDY), VXT_PinsState_Deassert);
  ASSERT_EQ(pins->SetPinState(kPins, VXT_PinsSignal_PREQ, VXT_PinsState_Assert), VXT_SUCCESS);
  EXPECT_EQ(Read(VXT_PinsSignal_PRDY), VXT_PinsState_Assert) << "the threads halted on the probe-mode request";
  ASSERT_EQ(pins->SetPinState(kPins, VXT_PinsSignal_PREQ, VXT_PinsState_Deassert), VXT_SUCCESS);
  ASSERT_EQ(pins->PulsePinState(kPins, VXT_PinsSignal_Reset, VXT_PinsState_Assert, 100), VXT_SUCCESS);
  EXPECT_EQ(Read(VXT_PinsSignal_PRDY), VXT_PinsState_Deassert) << "the reset restarted the threads";
  EXPECT_EQ(Read(VXT_PinsSignal_Reset), VXT_PinsState_Deassert) << "the pulse ended";
}

}  // namespace
}  // namespace vxt::test
