// The Telemetry library: events built and sent, counters, the record of
// calls kept for test control, and the JSON lines of the telemetry file.
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "PlatformTestControl.h"
#include "Telemetry.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using Fields = std::vector<std::pair<std::string, std::string>>;

class TelemetryTest : public ::testing::Test {
 protected:
  void SetUp() override { tc::ResetTestControl(); }
  void TearDown() override { tc::ResetTestControl(); }
};

TEST_F(TelemetryTest, AnEventIsSentWithTheFieldsBuiltForItThenStartsEmpty) {
  Telemetry_BeginSession("Client_Lifespan", "processguid", "guid");
  Telemetry_BuildDataSet("Client_Connect", "clientid", "0x00000005", 0);
  Telemetry_BuildDataSet("Client_Disconnect", "clientid", "0x00000006", 0);
  Telemetry_BuildDataSet("Client_Connect", "islocal", "True", 0);
  Telemetry_SendEvent("Client_Lifespan", "Client_Connect");
  Telemetry_SendEvent("Client_Lifespan", "Client_Connect");
  Telemetry_SendEvent("Client_Lifespan", "Client_Disconnect");
  EXPECT_EQ(tc::SentTelemetryEvents(),
            (std::vector<tc::TelemetryEvent>{
                {"Client_Lifespan", "Client_Connect", {{"clientid", "0x00000005"}, {"islocal", "True"}}},
                {"Client_Lifespan", "Client_Connect", {}},
                {"Client_Lifespan", "Client_Disconnect", {{"clientid", "0x00000006"}}},
            }));
}

TEST_F(TelemetryTest, CountersAreKeptPerSessionEventKeyAndValue) {
  for (int i = 0; i < 3; ++i) Telemetry_CountEvent("Server_Lifespan", "VXT_Call", "Method", "General::FlushLogs");
  Telemetry_CountEvent("Server_Lifespan", "VXT_Call", "Method", "General::ClearLogs");
  Telemetry_CountEvent("Other", "VXT_Call", "Method", "General::FlushLogs");
  const std::pair<std::vector<std::string>, uint64_t> cases[] = {
      {{"Server_Lifespan", "VXT_Call", "Method", "General::FlushLogs"}, 3},
      {{"Server_Lifespan", "VXT_Call", "Method", "General::ClearLogs"}, 1},
      {{"Other", "VXT_Call", "Method", "General::FlushLogs"}, 1},
      {{"Server_Lifespan", "VXT_Call", "Method", "General::ArchiveLogs"}, 0},
      {{"Server_Lifespan", "VXT_Call", "Other", "General::FlushLogs"}, 0},
  };
  for (const auto& [key, count] : cases)
    EXPECT_EQ(tc::TelemetryCounter(key[0], key[1], key[2], key[3]), count) << key[3];
}

TEST_F(TelemetryTest, EveryCallIsRecordedWithItsTextsAndNullAsEmpty) {
  Telemetry_BeginSession("S", nullptr, "v");
  Telemetry_BuildDataSet(nullptr, "k", nullptr, 0);
  Telemetry_SendEvent("S", nullptr);
  Telemetry_CountEvent(nullptr, nullptr, nullptr, nullptr);
  Telemetry_EndSession(nullptr);
  EXPECT_EQ(tc::TelemetryCalls(), (std::vector<tc::TelemetryCall>{
                                      {"BeginSession", {"S", "", "v"}},
                                      {"BuildDataSet", {"", "k", ""}},
                                      {"SendEvent", {"S", ""}},
                                      {"CountEvent", {"", "", "", ""}},
                                      {"EndSession", {""}},
                                  }));
  EXPECT_EQ(tc::SentTelemetryEvents(), (std::vector<tc::TelemetryEvent>{{"S", "", {{"k", ""}}}}));
  EXPECT_EQ(tc::TelemetryCounter("", "", "", ""), 1u);

  tc::ClearTelemetryCalls();
  EXPECT_TRUE(tc::TelemetryCalls().empty());
  EXPECT_EQ(tc::SentTelemetryEvents().size(), 1u);  // Only the calls are cleared
}

