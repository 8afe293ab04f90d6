// Reading target descriptions: the topology built from them and the whole
// message of each kind of mistake.
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include <gtest/gtest.h>

#include "../../Source/Platform/Target/FacetChecks.h"
#include "../../Source/Platform/Target/JsonReader.h"
#include "TargetTestSupport.h"

namespace {

using namespace voxtrel::platform::target;
using vxt::test::kConfigurationsDir;

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

const DescriptionOrigin kOrigin{"case", "case.json"};

std::variant<ParsedDescription, Failure> Parse(const std::string& text, const ParameterValues& values = {}) {
  return ParseTargetDescription(text, kOrigin, values);
}

std::shared_ptr<const Topology> ParseValid(const std::string& text, const ParameterValues& values = {}) {
  auto result = Parse(text, values);
  if (const Failure* failure = std::get_if<Failure>(&result)) {
    ADD_FAILURE() << failure->message;
    return nullptr;
  }
  return std::get<ParsedDescription>(result).topology;
}

Failure ParseFailure(const std::string& text, const ParameterValues& values = {}) {
  auto result = Parse(text, values);
  if (const Failure* failure = std::get_if<Failure>(&result)) return *failure;
  return {0, "(the description was accepted)"};
}

const Node& NodeNamed(const Topology& topology, const std::string& identifier, size_t domain = 0) {
  const Node* node = topology.FindByIdentifier(topology.TargetDomainIds().at(domain), identifier);
  if (!node) throw std::runtime_error("no node " + identifier);
  return *node;
}

// A small valid description each mistake below is made in.
Json BaseDescription() {
  return Json::parse(R"({
    "formatVersion": 1,
    "parameters": { "serial": "S1" },
    "targetDomains": [ {
      "packages": [ { "cores": [ { "threads": 2, "debugAccess": { "tap": "Tap0", "instruction": "IDCODE" } } ] } ],
      "debugPorts": [ { "jtagChains": [ { "tapControllers": [ {
        "deviceType": "CPU", "idcode": "0x10000001", "irLength": 4,
        "instructions": [ { "name": "IDCODE", "opcode": 1, "drLength": 32 },
                          { "name": "BYPASS", "opcode": "0xF", "drLength": 1 } ] } ] } ] } ]
    } ]
  })");
}

