// The TargetManager's answers about the built topology: the tree, types,
// identifiers, debug ports, core groups, properties and enabled flags, and
// its refusals.
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Configuration.h"
#include "TargetManager.h"
#include "TargetTestSupport.h"

namespace {

using vxt::test::CallPosting;
using vxt::test::Posted;
using Ids = std::vector<uint32_t>;

constexpr uint32_t kNullArgument = 0x20000;
constexpr uint32_t kValueOutOfRange = 0x20001;
constexpr uint32_t kDeviceNotFound = 0xe0002;
constexpr uint32_t kTopologyNotBuilt = 0xe000c;
constexpr uint32_t kCoreGroupNotFound = 0xe0012;

// The default description's devices.
constexpr uint32_t kRoot = 0x01000000;
constexpr uint32_t kDomain = 0x02000000;
constexpr uint32_t kThread0_0 = 0x03000000;
constexpr uint32_t kThread0_1 = 0x03000001;
constexpr uint32_t kThread1_0 = 0x03000002;
constexpr uint32_t kThread1_1 = 0x03000003;
constexpr uint32_t kCore0 = 0x04000000;
constexpr uint32_t kCore1 = 0x04000001;
constexpr uint32_t kUncore = 0x05000000;
constexpr uint32_t kPackage = 0x09000000;
constexpr uint32_t kCoreGroup = 0x0b000000;
constexpr uint32_t kDebugPort = 0x0c000000;
constexpr uint32_t kChain = 0x0d000000;
constexpr uint32_t kCpuTap = 0x0e000000;
constexpr uint32_t kUncoreTap = 0x0e000001;
constexpr uint32_t kChipsetTap = 0x0e000002;
constexpr uint32_t kInterfacePort = 0x0f000000;
constexpr uint32_t kI2cBus = 0x11000000;
constexpr uint32_t kPins = 0x12000000;

const TargetManagerComponent& Manager() { return vxt::test::Get(&Voxtrel_GetTargetManager); }

class TargetManagerQueriesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    vxt::test::ResetTarget();
    ASSERT_EQ(manager_.FinishInitialization(), 0u);
  }
  void TearDown() override { vxt::test::ResetTarget(); }

  // Builds another configuration in place of the default.
  void Build(const char* configuration) {
    manager_.Uninitialize();
    const ConfigurationComponent* configurations = nullptr;
    ASSERT_EQ(Voxtrel_GetConfiguration(&configurations), 0u);
    ASSERT_EQ(configurations->SelectConfigurationByName(configuration), 0u);
    ASSERT_EQ(manager_.FinishInitialization(), 0u);
  }

  // Asks a count and then fills an array of that size, as a client does.
  static Ids CountAndFill(const std::function<uint32_t(uint32_t*)>& count,
                          const std::function<uint32_t(uint32_t, uint32_t*)>& fill) {
    uint32_t number = 0xdead;
    EXPECT_EQ(count(&number), 0u);
    Ids ids(number + 1, 0xdeadbeef);  // Never empty: an array is needed even for no ids
    EXPECT_EQ(fill(number, ids.data()), 0u);
    EXPECT_EQ(ids.back(), 0xdeadbeef);  // Nothing written past the maximum
    ids.pop_back();
    return ids;
  }

  Ids Children(uint32_t deviceId) {
    return CountAndFill([&](uint32_t* n) { return manager_.GetNumChildrenIds(deviceId, n); },
                        [&](uint32_t max, uint32_t* ids) { return manager_.GetChildrenIds(deviceId, max, ids); });
  }
  Ids Descendants(uint32_t deviceId, VXT_NodeType type, bool onlyEnabled) {
    return CountAndFill(
        [&](uint32_t* n) { return manager_.GetNumDescendantIdsForType(deviceId, type, onlyEnabled, n); },
        [&](uint32_t max, uint32_t* ids) {
          return manager_.GetDescendantIdsForType(deviceId, type, onlyEnabled, max, ids);
        });
  }
  Ids OfTypes(uint32_t domainId, const std::vector<VXT_NodeType>& types) {
    const auto count = static_cast<uint32_t>(types.size());
    return CountAndFill([&](uint32_t* n) { return manager_.GetNumDeviceIdsOfTypes(domainId, count, types.data(), n); },
                        [&](uint32_t max, uint32_t* ids) {
                          return manager_.GetDeviceIdsOfTypes(domainId, count, types.data(), max, ids);
                        });
  }
  Ids InCoreGroup(uint32_t groupId, VXT_NodeType type, bool onlyEnabled) {
    return CountAndFill([&](uint32_t* n) { return manager_.GetNumDeviceIdsInCoreGroup(groupId, type, onlyEnabled, n); },
                        [&](uint32_t max, uint32_t* ids) {
                          return manager_.GetDeviceIdsInCoreGroup(groupId, type, onlyEnabled, max, ids);
                        });
  }
  bool Enabled(uint32_t deviceId) {
    bool enabled = false;
    EXPECT_EQ(manager_.IsDeviceEnabled(deviceId, &enabled), 0u);
    return enabled;
  }

  const TargetManagerComponent& manager_ = Manager();
};

