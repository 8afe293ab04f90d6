// Changes of the live topology: TAP controllers declared on a JTAG chain,
// updates back to the description, and the "Reconfiguration" events that
// tell of them.
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "EventBroker.h"
#include "TargetManager.h"
#include "TargetTestSupport.h"

namespace {

using vxt::test::CallPosting;
using vxt::test::Posted;

constexpr uint32_t kRoot = 0x01000000;
constexpr uint32_t kCore0 = 0x04000000;
constexpr uint32_t kThread0_0 = 0x03000000;
constexpr uint32_t kChain = 0x0d000000;
constexpr uint32_t kCpuTap = 0x0e000000;
constexpr uint32_t kUncoreTap = 0x0e000001;
constexpr uint32_t kChipsetTap = 0x0e000002;

using vxt::test::Get;

// "Started/0", "Completed/1": the event's name and devicesHaveChanged.
void RecordReconfiguration(void* userData, const char* eventName, const void* eventData) {
  const auto changed = eventData ? *static_cast<const uint8_t*>(eventData) : 255;
  static_cast<std::vector<std::string>*>(userData)->push_back(std::string(eventName) + "/" + std::to_string(changed));
}

TargetManager_TapController Tap(const char* deviceType, const char* deviceSubType, const char* stepping,
                                uint32_t irLength) {
  TargetManager_TapController tap{};
  std::strcpy(tap.deviceType, deviceType);
  std::strcpy(tap.deviceSubType, deviceSubType);
  std::strcpy(tap.stepping, stepping);
  tap.irLength = irLength;
  return tap;
}

// The default chain as described.
const std::vector<TargetManager_TapController> kDescribed = {
    Tap("CPU", "CoreComplex", "B0", 8), Tap("Uncore", "SystemAgent", "B0", 6), Tap("Chipset", "PlatformHub", "A1", 4)};

class TargetManagerChangesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    vxt::test::ResetTarget();
    broker_.Initialize();
    ASSERT_EQ(broker_.Subscribe("Reconfiguration", &RecordReconfiguration, &events_, "TargetManagerChangesTest"), 0u);
    ASSERT_EQ(manager_.FinishInitialization(), 0u);
  }
  void TearDown() override {
    broker_.Unsubscribe("Reconfiguration", &RecordReconfiguration, &events_);
    broker_.Uninitialize();
    vxt::test::ResetTarget();
  }

  uint32_t Specify(const std::vector<TargetManager_TapController>& taps) {
    return manager_.SpecifyTopology(kChain, static_cast<uint32_t>(taps.size()), taps.empty() ? nullptr : taps.data());
  }
  std::vector<bool> TapsEnabled() {
    std::vector<bool> enabled;
    for (uint32_t tap : {kCpuTap, kUncoreTap, kChipsetTap}) {
      bool flag = false;
      EXPECT_EQ(manager_.IsDeviceEnabled(tap, &flag), 0u);
      enabled.push_back(flag);
    }
    return enabled;
  }
  std::vector<std::string> TakeEvents() { return std::exchange(events_, {}); }

  const TargetManagerComponent& manager_ = Get(&Voxtrel_GetTargetManager);
  const EventBrokerComponent& broker_ = Get(&Voxtrel_GetEventBroker);
  std::vector<std::string> events_;
};

TEST_F(TargetManagerChangesTest, ADeclaredChainDisablesTheTapControllersItDoesNotMatch) {
  struct Step {
    const char* name;
    std::vector<TargetManager_TapController> declared;
    std::vector<bool> enabled;
    bool changed;
  };
  const Step steps[] = {
      {"as described", kDescribed, {true, true, true}, false},
      {"the same again", kDescribed, {true, true, true}, false},
      {"uncore stepping differs",
       {kDescribed[0], Tap("Uncore", "SystemAgent", "C0", 6), kDescribed[2]},
       {true, false, true},
       true},
      {"chipset missing", {kDescribed[0], kDescribed[1]}, {true, true, false}, true},
      {"one more than described",
       {kDescribed[0], kDescribed[1], kDescribed[2], Tap("FPGA", "", "", 10)},
       {true, true, true},
       true},
      {"empty chain", {}, {false, false, false}, true},
  };
  for (const Step& step : steps) {
    EXPECT_EQ(Specify(step.declared), 0u) << step.name;
    EXPECT_EQ(TapsEnabled(), step.enabled) << step.name;
    EXPECT_EQ(TakeEvents(), (std::vector<std::string>{"Started/0", step.changed ? "Completed/1" : "Completed/0"}))
        << step.name;
  }
}

