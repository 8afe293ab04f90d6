// The TargetManager's device locks: held by clients, taken all or nothing,
// awaited on workers until a timeout, and ended by unlocking, breaking,
// cancelling, a client's departure or the topology's end.
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../../Source/Platform/Target/DeviceLocks.h"
#include "Common.h"
#include "OperationReceipt.h"
#include "PlatformTestControl.h"
#include "TargetManager.h"
#include "TargetTestSupport.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::CallPosting;
using vxt::test::Posted;

constexpr uint32_t kCore0 = 0x04000000;
constexpr uint32_t kCore1 = 0x04000001;
constexpr uint32_t kUncore = 0x05000000;

constexpr uint32_t kStatusCompleted = 2;
constexpr uint32_t kStatusCanceled = 3;
constexpr uint32_t kStatusFailed = 4;

using vxt::test::Get;

// How a receipt ended.
struct Ending {
  uint32_t status = 0;
  int32_t code = 0;
  std::string message;

  friend bool operator==(const Ending&, const Ending&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Ending& ending) {
    return out << "{status " << ending.status << ", code 0x" << std::hex << ending.code << std::dec << ", \""
               << ending.message << "\"}";
  }
};

class TargetManagerLocksTest : public ::testing::Test {
 protected:
  void SetUp() override {
    vxt::test::ResetTarget();
    ASSERT_EQ(manager_.FinishInitialization(), 0u);
    for (uint32_t clientId : {1u, 2u}) {
      const VXT_Client client = vxt::test::MakeClient(clientId, "client_" + std::to_string(clientId) + "@here");
      ASSERT_EQ(common_.RegisterClient(&client), 0u);
    }
    ActAs(1);
  }
  void TearDown() override {
    common_.UnregisterClient(1);
    common_.UnregisterClient(2);
    vxt::test::ResetTarget();
  }

  static void ActAs(int32_t clientId) { ASSERT_TRUE(tc::BindThreadToClient(clientId)); }

  uint64_t Lock(uint32_t deviceId, uint32_t timeout) {
    uint64_t token = 0;
    EXPECT_EQ(manager_.Lock(deviceId, timeout, &token), 0u);
    return token;
  }
  uint64_t LockMany(const std::vector<uint32_t>& deviceIds, uint32_t timeout) {
    uint64_t token = 0;
    EXPECT_EQ(manager_.LockMany(deviceIds.data(), static_cast<uint32_t>(deviceIds.size()), timeout, &token), 0u);
    return token;
  }
  // Waits for the receipt to end and reads it.
  Ending Await(uint64_t token) {
    Ending ending;
    EXPECT_EQ(receipts_.Flush(token), 0u);
    EXPECT_EQ(receipts_.GetOperationStatus(token, &ending.status), 0u);
    EXPECT_EQ(receipts_.GetOperationErrorResult(token, &ending.code), 0u);
    char message[512] = "";
    EXPECT_EQ(receipts_.GetOperationErrorMessage(token, message, sizeof message, nullptr), 0u);
    ending.message = message;
    return ending;
  }
  uint32_t Status(uint64_t token) {
    uint32_t status = 99;
    EXPECT_EQ(receipts_.GetOperationStatus(token, &status), 0u);
    return status;
  }
  std::string Holder(uint32_t deviceId) {
    char identifier[VXT_CLIENT_TEXT_SIZE];
    EXPECT_EQ(manager_.GetLockingClient(deviceId, identifier), 0u);
    return identifier;
  }
  uint32_t Unlock() {
    uint64_t token = 0;
    EXPECT_EQ(manager_.Unlock(&token), 0u);
    uint32_t released = 99;
    EXPECT_EQ(receipts_.GetValueAsUInt32(token, &released), 0u);
    return released;
  }

  const TargetManagerComponent& manager_ = Get(&Voxtrel_GetTargetManager);
  const CommonComponent& common_ = Get(&Voxtrel_GetCommon);
  const OperationReceiptComponent& receipts_ = Get(&Voxtrel_GetOperationReceipt);
};

const Ending kTaken{kStatusCompleted, 0, ""};

