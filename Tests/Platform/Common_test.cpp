// The Common component: client records and their events, the client of the
// calling thread, counts and limits, locality and the process GUID.
#include <array>
#include <cstring>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Common.h"
#include "EventBroker.h"
#include "PlatformTestControl.h"
#include "TargetTestSupport.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::CallPosting;
using vxt::test::MakeClient;
using vxt::test::Posted;

constexpr uint32_t kNullArgument = 0x20000;
constexpr uint32_t kStructureSize = 0x2000a;
constexpr uint32_t kUnknownClient = 0x140000;

const CommonComponent& Common() { return vxt::test::Get(&Voxtrel_GetCommon); }

// A full record whose every byte tells where it stands, so that a copy that
// drops or moves a byte shows.
VXT_Client PatternedClient(uint32_t clientId, uint8_t isLocal) {
  VXT_Client client = MakeClient(clientId, "tool_" + std::to_string(clientId) + "@here");
  for (size_t index = 0; index < sizeof client.clientData; ++index)
    client.clientData[index] = static_cast<uint8_t>(index * 7 + clientId);
  for (size_t index = 0; index < sizeof client.moreClientData; ++index)
    client.moreClientData[index] = static_cast<uint8_t>(index * 3 + clientId);
  client.isLocal = isLocal;
  std::strcpy(client.startTime, "2026-Nov-18 06:29:04");
  return client;
}

using Bytes = std::vector<uint8_t>;

Bytes BytesOf(const VXT_Client& client) {
  const auto* first = reinterpret_cast<const uint8_t*>(&client);
  return Bytes(first, first + sizeof client);
}

// A "Client" event as a subscriber received it: the name and all 1296 bytes.
struct ClientEvent {
  std::string name;
  Bytes record;

  friend bool operator==(const ClientEvent&, const ClientEvent&) = default;
};

void RecordClientEvent(void* userData, const char* eventName, const void* eventData) {
  // Clients on several threads publish at once.
  static std::mutex recording;
  const std::lock_guard lock(recording);
  const auto* first = static_cast<const uint8_t*>(eventData);
  static_cast<std::vector<ClientEvent>*>(userData)->push_back(
      {eventName, first ? Bytes(first, first + sizeof(VXT_Client)) : Bytes{}});
}

std::optional<int32_t> ClientIdOfThisThread(uint32_t* code = nullptr) {
  int32_t clientId = -1;
  const uint32_t result = Common().GetClientId(&clientId);
  if (code) *code = result;
  if (result == 0) return clientId;
  EXPECT_EQ(clientId, 0) << "an unbound thread gets 0";
  return std::nullopt;
}

class CommonTest : public vxt::test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    broker_->Initialize();
    ASSERT_EQ(broker_->Subscribe("Client", &RecordClientEvent, &events_, "CommonTest"), 0u);
  }
  void TearDown() override {
    for (const uint32_t clientId : registered_)
      while (common_.UnregisterClient(clientId) == 0) {
      }
    broker_->Unsubscribe("Client", &RecordClientEvent, &events_);
    broker_->Uninitialize();
    PlatformTest::TearDown();
  }

  VXT_Client Register(uint32_t clientId, uint8_t isLocal = 1) {
    const VXT_Client client = PatternedClient(clientId, isLocal);
    EXPECT_EQ(common_.RegisterClient(&client), 0u);
    registered_.push_back(clientId);
    return client;
  }

  std::vector<uint32_t> ConnectedIds(uint32_t max) {
    std::vector<VXT_Client> records(max);
    uint32_t count = 0;
    EXPECT_EQ(common_.GetConnectedClients(max, &count, records.data()), 0u);
    std::vector<uint32_t> ids;
    for (uint32_t index = 0; index < count; ++index) ids.push_back(records[index].clientId);
    return ids;
  }

  const CommonComponent& common_ = Common();
  const EventBrokerComponent* broker_ = [] {
    const EventBrokerComponent* table = nullptr;
    Voxtrel_GetEventBroker(&table);
    return table;
  }();
  std::vector<ClientEvent> events_;
  std::vector<uint32_t> registered_;
};

