// The OperationReceipt component: tokens, statuses, outcomes and values of
// receipts, and how they end, also while their work runs on a worker.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <functional>
#include <future>
#include <latch>
#include <mutex>
#include <set>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "../../Source/Platform/OperationReceipt/Receipts.h"
#include "Error.h"
#include "OperationReceipt.h"
#include "PlatformTestControl.h"
#include "TargetTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
namespace receipts = voxtrel::platform::receipts;
using receipts::ReceiptOutcome;
using receipts::ReceiptValue;

constexpr uint32_t kPending = 0;
constexpr uint32_t kActive = 1;
constexpr uint32_t kCompleted = 2;
constexpr uint32_t kCanceled = 3;
constexpr uint32_t kFailed = 4;

const OperationReceiptComponent& Receipts() { return vxt::test::Get(&Voxtrel_GetOperationReceipt); }

std::string TokenText(uint64_t token) {
  char text[19];
  std::snprintf(text, sizeof text, "0x%016llx", static_cast<unsigned long long>(token));
  return text;
}

using vxt::test::Posted;
using vxt::test::CallPosting;

uint32_t StatusOf(uint64_t token) {
  uint32_t status = 99;
  EXPECT_EQ(Receipts().GetOperationStatus(token, &status), 0u);
  return status;
}

int32_t ErrorResultOf(uint64_t token) {
  int32_t result = -1;
  EXPECT_EQ(Receipts().GetOperationErrorResult(token, &result), 0u);
  return result;
}

std::string ErrorMessageOf(uint64_t token) {
  char buffer[128] = {};
  uint32_t size = 0;
  EXPECT_EQ(Receipts().GetOperationErrorMessage(token, buffer, sizeof buffer, &size), 0u);
  return buffer;
}

// The value's bytes, and its length in bits.
std::pair<std::vector<uint8_t>, uint64_t> ValueOf(uint64_t token) {
  BitData* value = nullptr;
  EXPECT_EQ(Receipts().GetValue(token, &value), 0u);
  if (value == nullptr) return {};
  std::vector<uint8_t> bytes((value->bitSize + 7) / 8);
  BitData_GetBuffer(value, 0, bytes.data(), bytes.size());
  const uint64_t bitSize = value->bitSize;
  BitData_FreeManaged(value);
  return {bytes, bitSize};
}

// A work that runs until released; `started` counts down when it runs.
struct HeldWork {
  std::latch* started;
  std::shared_future<void> release;
  ReceiptOutcome operator()(std::stop_token) const {
    started->count_down();
    release.wait();
    return ReceiptOutcome::Success(ReceiptValue::Number(0x5a, 8));
  }
};

// A work that waits for its stop request and reports it.
ReceiptOutcome WaitForStop(std::stop_token stop, std::latch& started, std::promise<void>& stopped) {
  started.count_down();
  std::mutex mutex;
  std::condition_variable_any never;
  std::unique_lock lock(mutex);
  never.wait(lock, stop, [] { return false; });
  stopped.set_value();
  return ReceiptOutcome::Canceled();
}

