// Events of the components on their way to the subscribers: each broker
// type's mapping of names to event types, its record, its log lines and its
// refusals; and the interface port component's callback.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../../Source/Platform/Events/ClientEvent.h"
#include "../../Source/Platform/Events/MessageEvent.h"
#include "../../Source/Platform/Events/ReconfigurationEvent.h"
#include "../../Source/Platform/Events/RunControlEvent.h"
#include "../../Source/Platform/Events/StatePortEvent.h"
#include "../../Source/Platform/Events/SystemStallEvent.h"
#include "../../Source/Platform/Events/TargetEvents.h"
#include "EventTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
namespace ev = voxtrel::platform::events;
using Strings = std::vector<std::string>;

// One broker event and all that it must lead to.
struct BrokerCase {
  std::string typeName;
  std::string eventName;
  const void* data;
  Strings trace;       // "<level> <text>", the library's lines only
  Strings delivered;   // Descriptions of what the subscriber received
};

class EventHandlerTest : public vxt::test::EventTest {
 protected:
  void SetUp() override {
    EventTest::SetUp();
    SubscribeEverywhere<0>(nullptr);
    ClearTrace();
  }

  void Check(const std::vector<BrokerCase>& cases) {
    for (const BrokerCase& event : cases) {
      SCOPED_TRACE(event.typeName + " '" + event.eventName + "'");
      ClearTrace();
      EXPECT_EQ(tc::PublishBrokerEvent(event.typeName, event.eventName, event.data), 0u);
      EXPECT_EQ(LeveledTrace(), event.trace);
      EXPECT_EQ(TakeDescriptions(), event.delivered);
    }
  }
};

TEST_F(EventHandlerTest, TargetEventsCarryTheirStateDeviceAndDomain) {
  const auto domain = ev::MakePowerDomainEventData(0x11, "core0");
  const auto device = ev::MakeTargetStateEventData(0x22);
  Check({
      {"PowerDomain", "On", &domain,
       {"2 InProc Event Service TargetPowerDomainEventHandler for device: 0x00000011, powerDomain: 'core0', "
        "currentState: 'On'"},
       {"Target size=48 type=160 state='On' device=17 feature=null/0 domain='core0'"}},
      {"PowerDomain", "On", nullptr, {"4 InProc Event Service TargetPowerDomainEventHandler: eventData pointer was null"},
       {}},
      {"TargetPower", "Off", &device,
       {"2 InProc Event Service TargetPowerEventHandler for device: 0x00000022, currentState: 'Off'"},
       {"Target size=48 type=1 state='Off' device=34 feature=null/0 domain=null"}},
      {"TargetReset", "Asserted", &device,
       {"2 InProc Event Service TargetResetEventHandler for device: 0x00000022, currentState: 'Asserted'"},
       {"Target size=48 type=32 state='Asserted' device=34 feature=null/0 domain=null"}},
      {"TargetReset", "BreakHint", &device, {}, {}},
      // Names are compared whole and with their case.
      {"TargetReset", "breakhint", nullptr,
       {"2 InProc Event Service TargetResetEventHandler for device: 0x00000000, currentState: 'breakhint'"},
       {"Target size=48 type=32 state='breakhint' device=0 feature=null/0 domain=null"}},
  });
}

TEST_F(EventHandlerTest, FeatureEventsKnowTransportAndTraceOnly) {
  const auto transport = ev::MakeTargetFeatureEventData(7, "Transport", "usb");
  const auto trace = ev::MakeTargetFeatureEventData(7, "Trace", "");
  const auto unknown = ev::MakeTargetFeatureEventData(7, "Tracer", "x");
  Check({
      {"TargetFeature", "Enabled", &transport,
       {"2 InProc Event Service TargetFeatureEventHandler for device: 0x00000007, feature: 'Transport', "
        "currentState: 'Enabled'"},
       {"Target size=48 type=128 state='Enabled' device=7 feature='usb'/1 domain=null"}},
      {"TargetFeature", "Disabled", &trace,
       {"2 InProc Event Service TargetFeatureEventHandler for device: 0x00000007, feature: 'Trace', "
        "currentState: 'Disabled'"},
       {"Target size=48 type=129 state='Disabled' device=7 feature=''/1 domain=null"}},
      {"TargetFeature", "Enabled", &unknown,
       {"4 InProc Event Service TargetFeatureEventHandler for device: 0x00000007, unknown feature: 'Tracer'"}, {}},
      {"TargetFeature", "Enabled", nullptr,
       {"4 InProc Event Service TargetFeatureEventHandler: eventData pointer was null"}, {}},
  });
}