TEST_F(TargetManagerQueriesTest, TheTreeLinksParentsAndChildrenInDescriptionOrder) {
  struct Case {
    uint32_t deviceId;
    uint32_t parentId;
    Ids children;
  };
  const Case cases[] = {
      {kRoot, 0, {kDomain}},
      {kDomain, kRoot, {kPackage, kDebugPort, kCoreGroup}},
      {kPackage, kDomain, {kCore0, kCore1, kUncore}},
      {kCore1, kPackage, {kThread1_0, kThread1_1}},
      {kThread1_1, kCore1, {}},
      {kDebugPort, kDomain, {kChain, kI2cBus, kPins, kInterfacePort}},
      {kChain, kDebugPort, {kCpuTap, kUncoreTap, kChipsetTap}},
      {kCoreGroup, kDomain, {}},
  };
  for (const Case& device : cases) {
    uint32_t parentId = 0xdead;
    EXPECT_EQ(manager_.GetParentIdForDevice(device.deviceId, &parentId), 0u);
    EXPECT_EQ(parentId, device.parentId) << std::hex << device.deviceId;
    EXPECT_EQ(Children(device.deviceId), device.children) << std::hex << device.deviceId;
  }
  uint32_t count = 0;
  ASSERT_EQ(manager_.GetNumTargetDomainDeviceIds(&count), 0u);
  Ids domains(count);
  ASSERT_EQ(manager_.GetTargetDomainDeviceIds(count, domains.data()), 0u);
  EXPECT_EQ(domains, Ids{kDomain});
}

TEST_F(TargetManagerQueriesTest, AFillStopsAtTheMaximumAndZeroesWhatItHasNoIdFor) {
  Ids ids(5, 0xdeadbeef);
  ASSERT_EQ(manager_.GetChildrenIds(kPackage, 2, ids.data()), 0u);
  EXPECT_EQ(ids, (Ids{kCore0, kCore1, 0xdeadbeef, 0xdeadbeef, 0xdeadbeef}));
  ASSERT_EQ(manager_.GetChildrenIds(kPackage, 5, ids.data()), 0u);
  EXPECT_EQ(ids, (Ids{kCore0, kCore1, kUncore, 0, 0}));
  ASSERT_EQ(manager_.GetChildrenIds(kPackage, 0, ids.data()), 0u);
  EXPECT_EQ(ids[0], kCore0);
}

TEST_F(TargetManagerQueriesTest, AncestorsAndDescendantsFollowTheTypeAsked) {
  struct Ancestor {
    uint32_t deviceId;
    VXT_NodeType type;
    uint32_t ancestorId;
  };
  const Ancestor ancestors[] = {
      {kThread0_1, VXT_NodeType_LogicalCore, kCore0},
      {kThread0_1, VXT_NodeType_LogicalPackage, kPackage},
      {kThread0_1, VXT_NodeType_LogicalRoot, kRoot},
      {kChipsetTap, VXT_NodeType_Debugport, kDebugPort},
  };
  for (const Ancestor& ancestor : ancestors) {
    uint32_t found = 0;
    EXPECT_EQ(manager_.GetAncestorIdForType(ancestor.deviceId, ancestor.type, &found), 0u);
    EXPECT_EQ(found, ancestor.ancestorId) << std::hex << ancestor.deviceId << " " << ancestor.type;
  }

  EXPECT_EQ(Descendants(kRoot, VXT_NodeType_LogicalThread, false),
            (Ids{kThread0_0, kThread0_1, kThread1_0, kThread1_1}));
  EXPECT_EQ(Descendants(kDomain, VXT_NodeType_TAPController, false), (Ids{kCpuTap, kUncoreTap, kChipsetTap}));
  EXPECT_EQ(Descendants(kCore0, VXT_NodeType_LogicalCore, false), Ids{});  // Not the device itself
  EXPECT_EQ(Descendants(kDomain, static_cast<VXT_NodeType>(25), false), Ids{});
}