TEST(TargetDescriptionTest, EachMistakeGivesItsWholeMessage) {
  const std::string tap = "/targetDomains/0/debugPorts/0/jtagChains/0/tapControllers/0";
  const std::string core = "/targetDomains/0/packages/0/cores/0";
  struct Case {
    const char* name;
    std::function<void(Json&)> mistake;
    std::string place;
    std::string what;
  };
  const Case cases[] = {
      {"missing member", [](Json& d) { d.erase("formatVersion"); }, "the top level", "missing member 'formatVersion'"},
      {"newer format", [](Json& d) { d["formatVersion"] = 2; }, "/formatVersion",
       "format version 2 is not supported (expected 1)"},
      {"no target domain", [](Json& d) { d["targetDomains"] = Json::array(); }, "/targetDomains",
       "expected at least one element"},
      {"object for an array", [](Json& d) { d["targetDomains"][0]["packages"] = Json::object(); },
       "/targetDomains/0/packages", "expected an array, found object"},
      {"text for a count", [](Json& d) { d["targetDomains"][0]["packages"][0]["cores"][0]["threads"] = "two"; },
       core + "/threads", "expected an unsigned integer (or a string holding one), found string \"two\""},
      {"object for threads",
       [](Json& d) { d["targetDomains"][0]["packages"][0]["cores"][0]["threads"] = Json::object(); }, core + "/threads",
       "expected a thread count or an array of threads, found object"},
      {"value out of range",
       [](Json& d) { d["targetDomains"][0]["debugPorts"][0]["jtagChains"][0]["tapControllers"][0]["irLength"] = 1; },
       tap + "/irLength", "value 1 is out of range 2..64"},
      {"misspelt member", [](Json& d) { d["targetDomains"][0]["packages"][0]["chidren"] = Json::array(); },
       "/targetDomains/0/packages/0/chidren", "unknown member 'chidren'"},
      {"duplicate identifier",
       [](Json& d) {
         d["targetDomains"][0]["packages"][0]["identifier"] = "Main";
         d["targetDomains"][0]["packages"].push_back(Json{{"identifier", "Main"}});
       },
       "/targetDomains/0/packages/1",
       "duplicate identifier 'Main' in its target domain (first used at /targetDomains/0/packages/0)"},
      {"identifier that a default name takes again",
       [](Json& d) {
         d["targetDomains"][0]["packages"][0]["cores"][0]["identifier"] = "Core1";
         d["targetDomains"][0]["packages"][0]["cores"].push_back(Json::object());
       },
       "/targetDomains/0/packages/0/cores/1",
       "duplicate identifier 'Core1' in its target domain (first used at /targetDomains/0/packages/0/cores/0)"},
      {"unknown TAP instruction",
       [](Json& d) { d["targetDomains"][0]["packages"][0]["cores"][0]["debugAccess"]["instruction"] = "HALT"; },
       core + "/debugAccess/instruction", "TAP controller 'Tap0' has no instruction 'HALT' (it has: IDCODE, BYPASS)"},
      {"unknown TAP controller",
       [](Json& d) { d["targetDomains"][0]["packages"][0]["cores"][0]["debugAccess"]["tap"] = "Tap9"; },
       core + "/debugAccess/tap", "unknown TAP controller 'Tap9' in its target domain"},
      {"debug access through a package",
       [](Json& d) { d["targetDomains"][0]["packages"][0]["cores"][0]["debugAccess"]["tap"] = "Package0"; },
       core + "/debugAccess/tap", "'Package0' is a LogicalPackage, not a TAP controller"},
      {"IDCODE without bit 0",
       [](Json& d) {
         d["targetDomains"][0]["debugPorts"][0]["jtagChains"][0]["tapControllers"][0]["idcode"] = "0x10000000";
       },
       tap + "/idcode", "an IDCODE has bit 0 set"},
      {"register reaching something unknown",
       [](Json& d) {
         d["targetDomains"][0]["debugPorts"][0]["jtagChains"][0]["tapControllers"][0]["instructions"][0]["reaches"] =
             "io";
       },
       tap + "/instructions/0/reaches", "a register reaches \"memoryAddress\" or \"memoryData\", not 'io'"},
      {"memory data in part of a byte",
       [](Json& d) {
         auto& instructions = d["targetDomains"][0]["debugPorts"][0]["jtagChains"][0]["tapControllers"][0]["instructions"];
         instructions.push_back(Json{{"name", "A"}, {"opcode", 2}, {"drLength", 32}, {"reaches", "memoryAddress"}});
         instructions.push_back(Json{{"name", "D"}, {"opcode", 3}, {"drLength", 12}, {"reaches", "memoryData"}});
       },
       tap + "/instructions/3/drLength", "a \"memoryData\" register is 8 to 64 bits, whole bytes"},
      {"memory data without an address",
       [](Json& d) {
         d["targetDomains"][0]["debugPorts"][0]["jtagChains"][0]["tapControllers"][0]["instructions"].push_back(
             Json{{"name", "D"}, {"opcode", 3}, {"drLength", 32}, {"reaches", "memoryData"}});
       },
       tap + "/instructions", "a \"memoryData\" register needs a \"memoryAddress\" register in its TAP controller"},
      {"opcode wider than the IR",
       [](Json& d) {
         d["targetDomains"][0]["debugPorts"][0]["jtagChains"][0]["tapControllers"][0]["instructions"][1]["opcode"] =
             "0x1F";
       },
       tap + "/instructions/1/opcode", "value 31 is out of range 0..15"},
      {"opcode used twice",
       [](Json& d) {
         d["targetDomains"][0]["debugPorts"][0]["jtagChains"][0]["tapControllers"][0]["instructions"][1]["opcode"] = 1;
       },
       tap + "/instructions/1/opcode", "opcode 1 is already used by another instruction of this TAP controller"},
      {"repeated core with an identifier",
       [](Json& d) {
         d["targetDomains"][0]["packages"][0]["cores"][0]["count"] = 2;
         d["targetDomains"][0]["packages"][0]["cores"][0]["identifier"] = "Big";
       },
       core + "/identifier", "an identifier cannot be given to a core repeated by 'count'"},
      {"core in two groups",
       [](Json& d) {
         d["targetDomains"][0]["coreGroups"] = Json::parse(R"([{"members": ["Core0"]}, {"members": ["Package0"]}])");
       },
       "/targetDomains/0/coreGroups/1/members/0", "core 'Core0' is already in core group 'CoreGroup0'"},
      {"I2C address used twice",
       [](Json& d) {
         d["targetDomains"][0]["debugPorts"][0]["i2cBuses"] =
             Json::parse(R"([{"devices": [{"address": 80, "name": "A"}, {"address": "0x50", "name": "B"}]}])");
       },
       "/targetDomains/0/debugPorts/0/i2cBuses/0/devices/1/address", "address 80 is already used by 'A'"},
      {"unknown parameter", [](Json& d) { d["targetDomains"][0]["properties"]["Serial"] = "${serail}"; },
       "/targetDomains/0/properties/Serial", "unknown parameter 'serail'"},
      {"parameter without its brace", [](Json& d) { d["targetDomains"][0]["properties"]["Serial"] = "${serial"; },
       "/targetDomains/0/properties/Serial", "parameter reference without its closing '}' in string \"${serial\""},
      {"parameter name", [](Json& d) { d["parameters"]["1st"] = "x"; }, "/parameters/1st",
       "parameter name '1st' is not a name of letters, digits and '_' (starting with a letter or '_', at most 63 "
       "characters)"},
      {"too many devices",
       [](Json& d) {
         d["targetDomains"][0]["packages"][0]["cores"][0] = Json{{"count", 4096}, {"threads", 256}};
       },
       core + "/threads", "the description declares more than 65536 devices"},
  };
  for (const Case& mistake : cases) {
    Json description = BaseDescription();
    mistake.mistake(description);
    const Failure failure = ParseFailure(description.dump(2));
    EXPECT_EQ(failure.code, kInvalidDescription) << mistake.name;
    EXPECT_EQ(failure.message, "Target description 'case.json' is invalid at " + mistake.place + ": " + mistake.what)
        << mistake.name;
  }
}

