// The TargetManager's lifecycle of the topology, the components that bind to
// it, and the getters of every component.
#include <atomic>
#include <functional>
#include <thread>

#include <gtest/gtest.h>

#include "EventBroker.h"
#include "InterfacePort.h"
#include "RunControl.h"
#include "StatePort.h"
#include "TargetManager.h"
#include "TargetTestSupport.h"

namespace {

using namespace voxtrel::platform::target;
using vxt::test::CallPosting;
using vxt::test::Posted;

using vxt::test::Get;

class TargetManagerTest : public ::testing::Test {
 protected:
  void SetUp() override { vxt::test::ResetTarget(); }
  void TearDown() override { vxt::test::ResetTarget(); }

  const TargetManagerComponent& manager_ = Get(&Voxtrel_GetTargetManager);
  TargetModel& model_ = TargetModel::Instance();
};

// What a "DeviceTopology" subscriber saw.
struct TopologyEvents {
  std::vector<std::string> names;
  std::vector<bool> builtWhenHeard;
  std::vector<uint32_t> runControlInitialize;
};

void RecordTopologyEvent(void* userData, const char* eventName, const void* eventData) {
  auto& events = *static_cast<TopologyEvents*>(userData);
  events.names.emplace_back(eventName);
  events.builtWhenHeard.push_back(TargetModel::Instance().Topology() != nullptr && eventData == nullptr);
  // As the library does: a subscriber may start RunControl at once.
  events.runControlInitialize.push_back(Get(&Voxtrel_GetRunControl).Initialize());
}

TEST_F(TargetManagerTest, FinishInitializationBuildsOnceAndTellsTheSubscribers) {
  const EventBrokerComponent& broker = Get(&Voxtrel_GetEventBroker);
  broker.Initialize();
  TopologyEvents events;
  ASSERT_EQ(broker.Subscribe("DeviceTopology", &RecordTopologyEvent, &events, "TargetManagerTest"), 0u);

  EXPECT_EQ(model_.Topology(), nullptr);
  EXPECT_EQ(manager_.FinishInitialization(), 0u);
  const std::shared_ptr<LiveTopology> first = model_.Topology();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->Layout().Name(), "Default");
  EXPECT_EQ(first->Layout().Nodes().size(), 19u);
  EXPECT_EQ(events.names, (std::vector<std::string>{"Completed"}));
  EXPECT_EQ(events.builtWhenHeard, (std::vector<bool>{true}));
  EXPECT_EQ(events.runControlInitialize, (std::vector<uint32_t>{0}));
  EXPECT_EQ(voxtrel::platform::run_control::RunControlTopology().Topology(), first);

  // Built already: nothing is built or told again.
  EXPECT_EQ(manager_.FinishInitialization(), 0u);
  EXPECT_EQ(model_.Topology(), first);
  EXPECT_EQ(events.names.size(), 1u);

  EXPECT_EQ(manager_.Uninitialize(), 0u);
  EXPECT_EQ(model_.Topology(), nullptr);
  EXPECT_EQ(events.names.size(), 1u);  // Taking the topology down is not announced
  EXPECT_EQ(manager_.FinishInitialization(), 0u);
  EXPECT_NE(model_.Topology(), first);
  EXPECT_EQ(events.names.size(), 2u);

  EXPECT_EQ(broker.Unsubscribe("DeviceTopology", &RecordTopologyEvent, &events), 0u);
  broker.Uninitialize();
}

TEST_F(TargetManagerTest, EnabledFlagsChangeUntilTheTopologyIsDropped) {
  ASSERT_EQ(manager_.FinishInitialization(), 0u);
  constexpr uint32_t kCore1 = 0x04000001;
  EXPECT_TRUE(model_.Topology()->SetEnabled(kCore1, false));
  EXPECT_FALSE(model_.Topology()->SetEnabled(0x04000009, false));
  EXPECT_EQ(model_.Topology()->IsEnabled(0x04000009), std::nullopt);
  ASSERT_EQ(manager_.FinishInitialization(), 0u);
  EXPECT_EQ(model_.Topology()->IsEnabled(kCore1), false);
  manager_.Uninitialize();
  ASSERT_EQ(manager_.FinishInitialization(), 0u);
  EXPECT_EQ(model_.Topology()->IsEnabled(kCore1), true);
}

TEST_F(TargetManagerTest, PhasesFollowStartFinishAndUninitialize) {
  struct Step {
    std::function<uint32_t()> call;
    TargetPhase phase;
  };
  const Step steps[] = {
      {manager_.StartInitialization, TargetPhase::Starting},
      {manager_.StartInitialization, TargetPhase::Starting},
      {manager_.FinishInitialization, TargetPhase::Initialized},
      {manager_.StartInitialization, TargetPhase::Initialized},  // A later client changes nothing
      {manager_.Uninitialize, TargetPhase::Idle},
      {manager_.Uninitialize, TargetPhase::Idle},
      {manager_.FinishInitialization, TargetPhase::Initialized},
  };
  EXPECT_EQ(model_.Phase(), TargetPhase::Idle);
  for (size_t index = 0; index < std::size(steps); ++index) {
    EXPECT_EQ(steps[index].call(), 0u) << index;
    EXPECT_EQ(model_.Phase(), steps[index].phase) << index;
  }
}

