// The Logging library: stream names, levels, presets, suppression, capture,
// usage lines and the log file with its flush, clear and archive.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

#include "Common.h"
#include "Logging.h"
#include "PlatformTestControl.h"
#include "TargetTestSupport.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
namespace fs = std::filesystem;
using vxt::test::ReadLines;

const CommonComponent& Common() { return vxt::test::Get(&Voxtrel_GetCommon); }

// Sets the logging variables for one test and gives the environment back.
class LoggingEnvironment {
 public:
  ~LoggingEnvironment() {
    for (const char* name : {"VXT_LOG_LEVEL", "VXT_LOG_FILE", "VXT_LOG_FORMAT", "VXT_LOG_USAGE"}) unsetenv(name);
    tc::ResetTestControl();
  }
  void Set(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }
  // Makes the library read the variables again.
  void Apply() { tc::ResetTestControl(); }
};

class LoggingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tc::ResetTestControl();
    interface = Voxtrel_LoggingGetLogger(1);
  }
  void TearDown() override { tc::ResetTestControl(); }

  // The levels 1 to 4 that a stream writes now.
  static std::vector<uint32_t> WrittenLevels(uint32_t stream) {
    std::vector<uint32_t> levels;
    for (uint32_t level = 1; level <= 4; ++level)
      if (Voxtrel_LoggingIsLogEnabled(Voxtrel_LoggingGetLogger(stream), level)) levels.push_back(level);
    return levels;
  }

  static std::string LoadedPreset() {
    char name[VOXTREL_LOGGING_PRESET_NAME_SIZE] = "";
    EXPECT_EQ(Voxtrel_LoggingGetLoadedLoggingPreset(name), 0u);
    return name;
  }

  Voxtrel_LoggerHandle interface = nullptr;
};