TEST(TargetDescriptionTest, TextThatIsNoJsonIsPlacedByLineAndColumn) {
  struct Case {
    std::string text;
    std::string placeAndWhat;
  };
  const Case cases[] = {
      {"{\n  \"formatVersion\": 1,\n  \"targetDomains\": \"abc",
       "line 3, column 24: syntax error while parsing value - invalid string: missing closing quote; last read: "
       "'\"abc'"},
      {std::string(65, '[') + std::string(65, ']'), "line 1, column 65: values are nested deeper than 64 levels"},
  };
  for (const Case& broken : cases) {
    const Failure failure = ParseFailure(broken.text);
    EXPECT_EQ(failure.code, kInvalidDescription) << broken.text;
    EXPECT_EQ(failure.message, "Target description 'case.json' is invalid at " + broken.placeAndWhat) << broken.text;
  }
}

TEST(TargetDescriptionTest, ParametersStandForTextAndNumbers) {
  Json description = BaseDescription();
  description["parameters"]["ir"] = "5";
  description["targetDomains"][0]["properties"] =
      Json{{"Serial", "${serial}"}, {"Literal", "$${serial}"}, {"Both", "${serial}-${ir}"}};
  description["targetDomains"][0]["debugPorts"][0]["jtagChains"][0]["tapControllers"][0]["irLength"] = "${ir}";

  struct Case {
    ParameterValues values;
    std::string serial;
    std::string both;
    uint32_t irLength;
  };
  const Case cases[] = {
      {{}, "S1", "S1-5", 5},
      {{{"serial", "X9"}}, "X9", "X9-5", 5},
      {{{"ir", "0x8"}, {"serial", ""}}, "", "-0x8", 8},
  };
  for (const Case& given : cases) {
    const auto topology = ParseValid(description.dump(), given.values);
    ASSERT_TRUE(topology);
    const Node& domain = NodeNamed(*topology, "TargetDomain0");
    EXPECT_EQ(*domain.FindProperty("Serial"), given.serial);
    EXPECT_EQ(*domain.FindProperty("Literal"), "${serial}");
    EXPECT_EQ(*domain.FindProperty("Both"), given.both);
    EXPECT_EQ(NodeNamed(*topology, "Tap0").As<TapControllerDetails>()->irLength, given.irLength);
  }
  const Failure failure = ParseFailure(description.dump(), {{"ir", "wide"}});
  EXPECT_EQ(failure.message,
            "Target description 'case.json' is invalid at "
            "/targetDomains/0/debugPorts/0/jtagChains/0/tapControllers/0/irLength: expected an unsigned integer (or a "
            "string holding one), found string \"wide\"");
}

