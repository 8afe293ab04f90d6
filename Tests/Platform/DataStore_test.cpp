// The DataStore's notification callback.
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "DataStore.h"

namespace {

class DataStoreTest : public ::testing::Test {
 protected:
  void TearDown() override { store_.SetNotificationCallback({}); }
  DataStore& store_ = DataStore::Get();
};

TEST_F(DataStoreTest, NotifiesTheCallbackSetLastAndNothingOnceCleared) {
  std::vector<std::string> first, second;
  store_.Notify("before any callback");
  store_.SetNotificationCallback([&](const std::string& text) { first.push_back(text); });
  store_.Notify("one");
  store_.SetNotificationCallback([&](const std::string& text) { second.push_back(text); });
  store_.Notify("two");
  store_.SetNotificationCallback({});
  store_.Notify("three");
  EXPECT_EQ(first, (std::vector<std::string>{"one"}));
  EXPECT_EQ(second, (std::vector<std::string>{"two"}));
  EXPECT_EQ(&DataStore::Get(), &store_);
}

// The callback runs outside the store's lock: it may clear itself.
TEST_F(DataStoreTest, CallbackMayClearItself) {
  int calls = 0;
  store_.SetNotificationCallback([&](const std::string&) {
    ++calls;
    DataStore::Get().SetNotificationCallback({});
  });
  store_.Notify("once");
  store_.Notify("twice");
  EXPECT_EQ(calls, 1);
}

TEST_F(DataStoreTest, NotifyingWhileTheCallbackIsReplacedIsSafe) {
  std::atomic<int> heard{0};
  std::atomic<bool> running{true};
  std::thread replacer([&] {
    while (running) {
      store_.SetNotificationCallback([&](const std::string&) { ++heard; });
      store_.SetNotificationCallback({});
    }
  });
  for (int notification = 0; notification < 5000; ++notification) store_.Notify("tick");
  running = false;
  replacer.join();
  store_.SetNotificationCallback([&](const std::string&) { ++heard; });
  const int before = heard.load();
  store_.Notify("last");
  EXPECT_EQ(heard.load(), before + 1);
}

}  // namespace
