// The start and stop of event reception: which broker types the Event
// service's handlers listen to, and what a broker out of reach costs.
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "EventBroker.h"
#include "InProc_Event.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace vxt {
namespace {

namespace tc = voxtrel::testing;
using Strings = std::vector<std::string>;

struct BrokerHandler {
  std::string typeName;
  EventBrokerHandler handler;
};

const BrokerHandler kHandlers[] = {
    {"PowerDomain", &TargetPowerDomainEventHandler},   {"TargetPower", &TargetPowerEventHandler},
    {"TargetReset", &TargetResetEventHandler},         {"TargetFeature", &TargetFeatureEventHandler},
    {"Reconfiguration", &ReconfigurationEventHandler}, {"Message", &MessageEventHandler},
    {"RunControl", &RunControlEventHandler},           {"Client", &ClientEventHandler},
    {"SystemStall", &SystemStallEventHandler},         {"StatePort", &StatePortEventHandler},
};

class EventReceptionTest : public test::PlatformTest {
 protected:
  static std::vector<size_t> SubscriberCounts() {
    std::vector<size_t> counts;
    for (const BrokerHandler& entry : kHandlers) counts.push_back(tc::BrokerSubscriberCount(entry.typeName));
    return counts;
  }

  // The broker calls expected for every handler, in order: `operation` with
  // the type, the handler and then `moreArguments`.
  static std::vector<tc::RecordedCall> CallsForEveryHandler(const std::string& operation,
                                                            const std::string& moreArguments) {
    std::vector<tc::RecordedCall> calls;
    for (const BrokerHandler& entry : kHandlers) {
      std::ostringstream arguments;
      arguments << "typeName=\"" << entry.typeName << "\", handler=" << reinterpret_cast<const void*>(entry.handler)
                << moreArguments;
      calls.push_back({operation, arguments.str()});
    }
    return calls;
  }

  static std::vector<tc::RecordedCall> BrokerCalls() {
    std::vector<tc::RecordedCall> calls = tc::RecordedCalls();
    std::erase_if(calls, [](const tc::RecordedCall& call) { return !call.operation.starts_with("EventBroker."); });
    return calls;
  }

  static Strings LeveledTrace() {
    Strings lines;
    for (const tc::TraceLine& line : tc::CapturedTrace()) lines.push_back(std::to_string(line.level) + " " + line.text);
    return lines;
  }
};

TEST_F(EventReceptionTest, StartSubscribesTheTenHandlersAndStopTakesThemBack) {
  const std::vector<size_t> before = SubscriberCounts();
  tc::StartRecordingCalls();
  EXPECT_EQ(InProc_Event::Instance().Initialize(), 0u);
  EXPECT_EQ(BrokerCalls(), CallsForEveryHandler("EventBroker.SubscribeWithMode",
                                                ", mode=2, userData=0, subscriberName=\"InProc_Event\""));
  std::vector<size_t> expected = before;
  for (size_t& count : expected) ++count;
  EXPECT_EQ(SubscriberCounts(), expected);

  tc::StartRecordingCalls();
  EXPECT_EQ(InProc_Event::Instance().Uninitialize(), 0u);
  EXPECT_EQ(BrokerCalls(), CallsForEveryHandler("EventBroker.Unsubscribe", ", userData=0"));
  EXPECT_EQ(SubscriberCounts(), before);
  EXPECT_TRUE(LeveledTrace().empty());
}

// A broker out of reach is logged and the start or stop goes on: it
// returns 0, and the instance simply hears no events.
TEST_F(EventReceptionTest, ABrokerOutOfReachCostsAWarning) {
  const std::string initialize = "3 InProc_Event initialization is unable to get the EventBroker in order ";
  const std::string uninitialize = "3 InProc_Event uninitialize is unable to get the EventBroker in order ";
  struct Case {
    std::string name;
    std::string postText;  // The getter fails with 0x20005, posting this
    Strings initializeTrace;
    Strings uninitializeTrace;
  };
  const std::vector<Case> cases = {
      {"getter posts its reason",
       "no broker here",
       {initialize + "register callbacks for getting events. no broker here",
        initialize + "to register callbacks for getting events."},
       {uninitialize + "unregister callbacks for getting events. no broker here",
        uninitialize + "to unregister callbacks for getting events."}},
      // Nothing in the context: only the line for the missing table.
      {"getter fails silently",
       "",
       {initialize + "to register callbacks for getting events."},
       {uninitialize + "to unregister callbacks for getting events."}},
  };
  const std::vector<size_t> before = SubscriberCounts();
  for (const Case& failure : cases) {
    SCOPED_TRACE(failure.name);
    tc::SetBehaviour("Voxtrel_GetEventBroker", {.returnCode = 0x20005, .postText = failure.postText});
    tc::ClearCapturedTrace();
    EXPECT_EQ(InProc_Event::Instance().Initialize(), 0u);
    EXPECT_EQ(LeveledTrace(), failure.initializeTrace);
    EXPECT_EQ(SubscriberCounts(), before);

    tc::ClearCapturedTrace();
    EXPECT_EQ(InProc_Event::Instance().Uninitialize(), 0u);
    EXPECT_EQ(LeveledTrace(), failure.uninitializeTrace);
  }
}

// The lines are warnings: with level 3 off there is nothing to render.
TEST_F(EventReceptionTest, WarningsFollowTheLogLevel) {
  tc::FailWith("Voxtrel_GetEventBroker", 0x20005);
  tc::SetLogLevel(4);
  EXPECT_EQ(InProc_Event::Instance().Initialize(), 0u);
  EXPECT_EQ(InProc_Event::Instance().Uninitialize(), 0u);
  EXPECT_TRUE(LeveledTrace().empty());
}

}  // namespace
}  // namespace vxt