struct ExpectedNode {
  uint32_t id;
  NodeType type;
  std::string identifier;
  uint32_t parentId;

  friend bool operator==(const ExpectedNode&, const ExpectedNode&) = default;
};

std::ostream& operator<<(std::ostream& out, const ExpectedNode& node) {
  return out << std::hex << node.id << " " << NodeTypeName(node.type) << " " << node.identifier << " " << node.parentId;
}

TEST(TargetDescriptionTest, TheDefaultDescriptionBuildsItsPlatformWithStableIds) {
  const auto topology = ParseValid(ReadFile(kConfigurationsDir + "/Default.json"));
  ASSERT_TRUE(topology);
  std::vector<ExpectedNode> nodes;
  for (const Node& node : topology->Nodes()) nodes.push_back({node.id, node.type, node.identifier, node.parentId});
  using T = NodeType;
  const std::vector<ExpectedNode> expected = {
      {0x01000000, T::LogicalRoot, "Root", 0},
      {0x02000000, T::TargetDomain, "TargetDomain0", 0x01000000},
      {0x09000000, T::LogicalPackage, "Package0", 0x02000000},
      {0x04000000, T::LogicalCore, "Core0", 0x09000000},
      {0x03000000, T::LogicalThread, "Thread0_0", 0x04000000},
      {0x03000001, T::LogicalThread, "Thread0_1", 0x04000000},
      {0x04000001, T::LogicalCore, "Core1", 0x09000000},
      {0x03000002, T::LogicalThread, "Thread1_0", 0x04000001},
      {0x03000003, T::LogicalThread, "Thread1_1", 0x04000001},
      {0x05000000, T::LogicalUncore, "Uncore0", 0x09000000},
      {0x0c000000, T::Debugport, "DebugPort0", 0x02000000},
      {0x0d000000, T::JTAGScanChain, "JtagChain0", 0x0c000000},
      {0x0e000000, T::TAPController, "CpuTap", 0x0d000000},
      {0x0e000001, T::TAPController, "UncoreTap", 0x0d000000},
      {0x0e000002, T::TAPController, "ChipsetTap", 0x0d000000},
      {0x11000000, T::I2cBus, "I2cBus0", 0x0c000000},
      {0x12000000, T::PinsInterface, "Pins0", 0x0c000000},
      {0x0f000000, T::InterfacePort, "InterfacePort0", 0x0c000000},
      {0x0b000000, T::LogicalGroupCore, "CoreGroup0", 0x02000000},
  };
  EXPECT_EQ(nodes, expected);
}

TEST(TargetDescriptionTest, TheDefaultDescriptionCarriesWhatTheServicesNeed) {
  const auto topology = ParseValid(ReadFile(kConfigurationsDir + "/Default.json"), {{"stepping", "C2"}});
  ASSERT_TRUE(topology);
  const Topology& t = *topology;
  EXPECT_EQ(t.Name(), "case");
  EXPECT_EQ(t.Scenarios(), (std::vector<std::string>{"Normal", "ColdBoot"}));
  for (const Node& node : t.Nodes()) {
    EXPECT_EQ(node.debugPortId, node.type == NodeType::LogicalRoot ? 0u : 0x0c000000u) << node.identifier;
    const bool inGroup = node.type == NodeType::LogicalCore || node.type == NodeType::LogicalThread;
    EXPECT_EQ(node.coreGroupId, inGroup ? 0x0b000000u : 0u) << node.identifier;
    EXPECT_TRUE(node.enabled) << node.identifier;
  }
  EXPECT_EQ(NodeNamed(t, "CoreGroup0").As<CoreGroupDetails>()->coreIds,
            (std::vector<uint32_t>{0x04000000, 0x04000001}));

  const Node& thread = NodeNamed(t, "Thread1_1");
  ASSERT_TRUE(thread.debugAccess);
  EXPECT_EQ(thread.debugAccess->tapControllerId, 0x0e000000u);
  EXPECT_EQ(thread.debugAccess->instruction, "CORE_DEBUG");
  EXPECT_EQ(NodeNamed(t, "CpuTap").As<TapControllerDetails>()->stepping, "C2");
  EXPECT_EQ(*NodeNamed(t, "TargetDomain0").FindProperty("Stepping"), "C2");
}