TEST_F(TargetManagerTest, OneDynamicInitializationRunsUntilCancelledOrFinished) {
  EXPECT_EQ(manager_.BeginDynamicInitialization(), 0u);
  EXPECT_TRUE(model_.IsDynamicInitializationRunning());
  EXPECT_EQ(CallPosting(manager_.BeginDynamicInitialization),
            (Posted{kRefusedInThisState, "A dynamic initialization of the target is already running"}));
  EXPECT_EQ(manager_.CancelDynamicInitialization(), 0u);
  EXPECT_FALSE(model_.IsDynamicInitializationRunning());
  EXPECT_EQ(manager_.CancelDynamicInitialization(), 0u);  // Nothing to cancel is no mistake

  EXPECT_EQ(manager_.BeginDynamicInitialization(), 0u);
  EXPECT_EQ(manager_.FinishInitialization(), 0u);
  EXPECT_FALSE(model_.IsDynamicInitializationRunning());
  EXPECT_EQ(manager_.BeginDynamicInitialization(), 0u);
  EXPECT_EQ(manager_.Uninitialize(), 0u);
  EXPECT_FALSE(model_.IsDynamicInitializationRunning());
}

TEST_F(TargetManagerTest, ComponentsBindToTheTopologyBuiltWhenTheyAreInitialized) {
  struct Case {
    const char* name;
    std::function<uint32_t()> initialize;
    std::function<uint32_t()> uninitialize;  // Empty: the component has none
    TopologyBinding& binding;
  };
  const Case cases[] = {
      {"RunControl", Get(&Voxtrel_GetRunControl).Initialize, Get(&Voxtrel_GetRunControl).Uninitialize,
       voxtrel::platform::run_control::RunControlTopology()},
      {"StatePort", Get(&Voxtrel_GetStatePort).Initialize, Get(&Voxtrel_GetStatePort).Uninitialize,
       voxtrel::platform::state_port::StatePortTopology()},
      {"InterfacePort",
       Get(&Voxtrel_GetInterfacePort).Initialize,
       {},
       voxtrel::platform::interface_port::InterfacePortTopology()},
  };
  for (const Case& component : cases) {
    vxt::test::ResetTarget();
    EXPECT_EQ(CallPosting(component.initialize),
              (Posted{kRefusedInThisState, "The " + std::string(component.name) +
                                               " component cannot be initialized before the target's topology is "
                                               "built (TargetManager.FinishInitialization)"}));
    EXPECT_FALSE(component.binding.IsBound()) << component.name;
    if (component.uninitialize) {
      EXPECT_EQ(component.uninitialize(), 0u) << component.name;
    }

    ASSERT_EQ(manager_.FinishInitialization(), 0u);
    EXPECT_EQ(component.initialize(), 0u) << component.name;
    EXPECT_EQ(component.binding.Topology(), model_.Topology()) << component.name;
    // A target taken down and built again: a new Initialize binds the new topology.
    manager_.Uninitialize();
    ASSERT_EQ(manager_.FinishInitialization(), 0u);
    EXPECT_EQ(component.initialize(), 0u) << component.name;
    EXPECT_EQ(component.binding.Topology(), model_.Topology()) << component.name;
    if (component.uninitialize) {
      EXPECT_EQ(component.uninitialize(), 0u) << component.name;
      EXPECT_FALSE(component.binding.IsBound()) << component.name;
    }
  }
}

std::atomic<const void*> deliveredRecord{nullptr};

uint32_t ReceiveInterfacePortEvent(const void* record) {
  deliveredRecord = record;
  return 0x1c0002;
}

TEST_F(TargetManagerTest, InterfacePortEventsGoToTheStoredCallback) {
  using voxtrel::platform::interface_port::DeliverInterfacePortEvent;
  const InterfacePortComponent& port = Get(&Voxtrel_GetInterfacePort);
  const uint8_t record[24] = {24};
  deliveredRecord = nullptr;
  EXPECT_EQ(DeliverInterfacePortEvent(record), 0u);  // Nobody listens yet

  EXPECT_EQ(port.SetEventCallback(&ReceiveInterfacePortEvent), 0u);
  EXPECT_EQ(DeliverInterfacePortEvent(record), 0x1c0002u);
  EXPECT_EQ(deliveredRecord.load(), record);

  deliveredRecord = nullptr;
  EXPECT_EQ(port.SetEventCallback(nullptr), 0u);
  EXPECT_EQ(DeliverInterfacePortEvent(record), 0u);
  EXPECT_EQ(deliveredRecord.load(), nullptr);
}

// Readers keep the topology they hold while another thread takes the
// target down and brings it up again.
TEST_F(TargetManagerTest, ReadersKeepTheirTopologyWhileTheTargetCycles) {
  std::atomic<bool> stop{false};
  std::atomic<size_t> reads{0};
  std::vector<std::thread> readers;
  for (int reader = 0; reader < 2; ++reader) {
    readers.emplace_back([&] {
      while (!stop) {
        if (const std::shared_ptr<LiveTopology> live = TargetModel::Instance().Topology()) {
          const Node* core = live->Layout().FindByIdentifier(live->Layout().TargetDomainIds()[0], "Core1");
          if (core && live->IsEnabled(core->id).value_or(false)) ++reads;
        }
      }
    });
  }
  for (int cycle = 0; cycle < 200; ++cycle) {
    manager_.FinishInitialization();
    model_.Topology()->SetEnabled(0x04000001, true);
    manager_.Uninitialize();
  }
  stop = true;
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(model_.Topology(), nullptr);
  SUCCEED() << reads << " reads";
}

}  // namespace
