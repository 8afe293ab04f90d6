// Device locks under contention: two clients, each on several threads,
// take and release the same devices; a lock awaited for ever is handed over
// when another client breaks the holder's lock. And changes of one JTAG
// chain's make-up from two threads at once, which must not mix.
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "../../Source/Platform/Target/TargetModel.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::MakeClient;
using vxt::test::MakeTap;

constexpr uint32_t kCore0 = 0x04000000;
constexpr uint32_t kCore1 = 0x04000001;
constexpr uint32_t kUncore = 0x05000000;
constexpr uint32_t kChain = 0x0d000000;
constexpr uint32_t kChainTaps[] = {0x0e000000, 0x0e000001, 0x0e000002};

template <class Service>
Service& Get(uint32_t serviceId) {
  void* service = nullptr;
  EXPECT_EQ(GetService(nullptr, serviceId, &service), 0);
  return *static_cast<Service*>(service);
}

class DeviceLocksConcurrencyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tc::ResetTestControl();
    tc::SetLogLevel(1);  // Render every line, to exercise it under contention
    tc::SetLoggingSuppressed(true);
    for (VXT_Client& client : clients_) ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    ASSERT_EQ(FinishInitialization(), 0);
  }
  void TearDown() override {
    for (VXT_Client& client : clients_) Disconnect(client.clientId);
    tc::ResetTestControl();
  }

  // Waits for the token's operation to end; its status. The token is ended.
  OperationStatus Outcome(uint64_t token) {
    auto status = static_cast<OperationStatus>(99);
    EXPECT_EQ(receipts_.Flush(token), 0);
    EXPECT_EQ(receipts_.GetOperationStatus(token, &status), 0);
    EXPECT_EQ(receipts_.Destroy(token), 0);
    return status;
  }
  std::string Holder(uint32_t deviceId) {
    char identifier[VXT_CLIENT_TEXT_SIZE] = "";
    EXPECT_EQ(devices_.GetLockingClient(deviceId, identifier), 0);
    return identifier;
  }

  VXT_Client clients_[2] = {MakeClient(1, "alpha_1@here"), MakeClient(2, "beta_2@here")};
  IInternalService_Device& devices_ = Get<IInternalService_Device>(VXT_Service_Device);
  IInternalService_OperationReceipt& receipts_ = Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
};

// The threads of one client take turns among themselves (a client's locks
// are shared by its threads); the two clients contend. Whoever holds the
// devices must be the only one inside.
TEST_F(DeviceLocksConcurrencyTest, TwoClientsNeverHoldTheSameDevicesAtOnce) {
  constexpr int kThreadsPerClient = 3;
  constexpr int kRounds = 60;
  const uint32_t sets[2][2] = {{kCore0, kCore1}, {kCore1, kUncore}};
  std::mutex turns[2];
  std::atomic<uint32_t> inside{0};
  std::atomic<int> overlaps{0};
  std::atomic<int> failures{0};
  std::atomic<int> waits{0};  // Requests that had to wait for the other client
  std::vector<std::thread> threads;
  for (int client = 0; client < 2; ++client) {
    for (int thread = 0; thread < kThreadsPerClient; ++thread) {
      threads.emplace_back([&, client] {
        const uint32_t clientId = clients_[client].clientId;
        if (!tc::BindThreadToClient(static_cast<int32_t>(clientId))) ++failures;
        for (int round = 0; round < kRounds; ++round) {
          std::lock_guard turn(turns[client]);
          uint64_t token = 0;
          // Both clients want Core1; each also wants a device of its own.
          const uint32_t* wanted = sets[(client + round) % 2];
          if (devices_.LockMany(wanted, 2, 10000, &token) != 0) {
            ++failures;
            continue;
          }
          auto status = VXT_OperationStatus_Completed;
          if (receipts_.GetOperationStatus(token, &status) == 0 && status != VXT_OperationStatus_Completed) ++waits;
          if (Outcome(token) != VXT_OperationStatus_Completed) {
            ++failures;
            continue;
          }
          if (inside.exchange(clientId) != 0) ++overlaps;
          if (Holder(kCore1) != clients_[client].identifier) ++overlaps;
          // Hold on a moment, so that the other client comes to wait.
          std::this_thread::sleep_for(std::chrono::microseconds(200));
          inside.store(0);
          if (devices_.Unlock(&token) != 0 || Outcome(token) != VXT_OperationStatus_Completed) ++failures;
        }
      });
    }
  }
  for (std::thread& thread : threads) thread.join();
  RecordProperty("waits", waits.load());
  EXPECT_EQ(overlaps, 0);
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(Holder(kCore0), "");
  EXPECT_EQ(Holder(kCore1), "");
}