TEST(OperationReceipt, TokensAreUniqueNonZeroAndNeverReused) {
  constexpr int kThreads = 4;
  constexpr int kPerThread = 50;
  std::vector<std::vector<uint64_t>> issued(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &issued] {
      for (int i = 0; i < kPerThread; ++i) {
        switch (i % 4) {
          case 0: issued[t].push_back(tc::StartCompletedReceipt({{1}, 1})); break;
          case 1: issued[t].push_back(tc::StartFailedReceipt(0x1d0001, "lost")); break;
          case 2: issued[t].push_back(tc::StartHeldReceipt()); break;
          default:
            issued[t].push_back(receipts::RunReceipt([](std::stop_token) { return ReceiptOutcome::Success(); }));
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();

  std::set<uint64_t> tokens;
  for (const auto& some : issued) tokens.insert(some.begin(), some.end());
  EXPECT_EQ(tokens.size(), size_t{kThreads * kPerThread});
  EXPECT_EQ(tokens.count(0), 0u);
  for (uint64_t token : tokens) EXPECT_EQ(Receipts().Destroy(token), 0u);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(tokens.count(tc::StartHeldReceipt()), 0u);
}

TEST(OperationReceipt, StatusErrorCodeAndMessageFollowTheOutcome) {
  struct Case {
    const char* name;
    std::function<uint64_t()> start;
    uint32_t status;
    int32_t errorResult;
    std::string message;
  };
  const Case cases[] = {
      {"completed", [] { return tc::StartCompletedReceipt({{7}, 3}); }, kCompleted, 0, ""},
      {"failed", [] { return tc::StartFailedReceipt(0x1d0001, "The probe went away"); }, kFailed, 0x1d0001,
       "The probe went away"},
      {"held", [] { return tc::StartHeldReceipt(); }, kPending, 0, ""},
      {"held, then failed",
       [] {
         const uint64_t token = tc::StartHeldReceipt();
         EXPECT_TRUE(tc::FailHeldReceipt(token, 0x1f0006, "Width"));
         return token;
       },
       kFailed, 0x1f0006, "Width"},
      {"held, then canceled",
       [] {
         const uint64_t token = tc::StartHeldReceipt();
         EXPECT_EQ(Receipts().Cancel(token), 0u);
         EXPECT_FALSE(tc::CompleteHeldReceipt(token, {{1}, 1}));
         return token;
       },
       kCanceled, 0x20008, "Operation canceled"},
      {"completed, then canceled",
       [] {
         const uint64_t token = tc::StartCompletedReceipt({{1}, 1});
         EXPECT_EQ(Receipts().Cancel(token), 0u);
         return token;
       },
       kCompleted, 0, ""},
      {"failed, then completed",
       [] {
         const uint64_t token = tc::StartHeldReceipt();
         EXPECT_TRUE(tc::FailHeldReceipt(token, 0x1d0002, "Gone"));
         EXPECT_FALSE(tc::CompleteHeldReceipt(token, {{1}, 1}));
         return token;
       },
       kFailed, 0x1d0002, "Gone"},
      {"work that throws",
       [] {
         const uint64_t token = receipts::RunReceipt([](std::stop_token) -> ReceiptOutcome { throw 42; });
         EXPECT_EQ(Receipts().Flush(token), 0u);
         return token;
       },
       kFailed, 0x20009, "The operation's work threw an exception"},
      {"started without a work", [] { return receipts::RunReceipt(nullptr); }, kFailed, 0x20000,
       "The operation was started without its work"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const uint64_t token = c.start();
    EXPECT_EQ(StatusOf(token), c.status);
    EXPECT_EQ(ErrorResultOf(token), c.errorResult);
    EXPECT_EQ(ErrorMessageOf(token), c.message);
  }
}

TEST(OperationReceipt, ErrorMessageIsCopiedWithinTheCallersBuffer) {
  const uint64_t token = tc::StartFailedReceipt(0x1d0001, "probe gone");  // 11 bytes with its zero
  const std::string tooSmall = "The error message of operation token " + TokenText(token) + " needs 11 bytes";
  struct Case {
    bool buffer;
    uint32_t maxBufferSize;
    bool size;
    uint32_t answerCode;
    std::string answerMessage;
    std::string text;  // What the buffer holds; "zz" when untouched
    uint32_t reportedSize;
  };
  const std::vector<Case> cases = {
      {true, 32, true, 0, "", "probe gone", 11},
      {true, 11, true, 0, "", "probe gone", 11},
      {true, 11, false, 0, "", "probe gone", 77},
      {false, 32, true, 0, "", "zz", 11},
      {true, 5, true, 0x2000b, tooSmall, "prob", 11},
      {true, 1, true, 0x2000b, tooSmall, "", 11},
      {true, 0, true, 0x2000b, tooSmall, "zz", 11},
      {false, 32, false, 0x20000,
       "OperationReceipt.GetOperationErrorMessage: buffer and actualStringSize are both null",
       "zz", 77},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.buffer << " " << c.maxBufferSize << " " << c.size);
    char buffer[40];
    std::fill(std::begin(buffer), std::end(buffer), 'z');
    buffer[2] = '\0';
    uint32_t size = 77;
    const Posted answer = CallPosting([&] {
      return Receipts().GetOperationErrorMessage(token, c.buffer ? buffer : nullptr, c.maxBufferSize,
                                                 c.size ? &size : nullptr);
    });
    EXPECT_EQ(answer, (Posted{c.answerCode, c.answerMessage}));
    EXPECT_EQ(std::string(buffer), c.text);
    EXPECT_EQ(size, c.reportedSize);
    // Nothing is written at or behind maxBufferSize.
    if (c.maxBufferSize > 2 && c.maxBufferSize < sizeof buffer) {
      EXPECT_EQ(buffer[c.maxBufferSize], 'z');
    }
  }
}

TEST(OperationReceipt, FixedWidthValuesAreWidenedOrCutWhenTheSetBitsFit) {
  constexpr uint64_t kUntouched = 0xeeeeeeeeeeeeeeee;
  // The value at each width, or the code when it does not fit.
  struct Width {
    uint32_t code;
    uint64_t value;
  };
  struct Case {
    tc::ReceiptBits bits;
    Width u8, u16, u32, u64;
  };
  const Width tooWide{0x20001, kUntouched};
  const Case cases[] = {
      {{{}, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
      {{{0xab}, 8}, {0, 0xab}, {0, 0xab}, {0, 0xab}, {0, 0xab}},
      {{{0xff, 0x01}, 9}, tooWide, {0, 0x1ff}, {0, 0x1ff}, {0, 0x1ff}},
      {{{0x34, 0x12, 0, 0, 0, 0, 0, 0, 0}, 72}, tooWide, {0, 0x1234}, {0, 0x1234}, {0, 0x1234}},
      {{{1, 0, 0, 0, 0, 0, 0, 0, 0x40}, 72}, tooWide, tooWide, tooWide, tooWide},
      {{{0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}, 64}, tooWide, tooWide, tooWide, {0, ~0ull}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "bitSize " << c.bits.bitSize);
    const uint64_t token = tc::StartCompletedReceipt(c.bits);
    auto check = [&](const Width& expected, auto get, auto out) {
      out = static_cast<decltype(out)>(kUntouched);
      const Posted answer = CallPosting([&] { return get(token, &out); });
      EXPECT_EQ(answer.code, expected.code);
      EXPECT_EQ(out, static_cast<decltype(out)>(expected.value));
      if (expected.code != 0) {
        EXPECT_NE(answer.message.find("does not fit in"), std::string::npos);
      }
    };
    check(c.u8, Receipts().GetValueAsUInt8, uint8_t{});
    check(c.u16, Receipts().GetValueAsUInt16, uint16_t{});
    check(c.u32, Receipts().GetValueAsUInt32, uint32_t{});
    check(c.u64, Receipts().GetValueAsUInt64, uint64_t{});
  }
}

TEST(OperationReceipt, OnlyACompletedOperationHasAValue) {
  struct Case {
    std::function<uint64_t()> start;
    uint32_t code;
    std::string ending;
  };
  const Case cases[] = {
      {[] { return tc::StartHeldReceipt(); }, 0x20013, " has not ended"},
      {[] { return tc::StartFailedReceipt(0x1d0001, "x"); }, 0x20004, " failed"},
      {[] {
         const uint64_t token = tc::StartHeldReceipt();
         Receipts().Cancel(token);
         return token;
       },
       0x20004, " was canceled"},
  };
  for (const Case& c : cases) {
    const uint64_t token = c.start();
    SCOPED_TRACE(c.ending);
    const Posted expected{c.code, "The operation of token " + TokenText(token) + c.ending};
    BitData* value = nullptr;
    EXPECT_EQ(CallPosting([&] { return Receipts().GetValue(token, &value); }), expected);
    EXPECT_EQ(value, nullptr);
    uint32_t number = 5;
    EXPECT_EQ(CallPosting([&] { return Receipts().GetValueAsUInt32(token, &number); }), expected);
    EXPECT_EQ(number, 5u);
  }
}

TEST(OperationReceipt, UnknownAndDestroyedTokensAreRefusedByEveryOperation) {
  const uint64_t destroyed = tc::StartCompletedReceipt({{1}, 1});
  ASSERT_EQ(Receipts().Destroy(destroyed), 0u);
  const uint64_t destroyedWhilePending = tc::StartHeldReceipt();
  ASSERT_EQ(Receipts().Destroy(destroyedWhilePending), 0u);
  EXPECT_FALSE(tc::CompleteHeldReceipt(destroyedWhilePending, {{1}, 1}));

  // The client-facing receipt tests pin the refusal of the value and message getters.
  int32_t result = 0;
  uint32_t status = 0;
  uint64_t u64 = 0;
  const std::function<uint32_t(uint64_t)> operations[] = {
      [](uint64_t t) { return Receipts().Destroy(t); },
      [](uint64_t t) { return Receipts().Flush(t); },
      [](uint64_t t) { return Receipts().Cancel(t); },
      [&](uint64_t t) { return Receipts().GetOperationErrorResult(t, &result); },
      [&](uint64_t t) { return Receipts().GetOperationStatus(t, &status); },
      [&](uint64_t t) { return Receipts().GetValueAsUInt64(t, &u64); },
  };
  for (uint64_t token : {uint64_t{0}, destroyed, destroyedWhilePending, destroyedWhilePending + 1000, ~uint64_t{0}}) {
    for (size_t i = 0; i < std::size(operations); ++i) {
      SCOPED_TRACE(testing::Message() << "token " << token << ", operation " << i);
      EXPECT_EQ(CallPosting([&] { return operations[i](token); }),
                (Posted{0x2000e, "Unknown operation token " + TokenText(token)}));
    }
  }
  EXPECT_EQ(result + status + u64, 0u);
}

TEST(OperationReceipt, FlushWaitsUntilTheOperationHasEnded) {
  struct Case {
    const char* name;
    std::function<uint64_t()> start;
    std::function<void(uint64_t)> end;
    uint32_t status;
  };
  const Case cases[] = {
      {"held, completed", [] { return tc::StartHeldReceipt(); },
       [](uint64_t t) { EXPECT_TRUE(tc::CompleteHeldReceipt(t, {{0x5a}, 8})); }, kCompleted},
      {"gated, opened", [] { return tc::StartGatedReceipt(); },
       [](uint64_t t) { EXPECT_TRUE(tc::OpenReceiptGate(t, {{0x5a}, 8})); }, kCompleted},
      {"gated, canceled", [] { return tc::StartGatedReceipt(true); },
       [](uint64_t t) { EXPECT_EQ(Receipts().Cancel(t), 0u); }, kCanceled},
      {"delayed", [] { return tc::StartDelayedReceipt(5, {{0x5a}, 8}); }, [](uint64_t) {}, kCompleted},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const uint64_t token = c.start();
    std::promise<std::pair<uint32_t, uint32_t>> flushed;  // Flush's code, then the status it left
    std::thread flusher([&] {
      const uint32_t code = Receipts().Flush(token);
      flushed.set_value({code, StatusOf(token)});
    });
    c.end(token);
    flusher.join();
    EXPECT_EQ(flushed.get_future().get(), (std::pair<uint32_t, uint32_t>{0, c.status}));
    if (c.status == kCompleted) {
      EXPECT_EQ(ValueOf(token).first, std::vector<uint8_t>{0x5a});
    }
    // An ended operation flushes at once.
    EXPECT_EQ(Receipts().Flush(token), 0u);
  }
}

TEST(OperationReceipt, ACanceledPendingOperationNeverRuns) {
  tc::HoldReceiptWorkers(true);
  std::atomic<bool> ran = false;
  const uint64_t pending = receipts::RunReceipt([&ran](std::stop_token) {
    ran = true;
    return ReceiptOutcome::Success();
  });
  const uint64_t next = receipts::RunReceipt([](std::stop_token) { return ReceiptOutcome::Success(); });
  EXPECT_EQ(StatusOf(pending), kPending);
  EXPECT_EQ(Receipts().Cancel(pending), 0u);
  EXPECT_EQ(StatusOf(pending), kCanceled);
  EXPECT_EQ(ErrorResultOf(pending), 0x20008);
  EXPECT_EQ(StatusOf(next), kPending);

  tc::HoldReceiptWorkers(false);
  // Works are taken in order, so the canceled one is taken before the next.
  EXPECT_EQ(Receipts().Flush(next), 0u);
  EXPECT_EQ(StatusOf(next), kCompleted);
  EXPECT_FALSE(ran);
  EXPECT_EQ(StatusOf(pending), kCanceled);
}

TEST(OperationReceipt, ARunningOperationDecidesWhatACancelDoes) {
  // One that stops on request ends canceled.
  std::latch started(1);
  std::promise<void> stopped;
  const uint64_t stopping =
      receipts::RunReceipt([&](std::stop_token stop) { return WaitForStop(stop, started, stopped); });
  started.wait();
  EXPECT_EQ(StatusOf(stopping), kActive);
  EXPECT_EQ(Receipts().Cancel(stopping), 0u);
  EXPECT_EQ(Receipts().Flush(stopping), 0u);
  EXPECT_EQ(StatusOf(stopping), kCanceled);

  // One that does not runs on and completes.
  std::latch startedToo(1);
  std::promise<void> release;
  const uint64_t ignoring = receipts::RunReceipt(HeldWork{&startedToo, release.get_future().share()});
  startedToo.wait();
  EXPECT_EQ(Receipts().Cancel(ignoring), 0u);
  EXPECT_EQ(StatusOf(ignoring), kActive);
  release.set_value();
  EXPECT_EQ(Receipts().Flush(ignoring), 0u);
  EXPECT_EQ(StatusOf(ignoring), kCompleted);
  EXPECT_EQ(ValueOf(ignoring).first, std::vector<uint8_t>{0x5a});
}

TEST(OperationReceipt, DestroyStopsARunningOperationAndDropsItsOutcome) {
  std::latch started(1);
  std::promise<void> stopped;
  const uint64_t token = receipts::RunReceipt([&](std::stop_token stop) { return WaitForStop(stop, started, stopped); });
  started.wait();
  EXPECT_EQ(Receipts().Destroy(token), 0u);
  stopped.get_future().wait();
  uint32_t status = 0;
  EXPECT_EQ(Receipts().GetOperationStatus(token, &status), 0x2000eu);
  EXPECT_EQ(Receipts().Destroy(token), 0x2000eu);
}

// However many works wait, a later one still runs: a fixed number of
// waiting lock requests must not keep every other receipt pending.
TEST(OperationReceipt, WaitingWorksNeverHoldUpALaterOne) {
  constexpr int kWaiting = 40;
  std::vector<uint64_t> waiting;
  for (int i = 0; i < kWaiting; ++i) waiting.push_back(tc::StartGatedReceipt());
  const uint64_t later = tc::StartDelayedReceipt(1, {{0x5a}, 8});

  // Polled, not flushed, so that a pool that holds the work up fails the
  // test instead of hanging it.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (StatusOf(later) != kCompleted && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_EQ(StatusOf(later), kCompleted);

  for (const uint64_t token : waiting) {
    EXPECT_EQ(StatusOf(token), kActive);
    EXPECT_EQ(Receipts().Cancel(token), 0u);
    EXPECT_EQ(Receipts().Flush(token), 0u);
    EXPECT_EQ(StatusOf(token), kCanceled);
    EXPECT_EQ(Receipts().Destroy(token), 0u);
  }
  EXPECT_EQ(Receipts().Destroy(later), 0u);
}

TEST(OperationReceipt, ValuesAreCopiedWhenMade) {
  std::vector<uint8_t> bytes{0x11, 0x22};
  BitData* source = BitData_CreateManagedFromUInt64(12, 0xabc);
  const uint64_t fromBytes = receipts::FinishedReceipt(ReceiptOutcome::Success(ReceiptValue::Bytes(bytes.data(), 16)));
  const uint64_t fromVector = receipts::FinishedReceipt(ReceiptOutcome::Success(ReceiptValue::Copy(*source)));
  bytes.assign(2, 0xff);
  BitData_FreeManaged(source);
  EXPECT_EQ(ValueOf(fromBytes), (std::pair<std::vector<uint8_t>, uint64_t>{{0x11, 0x22}, 16}));
  EXPECT_EQ(ValueOf(fromVector), (std::pair<std::vector<uint8_t>, uint64_t>{{0xbc, 0x0a}, 12}));

  // A value handed on twice is, the second time, no value at all.
  ReceiptValue value = ReceiptValue::Number(3, 2);
  const uint64_t first = receipts::FinishedReceipt(ReceiptOutcome::Success(std::move(value)));
  const uint64_t second = receipts::FinishedReceipt(ReceiptOutcome::Success(std::move(value)));  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(ValueOf(first), (std::pair<std::vector<uint8_t>, uint64_t>{{3}, 2}));
  EXPECT_EQ(ValueOf(second).second, 0u);
}

}  // namespace