TEST_F(CommonTest, NullPointersAreRefusedWithAMessage) {
  uint32_t count = 0;
  const std::function<uint32_t()> calls[] = {
      [&] { return common_.SetRunName(nullptr, true); },
      [&] { return common_.RegisterClient(nullptr); },
      [&] { return common_.GetProcessGuid(nullptr); },
      [&] { return common_.GetClientId(nullptr); },
      [&] { return common_.GetNumConnectedClients(nullptr); },
      [&] { return common_.GetConnectedClients(1, nullptr, nullptr); },
      [&] { return common_.GetConnectedClients(1, &count, nullptr); },
      [&] { return common_.IsClientLocal(1, nullptr); },
  };
  for (size_t index = 0; index < std::size(calls); ++index) {
    const Posted posted = CallPosting(calls[index]);
    EXPECT_EQ(posted.code, kNullArgument) << index;
    EXPECT_NE(posted.message.find("was given a null"), std::string::npos) << index << ": " << posted.message;
  }
  const CommonComponent* unused = nullptr;
  EXPECT_EQ(Voxtrel_GetCommon(nullptr), kNullArgument);
  EXPECT_EQ(unused, nullptr);
  EXPECT_TRUE(events_.empty());
}

TEST_F(CommonTest, ConnectionAndDisconnectionPublishTheWholeRecord) {
  const VXT_Client client = Register(7, 1);
  uint32_t count = 0;
  ASSERT_EQ(common_.GetNumConnectedClients(&count), 0u);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(common_.UnregisterClient(7), 0u);
  ASSERT_EQ(common_.GetNumConnectedClients(&count), 0u);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(events_, (std::vector<ClientEvent>{{"Connected", BytesOf(client)}, {"Disconnected", BytesOf(client)}}));
}

TEST_F(CommonTest, OnlyAFullRecordIsRegistered) {
  for (const uint32_t size : {0u, VXT_CLIENT_SHORT_SIZE, VXT_CLIENT_SIZE + 1}) {
    const VXT_Client client = MakeClient(3, "short_1@h", size);
    EXPECT_EQ(CallPosting([&] { return common_.RegisterClient(&client); }).code, kStructureSize) << size;
  }
  uint32_t count = 99;
  ASSERT_EQ(common_.GetNumConnectedClients(&count), 0u);
  EXPECT_EQ(count, 0u);
  EXPECT_TRUE(events_.empty());
}

// The library unregisters whatever id it is given, and posts its own message.
TEST_F(CommonTest, UnknownClientIsToldByCodeAlone) {
  Register(1);
  events_.clear();
  EXPECT_EQ(CallPosting([&] { return common_.UnregisterClient(2); }), (Posted{kUnknownClient, ""}));
  EXPECT_TRUE(events_.empty());
  EXPECT_EQ(ConnectedIds(4), (std::vector<uint32_t>{1}));

  bool isLocal = true;
  const Posted local = CallPosting([&] { return common_.IsClientLocal(2, &isLocal); });
  EXPECT_EQ(local.code, kUnknownClient);
  EXPECT_NE(local.message.find("2"), std::string::npos) << local.message;
}

TEST_F(CommonTest, ConnectedClientsAreListedInArrivalOrderUpToTheMaximum) {
  const VXT_Client third = Register(30);
  Register(10);
  Register(20);
  struct Case {
    uint32_t max;
    std::vector<uint32_t> ids;
  };
  for (const Case& listed : {Case{0, {}}, Case{1, {30}}, Case{3, {30, 10, 20}}, Case{5, {30, 10, 20}}}) {
    // One guard record behind the maximum: it must stay untouched.
    std::vector<VXT_Client> records(listed.max + 1, MakeClient(0xEEEE, "guard"));
    uint32_t count = 99;
    EXPECT_EQ(common_.GetConnectedClients(listed.max, &count, records.data()), 0u) << listed.max;
    ASSERT_EQ(count, listed.ids.size()) << listed.max;
    for (uint32_t index = 0; index < count; ++index) EXPECT_EQ(records[index].clientId, listed.ids[index]);
    EXPECT_EQ(records[listed.max].clientId, 0xEEEEu) << listed.max;
    if (count > 0) {
      EXPECT_EQ(BytesOf(records[0]), BytesOf(third));
    }
  }
  uint32_t count = 99;
  EXPECT_EQ(common_.GetConnectedClients(0, &count, nullptr), 0u);  // Nothing to fill, no array needed
  EXPECT_EQ(count, 0u);
}

