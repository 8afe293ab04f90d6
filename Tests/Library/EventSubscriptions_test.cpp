// The Event service's subscriber lists: refusals, trace, counting, and how
// a list changes.
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "EventTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::Data;
using vxt::test::Delivery;
using vxt::test::Receive;
using vxt::test::ReceiveUndefined;
using Strings = std::vector<std::string>;

constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);

template <class Function>
std::string AddressText(Function* function) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%016llx", static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(function)));
  return text;
}

class EventSubscriptionTest : public vxt::test::EventTest {
 protected:
  // Fires one message event straight at the message list.
  void FireMessage() {
    const VXT_MessageEvent message{VXT_MESSAGE_EVENT_SIZE, 2, "m"};
    events->GetFireEvent()->FireMessageEvent(&message);
  }
  // Who received the message events, with which userData.
  static std::vector<std::pair<int, void*>> Receivers() {
    std::vector<std::pair<int, void*>> receivers;
    for (const Delivery& delivery : TakeDeliveries()) receivers.emplace_back(delivery.subscriber, delivery.userData);
    return receivers;
  }
};

// Representatives of the operations, which share one check.
TEST_F(EventSubscriptionTest, NullCallbacksAreRefusedTracedAndCounted) {
  struct NullCall {
    std::string operation;
    bool isSubscribe;
    std::function<VXT_Result(IInternalService_Event&)> call;
  };
  const NullCall cases[] = {
      {"SubscribeTargetEvents", true, [](auto& e) { return e.SubscribeTargetEvents(nullptr, Data(7)); }},
      {"UnsubscribeTargetEvents", false, [](auto& e) { return e.UnsubscribeTargetEvents(nullptr); }},
      {"SubscribeInterfacePortServiceReconfigEvents", true,
       [](auto& e) { return e.SubscribeInterfacePortServiceReconfigEvents(nullptr, Data(7)); }},
      {"UnsubscribeStatePortEvents", false, [](auto& e) { return e.UnsubscribeStatePortEvents(nullptr); }},
  };
  for (const NullCall& refused : cases) {
    SCOPED_TRACE(refused.operation);
    ClearTrace();
    const std::string message = "InProc_Event::" + refused.operation + "() argument error (callback) : Null pointer";
    EXPECT_EQ(refused.call(*events), kInvalidArgument);
    // Taken before GetLastErrorMessage, which traces its own lines.
    EXPECT_EQ(Trace(), (Strings{
                           "In  InProc_Event::" + refused.operation + "(callback = <NULL>" +
                               (refused.isSubscribe ? " userData = 0x0000000000000007" : "") + ") [ClientID: 3]",
                           "VXT Error = '" + message + "' [ClientID: 3]",
                           "In  InProc ReportErrorMessage(<NULL>'" + message + "')",
                           "Out InProc ReportErrorMessage()",
                           "Out InProc_Event::" + refused.operation + "() ErrorCode = 0x80000001 [ClientID: 3]",
                       }));
    EXPECT_EQ(GetLastErrorMessage(), message);
    // Subscribing counts, also when refused; unsubscribing never does.
    EXPECT_EQ(tc::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "Event::" + refused.operation),
              refused.isSubscribe ? 1u : 0u);
  }
  // Nothing was added anywhere.
  const VXT_MessageEvent message{VXT_MESSAGE_EVENT_SIZE, 1, "m"};
  events->GetFireEvent()->FireMessageEvent(&message);
  EXPECT_TRUE(TakeDeliveries().empty());
}

TEST_F(EventSubscriptionTest, SubscriptionsAreTracedWithTheCallbackAddress) {
  const auto callback = &Receive<0, VXT_RunControlEvent>;
  EXPECT_EQ(events->SubscribeRunControlEvents(callback, Data(0x2a)), 0);
  EXPECT_EQ(events->UnsubscribeRunControlEvents(callback), 0);
  EXPECT_EQ(Trace(),
            (Strings{
                "In  InProc_Event::SubscribeRunControlEvents(callback = " + AddressText(callback) +
                    " userData = 0x000000000000002a) [ClientID: 3]",
                "Out InProc_Event::SubscribeRunControlEvents() ErrorCode = 0x00000000 [ClientID: 3]",
                "In  InProc_Event::UnsubscribeRunControlEvents(callback = " + AddressText(callback) + ") [ClientID: 3]",
                "Out InProc_Event::UnsubscribeRunControlEvents() ErrorCode = 0x00000000 [ClientID: 3]",
            }));
}

// A callback is on a list once: subscribing it again keeps its first
// userData, and one Unsubscribe takes it off.
TEST_F(EventSubscriptionTest, UnsubscribingKeepsTheOthersInTheirOrder) {
  EXPECT_EQ(events->SubscribeMessageEvents(&Receive<0, VXT_MessageEvent>, Data(10)), 0);
  EXPECT_EQ(events->SubscribeMessageEvents(&Receive<0, VXT_MessageEvent>, Data(20)), 0);
  EXPECT_EQ(events->SubscribeMessageEvents(&Receive<1, VXT_MessageEvent>, nullptr), 0);
  EXPECT_EQ(events->SubscribeMessageEvents(&Receive<2, VXT_MessageEvent>, Data(12)), 0);

  EXPECT_EQ(events->UnsubscribeMessageEvents(&Receive<1, VXT_MessageEvent>), 0);
  EXPECT_EQ(events->UnsubscribeMessageEvents(&Receive<3, VXT_MessageEvent>), 0);  // Never subscribed
  FireMessage();
  EXPECT_EQ(Receivers(), (std::vector<std::pair<int, void*>>{{0, Data(10)}, {2, Data(12)}}));

  // A callback subscribed again goes to the end.
  EXPECT_EQ(events->SubscribeMessageEvents(&Receive<1, VXT_MessageEvent>, Data(11)), 0);
  EXPECT_EQ(events->UnsubscribeMessageEvents(&Receive<0, VXT_MessageEvent>), 0);
  FireMessage();
  EXPECT_EQ(Receivers(), (std::vector<std::pair<int, void*>>{{2, Data(12)}, {1, Data(11)}}));
}

