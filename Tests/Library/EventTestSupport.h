// Helpers of the Event service tests: a connected client, and subscribers
// that write down what they receive.
//
// A record is valid only during its callback, so a subscriber describes it
// there as one line of text, which the tests compare whole.
#pragma once

#include <cstdint>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace vxt::test {

inline std::string Text(const char* text) { return text == nullptr ? "null" : "'" + std::string(text) + "'"; }
inline void* Data(uintptr_t value) { return reinterpret_cast<void*>(value); }

// Its parts streamed one after another.
template <class... Parts>
std::string Line(const Parts&... parts) {
  std::ostringstream out;
  (out << ... << parts);
  return out.str();
}

inline std::string Describe(const VXT_TargetEvent& e) {
  return Line("Target size=", e.structureSize, " type=", e.eventType, " state=", Text(e.currentState),
              " device=", e.deviceId, " feature=", Text(e.featureText), "/", e.featureTextCount,
              " domain=", Text(e.powerDomain));
}
inline std::string Describe(const VXT_MessageEvent& e) {
  return Line("Message size=", e.structureSize, " type=", e.messageType, " message=", Text(e.message));
}
inline std::string Describe(const VXT_RunControlEvent& e) {
  return Line("RunControl size=", e.structureSize, " type=", e.eventType, " device=", e.deviceId,
              " address=", e.address, " breakpoint=", e.breakpointId, " name=", Text(e.breakName),
              " breakType=", Text(e.breakType), " subType=", Text(e.breakSubType), " details=", Text(e.details),
              " extra=", e.extraValue, "/", e.extraCount);
}
inline std::string Describe(const VXT_ReconfigurationEvent& e) {
  return Line("Reconfiguration size=", e.structureSize, " type=", e.eventType, " changed=", e.devicesHaveChanged);
}
inline std::string Describe(const VXT_InterfacePortErrorEvent& e) {
  return Line("PortError size=", e.structureSize, " type=", e.eventType, " port=", e.interfacePortId,
              " error=", e.errorValue);
}
inline std::string Describe(const VXT_InterfacePortStateChangeEvent& e) {
  return Line("PortState size=", e.structureSize, " type=", e.eventType, " port=", e.interfacePortId,
              " states=", e.firstStateValue, "/", e.secondStateValue);
}
inline std::string Describe(const VXT_NotificationEvent& e) {
  return Line("Notification size=", e.structureSize, " type=", e.eventType, " client=", e.client.clientId, " ",
              Text(e.client.identifier));
}
inline std::string Describe(const VXT_SystemStallEvent& e) {
  return Line("SystemStall size=", e.structureSize, " type=", e.eventType, " name=", Text(e.stallName),
              " value=", e.stallValue);
}
inline std::string Describe(const VXT_StatePortEvent& e) {
  return Line("StatePort size=", e.structureSize, " type=", e.eventType, " device=", e.deviceId,
              " port=", Text(e.statePortName), " value=", e.portValue, " first=", e.firstValue,
              " second=", e.secondValue);
}

// One call of a subscriber.
struct Delivery {
  int subscriber;
  void* userData;
  const void* record;
  std::string description;

  friend bool operator==(const Delivery&, const Delivery&) = default;
};

class Deliveries {
 public:
  static Deliveries& All() {
    static Deliveries all;
    return all;
  }
  void Add(Delivery delivery) {
    std::lock_guard lock(mutex_);
    deliveries_.push_back(std::move(delivery));
  }
  std::vector<Delivery> Taken() {
    std::lock_guard lock(mutex_);
    return std::exchange(deliveries_, {});
  }
  // Descriptions only, in order.
  std::vector<std::string> TakenDescriptions() {
    std::vector<std::string> descriptions;
    for (Delivery& delivery : Taken()) descriptions.push_back(std::move(delivery.description));
    return descriptions;
  }

 private:
  std::mutex mutex_;
  std::vector<Delivery> deliveries_;
};

// Subscriber number N of any record type: writes the delivery down.
template <int N, class Record>
void Receive(const Record* record, void* userData) {
  Deliveries::All().Add({N, userData, record, Describe(*record)});
}
template <int N>
void ReceiveUndefined(const void* record, void* userData) {
  Deliveries::All().Add({N, userData, record, "undefined"});
}

inline IInternalService_Event& EventService() {
  void* service = nullptr;
  GetService(nullptr, VXT_Service_Event, &service);
  return *static_cast<IInternalService_Event*>(service);
}