TEST_F(CommonTest, RegisteringThreadActsForTheClientUntilItIsGone) {
  uint32_t code = 0;
  EXPECT_EQ(ClientIdOfThisThread(&code), std::nullopt);
  EXPECT_EQ(code, kUnknownClient);

  Register(5);
  EXPECT_EQ(ClientIdOfThisThread(), 5);
  std::optional<int32_t> elsewhere = 1;
  std::thread([&] { elsewhere = ClientIdOfThisThread(); }).join();
  EXPECT_EQ(elsewhere, std::nullopt);

  EXPECT_EQ(common_.UnregisterClient(5), 0u);
  EXPECT_EQ(ClientIdOfThisThread(), std::nullopt);
}

// A thread is bound to its registration: the same id registered again by
// another thread does not make the first thread act for it.
TEST_F(CommonTest, ThreadBindingFollowsTheRegistrationNotTheId) {
  Register(5);
  ASSERT_EQ(common_.UnregisterClient(5), 0u);
  std::thread([&] { Register(5); }).join();
  EXPECT_EQ(ClientIdOfThisThread(), std::nullopt);

  EXPECT_TRUE(tc::BindThreadToClient(5));
  EXPECT_EQ(ClientIdOfThisThread(), 5);
  EXPECT_FALSE(tc::BindThreadToClient(6));
  EXPECT_EQ(ClientIdOfThisThread(), std::nullopt);
}

// The same id twice: two entries, two unregistrations; the calling thread's
// own registration goes first.
TEST_F(CommonTest, SameIdTwiceNeedsTwoUnregistrations) {
  const VXT_Client older = Register(4, 1);
  std::optional<int32_t> otherThreadAfterwards;
  VXT_Client newer{};
  std::thread([&] {
    newer = Register(4, 0);
    ASSERT_EQ(common_.UnregisterClient(4), 0u);
    otherThreadAfterwards = ClientIdOfThisThread();
  }).join();
  EXPECT_EQ(otherThreadAfterwards, std::nullopt);
  EXPECT_EQ(ClientIdOfThisThread(), 4);  // The older registration stands
  ASSERT_EQ(events_.size(), 3u);
  EXPECT_EQ(events_[2], (ClientEvent{"Disconnected", BytesOf(newer)}));

  EXPECT_EQ(common_.UnregisterClient(4), 0u);
  EXPECT_EQ(events_.back(), (ClientEvent{"Disconnected", BytesOf(older)}));
  EXPECT_EQ(common_.UnregisterClient(4), kUnknownClient);
}

TEST_F(CommonTest, ProcessGuidIsOneRandomUuidForTheProcess) {
  std::array<uint8_t, 16> first{}, second{};
  ASSERT_EQ(common_.GetProcessGuid(first.data()), 0u);
  std::thread([&] { EXPECT_EQ(Common().GetProcessGuid(second.data()), 0u); }).join();
  EXPECT_EQ(first, second);
  EXPECT_EQ(first[6] >> 4, 4) << "a random (version 4) UUID";
  EXPECT_EQ(first[8] & 0xC0, 0x80) << "of the RFC 4122 variant";
}

TEST_F(CommonTest, ClientsOnManyThreadsEachSeeTheirOwnId) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 200;
  std::vector<std::thread> threads;
  std::atomic<int> mismatches{0};
  for (int thread = 0; thread < kThreads; ++thread)
    threads.emplace_back([&, clientId = static_cast<uint32_t>(100 + thread)] {
      const VXT_Client client = PatternedClient(clientId, 1);
      for (int round = 0; round < kRounds; ++round) {
        if (Common().RegisterClient(&client) != 0) ++mismatches;
        if (ClientIdOfThisThread() != static_cast<int32_t>(clientId)) ++mismatches;
        if (Common().UnregisterClient(clientId) != 0) ++mismatches;
        if (ClientIdOfThisThread() != std::nullopt) ++mismatches;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(mismatches.load(), 0);
  EXPECT_EQ(events_.size(), static_cast<size_t>(2 * kThreads * kRounds));
  uint32_t count = 99;
  EXPECT_EQ(common_.GetNumConnectedClients(&count), 0u);
  EXPECT_EQ(count, 0u);
}

}  // namespace