TEST_F(TargetManagerQueriesTest, ADisabledDeviceTakesEverythingBeneathItAlong) {
  ASSERT_EQ(manager_.SetDeviceEnabled(kCore0, false), 0u);
  EXPECT_FALSE(Enabled(kCore0));
  EXPECT_FALSE(Enabled(kThread0_1));  // Its own flag stands, its core's does not
  EXPECT_TRUE(Enabled(kThread1_0));
  EXPECT_EQ(Descendants(kPackage, VXT_NodeType_LogicalThread, true), (Ids{kThread1_0, kThread1_1}));
  EXPECT_EQ(Descendants(kPackage, VXT_NodeType_LogicalThread, false).size(), 4u);
  EXPECT_EQ(InCoreGroup(kCoreGroup, VXT_NodeType_LogicalCore, true), Ids{kCore1});
  EXPECT_EQ(InCoreGroup(kCoreGroup, VXT_NodeType_LogicalThread, true), (Ids{kThread1_0, kThread1_1}));

  ASSERT_EQ(manager_.SetDeviceEnabled(kCore0, true), 0u);
  EXPECT_TRUE(Enabled(kThread0_1));
}

TEST_F(TargetManagerQueriesTest, AFusedOffCoreIsDisabledWithItsThreadsAndStaysInItsGroup) {
  Build("TwoSocketServer");
  constexpr uint32_t kSocket1Cores = 0x0b000001;
  constexpr uint32_t kFusedCore = 0x04000007;
  EXPECT_FALSE(Enabled(kFusedCore));
  EXPECT_FALSE(Enabled(0x0300000f));
  EXPECT_EQ(InCoreGroup(kSocket1Cores, VXT_NodeType_LogicalCore, false),
            (Ids{0x04000004, 0x04000005, 0x04000006, kFusedCore}));
  EXPECT_EQ(InCoreGroup(kSocket1Cores, VXT_NodeType_LogicalCore, true), (Ids{0x04000004, 0x04000005, 0x04000006}));
  EXPECT_EQ(InCoreGroup(kSocket1Cores, VXT_NodeType_LogicalThread, true).size(), 6u);
  EXPECT_EQ(InCoreGroup(kSocket1Cores, VXT_NodeType_LogicalUncore, false), Ids{});

  uint32_t group = 0;
  EXPECT_EQ(manager_.GetCoreGroupIdForDevice(0x0300000f, &group), 0u);
  EXPECT_EQ(group, kSocket1Cores);
  EXPECT_EQ(manager_.GetCoreGroupIdForDevice(kSocket1Cores, &group), 0u);
  EXPECT_EQ(group, kSocket1Cores);
}