// Client 3 connected and the target initialized; every level captured.
class EventTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    client = MakeClient(3, "tool_3@here");
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    ASSERT_EQ(FinishInitialization(), 0);
    events = &EventService();
    Deliveries::All().Taken();
    ClearTrace();
  }
  void TearDown() override {
    UnsubscribeAll();
    Disconnect(3);
    voxtrel::testing::HoldRunControlEvents(false);
    Deliveries::All().Taken();
    PlatformTest::TearDown();
  }

  // Subscriptions outlive clients, so every test takes its own back.
  void UnsubscribeAll() { UnsubscribeNumbered(std::make_integer_sequence<int, 4>{}); }

  template <int... N>
  void UnsubscribeNumbered(std::integer_sequence<int, N...>) {
    (UnsubscribeEverywhere<N>(), ...);
  }
  template <int N>
  void UnsubscribeEverywhere() {
    IInternalService_Event& e = EventService();
    e.UnsubscribeTargetEvents(&Receive<N, VXT_TargetEvent>);
    e.UnsubscribeMessageEvents(&Receive<N, VXT_MessageEvent>);
    e.UnsubscribeRunControlEvents(&Receive<N, VXT_RunControlEvent>);
    e.UnsubscribeBreakStateChangeEvents(&ReceiveUndefined<N>);
    e.UnsubscribeReconfigurationEvents(&Receive<N, VXT_ReconfigurationEvent>);
    e.UnsubscribeInterfacePortErrorEvents(&Receive<N, VXT_InterfacePortErrorEvent>);
    e.UnsubscribeInterfacePortStateChangeEvents(&Receive<N, VXT_InterfacePortStateChangeEvent>);
    e.UnsubscribeInterfacePortServiceReconfigEvents(&ReceiveUndefined<N>);
    e.UnsubscribeNotificationEvents(&Receive<N, VXT_NotificationEvent>);
    e.UnsubscribeSystemStallEvents(&Receive<N, VXT_SystemStallEvent>);
    e.UnsubscribeStatePortEvents(&Receive<N, VXT_StatePortEvent>);
  }

  // Subscribes subscriber N to every list with `userData`.
  template <int N>
  void SubscribeEverywhere(void* userData) {
    ASSERT_EQ(events->SubscribeTargetEvents(&Receive<N, VXT_TargetEvent>, userData), 0);
    ASSERT_EQ(events->SubscribeMessageEvents(&Receive<N, VXT_MessageEvent>, userData), 0);
    ASSERT_EQ(events->SubscribeRunControlEvents(&Receive<N, VXT_RunControlEvent>, userData), 0);
    ASSERT_EQ(events->SubscribeBreakStateChangeEvents(&ReceiveUndefined<N>, userData), 0);
    ASSERT_EQ(events->SubscribeReconfigurationEvents(&Receive<N, VXT_ReconfigurationEvent>, userData), 0);
    ASSERT_EQ(events->SubscribeInterfacePortErrorEvents(&Receive<N, VXT_InterfacePortErrorEvent>, userData), 0);
    ASSERT_EQ(events->SubscribeInterfacePortStateChangeEvents(&Receive<N, VXT_InterfacePortStateChangeEvent>, userData),
              0);
    ASSERT_EQ(events->SubscribeInterfacePortServiceReconfigEvents(&ReceiveUndefined<N>, userData), 0);
    ASSERT_EQ(events->SubscribeNotificationEvents(&Receive<N, VXT_NotificationEvent>, userData), 0);
    ASSERT_EQ(events->SubscribeSystemStallEvents(&Receive<N, VXT_SystemStallEvent>, userData), 0);
    ASSERT_EQ(events->SubscribeStatePortEvents(&Receive<N, VXT_StatePortEvent>, userData), 0);
  }

  static std::vector<Delivery> TakeDeliveries() { return Deliveries::All().Taken(); }
  static std::vector<std::string> TakeDescriptions() { return Deliveries::All().TakenDescriptions(); }

  // The library's captured lines with their level, "<level> <text>".
  static std::vector<std::string> LeveledTrace() {
    std::vector<std::string> lines;
    for (const voxtrel::testing::TraceLine& line : voxtrel::testing::CapturedTrace())
      if (line.stream == 1) lines.push_back(std::to_string(line.level) + " " + line.text);
    return lines;
  }

  VXT_Client client{};
  IInternalService_Event* events = nullptr;
};

}  // namespace vxt::test