// A log file in a directory of its own, removed with it.
class LogFileTest : public LoggingTest {
 protected:
  void SetUp() override {
    directory = fs::temp_directory_path() /
                ("vxt_logging_" + std::to_string(getpid()) + "_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(directory);
    fs::create_directories(directory);
    path = (directory / "trace.log").string();
    environment.Set("VXT_LOG_FILE", path);
    LoggingTest::SetUp();
  }
  void TearDown() override {
    LoggingTest::TearDown();
    fs::remove_all(directory);
  }

  std::vector<std::string> FileLines() {
    EXPECT_EQ(Common().FlushLogs(), 0u);
    return ReadLines(path);
  }

  std::vector<fs::path> Archives() {
    std::vector<fs::path> archives;
    for (const auto& entry : fs::directory_iterator(directory))
      if (entry.path().filename() != "trace.log") archives.push_back(entry.path());
    std::sort(archives.begin(), archives.end());
    return archives;
  }

  LoggingEnvironment environment;
  fs::path directory;
  std::string path;
};

TEST_F(LoggingTest, StreamsAreNamedByTheirNumber) {
  const std::pair<uint32_t, const char*> cases[] = {
      {0, "Unknown"}, {1, "VxtInterface"}, {30, "Configuration"}, {31, "Unknown"}, {0xffffffff, "Unknown"},
  };
  for (const auto& [stream, name] : cases) EXPECT_STREQ(Voxtrel_LoggingGetStreamName(stream), name) << stream;
}

TEST_F(LoggingTest, ALineIsWrittenFromTheStreamsLowestLevelUp) {
  const std::pair<uint32_t, std::vector<uint32_t>> cases[] = {
      {1, {1, 2, 3, 4}}, {2, {2, 3, 4}}, {3, {3, 4}}, {4, {4}}, {5, {}},
  };
  tc::StartTraceCapture();
  for (const auto& [lowest, written] : cases) {
    tc::SetLogLevel(lowest);
    tc::ClearCapturedTrace();
    EXPECT_EQ(WrittenLevels(1), written) << lowest;
    for (uint32_t level = 0; level <= 5; ++level) Voxtrel_LoggingLog(interface, level, "line", 0);
    std::vector<uint32_t> captured;
    for (const tc::TraceLine& line : tc::CapturedTrace()) captured.push_back(line.level);
    EXPECT_EQ(captured, written) << lowest;
  }
}

TEST_F(LoggingTest, TheEnvironmentChoosesTheLevel) {
  struct Case {
    std::optional<std::string> level;
    std::vector<uint32_t> written;
    std::string preset;
  };
  const Case cases[] = {
      {std::nullopt, {3, 4}, "Default"},
      {"1", {1, 2, 3, 4}, "Environment"},
      {"5", {}, "Environment"},
      {"9", {3, 4}, "Default"},   // Not a level: ignored
      {"2x", {3, 4}, "Default"},  // Not a level: ignored
  };
  for (const Case& test : cases) {
    LoggingEnvironment environment;
    if (test.level) environment.Set("VXT_LOG_LEVEL", *test.level);
    environment.Apply();
    EXPECT_EQ(WrittenLevels(7), test.written) << test.level.value_or("unset");
    EXPECT_EQ(LoadedPreset(), test.preset) << test.level.value_or("unset");
  }
  LoggingEnvironment environment;
  environment.Set("VXT_LOG_USAGE", "1");
  environment.Apply();
  EXPECT_TRUE(Voxtrel_LoggingIsLoggingUsage());
}

TEST_F(LoggingTest, PresetsSetTheLevelsOfTheStreams) {
  struct Case {
    const char* name;
    std::vector<uint32_t> interfaceLevels;
    std::vector<uint32_t> otherLevels;
  };
  const Case cases[] = {
      {"Trace", {1, 2, 3, 4}, {1, 2, 3, 4}}, {"InterfaceTrace", {1, 2, 3, 4}, {3, 4}}, {"Off", {}, {}},
  };
  for (const Case& preset : cases) {
    ASSERT_TRUE(Voxtrel_LoggingLoadLoggingPreset(preset.name)) << preset.name;
    EXPECT_EQ(LoadedPreset(), preset.name);
    EXPECT_EQ(WrittenLevels(1), preset.interfaceLevels) << preset.name;
    EXPECT_EQ(WrittenLevels(8), preset.otherLevels) << preset.name;
  }
}

TEST_F(LoggingTest, AnUnknownPresetChangesNothing) {
  ASSERT_TRUE(Voxtrel_LoggingLoadLoggingPreset("Trace"));
  for (const char* name : {"trace", "", "Trace ", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(Voxtrel_LoggingLoadLoggingPreset(name));
    EXPECT_EQ(LoadedPreset(), "Trace");
    EXPECT_EQ(WrittenLevels(2), (std::vector<uint32_t>{1, 2, 3, 4}));
  }
}

TEST_F(LoggingTest, NullBuffersAreRefusedAndNothingIsWritten) {
  constexpr uint32_t kInvalidArgument = 0x20000;
  EXPECT_EQ(Voxtrel_LoggingGetLoggingPresetNamesCount(nullptr), kInvalidArgument);
  EXPECT_EQ(Voxtrel_LoggingGetLoggingPresetNames(nullptr, 1), kInvalidArgument);
  EXPECT_EQ(Voxtrel_LoggingGetLoadedLoggingPreset(nullptr), kInvalidArgument);

  char first[VOXTREL_LOGGING_PRESET_NAME_SIZE] = "untouched";
  char* names[] = {first, nullptr};
  EXPECT_EQ(Voxtrel_LoggingGetLoggingPresetNames(names, 2), kInvalidArgument);
  EXPECT_STREQ(first, "untouched");
}

TEST_F(LoggingTest, SuppressionHoldsEveryLineOff) {
  tc::SetLogLevel(1);
  tc::StartTraceCapture();
  tc::SetLoggingSuppressed(true);
  EXPECT_TRUE(Voxtrel_LoggingIsLoggingSuppressed());
  Voxtrel_LoggingLog(interface, 4, "held off", 0);
  tc::SetLoggingSuppressed(false);
  EXPECT_FALSE(Voxtrel_LoggingIsLoggingSuppressed());
  Voxtrel_LoggingLog(interface, 4, "written", 0);
  EXPECT_EQ(tc::CapturedTraceTexts(), std::vector<std::string>{"written"});
}

TEST_F(LoggingTest, CaptureKeepsEachLineAsGiven) {
  tc::SetLogLevel(1);
  Voxtrel_LoggingLog(interface, 2, "before the capture", 0);
  tc::StartTraceCapture();
  Voxtrel_LoggingLog(interface, 2, "Begin", 1);
  Voxtrel_LoggingLog(Voxtrel_LoggingGetLogger(9), 3, "  inner  ", 0);
  Voxtrel_LoggingLog(interface, 2, "End", -1);
  Voxtrel_LoggingLog(interface, 1, nullptr, 0);
  Voxtrel_LoggingLog(nullptr, 4, "no logger", 0);
  Voxtrel_LoggingLog(Voxtrel_LoggingGetLogger(99), 4, "no such stream", 0);
  EXPECT_EQ(tc::CapturedTrace(), (std::vector<tc::TraceLine>{
                                     {1, 2, "Begin", 1},
                                     {9, 3, "  inner  ", 0},
                                     {1, 2, "End", -1},
                                     {1, 1, "", 0},
                                     {0, 4, "no logger", 0},
                                     {0, 4, "no such stream", 0},
                                 }));

  tc::ClearCapturedTrace();
  EXPECT_TRUE(tc::CapturedTrace().empty());
  tc::ResetTestControl();  // Ends the capture
  tc::SetLogLevel(1);
  Voxtrel_LoggingLog(interface, 2, "after the capture", 0);
  EXPECT_TRUE(tc::CapturedTrace().empty());
}

TEST_F(LoggingTest, UsageLinesAreKeptOnlyWhileUsageLoggingIsOn) {
  tc::StartTraceCapture();
  tc::SetLogLevel(5);  // Usage lines do not depend on levels
  EXPECT_FALSE(Voxtrel_LoggingIsLoggingUsage());
  Voxtrel_LoggingLogUsage("VxtInterface", "Start", "off");
  tc::SetUsageLogging(true);
  EXPECT_TRUE(Voxtrel_LoggingIsLoggingUsage());
  Voxtrel_LoggingLogUsage("VxtInterface", "Start", "ClientID: 5");
  Voxtrel_LoggingLogUsage(nullptr, nullptr, nullptr);
  EXPECT_EQ(tc::CapturedUsage(), (std::vector<tc::UsageLine>{{"VxtInterface", "Start", "ClientID: 5"}, {"", "", ""}}));
  EXPECT_TRUE(tc::CapturedTrace().empty());
}

TEST_F(LogFileTest, RawFormatWritesTheTextsAlone) {
  environment.Set("VXT_LOG_FORMAT", "raw");
  environment.Apply();
  tc::SetLogLevel(1);
  tc::SetUsageLogging(true);
  Voxtrel_LoggingLog(interface, 2, "Begin Uninitialization", 1);
  Voxtrel_LoggingLog(interface, 1, "In  InProc_General::FlushLogs() [ClientID: 3]", 0);
  Voxtrel_LoggingLog(interface, 2, "End Uninitialization", -1);
  Voxtrel_LoggingLogUsage("VxtInterface", "Stop", "ClientID: 3");
  EXPECT_EQ(FileLines(), (std::vector<std::string>{"Begin Uninitialization",
                                                    "In  InProc_General::FlushLogs() [ClientID: 3]",
                                                    "End Uninitialization", "USAGE VxtInterface Stop ClientID: 3"}));
}

TEST_F(LogFileTest, DefaultFormatAddsTimeThreadLevelAndStreamAndIndents) {
  tc::SetLogLevel(1);
  tc::StartTraceCapture();  // A file is written during a capture too
  Voxtrel_LoggingLog(interface, 2, "Begin", 1);
  Voxtrel_LoggingLog(Voxtrel_LoggingGetLogger(8), 3, "inside", 0);
  std::thread([] { Voxtrel_LoggingLog(Voxtrel_LoggingGetLogger(1), 4, "other thread", 0); }).join();
  Voxtrel_LoggingLog(interface, 2, "End", -1);
  Voxtrel_LoggingLog(interface, 1, "after", 0);

  const std::string prefix = R"(^\[\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}\] \[\d+\] )";
  const std::vector<std::string> patterns = {
      prefix + R"(\[info\] \[VxtInterface\] Begin$)",
      prefix + R"(\[warning\] \[RunControl\]   inside$)",
      prefix + R"(\[error\] \[VxtInterface\] other thread$)",  // Nesting is per thread
      prefix + R"(\[info\] \[VxtInterface\] End$)",
      prefix + R"(\[trace\] \[VxtInterface\] after$)",
  };
  const std::vector<std::string> lines = FileLines();
  ASSERT_EQ(lines.size(), patterns.size());
  for (size_t i = 0; i < lines.size(); ++i) EXPECT_TRUE(std::regex_match(lines[i], std::regex(patterns[i]))) << lines[i];
}

TEST_F(LogFileTest, ClearEmptiesTheFileAndLoggingGoesOn) {
  environment.Set("VXT_LOG_FORMAT", "raw");
  environment.Apply();
  Voxtrel_LoggingLog(interface, 4, "old", 0);
  ASSERT_EQ(FileLines(), std::vector<std::string>{"old"});
  EXPECT_EQ(Common().ClearLogs(), 0u);
  EXPECT_TRUE(FileLines().empty());
  Voxtrel_LoggingLog(interface, 4, "new", 0);
  EXPECT_EQ(FileLines(), std::vector<std::string>{"new"});
}

TEST_F(LogFileTest, ArchiveMovesTheFileAsideUnderAFreeStampedName) {
  environment.Set("VXT_LOG_FORMAT", "raw");
  environment.Apply();
  Voxtrel_LoggingLog(interface, 4, "first", 0);
  EXPECT_EQ(Common().ArchiveLogs(), 0u);
  Voxtrel_LoggingLog(interface, 4, "second", 0);
  EXPECT_EQ(Common().ArchiveLogs(), 0u);
  Voxtrel_LoggingLog(interface, 4, "third", 0);

  EXPECT_EQ(FileLines(), std::vector<std::string>{"third"});
  const std::vector<fs::path> archives = Archives();
  ASSERT_EQ(archives.size(), 2u);
  const std::regex stamped(R"(trace\.log\.\d{8}T\d{6}(\.\d+)?)");
  for (const fs::path& archive : archives)
    EXPECT_TRUE(std::regex_match(archive.filename().string(), stamped)) << archive;
  // Two archives in the same second: the later one gets ".1". Otherwise
  // the names sort by time.
  std::vector<std::string> contents;
  for (const fs::path& archive : archives) contents.push_back(ReadLines(archive.string()).at(0));
  EXPECT_EQ(contents, (std::vector<std::string>{"first", "second"}));
}

TEST_F(LogFileTest, ThreadsLoggingAtOnceLoseAndMixNoLine) {
  environment.Set("VXT_LOG_FORMAT", "raw");
  environment.Apply();
  tc::SetLogLevel(1);
  tc::StartTraceCapture();
  constexpr int kThreads = 4;
  constexpr int kLines = 200;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([t] {
      const Voxtrel_LoggerHandle logger = Voxtrel_LoggingGetLogger(1 + t);
      for (int i = 0; i < kLines; ++i) {
        Voxtrel_LoggingLog(logger, 2, ("thread " + std::to_string(t) + " line " + std::to_string(i)).c_str(),
                           i % 2 == 0 ? 1 : -1);
        if (i % 50 == 0) Common().FlushLogs();
      }
    });
  for (std::thread& thread : threads) thread.join();

  std::vector<std::string> fromFile = FileLines();
  std::vector<std::string> captured = tc::CapturedTraceTexts();
  ASSERT_EQ(fromFile.size(), size_t{kThreads * kLines});
  std::sort(fromFile.begin(), fromFile.end());
  std::sort(captured.begin(), captured.end());
  EXPECT_EQ(fromFile, captured);
}

}  // namespace
