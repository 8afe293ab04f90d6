// Recording and steering component operations through test control.
#include <atomic>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Common.h"
#include "Error.h"
#include "EventBroker.h"
#include "PlatformTestControl.h"
#include "TargetTestSupport.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using Strings = std::vector<std::string>;

const CommonComponent& Common() { return vxt::test::Get(&Voxtrel_GetCommon); }

// The operation steered in these tests: it has an out argument, so that
// whether its own work ran shows.
constexpr char kCounted[] = "Common.GetNumConnectedClients";
constexpr uint32_t kUntouched = 0xDEADBEEF;

class ComponentCallTest : public vxt::test::PlatformTest {
 protected:
  const CommonComponent& common_ = Common();
};

TEST_F(ComponentCallTest, RecordsOperationsWithTheirArgumentsInCallOrder) {
  tc::StartRecordingCalls();
  uint32_t count = 0;
  bool isLocal = false;
  common_.GetNumConnectedClients(&count);
  common_.IsClientLocal(42, &isLocal);
  common_.SetRunName("run", true);
  common_.GetNumConnectedClients(&count);

  EXPECT_EQ(tc::RecordedCalls(), (std::vector<tc::RecordedCall>{
                                     {kCounted, ""},
                                     {"Common.IsClientLocal", "clientId=42"},
                                     {"Common.SetRunName", "name=\"run\", flag=1"},
                                     {kCounted, ""},
                                 }));
  EXPECT_EQ(tc::RecordedOperations(), (Strings{kCounted, "Common.IsClientLocal", "Common.SetRunName", kCounted}));
  EXPECT_EQ(tc::CallCount(kCounted), 2u);
  EXPECT_EQ(tc::CallCount("Common.FlushLogs"), 0u);
}

// What a steered call returned and what it posted into the caller's context.
struct Outcome {
  uint32_t returned = 0;
  uint32_t postedCode = 0;
  std::string postedText;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << "{returned 0x" << std::hex << outcome.returned << ", posted 0x" << outcome.postedCode << std::dec
             << " \"" << outcome.postedText << "\"}";
}

Outcome CallCounted(const CommonComponent& common, uint32_t& count) {
  const Voxtrel_ErrorContext context = Voxtrel_ErrorEnterContex(1);
  Outcome outcome;
  outcome.returned = common.GetNumConnectedClients(&count);
  outcome.postedCode = Voxtrel_ErrorGetErrorCode(context);
  uint32_t size = 0;
  Voxtrel_ErrorGetErrorMessageSize(context, &size);
  if (size > 0) {
    std::string text(size, '\0');
    Voxtrel_ErrorGetErrorMessage(context, text.data(), size);
    outcome.postedText = text.c_str();
  }
  Voxtrel_ErrorExitContex(context);
  return outcome;
}

// A behaviour replaces the operation's work: the out argument stays as it was.
TEST_F(ComponentCallTest, BehaviourReturnsItsCodeAndPostsItsText) {
  struct Case {
    const char* name;
    tc::Behaviour behaviour;
    Outcome expected;
  };
  const Case cases[] = {
      {"code only", {0x20002, ""}, {0x20002, 0, ""}},
      {"text posted with the returned code", {0x20002, "refused"}, {0x20002, 0x20002, "refused"}},
      {"text posted with a code of its own", {0x20002, "refused", 0x20004}, {0x20002, 0x20004, "refused"}},
      {"success without the work", {0, ""}, {0, 0, ""}},
  };
  for (const Case& steered : cases) {
    tc::SetBehaviour(kCounted, steered.behaviour);
    uint32_t count = kUntouched;
    EXPECT_EQ(CallCounted(common_, count), steered.expected) << steered.name;
    EXPECT_EQ(count, kUntouched) << steered.name;
  }
  tc::ClearBehaviour(kCounted);
  uint32_t count = kUntouched;
  EXPECT_EQ(CallCounted(common_, count), Outcome{});
  EXPECT_NE(count, kUntouched);
}

TEST_F(ComponentCallTest, ThrowingBehaviourPostsThenThrowsItsCode) {
  tc::SetBehaviour(kCounted, {0x20003, "about to throw", 0, true});
  const Voxtrel_ErrorContext context = Voxtrel_ErrorEnterContex(1);
  uint32_t count = kUntouched;
  try {
    common_.GetNumConnectedClients(&count);
    ADD_FAILURE() << "no exception";
  } catch (const Voxtrel_Error_Exception& thrown) {
    EXPECT_EQ(thrown.code, 0x20003u);
  }
  EXPECT_EQ(Voxtrel_ErrorGetErrorCode(context), 0x20003u);
  Voxtrel_ErrorExitContex(context);
  EXPECT_EQ(count, kUntouched);
}

// Threads race for a limited behaviour: exactly its number of calls are
// steered, and every call is recorded once.
TEST_F(ComponentCallTest, LimitedBehaviourIsSharedExactlyAcrossThreads) {
  constexpr int kThreads = 4;
  constexpr int kCallsEach = 500;
  constexpr uint32_t kSteered = 700;
  tc::StartRecordingCalls();
  tc::SetBehaviour(kCounted, {0x20002, "", 0, false, kSteered});
  std::atomic<uint32_t> refused{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread)
    threads.emplace_back([&] {
      for (int call = 0; call < kCallsEach; ++call) {
        uint32_t count = 0;
        if (common_.GetNumConnectedClients(&count) == 0x20002) ++refused;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(refused.load(), kSteered);
  EXPECT_EQ(tc::CallCount(kCounted), static_cast<size_t>(kThreads * kCallsEach));
}

}  // namespace
