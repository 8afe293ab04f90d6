// The Configuration component: listing, selection, parameters, and what is
// refused with which message.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <unistd.h>

#include <gtest/gtest.h>

#include "Configuration.h"
#include "TargetManager.h"
#include "TargetTestSupport.h"

namespace {

using namespace voxtrel::platform::target;
using vxt::test::CallPosting;
using vxt::test::kConfigurationsDir;
using vxt::test::kDataDir;
using vxt::test::Posted;
using vxt::test::ScopedEnvironment;
using Names = std::vector<std::string>;

const ConfigurationComponent& Configuration() { return vxt::test::Get(&Voxtrel_GetConfiguration); }

const TargetManagerComponent& TargetManager() { return vxt::test::Get(&Voxtrel_GetTargetManager); }

Names ListedNames() {
  uint32_t count = 0;
  EXPECT_EQ(Configuration().GetAvailableConfigurationCount(&count), 0u);
  std::vector<VXT_ConfigurationName> records(count);
  EXPECT_EQ(Configuration().GetAvailableConfigurations(count, records.data()), 0u);
  Names names;
  for (const VXT_ConfigurationName& record : records) names.emplace_back(record.name);
  return names;
}

std::string SelectedName() { return TargetModel::Instance().CurrentSelection()->origin.name; }

std::string BuiltProbeSerial() {
  const auto live = TargetModel::Instance().Topology();
  if (!live) return "(nothing built)";
  for (const Node& node : live->Layout().Nodes())
    if (const DebugPortDetails* port = node.As<DebugPortDetails>(); port && port->probe)
      return port->probe->uniqueIdentifier;
  return "(no probe)";
}

std::string BuiltDomainIdentifier() {
  const auto live = TargetModel::Instance().Topology();
  return live ? live->Layout().Find(live->Layout().TargetDomainIds().at(0))->identifier : "(nothing built)";
}

class ConfigurationTest : public ::testing::Test {
 protected:
  void SetUp() override { vxt::test::ResetTarget(); }
  void TearDown() override { vxt::test::ResetTarget(); }