// Waiters of one client share what they wait for: one break of the other
// client's lock lets all of them through at once.
TEST_F(DeviceLocksConcurrencyTest, ABrokenLockGoesToAllWaitersOfTheOtherClient) {
  constexpr int kWaiters = 4;
  uint64_t held = 0;
  ASSERT_EQ(devices_.Lock(kUncore, 0, &held), 0);  // This thread acts for client 2, which connected last
  ASSERT_EQ(Outcome(held), VXT_OperationStatus_Completed);
  std::atomic<int> completed{0};
  std::atomic<int> started{0};
  std::vector<std::thread> waiters;
  for (int index = 0; index < kWaiters; ++index) {
    waiters.emplace_back([&] {
      EXPECT_TRUE(tc::BindThreadToClient(1));
      uint64_t token = 0;
      EXPECT_EQ(devices_.Lock(kUncore, VXT_INFINITE_TIMEOUT, &token), 0);
      ++started;
      if (Outcome(token) == VXT_OperationStatus_Completed) ++completed;  // Blocks until the lock is handed over
    });
  }
  while (started < kWaiters) std::this_thread::yield();
  EXPECT_EQ(completed, 0);
  EXPECT_EQ(Holder(kUncore), "beta_2@here");
  uint32_t broke = 0;
  ASSERT_EQ(devices_.BreakLock(kUncore, &broke), 0);
  for (std::thread& waiter : waiters) waiter.join();
  EXPECT_EQ(broke, 1u);
  EXPECT_EQ(completed, kWaiters);
  EXPECT_EQ(Holder(kUncore), "alpha_1@here");
}

// Two threads declare different TAP controllers on the chain at the same
// moment, or one declares while the other forgets declarations. Whichever
// comes last, the TAP controllers' flags must be those of the declaration
// that stands: a change that read the chain before the other stored its
// declaration would leave flags of one and the declaration of the other.
TEST_F(DeviceLocksConcurrencyTest, ChangesOfOneChainNeverMix) {
  const VXT_TapController asDescribed[] = {MakeTap("CPU", "CoreComplex", "B0", 8),
                                           MakeTap("Uncore", "SystemAgent", "B0", 6),
                                           MakeTap("Chipset", "PlatformHub", "A1", 4)};
  const VXT_TapController cpuOnly[] = {MakeTap("CPU", "CoreComplex", "B0", 8)};
  using Change = std::function<VXT_Result()>;
  const Change changes[] = {
      [&] { return devices_.SpecifyTopology(kChain, 3, asDescribed); },
      [&] { return devices_.SpecifyTopology(kChain, 1, cpuOnly); },
      [&] { return devices_.UpdateTopology(kChain, 2); },
  };
  constexpr int kRounds = 1500;
  int mixed = 0;
  for (int round = 0; round < kRounds; ++round) {
    std::atomic<int> ready{0};
    const Change& first = changes[round % 3];
    const Change& second = changes[(round + 1 + round / 3 % 2) % 3];
    std::atomic<int> failures{0};
    const auto run = [&](const Change& change) {
      ++ready;
      while (ready < 2) std::this_thread::yield();
      if (change() != 0) ++failures;
    };
    std::thread other(run, std::cref(second));
    run(first);
    other.join();
    ASSERT_EQ(failures, 0);

    // A declaration of the CPU alone leaves the other two absent; none, or
    // the described one, leaves all three present.
    const auto declared =
        voxtrel::platform::target::TargetModel::Instance().Topology()->SpecifiedTapControllers(kChain);
    const bool onlyCpu = declared && declared->size() == 1;
    std::vector<uint32_t> flags;
    for (uint32_t tap : kChainTaps) {
      uint32_t enabled = 7;
      EXPECT_EQ(devices_.IsDeviceEnabled(tap, &enabled), 0);
      flags.push_back(enabled);
    }
    if (flags != (onlyCpu ? std::vector<uint32_t>{1, 0, 0} : std::vector<uint32_t>{1, 1, 1})) ++mixed;
  }
  EXPECT_EQ(mixed, 0);
}

}  // namespace
