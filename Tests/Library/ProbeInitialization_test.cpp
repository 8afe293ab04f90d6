// The Initialization service on the default target (one "VxtSim" probe on
// DebugPort0, whose chain holds three TAP controllers; scenarios "Normal"
// and "ColdBoot"): its record conversions and line forms, and the TAP
// controllers a chain shows before and after its probe is initialized, a
// specification and a restored configuration.
#include <cstring>
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

constexpr uint32_t kDebugPort = 0x0c000000;
constexpr uint32_t kChain = 0x0d000000;

class ProbeInitializationTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), VXT_SUCCESS);
    ASSERT_EQ(FinishInitialization(), VXT_SUCCESS);
    init = GetServiceAs<IInternalService_Initialization>(VXT_Service_Initialization);
    ClearTrace();
  }
  void TearDown() override {
    if (IsConnected() != 0) Disconnect(client.clientId);
    PlatformTest::TearDown();
  }
  uint32_t Discovered() {
    uint32_t count = 99;
    EXPECT_EQ(init->GetDiscoveredTapControllerCount(kChain, &count), 0) << GetLastErrorMessage();
    return count;
  }

  VXT_Client client = MakeClient(3, "tool_3@here");
  IInternalService_Initialization* init = nullptr;
};

TEST_F(ProbeInitializationTest, RecordsAndLines) {
  VXT_Probe probes[3];
  std::memset(probes, 'x', sizeof probes);
  char scenarios[2][VXT_INITIALIZATION_NAME_SIZE] = {};
  VXT_TapController taps[1] = {};
  VXT_Probe wanted{};
  std::strcpy(wanted.type, "VxtSim");
  uint32_t port = 0;
  const std::string ok = " ErrorCode = 0x00000000 [ClientID: 3]";
  struct Case {
    std::function<VXT_Result()> call;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {[&] { return init->GetConnectedProbes(3, probes); },
       {"In  InProc_Initialization::GetConnectedProbes(maxProbeCount = 3) [ClientID: 3]",
        "Out InProc_Initialization::GetConnectedProbes(probes = {{type = VxtSim uniqueIdentifier = VXTSIM-0001}, "
        "{type =  uniqueIdentifier = }, {type =  uniqueIdentifier = }})" + ok}},
      {[&] { return init->GetAvailableScenarios(2, scenarios[0]); },
       {"In  InProc_Initialization::GetAvailableScenarios(maxScenarioCount = 2) [ClientID: 3]",
        "Out InProc_Initialization::GetAvailableScenarios(scenarios = {'Normal', 'ColdBoot'})" + ok}},
      {[&] { return init->SelectProbe(&wanted, &port); },
       {"In  InProc_Initialization::SelectProbe(probe = {type = VxtSim uniqueIdentifier = }) [ClientID: 3]",
        "Out InProc_Initialization::SelectProbe(probe = {type = VxtSim uniqueIdentifier = VXTSIM-0001})" + ok}},
      {[&] { return init->GetSupportedTapControllers(0, taps); },
       {"In  InProc_Initialization::GetSupportedTapControllers(maxTapControllerCount = 0) [ClientID: 3]",
        "Out InProc_Initialization::GetSupportedTapControllers(tapControllers = <EMPTY>)" + ok}},
      {[&] { return init->GetSupportedTapControllers(1, taps); },
       {"In  InProc_Initialization::GetSupportedTapControllers(maxTapControllerCount = 1) [ClientID: 3]",
        "Out InProc_Initialization::GetSupportedTapControllers(tapControllers = {{deviceType = CPU deviceSubType = "
        "CoreComplex stepping = B0 irLength = 8}})" + ok}},
  };
  voxtrel::testing::StartRecordingCalls();
  for (const Case& c : cases) {
    ClearTrace();
    EXPECT_EQ(c.call(), 0) << GetLastErrorMessage();
    EXPECT_EQ(Trace(), c.lines);
  }
  // Every record the caller gave is written, those the component left empty too.
  EXPECT_EQ(probes[2].structureSize, VXT_PROBE_SIZE);
  EXPECT_EQ(std::string(probes[0].details), "Simulated debug probe on the SimBoard's debug connector");
  EXPECT_EQ(wanted.structureSize, 0u);
  EXPECT_EQ(port, kDebugPort);
  EXPECT_EQ(taps[0].structureSize, VXT_TAP_CONTROLLER_SIZE);
  EXPECT_EQ(voxtrel::testing::CallCount("TargetManager.GetSupportedTapControllers"), 1u);
  EXPECT_EQ(init->GetConnectedProbes(0, probes), 0);
  EXPECT_EQ(voxtrel::testing::CallCount("TargetManager.GetConnectedProbes"), 2u);

  // A type with no terminator in its field reaches the component cut to 63
  // characters (the identifier is the one the first selection completed).
  std::memset(wanted.type, 'A', sizeof wanted.type);
  EXPECT_EQ(init->SelectProbe(&wanted, nullptr), static_cast<VXT_Result>(0x80040004));
  EXPECT_EQ(std::string(GetLastErrorMessage()), "TargetManager.SelectProbe: no probe of type \"" + std::string(63, 'A') +
                                                   "\" and identifier \"VXTSIM-0001\"");
  EXPECT_EQ(init->GetAvailableScenarios(1, nullptr), static_cast<VXT_Result>(0x80000001));
  EXPECT_EQ(std::string(GetLastErrorMessage()),
            "InProc_Initialization::GetAvailableScenarios() argument error (scenarioNames) : Null pointer");
}