TEST_F(TargetManagerLocksTest, ALockIsTakenAtOnceAndNamesItsHolder) {
  EXPECT_EQ(Holder(kCore0), "");
  EXPECT_EQ(Await(Lock(kCore0, 0)), kTaken);
  EXPECT_EQ(Holder(kCore0), "client_1@here");
  EXPECT_EQ(Await(Lock(kCore0, 0)), kTaken);  // Held already by the same client
  const uint32_t none[1] = {};
  uint64_t token = 0;
  ASSERT_EQ(manager_.LockMany(none, 0, 0, &token), 0u);
  EXPECT_EQ(Await(token), kTaken);

  ActAs(2);
  EXPECT_EQ(Await(Lock(kCore0, 0)),
            (Ending{kStatusFailed, 0xe0005,
                    "TargetManager.Lock timed out after 0 ms: device 0x04000000 (Core0) is locked by client 1 "
                    "('client_1@here')"}));
  EXPECT_EQ(Unlock(), 0u);  // Client 2 holds nothing
  EXPECT_EQ(Holder(kCore0), "client_1@here");

  ActAs(1);
  EXPECT_EQ(Unlock(), 1u);
  EXPECT_EQ(Holder(kCore0), "");
}

TEST_F(TargetManagerLocksTest, LockManyTakesAllOrNothing) {
  ActAs(2);
  EXPECT_EQ(Await(Lock(kCore1, 0)), kTaken);
  ActAs(1);
  EXPECT_EQ(Await(LockMany({kCore0, kUncore, kCore1}, 0)).code, 0xe0005);
  EXPECT_EQ(Holder(kCore0), "");
  EXPECT_EQ(Holder(kUncore), "");

  const uint64_t waiting = LockMany({kCore0, kUncore, kCore1}, VXT_INFINITE_TIMEOUT);
  ActAs(2);
  EXPECT_EQ(Await(Lock(kCore0, 0)), kTaken);  // The waiter holds no part of its set meanwhile
  EXPECT_EQ(Unlock(), 2u);
  EXPECT_EQ(Await(waiting), kTaken);
  for (uint32_t deviceId : {kCore0, kUncore, kCore1}) EXPECT_EQ(Holder(deviceId), "client_1@here");
}

TEST_F(TargetManagerLocksTest, AWaitingLockEndsAsTheHolderOrTheTargetDecides) {
  struct Case {
    const char* name;
    std::function<void(uint64_t waiting)> end;  // Runs as client 1, the holder
    Ending ending;
    std::string holderAfter;
  };
  const Case cases[] = {
      {"unlock", [&](uint64_t) { Unlock(); }, kTaken, "client_2@here"},
      {"break",
       [&](uint64_t) {
         bool broke = false;
         EXPECT_EQ(manager_.BreakLock(kCore0, &broke), 0u);
         EXPECT_TRUE(broke);
       },
       kTaken, "client_2@here"},
      {"cancel", [&](uint64_t waiting) { EXPECT_EQ(receipts_.Cancel(waiting), 0u); },
       Ending{kStatusCanceled, 0x20008, "Operation canceled"}, "client_1@here"},
      {"waiter leaves", [&](uint64_t) { EXPECT_EQ(common_.UnregisterClient(2), 0u); },
       Ending{kStatusFailed, 0x10000, "TargetManager.Lock: client 2 disconnected while the lock was awaited"},
       "client_1@here"},
      {"topology dropped", [&](uint64_t) { EXPECT_EQ(manager_.Uninitialize(), 0u); },
       Ending{kStatusFailed, 0xe000c,
              "TargetManager.Lock: the target's topology was dropped while the lock was awaited"},
       ""},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    TearDown();
    SetUp();
    EXPECT_EQ(Await(Lock(kCore0, 0)), kTaken);
    ActAs(2);
    const uint64_t waiting = Lock(kCore0, VXT_INFINITE_TIMEOUT);
    EXPECT_LT(Status(waiting), kStatusCompleted);
    ActAs(1);
    test.end(waiting);
    EXPECT_EQ(Await(waiting), test.ending);
    if (!test.holderAfter.empty()) {
      EXPECT_EQ(Holder(kCore0), test.holderAfter);
    }
  }
}

TEST_F(TargetManagerLocksTest, ADepartedClientsLocksAreReleased) {
  EXPECT_EQ(Await(LockMany({kCore0, kCore1}, 0)), kTaken);
  const VXT_Client again = vxt::test::MakeClient(1, "client_1@elsewhere");
  ASSERT_EQ(common_.RegisterClient(&again), 0u);  // A second registration of the same id
  ASSERT_EQ(common_.UnregisterClient(1), 0u);
  EXPECT_EQ(Holder(kCore0), "client_1@here");  // The id is still connected
  ASSERT_EQ(common_.UnregisterClient(1), 0u);
  EXPECT_EQ(Holder(kCore0), "");
  EXPECT_EQ(Holder(kCore1), "");
}