TEST_F(TargetManagerQueriesTest, DevicesOfTypesAreCountedInTheirDomainOrUnderTheRoot) {
  Build("HostWithBmc");
  constexpr uint32_t kHost = 0x02000000;
  constexpr uint32_t kBmc = 0x02000001;
  const std::vector<VXT_NodeType> coresAndThreads{VXT_NodeType_LogicalThread, VXT_NodeType_LogicalCore};
  EXPECT_EQ(OfTypes(kHost, coresAndThreads).size(), 8u);
  EXPECT_EQ(OfTypes(kBmc, coresAndThreads).size(), 2u);
  EXPECT_EQ(OfTypes(kRoot, coresAndThreads).size(), 10u);
  EXPECT_EQ(OfTypes(kBmc, {VXT_NodeType_TargetDomain}), Ids{kBmc});  // The domain itself counts
  EXPECT_EQ(OfTypes(kHost, {}), Ids{});

  // Identifiers repeat across domains; each domain finds its own.
  uint32_t hostTap = 0;
  uint32_t bmcPort = 0;
  uint32_t domain = 0;
  EXPECT_EQ(manager_.GetDeviceIdForIdentifier(kHost, "DebugPort0", &hostTap), 0u);
  EXPECT_EQ(manager_.GetDeviceIdForIdentifier(kBmc, "DebugPort0", &bmcPort), 0u);
  EXPECT_NE(hostTap, bmcPort);
  EXPECT_EQ(manager_.GetDeviceIdForIdentifier(kRoot, "Bmc", &domain), 0u);
  EXPECT_EQ(domain, kBmc);
  EXPECT_EQ(manager_.GetDeviceIdForIdentifier(kRoot, "Root", &domain), 0u);
  EXPECT_EQ(domain, kRoot);
}

TEST_F(TargetManagerQueriesTest, EveryDeviceIsFoundByItsIdentifierAndTellsItsType) {
  const auto live = voxtrel::platform::target::TargetModel::Instance().Topology();
  for (const auto& node : live->Layout().Nodes()) {
    char identifier[VXT_DEVICE_IDENTIFIER_SIZE];
    ASSERT_EQ(manager_.GetIdentifierForDeviceId(node.id, identifier), 0u);
    EXPECT_EQ(identifier, node.identifier);
    VXT_NodeType type = VXT_NodeType_Unknown;
    ASSERT_EQ(manager_.GetNodeType(node.id, &type), 0u);
    EXPECT_EQ(static_cast<uint32_t>(type), node.id >> 24) << identifier;
    uint32_t found = 0;
    const uint32_t domain = node.targetDomainId != 0 ? node.targetDomainId : kRoot;
    ASSERT_EQ(manager_.GetDeviceIdForIdentifier(domain, identifier, &found), 0u) << identifier;
    EXPECT_EQ(found, node.id) << identifier;
  }
}

TEST_F(TargetManagerQueriesTest, PropertiesAreListedAndReadAllOrNothing) {
  uint32_t count = 0;
  ASSERT_EQ(manager_.GetNumDevicePropertyNames(kDomain, &count), 0u);
  ASSERT_EQ(count, 4u);
  VXT_PropertyName names[5];
  std::memset(names, 'x', sizeof names);
  ASSERT_EQ(manager_.GetDevicePropertyNames(kDomain, 5, names), 0u);
  EXPECT_STREQ(names[0], "Platform");
  EXPECT_STREQ(names[1], "Stepping");
  EXPECT_STREQ(names[2], "MemoryRegion0");  // The memory map, one region a property
  EXPECT_STREQ(names[3], "MemoryRegion1");
  EXPECT_STREQ(names[4], "");

  char value[VXT_PROPERTY_VALUE_SIZE];
  ASSERT_EQ(manager_.GetDeviceProperty(kDomain, "Stepping", value), 0u);
  EXPECT_STREQ(value, "B0");
  ASSERT_EQ(manager_.GetDeviceProperty(kDomain, "MemoryRegion1", value), 0u);
  EXPECT_STREQ(value, "rom 0xFFFF0000 0x10000");

  VXT_PropertyValue values[2];
  std::strcpy(values[0], "untouched");
  const VXT_PropertyName asked[2] = {"Stepping", "Voltage"};
  EXPECT_EQ(CallPosting([&] { return manager_.GetDeviceProperties(kDomain, 2, asked, values); }),
            (Posted{kValueOutOfRange,
                    "TargetManager.GetDeviceProperties finds no property 'Voltage' on device 0x02000000 "
                    "(TargetDomain0)"}));
  EXPECT_STREQ(values[0], "untouched");
  ASSERT_EQ(manager_.GetDeviceProperties(kDomain, 1, asked, values), 0u);
  EXPECT_STREQ(values[0], "B0");
  ASSERT_EQ(manager_.GetNumDevicePropertyNames(kCore0, &count), 0u);
  EXPECT_EQ(count, 0u);
}

