// Many clients on many threads at once.
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

using vxt::test::MakeClient;

constexpr int kThreads = 8;
constexpr int kRounds = 40;

IInternalService_General& General() {
  void* service = nullptr;
  GetService(nullptr, VXT_Service_General, &service);
  return *static_cast<IInternalService_General*>(service);
}

class ClientsConcurrencyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    voxtrel::testing::ResetTestControl();
    voxtrel::testing::SetLogLevel(1);  // Render every line, to exercise it under contention
    voxtrel::testing::SetLoggingSuppressed(true);
  }
  void TearDown() override { voxtrel::testing::ResetTestControl(); }
};

// Threads connect, fail in their own way, check that they see only their
// own last error, and leave; the last of them stops the platform.
TEST_F(ClientsConcurrencyTest, LastErrorsNeverCrossThreads) {
  std::atomic<int> mismatches{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &mismatches] {
      const auto id = static_cast<uint32_t>(100 + t);
      VXT_Client client = MakeClient(id, "worker_" + std::to_string(id) + "@here");
      for (int round = 0; round < kRounds; ++round) {
        if (StartNewInstance(&client, 1, 0, nullptr) != 0) ++mismatches;
        FinishInitialization();
        IInternalService_General& general = General();
        std::string expected;
        if (t % 2 == 0) {
          VXT_Version unsized{};
          general.GetImplementationVersion(&unsized);
          expected =
              "InProc_General::GetImplementationVersion() argument error (version) : Structure size not initialized";
        } else {
          general.LoadLoggingPreset("missing");
          expected =
              "InProc_General::LoadLoggingPreset(): argument error (presetName) : an unknown preset name was specified";
        }
        uint32_t count = 0;
        general.GetNumConnectedClients(&count);  // Succeeds and keeps the message
        if (GetLastErrorMessage() != expected) ++mismatches;
        if (Disconnect(id) != 0) ++mismatches;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(mismatches.load(), 0);
  EXPECT_EQ(IsConnected(), 0u);
}

TEST_F(ClientsConcurrencyTest, RegionsAreAllocatedAndFreedFromManyThreads) {
  VXT_Client owner = MakeClient(1, "owner_1@here");
  ASSERT_EQ(StartNewInstance(&owner, 1, 0, nullptr), 0);
  ASSERT_EQ(FinishInitialization(), 0);

  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &failures] {
      const auto id = static_cast<uint32_t>(200 + t);
      VXT_Client client = MakeClient(id, "region_" + std::to_string(id) + "@here");
      if (StartNewInstance(&client, 1, 0, nullptr) != 0) ++failures;
      IInternalService_General& general = General();
      for (int round = 0; round < kRounds; ++round) {
        uint64_t handle = 0;
        void* address = nullptr;
        if (general.AllocateSharedMemory(256, &handle) != 0) ++failures;
        if (general.GetSharedMemoryAddress(handle, &address) != 0 || address == nullptr)
          ++failures;
        else
          static_cast<unsigned char*>(address)[0] = static_cast<unsigned char>(t);
        if (round % 2 == 0 && general.FreeSharedMemory(handle) != 0) ++failures;
      }
      if (Disconnect(id) != 0) ++failures;  // Frees the regions left
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures.load(), 0);
  EXPECT_EQ(Disconnect(1), 0);
}

}  // namespace
