// Bit vectors made, used and released from many threads at once: one
// client's threads sharing its handle table, and clients that come and go
// with vectors left behind.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <set>
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

constexpr int kThreads = 8;
constexpr int kRounds = 150;
constexpr int kLivePerThread = 4;

IInternalService_BitData& Bits() {
  void* service = nullptr;
  GetService(nullptr, VXT_Service_BitData, &service);
  return *static_cast<IInternalService_BitData*>(service);
}

IInternalService_BitDataOperations& Ops() {
  void* service = nullptr;
  GetService(nullptr, VXT_Service_BitDataOperations, &service);
  return *static_cast<IInternalService_BitDataOperations*>(service);
}

// The handles in use, each of which may be held once only; a handle is
// given back before its vector is destroyed, so it may be reused at once.
struct HandlesInUse {
  std::mutex mutex;
  std::set<uint64_t> inUse;
  uint64_t highest = 0;  // Read once the threads are done

  bool Take(uint64_t handle) {
    std::lock_guard lock(mutex);
    highest = std::max(highest, handle);
    return inUse.insert(handle).second;
  }
  void Give(uint64_t handle) {
    std::lock_guard lock(mutex);
    inUse.erase(handle);
  }
};

class BitDataConcurrencyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tc::ResetTestControl();
    tc::SetLogLevel(3);
    tc::StartTraceCapture();
    owner_ = MakeClient(1, "owner_1@here");
    ASSERT_EQ(StartNewInstance(&owner_, 1, 0, nullptr), VXT_SUCCESS);
  }
  void TearDown() override {
    Disconnect(1);
    tc::ResetTestControl();
  }

  VXT_Client owner_{};
};

// Threads of one client make vectors, work on them and destroy them, while
// the others do the same: no handle is held twice, each thread reads back
// only its own bits, and released handles are reused.
TEST_F(BitDataConcurrencyTest, ThreadsOfOneClientShareItsTableSafely) {
  HandlesInUse handles;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &handles, &failures] {
      if (!tc::BindThreadToClient(1)) ++failures;
      IInternalService_BitData& bits = Bits();
      IInternalService_BitDataOperations& ops = Ops();
      const uint64_t mine = 0x1000u * static_cast<uint64_t>(t + 1);
      for (int round = 0; round < kRounds; ++round) {
        VXT_BitData live[kLivePerThread];
        for (int i = 0; i < kLivePerThread; ++i) {
          live[i] = VXT_BitData{VXT_BITDATA_SIZE, 0, 0};
          if (i == kLivePerThread - 1) {
            // The last one made by an operation of the other service.
            if (ops.Xor(&live[0], &live[1], &live[i]) != VXT_SUCCESS) ++failures;
          } else if (bits.Create(&live[i], 100, mine + i) != VXT_SUCCESS) {
            ++failures;
          }
          if (!handles.Take(live[i].dataHandle)) ++failures;
        }
        uint64_t value = 0;
        uint32_t count = 0;
        if (bits.Extract(&live[2], 0, 64, &value) != VXT_SUCCESS || value != mine + 2) ++failures;
        if (ops.PopCount(&live[3], &count) != VXT_SUCCESS || count != 1) ++failures;  // (mine) ^ (mine + 1)
        for (VXT_BitData& record : live) {
          handles.Give(record.dataHandle);
          if (bits.Destroy(&record) != VXT_SUCCESS) ++failures;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures.load(), 0);
  EXPECT_LE(handles.highest, 1u + kThreads * kLivePerThread);
}

// Clients connect, make vectors, and leave without destroying them while
// others do the same; the owner, connected throughout, then gets only
// handles that came back.
TEST_F(BitDataConcurrencyTest, DepartingClientsLeaveNothingBehind) {
  constexpr int kClientRounds = 20;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &failures] {
      const auto id = static_cast<uint32_t>(100 + t);
      VXT_Client client = MakeClient(id, "worker_" + std::to_string(id) + "@here");
      for (int round = 0; round < kClientRounds; ++round) {
        if (StartNewInstance(&client, 1, 0, nullptr) != VXT_SUCCESS) ++failures;
        IInternalService_BitData& bits = Bits();
        for (int i = 0; i < kLivePerThread; ++i) {
          VXT_BitData record{VXT_BITDATA_SIZE, 0, 0};
          if (bits.Create(&record, 64, id) != VXT_SUCCESS) ++failures;
          uint64_t value = 0;
          if (bits.ToUInt64(&record, 0, &value) != VXT_SUCCESS || value != id) ++failures;
        }
        if (Disconnect(id) != VXT_SUCCESS) ++failures;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures.load(), 0);

  size_t leftBehind = 0;
  for (const std::string& line : tc::CapturedTraceTexts())
    if (line.find(") did not destroy BitData handle (") != std::string::npos) ++leftBehind;
  EXPECT_EQ(leftBehind, static_cast<size_t>(kThreads * kClientRounds * kLivePerThread));

  // Every handle given out so far has come back: the next ones are reused.
  VXT_BitData record{VXT_BITDATA_SIZE, 0, 0};
  ASSERT_EQ(Bits().Create(&record, 8, 0), VXT_SUCCESS);
  EXPECT_LE(record.dataHandle, 1u + kThreads * kLivePerThread);
}

}  // namespace