TEST_F(EventHandlerTest, ReconfigurationOfAnUnknownKindStillArrives) {
  const auto changed = ev::MakeReconfigurationEventData(true);
  const auto unchanged = ev::MakeReconfigurationEventData(false);
  Check({
      {"Reconfiguration", "Started", &changed,
       {"2 InProc Event Service ReconfigurationEventHandler with devicesHaveChanged: True"},
       {"Reconfiguration size=12 type=1 changed=1"}},
      {"Reconfiguration", "Completed", &unchanged,
       {"2 InProc Event Service ReconfigurationEventHandler with devicesHaveChanged: False"},
       {"Reconfiguration size=12 type=2 changed=0"}},
      {"Reconfiguration", "Paused", &changed,
       {"3 Unsupported type of reconfiguration event: 'Paused'",
        "2 InProc Event Service ReconfigurationEventHandler with devicesHaveChanged: True"},
       {"Reconfiguration size=12 type=0 changed=1"}},
      {"Reconfiguration", "Completed", nullptr,
       {"2 InProc Event Service ReconfigurationEventHandler with devicesHaveChanged: False"},
       {"Reconfiguration size=12 type=2 changed=0"}},
  });
}

TEST_F(EventHandlerTest, MessageKindsBecomeMessageTypes) {
  const auto kind0 = ev::MakeMessageEventData(0);
  const auto kind1 = ev::MakeMessageEventData(1);
  const auto kind7 = ev::MakeMessageEventData(7);
  Check({
      {"Message", "hi", &kind0, {"2 InProc Event Service MessageEventHandler with messageType: 1, message: 'hi'"},
       {"Message size=16 type=1 message='hi'"}},
      {"Message", "hi", &kind1, {"2 InProc Event Service MessageEventHandler with messageType: 2, message: 'hi'"},
       {"Message size=16 type=2 message='hi'"}},
      {"Message", "hi", nullptr, {"2 InProc Event Service MessageEventHandler with messageType: 2, message: 'hi'"},
       {"Message size=16 type=2 message='hi'"}},
      {"Message", "", &kind7,
       {"3 Unsupported type of message event: 7",
        "2 InProc Event Service MessageEventHandler with messageType: 0, message: ''"},
       {"Message size=16 type=0 message=''"}},
  });
}

TEST_F(EventHandlerTest, RunControlEventsCarryEveryField) {
  ev::RunControlEventFields fields;
  fields.deviceId = 3;
  fields.address = 0x401000;
  fields.breakpointId = 9;
  fields.breakName = "bn";
  fields.breakType = "bt";
  fields.breakSubType = "bs";
  fields.details = "dd";
  fields.extraValue = 0x1234;
  fields.extraCount = 2;
  const auto data = ev::MakeRunControlEventData(fields);
  Check({
      {"RunControl", "Break", &data,
       {"2 InProc Event Service RunControlEventHandler for device 0x00000003, address: 0x0000000000401000, "
        "eventType: 1, breakpointId = 9, breakName = 'bn', breakType = 'bt', breakSubType = 'bs', details = 'dd'"},
       {"RunControl size=72 type=1 device=3 address=4198400 breakpoint=9 name='bn' breakType='bt' subType='bs' "
        "details='dd' extra=4660/2"}},
      {"RunControl", "Step", nullptr,
       {"3 Unsupported type of run control event: 'Step'",
        "2 InProc Event Service RunControlEventHandler for device 0x00000000, address: 0x0000000000000000, "
        "eventType: 0, breakpointId = 0, breakName = <NULL>, breakType = <NULL>, breakSubType = <NULL>, "
        "details = <NULL>"},
       {"RunControl size=72 type=0 device=0 address=0 breakpoint=0 name=null breakType=null subType=null "
        "details=null extra=0/0"}},
  });
}

TEST_F(EventHandlerTest, RunControlNamesMapToTheirTypes) {
  const std::pair<std::string, uint32_t> names[] = {
      {"Break", 1}, {"Breakpoint", 32}, {"Halt", 33}, {"Stop", 64}, {"Resume", 65}, {"Breakpoints", 0}, {"halt", 0}};
  for (const auto& [name, eventType] : names) {
    tc::PublishBrokerEvent("RunControl", name, nullptr);
    const Strings delivered = TakeDescriptions();
    ASSERT_EQ(delivered.size(), 1u) << name;
    const std::string prefix = "RunControl size=72 type=" + std::to_string(eventType) + " ";
    EXPECT_EQ(delivered[0].compare(0, prefix.size(), prefix), 0) << name << ": " << delivered[0];
  }
}

TEST_F(EventHandlerTest, RunControlEventsWaitForTheComponent) {
  tc::HoldRunControlEvents(true);
  EXPECT_EQ(tc::PublishBrokerEvent("RunControl", "Break", nullptr), 0u);
  tc::FailWith("RunControl.IsEventDeliveryActive", 0x20005);
  tc::HoldRunControlEvents(false);
  EXPECT_EQ(tc::PublishBrokerEvent("RunControl", "Break", nullptr), 0u);
  tc::ClearBehaviour("RunControl.IsEventDeliveryActive");
  tc::FailWith("Voxtrel_GetRunControl", 0x20005);
  EXPECT_EQ(tc::PublishBrokerEvent("RunControl", "Break", nullptr), 0u);
  EXPECT_TRUE(LeveledTrace().empty());
  EXPECT_TRUE(TakeDeliveries().empty());

  tc::ClearBehaviour("Voxtrel_GetRunControl");
  EXPECT_EQ(tc::PublishBrokerEvent("RunControl", "Break", nullptr), 0u);
  EXPECT_EQ(TakeDeliveries().size(), 1u);
}