TEST_F(ProbeInitializationTest, AChainShowsItsTapControllersOnceItsProbeIsInitialized) {
  uint32_t count = 0;
  EXPECT_EQ(init->GetDiscoveredTapControllerCount(kChain, &count), static_cast<VXT_Result>(0x80000003));
  EXPECT_EQ(std::string(GetLastErrorMessage()),
            "TargetManager.GetDiscoveredTapControllerCount: the probe of debug port 0x0c000000 is not initialized; "
            "InitializeProbe finds its chains' TAP controllers");
  ASSERT_EQ(init->InitializeProbe(kDebugPort), 0) << GetLastErrorMessage();
  EXPECT_EQ(Discovered(), 3u);

  uint32_t saved = 7;
  ASSERT_EQ(init->IsSavedConfigurationAvailable(&saved), 0);
  EXPECT_EQ(saved, 0u);
  EXPECT_EQ(init->RestoreConfiguration(), static_cast<VXT_Result>(0x80000003));
  VXT_TapController one{};
  std::strcpy(one.deviceType, "CPU");
  std::strcpy(one.deviceSubType, "CoreComplex");
  std::strcpy(one.stepping, "B0");
  one.irLength = 65;
  EXPECT_EQ(init->SpecifyTapControllers(kChain, 1, &one), static_cast<VXT_Result>(0x80000002));
  EXPECT_EQ(std::string(GetLastErrorMessage()),
            "TargetManager.SpecifyTapControllers was given tapControllers[0] with irLength 65; an instruction "
            "register has 2 to 64 bits");
  one.irLength = 8;
  ASSERT_EQ(init->SpecifyTapControllers(kChain, 1, &one), 0) << GetLastErrorMessage();
  EXPECT_EQ(Discovered(), 1u);
  ASSERT_EQ(init->SaveConfiguration(), 0);
  ASSERT_EQ(init->IsSavedConfigurationAvailable(&saved), 0);
  EXPECT_EQ(saved, 1u);
  ASSERT_EQ(init->SpecifyTapControllers(kChain, 0, nullptr), 0) << GetLastErrorMessage();
  EXPECT_EQ(Discovered(), 0u);
  ASSERT_EQ(init->RestoreConfiguration(), 0) << GetLastErrorMessage();
  EXPECT_EQ(Discovered(), 1u);
  VXT_TapController found[2] = {};
  ASSERT_EQ(init->GetDiscoveredTapControllers(kChain, 2, found), 0);
  EXPECT_EQ(std::string(found[0].deviceSubType) + "/" + found[1].deviceType, "CoreComplex/");

  EXPECT_EQ(init->SelectScenario("ColdBoot"), 0);
  EXPECT_EQ(init->SelectScenario("WarmBoot"), static_cast<VXT_Result>(0x80000002));
  EXPECT_EQ(std::string(GetLastErrorMessage()), "TargetManager.SelectScenario: no scenario \"WarmBoot\"");
}

}  // namespace
}  // namespace vxt::test