TEST_F(TargetManagerChangesTest, UpdateBringsFlagsAndChainsBackToTheDescription) {
  struct Case {
    int32_t phases;
    bool threadEnabledAfter;  // Its core was disabled
    bool declarationStays;
  };
  const Case cases[] = {{0x1, true, true}, {0x2, false, false}, {0x0, true, false}};
  for (const Case& update : cases) {
    ASSERT_EQ(Specify({kDescribed[0], kDescribed[1]}), 0u);
    ASSERT_EQ(manager_.SetDeviceEnabled(kCore0, false), 0u);
    TakeEvents();
    EXPECT_EQ(manager_.UpdateTopology(kRoot, update.phases), 0u);
    bool threadEnabled = false;
    ASSERT_EQ(manager_.IsDeviceEnabled(kThread0_0, &threadEnabled), 0u);
    EXPECT_EQ(threadEnabled, update.threadEnabledAfter) << update.phases;
    EXPECT_EQ(TapsEnabled(), (std::vector<bool>{true, true, true})) << update.phases;
    EXPECT_EQ(
        voxtrel::platform::target::TargetModel::Instance().Topology()->SpecifiedTapControllers(kChain).has_value(),
        update.declarationStays)
        << update.phases;
    EXPECT_EQ(TakeEvents(), (std::vector<std::string>{"Started/0", "Completed/1"})) << update.phases;
    ASSERT_EQ(manager_.UpdateTopology(kRoot, kTopologyPhasesAll), 0u);
  }
  TakeEvents();
  EXPECT_EQ(manager_.UpdateTopology(kCore0, 0), 0u);  // Nothing left to bring back
  EXPECT_EQ(TakeEvents(), (std::vector<std::string>{"Started/0", "Completed/0"}));
}

TEST_F(TargetManagerChangesTest, RefusedChangesTellNobody) {
  std::vector<TargetManager_TapController> tooLong = {Tap("CPU", "", "", 65)};
  std::vector<TargetManager_TapController> untyped = {kDescribed[0], Tap("", "x", "", 4)};
  struct Case {
    std::function<uint32_t()> call;
    Posted expected;
  };
  const Case cases[] = {
      {[&] { return manager_.SpecifyTopology(kChain, 1, nullptr); },
       {0x20000, "TargetManager.SpecifyTopology was given a null tapControllers"}},
      {[&] { return manager_.SpecifyTopology(kCpuTap, 0, nullptr); },
       {0x2000d,
        "TargetManager.SpecifyTopology needs a JTAGScanChain, and device 0x0e000000 (CpuTap) is a "
        "TAPController"}},
      {[&] { return Specify(tooLong); },
       {0x20001,
        "TargetManager.SpecifyTopology was given tapControllers[0] with irLength 65; an instruction "
        "register has 2 to 64 bits"}},
      {[&] { return Specify(untyped); },
       {0x20001, "TargetManager.SpecifyTopology was given tapControllers[1] without a deviceType"}},
      {[&] { return manager_.UpdateTopology(kRoot, 0x7); },
       {0x20001,
        "TargetManager.UpdateTopology does not know the phases 0x00000004 (0x1: enabled flags, 0x2: "
        "specified TAP controllers)"}},
      {[&] { return manager_.UpdateTopology(0x0d000001, 1); },
       {0xe0002, "TargetManager.UpdateTopology knows no device 0x0d000001"}},
  };
  for (const Case& refused : cases) EXPECT_EQ(CallPosting(refused.call), refused.expected);
  EXPECT_EQ(TakeEvents(), std::vector<std::string>{});
  EXPECT_EQ(TapsEnabled(), (std::vector<bool>{true, true, true}));
}

TEST_F(TargetManagerChangesTest, TextsAreReadNoFurtherThanTheirFields) {
  TargetManager_TapController unterminated = kDescribed[0];
  std::memset(unterminated.deviceType, 'A', sizeof unterminated.deviceType);
  std::vector<TargetManager_TapController> taps = {unterminated};
  EXPECT_EQ(Specify(taps), 0u);
  EXPECT_EQ(TapsEnabled(), (std::vector<bool>{false, false, false}));
}

}  // namespace
