// The General service: identification, logging control, clients.
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Error.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::MakeClient;

constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);

class GeneralTest : public vxt::test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    client = MakeClient(3, "tool_3@here");
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    ASSERT_EQ(FinishInitialization(), 0);
    void* service = nullptr;
    ASSERT_EQ(GetService(nullptr, VXT_Service_General, &service), 0);
    general = static_cast<IInternalService_General*>(service);
    ClearTrace();
  }
  void TearDown() override {
    Disconnect(3);
    PlatformTest::TearDown();
  }

  std::vector<std::string> PresetNames() {
    uint32_t count = 0;
    EXPECT_EQ(general->GetLoggingPresetNamesCount(&count), 0);
    std::vector<std::vector<char>> buffers(count, std::vector<char>(VXT_LOGGING_PRESET_NAME_SIZE));
    std::vector<char*> names;
    for (auto& buffer : buffers) names.push_back(buffer.data());
    EXPECT_EQ(general->GetLoggingPresetNames(count, names.data()), 0);
    return {names.begin(), names.end()};
  }

  VXT_Client client{};
  IInternalService_General* general = nullptr;
};

TEST_F(GeneralTest, RefusalsUseTheirOwnWording) {
  VXT_Version unsized{};
  unsized.major = 77;
  struct Case {
    std::function<VXT_Result(IInternalService_General&)> call;
    std::string message;
    VXT_Result code = kInvalidArgument;
  };
  const Case cases[] = {
      {[](auto& g) { return g.GetImplementationVersion(nullptr); },
       "InProc_General::GetImplementationVersion() argument error (version) : Null pointer"},
      {[&](auto& g) { return g.GetImplementationVersion(&unsized); },
       "InProc_General::GetImplementationVersion() argument error (version) : Structure size not initialized",
       static_cast<VXT_Result>(0x80000010)},
      {[](auto& g) { return g.GetLoggingPresetNamesCount(nullptr); },
       "InProc_General::GetLoggingPresetNamesCount(): argument error (numPresetNames) : NULL pointer"},
      {[](auto& g) {
         VXT_Client c{};
         return g.GetConnectedClients(1, nullptr, &c);
       },
       "InProc_General::GetConnectedClients(): argument error (numConnectedClients) : NULL pointer"},
      {[](auto& g) {
         uint32_t n = 0;
         return g.GetConnectedClients(1, &n, nullptr);
       },
       "InProc_General::GetConnectedClients(): argument error (connectedClients) : NULL pointer"},
  };
  for (const Case& refused : cases) {
    EXPECT_EQ(refused.call(*general), refused.code) << refused.message;
    EXPECT_EQ(GetLastErrorMessage(), refused.message);
  }
  EXPECT_EQ(unsized.major, 77u);
}

TEST_F(GeneralTest, PresetsAreListedCountedAndLoaded) {
  const std::vector<std::string> names = PresetNames();
  ASSERT_GE(names.size(), 2u);

  std::vector<char> buffer(VXT_LOGGING_PRESET_NAME_SIZE);
  std::vector<char*> one{buffer.data()};
  const auto count = static_cast<uint32_t>(names.size());
  std::vector<char*> tooMany(count + 1, buffer.data());
  EXPECT_EQ(general->GetLoggingPresetNames(0, one.data()), 0);
  EXPECT_EQ(general->GetLoggingPresetNames(count + 1, tooMany.data()), static_cast<VXT_Result>(0x80000002));
  EXPECT_STREQ(GetLastErrorMessage(),
               "InProc_General::GetLoggingPresetNames(): argument error (numPresetNames) : value is greater than the "
               "available number of names");

  EXPECT_EQ(general->LoadLoggingPreset("no such preset"), static_cast<VXT_Result>(0x8000001e));
  EXPECT_STREQ(
      GetLastErrorMessage(),
      "InProc_General::LoadLoggingPreset(): argument error (presetName) : an unknown preset name was specified");

  for (const std::string& name : names) {
    EXPECT_EQ(general->LoadLoggingPreset(name.c_str()), 0) << name;
    char loaded[VXT_LOGGING_PRESET_NAME_SIZE] = "";
    EXPECT_EQ(general->GetLoadedLoggingPreset(loaded), 0);
    EXPECT_EQ(loaded, name);
  }
  EXPECT_EQ(tc::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "General::LoadLoggingPreset"),
            names.size() + 1);
}

