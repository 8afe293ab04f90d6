// Delivery to the subscribers: their order, changes to a list while it is
// delivered, and subscriptions that outlive every client.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../../Source/Platform/Events/MessageEvent.h"
#include "EventTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::Data;
using vxt::test::Delivery;
using vxt::test::Deliveries;
using vxt::test::EventService;
using vxt::test::Receive;
using Strings = std::vector<std::string>;

constexpr auto kFirst = &Receive<0, VXT_MessageEvent>;
constexpr auto kSecond = &Receive<1, VXT_MessageEvent>;
constexpr auto kThird = &Receive<2, VXT_MessageEvent>;

// Takes itself off the list while it is being delivered to.
void UnsubscribingItself(const VXT_MessageEvent* event, void* userData) {
  Deliveries::All().Add({10, userData, event, "unsubscribed itself"});
  EXPECT_EQ(EventService().UnsubscribeMessageEvents(&UnsubscribingItself), 0);
}

// Adds the third subscriber, and asks another service something.
void SubscribingAnother(const VXT_MessageEvent* event, void* userData) {
  void* general = nullptr;
  uint32_t clients = 0;
  GetService(nullptr, VXT_Service_General, &general);
  static_cast<IInternalService_General*>(general)->GetNumConnectedClients(&clients);
  Deliveries::All().Add({11, userData, event, "clients=" + std::to_string(clients)});
  EXPECT_EQ(EventService().SubscribeMessageEvents(kThird, Data(3)), 0);
}

class EventDeliveryTest : public vxt::test::EventTest {
 protected:
  void TearDown() override {
    EventService().UnsubscribeMessageEvents(&UnsubscribingItself);
    EventService().UnsubscribeMessageEvents(&SubscribingAnother);
    EventTest::TearDown();
  }

  static void PublishMessage(const char* text) {
    const auto kind = voxtrel::platform::events::MakeMessageEventData(1);
    tc::PublishBrokerEvent("Message", text, &kind);
  }

  static std::vector<int> Subscribers() {
    std::vector<int> subscribers;
    for (const Delivery& delivery : TakeDeliveries()) subscribers.push_back(delivery.subscriber);
    return subscribers;
  }
};

TEST_F(EventDeliveryTest, ASubscriberThatUnsubscribesItselfDoesNotStopTheOthers) {
  ASSERT_EQ(events->SubscribeMessageEvents(kFirst, nullptr), 0);
  ASSERT_EQ(events->SubscribeMessageEvents(&UnsubscribingItself, nullptr), 0);
  ASSERT_EQ(events->SubscribeMessageEvents(kSecond, nullptr), 0);

  PublishMessage("one");
  EXPECT_EQ(Subscribers(), (std::vector<int>{0, 10, 1}));
  PublishMessage("two");
  EXPECT_EQ(Subscribers(), (std::vector<int>{0, 1}));
}

TEST_F(EventDeliveryTest, ASubscriberAddedDuringDeliveryHearsFromTheNextEventOn) {
  ASSERT_EQ(events->SubscribeMessageEvents(&SubscribingAnother, nullptr), 0);
  ASSERT_EQ(events->SubscribeMessageEvents(kFirst, nullptr), 0);

  PublishMessage("one");
  const std::vector<Delivery> first = TakeDeliveries();
  ASSERT_EQ(first.size(), 2u);
  EXPECT_EQ(first[0].description, "clients=1");  // The other service answered from inside the callback
  EXPECT_EQ(first[1].subscriber, 0);

  PublishMessage("two");
  EXPECT_EQ(Subscribers(), (std::vector<int>{11, 0, 2}));
}

TEST_F(EventDeliveryTest, ClientsArrivingAndLeavingAreNotified) {
  ASSERT_EQ(events->SubscribeNotificationEvents(&Receive<0, VXT_NotificationEvent>, nullptr), 0);
  VXT_Client other = vxt::test::MakeClient(9, "other_9@there");
  ASSERT_EQ(StartNewInstance(&other, 1, 0, nullptr), 0);
  ASSERT_EQ(Disconnect(9), 0);
  EXPECT_EQ(TakeDescriptions(), (Strings{"Notification size=1304 type=1 client=9 'other_9@there'",
                                         "Notification size=1304 type=2 client=9 'other_9@there'"}));
}

// Subscriptions belong to the process: the last client's departure stops
// the events but keeps the lists, and a new first client starts them again
// without subscribing the handlers twice.
TEST_F(EventDeliveryTest, SubscriptionsLeftAtTheLastDisconnectHearAgainAfterANewStart) {
  ASSERT_EQ(events->SubscribeMessageEvents(kFirst, Data(1)), 0);
  const size_t brokerSubscribers = tc::BrokerSubscriberCount("Message");

  ASSERT_EQ(Disconnect(3), 0);
  EXPECT_EQ(tc::BrokerSubscriberCount("Message"), brokerSubscribers - 1);
  PublishMessage("while nobody is connected");
  EXPECT_TRUE(TakeDeliveries().empty());

  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  ASSERT_EQ(FinishInitialization(), 0);
  EXPECT_EQ(tc::BrokerSubscriberCount("Message"), brokerSubscribers);
  PublishMessage("back");
  EXPECT_EQ(TakeDescriptions(), Strings{"Message size=16 type=2 message='back'"});
}

}  // namespace