TEST(TargetDescriptionTest, IdsOfOneTypeDoNotMoveWhenOtherDevicesAreAdded) {
  Json description = Json::parse(ReadFile(kConfigurationsDir + "/Default.json"));
  const auto before = ParseValid(description.dump());
  Json& chain = description["targetDomains"][0]["debugPorts"][0]["jtagChains"][0]["tapControllers"];
  chain.insert(chain.begin(), Json::parse(R"({"identifier": "ExtraTap", "deviceType": "FPGA", "idcode": 1,
      "irLength": 2, "instructions": [{"name": "BYPASS", "opcode": 3, "drLength": 1}]})"));
  description["targetDomains"][0]["packages"][0]["uncores"].push_back(Json::object());
  const auto after = ParseValid(description.dump());
  ASSERT_TRUE(before && after);
  for (const Node& node : before->Nodes()) {
    if (node.type == NodeType::TAPController || node.type == NodeType::LogicalUncore) continue;
    const Node* same = after->FindByIdentifier(node.targetDomainId, node.identifier);
    if (node.type == NodeType::LogicalRoot) same = &after->Root();
    ASSERT_TRUE(same) << node.identifier;
    EXPECT_EQ(same->id, node.id) << node.identifier;
  }
  EXPECT_EQ(NodeNamed(*after, "ExtraTap").id, 0x0e000000u);
  EXPECT_EQ(NodeNamed(*after, "CpuTap").id, 0x0e000001u);
}

// Invariants every sample configuration must keep.
TEST(TargetDescriptionTest, EverySampleConfigurationBuildsAConsistentTree) {
  size_t samples = 0;
  for (const auto& entry : std::filesystem::directory_iterator(kConfigurationsDir)) {
    if (entry.path().extension() != ".json") continue;
    ++samples;
    const std::string file = entry.path().filename().string();
    const auto topology = ParseValid(ReadFile(entry.path().string()));
    ASSERT_TRUE(topology) << file;
    ASSERT_FALSE(topology->TargetDomainIds().empty()) << file;
    for (const Node& node : topology->Nodes()) {
      EXPECT_EQ(DeviceIdNodeType(node.id), node.type) << file << " " << node.identifier;
      EXPECT_EQ(topology->Find(node.id), &node) << file << " " << node.identifier;
      if (node.type == NodeType::LogicalRoot) continue;
      const Node* parent = topology->Find(node.parentId);
      ASSERT_TRUE(parent) << file << " " << node.identifier;
      EXPECT_EQ(std::count(parent->childIds.begin(), parent->childIds.end(), node.id), 1) << file;
      EXPECT_EQ(topology->FindByIdentifier(node.targetDomainId, node.identifier), &node) << file;
      if (!parent->enabled) {
        EXPECT_FALSE(node.enabled) << file << " " << node.identifier;
      }
      if (node.debugAccess) {
        EXPECT_TRUE(topology->Find(node.debugAccess->tapControllerId)
                        ->As<TapControllerDetails>()
                        ->FindInstruction(node.debugAccess->instruction))
            << file << " " << node.identifier;
      }
    }
  }
  EXPECT_GE(samples, 3u);
}

// Checks of the members that belong to other components run at selection.
void RefuseMarkedRegisters(const Json& facet, const std::string& place, const Node& node) {
  for (size_t index = 0; index < facet.size(); ++index)
    if (facet[index] == "refuse") Fail(PlaceOf(place, index), "refused for " + node.identifier);
}

TEST(TargetDescriptionTest, ComponentMembersAreKeptAndCheckedByTheirComponents) {
  RegisterFacetCheck("registers", &RefuseMarkedRegisters);
  Json description = BaseDescription();
  Json& core = description["targetDomains"][0]["packages"][0]["cores"][0];
  core["registers"] = Json::parse(R"([{"name": "RAX", "bits": 64}])");
  const auto topology = ParseValid(description.dump());
  ASSERT_TRUE(topology);
  const Json* registers = NodeNamed(*topology, "Core0").FindFacet("registers");
  ASSERT_TRUE(registers);
  EXPECT_EQ((*registers)[0]["name"], "RAX");
  EXPECT_EQ(NodeNamed(*topology, "Core0").FindFacet("memory"), nullptr);

  core["registers"].push_back("refuse");
  EXPECT_EQ(ParseFailure(description.dump()).message,
            "Target description 'case.json' is invalid at /targetDomains/0/packages/0/cores/0/registers/1: refused "
            "for Core0");
}

}  // namespace