TEST_F(EventHandlerTest, ClientEventsBecomeNotifications) {
  const auto record = ev::ClientEventData(vxt::test::MakeClient(12, "x_1@y"));
  Check({
      {"Client", "Connected", &record,
       {"2 InProc Event Service ClientEventHandler with eventType: Connected, client name: 'x_1@y'"},
       {"Notification size=1304 type=1 client=12 'x_1@y'"}},
      {"Client", "Disconnected", nullptr,
       {"2 InProc Event Service ClientEventHandler with eventType: Disconnected, client name: ''"},
       {"Notification size=1304 type=2 client=0 ''"}},
      {"Client", "Gone", &record, {"3 Unsupported type of client event: 'Gone'"}, {}},
  });
}

TEST_F(EventHandlerTest, SystemStallsNeedAKnownNameAndAValidStall) {
  const auto hit = ev::MakeSystemStallEventData("bus", 4, true);
  const auto invalid = ev::MakeSystemStallEventData("bus", 4, false);
  Check({
      {"SystemStall", "Hit", &hit, {"2 InProc Event Service SystemStallEventHandler with eventType: Hit, stall name: 'bus'"},
       {"SystemStall size=24 type=1 name='bus' value=4"}},
      {"SystemStall", "Released", &hit,
       {"2 InProc Event Service SystemStallEventHandler with eventType: Released, stall name: 'bus'"},
       {"SystemStall size=24 type=2 name='bus' value=4"}},
      {"SystemStall", "Released", &invalid, {}, {}},
      {"SystemStall", "Stuck", &hit, {"3 Unsupported type of system stall event: 'Stuck'"}, {}},
      {"SystemStall", "Hit", nullptr, {"4 InProc Event Service SystemStallEventHandler: eventData pointer was null"},
       {}},
  });
}

TEST_F(EventHandlerTest, StatePortEventsKnowValueChangedOnly) {
  const auto port = ev::MakeStatePortEventData(2, "sp0", 3, 4, 5);
  Check({
      {"StatePort", "ValueChanged", &port,
       {"2 InProc Event Service StatePortEventHandler with eventType: ValueChanged, stateport name: 'sp0'"},
       {"StatePort size=48 type=1 device=2 port='sp0' value=3 first=4 second=5"}},
      {"StatePort", "Changed", &port, {"3 Unsupported type of stateport event: 'Changed'"}, {}},
      {"StatePort", "ValueChanged", nullptr,
       {"4 InProc Event Service StatePortEventHandler: eventData pointer was null"}, {}},
  });
}

// A component that fills a name field without terminating it must not make
// the library or a subscriber read past the field.
TEST_F(EventHandlerTest, UnterminatedNamesAreCutToTheirField) {
  auto domain = ev::MakePowerDomainEventData(1, "");
  std::memset(domain.domainName, 'a', sizeof domain.domainName);
  auto port = ev::MakeStatePortEventData(2, "", 0, 0, 0);
  std::memset(port.portName, 'p', sizeof port.portName);
  // The client record is copied into the notification, and its texts are
  // terminated in the copy.
  auto client = ev::ClientEventData(vxt::test::MakeClient(4, ""));
  std::memset(client.identifier, 'c', sizeof client.identifier);
  const std::string a63(63, 'a');
  const std::string p63(63, 'p');
  const std::string c255(255, 'c');
  Check({
      {"PowerDomain", "On", &domain,
       {"2 InProc Event Service TargetPowerDomainEventHandler for device: 0x00000001, powerDomain: '" + a63 +
        "', currentState: 'On'"},
       {"Target size=48 type=160 state='On' device=1 feature=null/0 domain='" + a63 + "'"}},
      {"StatePort", "ValueChanged", &port,
       {"2 InProc Event Service StatePortEventHandler with eventType: ValueChanged, stateport name: '" + p63 + "'"},
       {"StatePort size=48 type=1 device=2 port='" + p63 + "' value=0 first=0 second=0"}},
      {"Client", "Connected", &client,
       {"2 InProc Event Service ClientEventHandler with eventType: Connected, client name: '" + c255 + "'"},
       {"Notification size=1304 type=1 client=4 '" + c255 + "'"}},
  });
}

TEST_F(EventHandlerTest, InterfacePortEventsComeThroughTheComponentCallback) {
  EXPECT_EQ(tc::RaiseInterfacePortError(6, 0xdead), 0u);
  EXPECT_EQ(tc::RaiseInterfacePortStateChange(6, 2, 4), 0u);
  EXPECT_EQ(TakeDescriptions(), (Strings{"PortError size=24 type=1 port=6 error=57005",
                                         "PortState size=20 type=2 port=6 states=2/4"}));

  EXPECT_EQ(tc::RaiseInterfacePortEvent(2, 6, 0), 0x20009u);
  EXPECT_TRUE(TakeDeliveries().empty());
  EXPECT_TRUE(LeveledTrace().empty());
}

}  // namespace
