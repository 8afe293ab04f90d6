// Receipts followed and ended from several threads while their work
// completes on the platform's workers.
#include <atomic>
#include <barrier>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::MakeClient;

class OperationReceiptConcurrencyTest : public vxt::test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    void* service = nullptr;
    ASSERT_EQ(GetService(nullptr, VXT_Service_OperationReceipt, &service), 0);
    receipts = static_cast<IInternalService_OperationReceipt*>(service);
  }
  void TearDown() override {
    Disconnect(client.clientId);
    PlatformTest::TearDown();
  }

  // Runs `work(threadIndex)` on `count` threads that start together.
  template <class Work>
  static void OnThreads(int count, Work work) {
    std::barrier start(count);
    std::vector<std::thread> threads;
    for (int t = 0; t < count; ++t) {
      threads.emplace_back([&, t] {
        start.arrive_and_wait();
        work(t);
      });
    }
    for (auto& thread : threads) thread.join();
  }

  VXT_Client client = MakeClient(3, "tool_3@here");
  IInternalService_OperationReceipt* receipts = nullptr;
};

TEST_F(OperationReceiptConcurrencyTest, FlushWaitsForWorkThatCompletesInTheBackground) {
  constexpr int kTokens = 24;
  constexpr int kReaders = 3;
  std::vector<uint64_t> tokens;
  for (int i = 0; i < kTokens; ++i) tokens.push_back(tc::StartGatedReceipt());

  std::atomic<int> wrong = 0;
  // Readers flush every token and read its value; one more thread opens the
  // gates meanwhile, each with a value of its own.
  OnThreads(kReaders + 1, [&](int t) {
    if (t == kReaders) {
      for (int i = 0; i < kTokens; ++i) {
        if (!tc::OpenReceiptGate(tokens[i], {{static_cast<uint8_t>(i), 0x80}, 16})) ++wrong;
      }
      return;
    }
    for (int i = 0; i < kTokens; ++i) {
      uint16_t value = 0;
      OperationStatus status{};
      if (receipts->Flush(tokens[i]) != 0) ++wrong;
      if (receipts->GetOperationStatus(tokens[i], &status) != 0 || status != VXT_OperationStatus_Completed) ++wrong;
      if (receipts->GetValueAsUInt16(tokens[i], &value) != 0 || value != (0x8000 | i)) ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(receipts->DestroyMany(tokens.data(), kTokens), 0);
}

// Cancels, flushes and destroys race with the work and with each other:
// one destroy ends the token, and every refused one leaves its own thread
// the refusal's text.
TEST_F(OperationReceiptConcurrencyTest, CancelFlushAndDestroyRaceWithTheWork) {
  constexpr int kThreads = 6;
  constexpr int kRounds = 40;
  for (int round = 0; round < kRounds; ++round) {
    // Pending, about to run, running, held or done, as the workers happen to be.
    const uint64_t tokens[] = {tc::StartDelayedReceipt(round % 3, {{1}, 8}), tc::StartGatedReceipt(),
                               tc::StartHeldReceipt(), tc::StartCompletedReceipt({{1}, 1})};
    const uint64_t token = tokens[round % 4];
    for (uint64_t other : tokens) {
      if (other != token) {
        EXPECT_EQ(receipts->Destroy(other), 0);
      }
    }
    std::atomic<int> destroyed = 0;
    std::atomic<int> unexpected = 0;
    auto expectOkOrGone = [&](VXT_Result result) {
      if (result != 0 && result != VXT_E_INVALID_HANDLE) ++unexpected;
    };
    OnThreads(kThreads, [&](int t) {
      OperationStatus status{};
      if (t == 0) expectOkOrGone(receipts->Cancel(token));
      if (t == 1) expectOkOrGone(receipts->Flush(token));
      if (t == 2) expectOkOrGone(receipts->GetOperationStatus(token, &status));
      if (t < 2) return;
      if (receipts->Destroy(token) == 0)
        ++destroyed;
      else if (std::string(GetLastErrorMessage()).rfind("Unknown operation token", 0) != 0)
        ++unexpected;
      if (t == 3) expectOkOrGone(receipts->Flush(token));
    });
    EXPECT_EQ(destroyed, 1) << "round " << round;
    EXPECT_EQ(unexpected, 0) << "round " << round;
    EXPECT_EQ(receipts->Destroy(token), VXT_E_INVALID_HANDLE);
  }
}

TEST_F(OperationReceiptConcurrencyTest, AFlushEndsWhenAnotherThreadDestroysTheToken) {
  const uint64_t token = tc::StartHeldReceipt();
  VXT_Result flushed = 0;
  std::string message;
  std::thread flusher([&] {
    flushed = receipts->Flush(token);
    message = GetLastErrorMessage();
  });
  EXPECT_EQ(receipts->Destroy(token), 0);
  flusher.join();
  EXPECT_EQ(flushed, VXT_E_INVALID_HANDLE);
  EXPECT_NE(message.find(" token 0x"), std::string::npos) << message;
}

}  // namespace