TEST_F(TargetManagerQueriesTest, RefusalsNameTheOperationAndWhatIsWrong) {
  uint32_t id = 0;
  VXT_PropertyName name{};
  struct Case {
    std::function<uint32_t()> call;
    Posted expected;
  };
  const Case cases[] = {
      {[&] { return manager_.GetParentIdForDevice(kCore0, nullptr); },
       {kNullArgument, "TargetManager.GetParentIdForDevice was given a null parentId"}},
      {[&] { return manager_.GetDeviceIdForIdentifier(kDomain, nullptr, &id); },
       {kNullArgument, "TargetManager.GetDeviceIdForIdentifier was given a null identifier"}},
      {[&] { return manager_.GetDeviceProperties(kDomain, 1, &name, nullptr); },
       {kNullArgument, "TargetManager.GetDeviceProperties was given a null propertyValues"}},
      {[&] { return manager_.IsDeviceEnabled(kCore0, nullptr); },
       {kNullArgument, "TargetManager.IsDeviceEnabled was given a null enabled"}},
      {[&] { return manager_.GetNumChildrenIds(0, &id); },
       {kDeviceNotFound, "TargetManager.GetNumChildrenIds knows no device 0x00000000"}},
      {[&] { return manager_.SetDeviceEnabled(0xffffffff, true); },
       {kDeviceNotFound, "TargetManager.SetDeviceEnabled knows no device 0xffffffff"}},
      {[&] { return manager_.GetDeviceIdForIdentifier(kRoot, "Core0", &id); },
       {kDeviceNotFound,
        "TargetManager.GetDeviceIdForIdentifier finds no device 'Core0' in the root 0x01000000 (Root)"}},
      {[&] { return manager_.GetAncestorIdForType(kThread0_0, VXT_NodeType_LogicalDie, &id); },
       {kDeviceNotFound,
        "TargetManager.GetAncestorIdForType: device 0x03000000 (Thread0_0) has no ancestor of type "
        "LogicalDie"}},
      {[&] { return manager_.GetAncestorIdForType(kRoot, static_cast<VXT_NodeType>(40), &id); },
       {kDeviceNotFound, "TargetManager.GetAncestorIdForType: device 0x01000000 (Root) has no ancestor of type 40"}},
      {[&] { return manager_.GetDebugportIdForDevice(kRoot, &id); },
       {kDeviceNotFound,
        "TargetManager.GetDebugportIdForDevice: device 0x01000000 (Root) is reached through no debug "
        "port"}},
      {[&] { return manager_.GetNumDeviceIdsInCoreGroup(kCore0, VXT_NodeType_LogicalCore, false, &id); },
       {kCoreGroupNotFound, "TargetManager.GetNumDeviceIdsInCoreGroup: device 0x04000000 (Core0) is no core group"}},
      {[&] { return manager_.BreakLock(kCore0, nullptr); },
       {kNullArgument, "TargetManager.BreakLock was given a null brokeLock"}},
  };
  for (const Case& refused : cases) EXPECT_EQ(CallPosting(refused.call), refused.expected);
}

TEST_F(TargetManagerQueriesTest, NothingIsAnsweredWhileNoTopologyIsBuilt) {
  manager_.Uninitialize();
  uint32_t id = 0;
  bool flag = false;
  uint64_t token = 0;
  const std::vector<std::pair<const char*, std::function<uint32_t()>>> calls = {
      {"GetChildrenIds", [&] { return manager_.GetChildrenIds(kRoot, 1, &id); }},
      {"IsDeviceEnabled", [&] { return manager_.IsDeviceEnabled(kCore0, &flag); }},
      {"Lock", [&] { return manager_.Lock(kCore0, 0, &token); }},
      {"UpdateTopology", [&] { return manager_.UpdateTopology(kRoot, 0); }},
  };
  for (const auto& [operation, call] : calls)
    EXPECT_EQ(CallPosting(call), (Posted{kTopologyNotBuilt, std::string("TargetManager.") + operation +
                                                                ": the target's topology is not built; "
                                                                "FinishInitialization builds it"}));
}

}  // namespace