TEST_F(GeneralTest, ConnectedClientsFillRecordsOfEitherSize) {
  VXT_Client other = MakeClient(9, "other_9@there");
  ASSERT_EQ(StartNewInstance(&other, 1, 0, nullptr), 0);

  uint32_t count = 0;
  EXPECT_EQ(general->GetNumConnectedClients(&count), 0);
  EXPECT_EQ(count, 2u);

  // A short record, then a long one, in one buffer.
  std::vector<unsigned char> buffer(VXT_CLIENT_SHORT_SIZE + VXT_CLIENT_SIZE, 0);
  const uint32_t longSize = VXT_CLIENT_SIZE;
  std::memcpy(buffer.data() + VXT_CLIENT_SHORT_SIZE, &longSize, sizeof longSize);
  auto* records = reinterpret_cast<VXT_Client*>(buffer.data());
  EXPECT_EQ(general->GetConnectedClients(2, &count, records), 0);
  EXPECT_EQ(count, 2u);
  const auto* first = reinterpret_cast<const VXT_Client*>(buffer.data());
  const auto* second = reinterpret_cast<const VXT_Client*>(buffer.data() + VXT_CLIENT_SHORT_SIZE);
  EXPECT_EQ(first->clientId, 3u);
  EXPECT_STREQ(first->identifier, "tool_3@here");
  EXPECT_EQ(second->clientId, 9u);
  EXPECT_STREQ(second->identifier, "other_9@there");
  EXPECT_EQ(second->isLocal, 1);

  VXT_Client bad[2]{};
  bad[0].structureSize = VXT_CLIENT_SIZE;  // So that the second record starts at bad[1]
  bad[1].structureSize = 5;
  EXPECT_EQ(general->GetConnectedClients(2, &count, bad), static_cast<VXT_Result>(0x80000010));
  EXPECT_STREQ(GetLastErrorMessage(), "InProc_General::GetConnectedClients(): connectedClients[1] structureSize is: 5");
  EXPECT_EQ(bad[0].clientId, 3u);  // Records before the bad one stay filled

  ASSERT_EQ(Disconnect(9), 0);
}