TEST_F(TelemetryTest, TheRecordOfCallsKeepsTheLatestTenThousand) {
  for (int i = 0; i < 10005; ++i) Telemetry_CountEvent("S", "E", "K", std::to_string(i).c_str());
  const std::vector<tc::TelemetryCall> calls = tc::TelemetryCalls();
  ASSERT_EQ(calls.size(), 10000u);
  EXPECT_EQ(calls.front().args[3], "5");
  EXPECT_EQ(calls.back().args[3], "10004");

  // A record that takes an old one's place has its own texts only.
  Telemetry_EndSession("S");
  const std::vector<tc::TelemetryCall> after = tc::TelemetryCalls();
  ASSERT_EQ(after.size(), 10000u);
  EXPECT_EQ(after.front().args[3], "6");
  EXPECT_EQ(after.back(), (tc::TelemetryCall{"EndSession", {"S"}}));
}

TEST_F(TelemetryTest, ThreadsBuildingTheirOwnEventsKeepTheirFields) {
  constexpr int kThreads = 4;
  constexpr int kEvents = 200;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([t] {
      const std::string event = "Event" + std::to_string(t);
      for (int i = 0; i < kEvents; ++i) {
        Telemetry_BuildDataSet(event.c_str(), "n", std::to_string(i).c_str(), 0);
        Telemetry_SendEvent("S", event.c_str());
        Telemetry_CountEvent("S", "Sent", "By", event.c_str());
      }
    });
  for (std::thread& thread : threads) thread.join();

  std::vector<int> next(kThreads, 0);
  for (const tc::TelemetryEvent& sent : tc::SentTelemetryEvents()) {
    const int t = sent.event.back() - '0';
    EXPECT_EQ(sent.fields, (Fields{{"n", std::to_string(next[t]++)}})) << sent.event;
  }
  for (int t = 0; t < kThreads; ++t) {
    EXPECT_EQ(next[t], kEvents);
    EXPECT_EQ(tc::TelemetryCounter("S", "Sent", "By", "Event" + std::to_string(t)), uint64_t{kEvents});
  }
}

class TelemetryFileTest : public TelemetryTest {
 protected:
  void SetUp() override {
    path = std::filesystem::temp_directory_path() / ("vxt_telemetry_" + std::to_string(getpid()) + ".jsonl");
    std::filesystem::remove(path);
    setenv("VXT_TELEMETRY_FILE", path.c_str(), 1);
    TelemetryTest::SetUp();
  }
  void TearDown() override {
    unsetenv("VXT_TELEMETRY_FILE");
    TelemetryTest::TearDown();
    std::filesystem::remove(path);
  }

  std::vector<nlohmann::ordered_json> Lines() {
    std::vector<nlohmann::ordered_json> lines;
    for (const std::string& line : vxt::test::ReadLines(path)) lines.push_back(nlohmann::ordered_json::parse(line));
    return lines;
  }

  std::filesystem::path path;
};

TEST_F(TelemetryFileTest, EachSentEventIsAppendedAsOneJsonLine) {
  Telemetry_BeginSession("Client_Lifespan", "processguid", "1234");
  Telemetry_BuildDataSet("Client_Connect", "clientid", "0x00000007", 0);
  Telemetry_BuildDataSet("Client_Connect", "islocal", "False", 0);
  Telemetry_SendEvent("Client_Lifespan", "Client_Connect");
  Telemetry_EndSession("Client_Lifespan");
  Telemetry_SendEvent("Client_Lifespan", "Client_Disconnect");
  Telemetry_CountEvent("Server_Lifespan", "VXT_Call", "Method", "General::FlushLogs");  // Not written

  std::vector<nlohmann::ordered_json> lines = Lines();
  ASSERT_EQ(lines.size(), 2u);
  for (nlohmann::ordered_json& line : lines) {
    EXPECT_TRUE(std::regex_match(line["time"].get<std::string>(),
                                 std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)")))
        << line["time"];
    line.erase("time");
  }
  EXPECT_EQ(lines[0].dump(), R"({"session":"Client_Lifespan","sessionData":{"processguid":"1234"},)"
                             R"("event":"Client_Connect","fields":{"clientid":"0x00000007","islocal":"False"}})");
  EXPECT_EQ(lines[1].dump(), R"({"session":"Client_Lifespan","event":"Client_Disconnect","fields":{}})");
}

}  // namespace