TEST_F(TargetManagerLocksTest, BreakingSaysWhetherALockWasHeld) {
  bool broke = true;
  EXPECT_EQ(manager_.BreakLock(kCore0, &broke), 0u);
  EXPECT_FALSE(broke);
  EXPECT_EQ(Await(Lock(kCore0, 0)), kTaken);
  ActAs(2);  // Any client may break any lock
  EXPECT_EQ(manager_.BreakLock(kCore0, &broke), 0u);
  EXPECT_TRUE(broke);
  EXPECT_EQ(Holder(kCore0), "");
}

TEST_F(TargetManagerLocksTest, RefusalsComeAtOnceAndNoReceiptIsMade) {
  uint64_t token = 0;
  const uint32_t devices[] = {kCore0, 0x04000002};
  char identifier[VXT_CLIENT_TEXT_SIZE];
  struct Case {
    std::function<uint32_t()> call;
    Posted expected;
  };
  const Case cases[] = {
      {[&] { return manager_.GetLockingClient(kCore0, nullptr); },
       {0x20000, "TargetManager.GetLockingClient was given a null clientIdentifier"}},
      {[&] { return manager_.Lock(0x04000002, 0, &token); },
       {0xe0002, "TargetManager.Lock knows no device 0x04000002"}},
      {[&] { return manager_.LockMany(devices, 2, 0, &token); },
       {0xe0002, "TargetManager.LockMany knows no device 0x04000002"}},
      {[&] { return manager_.GetLockingClient(0x04000002, identifier); },
       {0xe0002, "TargetManager.GetLockingClient knows no device 0x04000002"}},
  };
  for (const Case& refused : cases) EXPECT_EQ(CallPosting(refused.call), refused.expected);
  EXPECT_EQ(token, 0u);
  EXPECT_EQ(Holder(kCore0), "");  // LockMany's known device was not taken either

  tc::BindThreadToClient(7);  // No such client: the thread acts for none
  EXPECT_EQ(CallPosting([&] { return manager_.Lock(kCore0, 0, &token); }),
            (Posted{0x10000, "TargetManager.Lock: the calling thread acts for no connected client"}));
  EXPECT_EQ(CallPosting([&] { return manager_.Unlock(&token); }),
            (Posted{0x10000, "TargetManager.Unlock: the calling thread acts for no connected client"}));
}

// A request reads its client's departure count before it tries the table;
// whatever happened to the client or the topology in between decides, so
// that no device is taken for a client that is gone or in a table that was
// dropped.
TEST(DeviceLocksTest, ARequestThatRacedWithADepartureOrTheTopologysEndTakesNothing) {
  using voxtrel::platform::target::DeviceLocks;
  using Outcome = DeviceLocks::Outcome;
  struct Case {
    const char* name;
    std::function<void(DeviceLocks&)> meanwhile;
    Outcome outcome;
    uint32_t conflictHolder;  // 0: none
    std::optional<uint32_t> holderAfter;
  };
  const Case cases[] = {
      {"nothing", [](DeviceLocks&) {}, Outcome::Taken, 0, 1u},
      {"another client took it", [](DeviceLocks& locks) { locks.TryTake(2, 0, std::vector<uint32_t>{kCore1}); },
       Outcome::Busy, 2, 2u},
      {"the client left", [](DeviceLocks& locks) { locks.ForgetClient(1); }, Outcome::ClientGone, 0, std::nullopt},
      {"another client left", [](DeviceLocks& locks) { locks.ForgetClient(2); }, Outcome::Taken, 0, 1u},
      {"the topology was dropped", [](DeviceLocks& locks) { locks.Retire(); }, Outcome::Retired, 0, std::nullopt},
  };
  const std::vector<uint32_t> wanted = {kCore0, kCore1};
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    DeviceLocks locks;
    const uint64_t epoch = locks.ClientEpoch(1);
    test.meanwhile(locks);
    const DeviceLocks::Result result = locks.TryTake(1, epoch, wanted);
    EXPECT_EQ(result.outcome, test.outcome);
    EXPECT_EQ(result.conflict.holder, test.conflictHolder);
    EXPECT_EQ(locks.Holder(kCore1), test.holderAfter);
    if (test.outcome != Outcome::Taken) {
      EXPECT_EQ(locks.Holder(kCore0), std::nullopt);
    }
  }
}

}  // namespace