// The In and Out lines of each operation that succeeds, and the calls it
// counts: only the operations that change the session count, each under its
// own name.
TEST_F(GeneralTest, EachOperationTracesItsArgumentsAndCountsOnlyWhatChangesTheSession) {
  char identifier[VXT_IMPLEMENTATION_IDENTIFIER_SIZE];
  char presetName[VXT_LOGGING_PRESET_NAME_SIZE];
  char* presetNames[] = {presetName};
  uint32_t count = 0;
  VXT_Client record{};
  VXT_Version version{VXT_VERSION_SIZE, 0, 0, 0, 0};
  const std::string presetCount = std::to_string(PresetNames().size());
  struct Case {
    std::function<VXT_Result()> call;
    std::string inLine;
    std::string outLine;
    std::string counted;       // Empty: counts nothing
    std::string reaches = "";  // The component operation called once, if any
    std::string between = "";  // A line between In and Out, if any
  };
  const Case cases[] = {
      {[&] { return general->GetImplementationIdentifier(identifier); },
       "In  InProc_General::GetImplementationIdentifier() [ClientID: 3]",
       "Out InProc_General::GetImplementationIdentifier(identifier = 'Voxtrel:Main (rev 650678)') ErrorCode = "
       "0x00000000 [ClientID: 3]",
       ""},
      {[&] { return general->GetImplementationVersion(&version); },
       "In  InProc_General::GetImplementationVersion() [ClientID: 3]",
       "Out InProc_General::GetImplementationVersion(version = {major = 1 minor = 2011 build = 4508 classification = "
       "100}) ErrorCode = 0x00000000 [ClientID: 3]",
       ""},
      // The count stands behind the parentheses.
      {[&] { return general->GetLoggingPresetNamesCount(&count); },
       "In  InProc_General::GetLoggingPresetNamesCount() [ClientID: 3]",
       "Out InProc_General::GetLoggingPresetNamesCount() numPresetNames = " + presetCount +
           " ErrorCode = 0x00000000 [ClientID: 3]",
       ""},
      {[&] { return general->GetLoggingPresetNames(1, presetNames); },
       "In  InProc_General::GetLoggingPresetNames(numPresetNames = 1) [ClientID: 3]",
       "Out InProc_General::GetLoggingPresetNames() ErrorCode = 0x00000000 [ClientID: 3]", ""},
      {[&] { return general->LoadLoggingPreset("Trace"); },
       "In  InProc_General::LoadLoggingPreset(presetName = 'Trace') [ClientID: 3]",
       "Out InProc_General::LoadLoggingPreset() ErrorCode = 0x00000000 [ClientID: 3]", "General::LoadLoggingPreset"},
      {[&] { return general->GetNumConnectedClients(&count); },
       "In  InProc_General::GetNumConnectedClients() [ClientID: 3]",
       "Out InProc_General::GetNumConnectedClients(numConnectedClients = 1) ErrorCode = 0x00000000 [ClientID: 3]", "",
       "Common.GetNumConnectedClients"},
      {[&] { return general->GetConnectedClients(0, &count, &record); },
       "In  InProc_General::GetConnectedClients(maxNumConnectedClients = 0) [ClientID: 3]",
       "Out InProc_General::GetConnectedClients(numConnectedClients = 0) ErrorCode = 0x00000000 [ClientID: 3]", "",
       "Common.GetConnectedClients"},  // A maximum of 0 still asks Common
      // The user's message is written at level two.
      {[&] { return general->WriteLogMessage("hello"); },
       "In  InProc_General::WriteLogMessage(message = 'hello') [ClientID: 3]",
       "Out InProc_General::WriteLogMessage() ErrorCode = 0x00000000 [ClientID: 3]", "General::WriteLogMessage", "",
       "USER MESSAGE: 'hello' [ClientID: 3]"},
      {[&] { return general->FlushLogs(); }, "In  InProc_General::FlushLogs() [ClientID: 3]",
       "Out InProc_General::FlushLogs() ErrorCode = 0x00000000 [ClientID: 3]", "General::FlushLogs",
       "Common.FlushLogs"},
  };
  for (const Case& operation : cases) {
    ClearTrace();
    tc::ClearTelemetryCalls();
    tc::StartRecordingCalls();
    EXPECT_EQ(operation.call(), 0) << operation.inLine;
    std::vector<std::string> lines{operation.inLine, operation.outLine};
    if (!operation.between.empty()) lines.insert(lines.begin() + 1, operation.between);
    EXPECT_EQ(Trace(), lines);
    std::vector<tc::TelemetryCall> expected;
    if (!operation.counted.empty())
      expected.push_back({"CountEvent", {"Server_Lifespan", "VXT_Call", "Method", operation.counted}});
    EXPECT_EQ(tc::TelemetryCalls(), expected) << operation.inLine;
    if (!operation.reaches.empty()) {
      EXPECT_EQ(tc::CallCount(operation.reaches), 1u) << operation.inLine;
    }
  }
  ClearTrace();
  tc::SetLogLevel(3);
  EXPECT_EQ(general->WriteLogMessage("quiet"), 0);
  EXPECT_TRUE(Trace().empty());
}

}  // namespace
