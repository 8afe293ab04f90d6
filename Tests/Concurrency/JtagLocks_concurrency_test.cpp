// Two clients contend for one JTAG chain while scanning it: a client whose
// Lock went through scans alone, and the other's scans are refused until
// the holder unlocks.
#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::MakeClient;

constexpr uint32_t kChain = 0x0d000000;
constexpr uint32_t kCpuTap = 0x0e000000;
constexpr uint32_t kCpuIdcode = 0x1B0041EB;
constexpr VXT_Result kLocked = static_cast<VXT_Result>(0x80040008);

template <class Service>
Service& Get(uint32_t serviceId) {
  void* service = nullptr;
  EXPECT_EQ(GetService(nullptr, serviceId, &service), 0);
  return *static_cast<Service*>(service);
}

TEST(JtagLocksConcurrency, OnlyTheHolderScansAndTheOtherIsRefusedMeanwhile) {
  tc::ResetTestControl();
  tc::SetLogLevel(1);
  tc::SetLoggingSuppressed(true);
  VXT_Client clients[2] = {MakeClient(1, "alpha_1@here"), MakeClient(2, "beta_2@here")};
  for (VXT_Client& client : clients) ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  ASSERT_EQ(FinishInitialization(), 0);
  auto& access = Get<IInternalService_JtagAccess>(VXT_Service_JtagAccess);
  auto& receipts = Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
  auto& bits = Get<IInternalService_BitData>(VXT_Service_BitData);

  constexpr int kRounds = 150;
  std::atomic<int> inside{0};
  std::atomic<int> overlaps{0};
  std::atomic<int> wrongReads{0};
  std::atomic<int> refusals{0};
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (const VXT_Client& client : clients) {
    threads.emplace_back([&, id = client.clientId] {
      if (!tc::BindThreadToClient(static_cast<int32_t>(id))) ++failures;
      VXT_BitData ir{VXT_BITDATA_SIZE, 0, 0};
      if (bits.Create(&ir, 8, 0x02) != 0) ++failures;  // CpuTap's IDCODE
      for (int round = 0; round < kRounds; ++round) {
        uint64_t token = 0;
        const VXT_Result locked = access.Lock(kChain, &token);
        if (locked == kLocked) {
          // Refused while the other client holds the chain: so is a scan.
          if (access.IrDrScan(kCpuTap, &ir, 32, nullptr, &token) == kLocked) ++refusals;
          continue;
        }
        if (locked != 0) {
          ++failures;
          continue;
        }
        receipts.Destroy(token);
        if (inside.fetch_add(1) != 0) ++overlaps;
        for (int scan = 0; scan < 3; ++scan) {
          uint64_t value = 0;
          if (access.IrDrScan(kCpuTap, &ir, 32, nullptr, &token) != 0 ||
              receipts.GetValueAsUInt64(token, &value) != 0 || value != kCpuIdcode)
            ++wrongReads;
          receipts.Destroy(token);
        }
        inside.fetch_sub(1);
        if (access.Unlock(kChain, &token) != 0) ++failures;
        receipts.Destroy(token);
      }
      bits.Destroy(&ir);
    });
  }
  for (std::thread& thread : threads) thread.join();
  RecordProperty("refusals", refusals.load());
  EXPECT_EQ(overlaps, 0);
  EXPECT_EQ(wrongReads, 0);
  EXPECT_EQ(failures, 0);
  char holder[VXT_CLIENT_TEXT_SIZE] = "x";
  EXPECT_EQ(Get<IInternalService_JtagDiagnostic>(VXT_Service_JtagDiagnostic).GetLockingClient(kChain, holder), 0);
  EXPECT_STREQ(holder, "");
  for (VXT_Client& client : clients) Disconnect(client.clientId);
  tc::ResetTestControl();
}

}  // namespace