TEST_F(EventSubscriptionTest, OneCallbackInTwoListsIsTwoSubscriptions) {
  IInternal_FireEvent& fire = *events->GetFireEvent();
  const int record = 0;
  EXPECT_EQ(events->SubscribeBreakStateChangeEvents(&ReceiveUndefined<0>, Data(1)), 0);
  EXPECT_EQ(events->SubscribeInterfacePortServiceReconfigEvents(&ReceiveUndefined<0>, Data(2)), 0);
  fire.FireBreakStateChangeEvent(&record);
  fire.FireInterfacePortServiceReconfigEvent(&record);
  EXPECT_EQ(Receivers(), (std::vector<std::pair<int, void*>>{{0, Data(1)}, {0, Data(2)}}));

  EXPECT_EQ(events->UnsubscribeBreakStateChangeEvents(&ReceiveUndefined<0>), 0);
  fire.FireBreakStateChangeEvent(&record);
  fire.FireInterfacePortServiceReconfigEvent(&record);
  EXPECT_EQ(Receivers(), (std::vector<std::pair<int, void*>>{{0, Data(2)}}));
}

// Each Fire operation reaches its own list and no other; a null record
// reaches nobody.
TEST_F(EventSubscriptionTest, EachFireReachesItsOwnList) {
  SubscribeEverywhere<0>(Data(5));
  const VXT_TargetEvent target{VXT_TARGET_EVENT_SIZE, 1, "On", 4, nullptr, 0, nullptr};
  const VXT_MessageEvent message{VXT_MESSAGE_EVENT_SIZE, 2, "hello"};
  VXT_RunControlEvent runControl{};
  runControl.structureSize = VXT_RUN_CONTROL_EVENT_SIZE;
  runControl.eventType = VXT_RunControlEvent_Halt;
  const VXT_ReconfigurationEvent reconfiguration{VXT_RECONFIGURATION_EVENT_SIZE, 2, 1};
  const VXT_InterfacePortErrorEvent portError{VXT_INTERFACE_PORT_ERROR_EVENT_SIZE, 1, 3, 99};
  const VXT_InterfacePortStateChangeEvent portState{VXT_INTERFACE_PORT_STATE_CHANGE_EVENT_SIZE, 2, 3, 4, 5};
  VXT_NotificationEvent notification{};
  notification.structureSize = VXT_NOTIFICATION_EVENT_SIZE;
  notification.eventType = VXT_NotificationEvent_Connected;
  notification.client.clientId = 8;
  const VXT_SystemStallEvent stall{VXT_SYSTEM_STALL_EVENT_SIZE, 1, "s", 6};
  const VXT_StatePortEvent statePort{VXT_STATE_PORT_EVENT_SIZE, 1, 2, "p", 3, 4, 5};
  const int undefined = 0;

  using F = IInternal_FireEvent;
  struct Case {
    std::function<void(F&, bool)> fire;  // With the record, or with null
    std::string received;
  };
  const auto with = [](auto operation, const auto* record) {
    return [operation, record](F& fire, bool null) { (fire.*operation)(null ? nullptr : record); };
  };
  const Case cases[] = {
      {with(&F::FireTargetEvent, &target), "Target size=48 type=1 state='On' device=4 feature=null/0 domain=null"},
      {with(&F::FireMessageEvent, &message), "Message size=16 type=2 message='hello'"},
      {with(&F::FireRunControlEvent, &runControl),
       "RunControl size=72 type=33 device=0 address=0 breakpoint=0 name=null breakType=null subType=null "
       "details=null extra=0/0"},
      {with(&F::FireBreakStateChangeEvent, &undefined), "undefined"},
      {with(&F::FireReconfigurationEvent, &reconfiguration), "Reconfiguration size=12 type=2 changed=1"},
      {with(&F::FireInterfacePortErrorEvent, &portError), "PortError size=24 type=1 port=3 error=99"},
      {with(&F::FireInterfacePortStateChangeEvent, &portState), "PortState size=20 type=2 port=3 states=4/5"},
      {with(&F::FireInterfacePortServiceReconfigEvent, &undefined), "undefined"},
      {with(&F::FireNotificationEvent, &notification), "Notification size=1304 type=1 client=8 ''"},
      {with(&F::FireSystemStallEvent, &stall), "SystemStall size=24 type=1 name='s' value=6"},
      {with(&F::FireStatePortEvent, &statePort), "StatePort size=48 type=1 device=2 port='p' value=3 first=4 second=5"},
  };
  for (const Case& event : cases) {
    SCOPED_TRACE(event.received);
    event.fire(*events->GetFireEvent(), true);
    EXPECT_TRUE(TakeDeliveries().empty());
    event.fire(*events->GetFireEvent(), false);
    EXPECT_EQ(TakeDescriptions(), Strings{event.received});
  }
}

}  // namespace