  // Configurations are looked up in the test data unless a test says otherwise.
  ScopedEnvironment directory_{"VXT_CONFIGURATIONS_DIR", kDataDir};
};

TEST_F(ConfigurationTest, ListsTheBuiltInDefaultThenTheDirectorysFiles) {
  struct Case {
    std::optional<std::string> directory;
    Names names;
  };
  const Case cases[] = {
      {kConfigurationsDir, {"Default", "HostWithBmc", "TwoSocketServer"}},
      {kDataDir,
       {"Default", "BrokenSyntax", "DuplicateIdentifier", "Empty", "MissingTargetDomains", "SmallBoard",
        "UnknownInstruction"}},
      {kDataDir + "/NoSuchDirectory", {"Default"}},
      // Without the variable the source tree's directory is used.
      {std::nullopt, {"Default", "HostWithBmc", "TwoSocketServer"}},
  };
  for (const Case& listing : cases) {
    ScopedEnvironment directory("VXT_CONFIGURATIONS_DIR", listing.directory);
    EXPECT_EQ(ListedNames(), listing.names) << listing.directory.value_or("(unset)");
  }
}

TEST_F(ConfigurationTest, FillingNeverWritesPastTheCallersMaximum) {
  ScopedEnvironment directory("VXT_CONFIGURATIONS_DIR", kConfigurationsDir);
  constexpr uint32_t kRecords = 6;
  for (uint32_t maximum : {0u, 1u, 3u, 5u}) {
    VXT_ConfigurationName records[kRecords];
    std::memset(records, 'x', sizeof records);
    ASSERT_EQ(Configuration().GetAvailableConfigurations(maximum, records), 0u);
    const Names expected = {"Default", "HostWithBmc", "TwoSocketServer", "", ""};
    for (uint32_t index = 0; index < maximum; ++index) EXPECT_EQ(records[index].name, expected[index]) << maximum;
    for (uint32_t index = maximum; index < kRecords; ++index)
      EXPECT_EQ(std::string(records[index].name, sizeof records[index].name),
                std::string(VXT_CONFIGURATION_NAME_SIZE, 'x'))
          << maximum << " " << index;
  }
}

TEST_F(ConfigurationTest, ALongNameIsCutToItsRecordAndTerminated) {
  const std::filesystem::path directory =
      std::filesystem::temp_directory_path() / ("vxt-configurations-" + std::to_string(getpid()));
  std::filesystem::create_directories(directory);
  const std::string longName(200, 'n');
  std::ofstream(directory / (longName + ".json")) << "{}";
  ScopedEnvironment environment("VXT_CONFIGURATIONS_DIR", directory.string());
  VXT_ConfigurationName records[2];
  std::memset(records, 'x', sizeof records);
  EXPECT_EQ(Configuration().GetAvailableConfigurations(2, records), 0u);
  EXPECT_EQ(std::string(records[1].name), longName.substr(0, VXT_CONFIGURATION_NAME_SIZE - 1));
  std::filesystem::remove_all(directory);
}

TEST_F(ConfigurationTest, SelectsByNameByPathAndByANameInTheDirectory) {
  const auto& configuration = Configuration();
  EXPECT_EQ(SelectedName(), "Default");  // Nothing selected yet
  struct Case {
    std::function<uint32_t()> select;
    std::string name;
    std::string origin;
  };
  const std::string server = kConfigurationsDir + "/TwoSocketServer.json";
  const Case cases[] = {
      {[&] { return configuration.SelectConfigurationByName("SmallBoard"); }, "SmallBoard",
       kDataDir + "/SmallBoard.json"},
      {[&] { return configuration.SelectConfigurationByFileName(server.c_str()); }, "TwoSocketServer", server},
      {[&] { return configuration.SelectConfigurationByName("Default"); }, "Default", "Default (built in)"},
      // A relative name not found in the working directory names a file of the configurations directory.
      {[&] { return configuration.SelectConfigurationByFileName("SmallBoard.json"); }, "SmallBoard",
       kDataDir + "/SmallBoard.json"},
  };
  for (const Case& selection : cases) {
    EXPECT_EQ(CallPosting(selection.select), (Posted{0, ""})) << selection.name;
    EXPECT_EQ(SelectedName(), selection.name);
    EXPECT_EQ(TargetModel::Instance().CurrentSelection()->origin.where, selection.origin);
  }
}

TEST_F(ConfigurationTest, TheBuiltInDefaultIsTheDefaultFile) {
  std::ifstream file(kConfigurationsDir + "/Default.json", std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  EXPECT_EQ(TargetModel::Instance().CurrentSelection()->text, text.str());
}

TEST_F(ConfigurationTest, ABadSelectionSaysWhatIsWrongAndKeepsThePreviousOne) {
  const auto& configuration = Configuration();
  ASSERT_EQ(configuration.SelectConfigurationByName("SmallBoard"), 0u);
  const std::string invalid = "Target description '" + kDataDir + "/";
  struct Case {
    std::function<uint32_t()> select;
    Posted posted;
  };
  const Case cases[] = {
      {[&] { return configuration.SelectConfigurationByName("NoSuch"); },
       {kConfigurationNotFound,
        "No configuration is named 'NoSuch' in '" + kDataDir +
            "' (available: Default, BrokenSyntax, DuplicateIdentifier, Empty, MissingTargetDomains, SmallBoard, "
            "UnknownInstruction)"}},
      {[&] { return configuration.SelectConfigurationByName("BrokenSyntax"); },
       {kInvalidDescription, invalid + "BrokenSyntax.json' is invalid at line 5, column 3: syntax error while "
                                       "parsing value - unexpected ']'; expected '[', '{', or a literal"}},
      {[&] { return configuration.SelectConfigurationByName("Empty"); },
       {kInvalidDescription, invalid + "Empty.json' is invalid at line 1, column 1: syntax error while parsing value "
                                       "- unexpected end of input; expected '[', '{', or a literal"}},
      {[&] { return configuration.SelectConfigurationByFileName((kDataDir + "/Nope.json").c_str()); },
       {kConfigurationNotFound, "Target description file '" + kDataDir + "/Nope.json' does not exist"}},
      {[&] { return configuration.SelectConfigurationByFileName(kDataDir.c_str()); },
       {kInvalidDescription, "Target description file '" + kDataDir + "' is not a regular file"}},
      {[&] { return configuration.SelectConfigurationByName(nullptr); },
       {kNullArgument, "Configuration.SelectConfigurationByName was given a null configurationName"}},
      {[&] { return configuration.SelectConfigurationByFileName(nullptr); },
       {kNullArgument, "Configuration.SelectConfigurationByFileName was given a null fileName"}},
  };
  for (const Case& refused : cases) {
    EXPECT_EQ(CallPosting(refused.select), refused.posted);
    EXPECT_EQ(SelectedName(), "SmallBoard") << refused.posted.message;
  }
}

TEST_F(ConfigurationTest, ParametersApplyToTheSelectedDescriptionUntilTheNextSelection) {
  const auto& configuration = Configuration();
  const auto& manager = TargetManager();
  ASSERT_EQ(configuration.SelectConfigurationByName("SmallBoard"), 0u);
  auto set = [&](std::vector<const char*> names, std::vector<const char*> values) {
    return configuration.SetConfigurationParameters(static_cast<uint32_t>(names.size()), names.data(), values.data());
  };
  auto build = [&] {
    manager.Uninitialize();
    EXPECT_EQ(manager.FinishInitialization(), 0u);
    return BuiltDomainIdentifier() + " " + BuiltProbeSerial();
  };
  EXPECT_EQ(build(), "SmallBoard SMALL-1");
  manager.Uninitialize();
  EXPECT_EQ(set({"serial"}, {"S-42"}), 0u);
  EXPECT_EQ(build(), "SmallBoard S-42");
  manager.Uninitialize();
  EXPECT_EQ(set({"board"}, {"Big"}), 0u);  // The serial keeps its value
  EXPECT_EQ(build(), "BigBoard S-42");
  manager.Uninitialize();
  ASSERT_EQ(configuration.SelectConfigurationByName("SmallBoard"), 0u);
  EXPECT_EQ(build(), "SmallBoard SMALL-1");
}

TEST_F(ConfigurationTest, ARefusedParameterChangesNothing) {
  const auto& configuration = Configuration();
  ASSERT_EQ(configuration.SelectConfigurationByName("SmallBoard"), 0u);
  const char* serial[] = {"serial"};
  const char* value[] = {"S-7"};
  ASSERT_EQ(configuration.SetConfigurationParameters(1, serial, value), 0u);
  struct Case {
    std::vector<const char*> names;
    std::vector<const char*> values;
    Posted posted;
  };
  const Case cases[] = {
      {{"colour"},
       {"red"},
       {kUnknownParameter, "Configuration parameter 'colour' is not declared by target description '" + kDataDir +
                               "/SmallBoard.json' (it declares: serial, board)"}},
      {{"serial", "serial"},
       {"A", "B"},
       {kUnknownParameter, "Configuration parameter 'serial' is given more than once"}},
      {{"serial", "board"},
       {"A", nullptr},
       {kNullArgument, "Configuration.SetConfigurationParameters was given a null parameter value 1"}},
      {{nullptr}, {"A"}, {kNullArgument, "Configuration.SetConfigurationParameters was given a null parameter name 0"}},
      {{"serial", "board"},
       {"A", "Bad Name"},
       {kInvalidDescription, "Target description '" + kDataDir +
                                 "/SmallBoard.json' is invalid at /targetDomains/0/identifier: identifier 'Bad "
                                 "NameBoard' may hold only letters, digits, '_', '-' and '.'"}},
  };
  for (const Case& refused : cases) {
    EXPECT_EQ(CallPosting([&] {
                return configuration.SetConfigurationParameters(static_cast<uint32_t>(refused.names.size()),
                                                                refused.names.data(), refused.values.data());
              }),
              refused.posted);
    EXPECT_EQ(TargetModel::Instance().CurrentSelection()->values, (ParameterValues{{"serial", "S-7"}}))
        << refused.posted.message;
  }
  EXPECT_EQ(CallPosting([&] { return configuration.SetConfigurationParameters(1, nullptr, value); }),
            (Posted{kNullArgument, "Configuration.SetConfigurationParameters was given a null parameterNames"}));
  // Nothing to set is no mistake, whatever the arrays are.
  EXPECT_EQ(configuration.SetConfigurationParameters(0, nullptr, nullptr), 0u);
}

TEST_F(ConfigurationTest, ParametersWithoutASelectionBelongToTheDefault) {
  const char* names[] = {"probeSerial"};
  const char* values[] = {"VXTSIM-0042"};
  EXPECT_EQ(Configuration().SetConfigurationParameters(1, names, values), 0u);
  EXPECT_EQ(SelectedName(), "Default");
  ASSERT_EQ(TargetManager().FinishInitialization(), 0u);
  EXPECT_EQ(BuiltProbeSerial(), "VXTSIM-0042");
}

TEST_F(ConfigurationTest, NothingChangesWhileTheTargetIsInitialized) {
  const auto& configuration = Configuration();
  const auto& manager = TargetManager();
  ASSERT_EQ(manager.FinishInitialization(), 0u);
  const std::string server = kConfigurationsDir + "/TwoSocketServer.json";
  const char* names[] = {"probeSerial"};
  const char* values[] = {"X"};
  const std::string tail =
      " while the target is initialized with configuration 'Default'; the target must be "
      "uninitialized first";
  EXPECT_EQ(CallPosting([&] { return configuration.SelectConfigurationByName("SmallBoard"); }),
            (Posted{kRefusedInThisState, "Configuration 'SmallBoard' cannot be selected" + tail}));
  EXPECT_EQ(CallPosting([&] { return configuration.SelectConfigurationByFileName(server.c_str()); }),
            (Posted{kRefusedInThisState, "Configuration 'TwoSocketServer' cannot be selected" + tail}));
  EXPECT_EQ(CallPosting([&] { return configuration.SetConfigurationParameters(1, names, values); }),
            (Posted{kRefusedInThisState, "Configuration parameters cannot be set" + tail}));
  EXPECT_EQ(SelectedName(), "Default");
  EXPECT_EQ(BuiltProbeSerial(), "VXTSIM-0001");

  EXPECT_EQ(manager.Uninitialize(), 0u);
  EXPECT_EQ(configuration.SelectConfigurationByName("SmallBoard"), 0u);
  EXPECT_EQ(manager.FinishInitialization(), 0u);
  EXPECT_EQ(BuiltDomainIdentifier(), "SmallBoard");
}

}  // namespace
