// What the Device service itself does between the client and the
// TargetManager: device records written only whole, booleans turned into
// the component's, TAP controller records converted, and outputs written
// whatever the component answers.
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DeviceTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using namespace vxt::test::device;
using vxt::test::kDeviceNotFound;

constexpr uint32_t kDeviceNotFoundCode = 0xe0002;

class DeviceRecordsTest : public vxt::test::DeviceTest {
 protected:
  // The arguments the component was last called with, as it records them.
  static std::string ArgumentsOf(const std::string& operation) {
    std::string arguments = "<not called>";
    for (const tc::RecordedCall& call : tc::RecordedCalls())
      if (call.operation == operation) arguments = call.arguments;
    return arguments;
  }
};

// Whichever query fails, the record stays as the caller left it.
TEST_F(DeviceRecordsTest, AFailedQueryLeavesTheDeviceRecordAsItWas) {
  for (const char* failing : {"TargetManager.GetIdentifierForDeviceId", "TargetManager.GetNodeType"}) {
    VXT_Device device{};
    device.structureSize = VXT_DEVICE_SIZE;
    device.deviceId = 0x77;
    device.nodeType = static_cast<VXT_NodeType>(0x55);
    std::strcpy(device.identifier, "before");
    tc::FailWith(failing, kDeviceNotFoundCode);
    EXPECT_EQ(devices->GetDevice(kCore0, &device), kDeviceNotFound) << failing;
    tc::ClearBehaviour(failing);
    EXPECT_EQ(device.deviceId, 0x77u) << failing;
    EXPECT_EQ(device.nodeType, static_cast<VXT_NodeType>(0x55)) << failing;
    EXPECT_STREQ(device.identifier, "before") << failing;
    EXPECT_STREQ(GetLastErrorMessage(), "Device not found") << failing;  // Nobody posted a text
  }
}

TEST_F(DeviceRecordsTest, AnIdentifierOfTheLongestLengthIsKeptWhole) {
  Disconnect(client.clientId);
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  ASSERT_EQ(SelectConfigurationByFileName(VXT_TEST_DATA_DIR "/Device/LongIdentifiers.json"), 0);
  ASSERT_EQ(FinishInitialization(), 0);
  const std::string longest = "Core_" + std::string(58, 'x');
  VXT_Device device{};
  device.structureSize = VXT_DEVICE_SIZE;
  std::memset(device.identifier, 'z', sizeof device.identifier);
  ASSERT_EQ(devices->GetDevice(kCore0, &device), 0);
  EXPECT_EQ(std::string(device.identifier), longest);
  EXPECT_EQ(device.identifier[63], '\0');
  char identifier[VXT_DEVICE_IDENTIFIER_SIZE];
  ASSERT_EQ(devices->GetIdentifierForDeviceId(kCore0, identifier), 0);
  EXPECT_EQ(std::string(identifier), longest);
  uint32_t id = 0;
  ASSERT_EQ(devices->GetDeviceIdForIdentifier(kDomain, longest.c_str(), &id), 0);
  EXPECT_EQ(id, kCore0);
}

// Core groups take only 1 for true; the other booleans take any non-zero
// value. The In line shows every non-zero value as "True".
TEST_F(DeviceRecordsTest, BooleansReachTheComponentAsEachOperationReadsThem) {
  uint32_t count = 0;
  uint32_t ids[4] = {};
  struct Case {
    std::function<VXT_Result(IInternalService_Device&)> call;
    std::string operation;
    std::string arguments;
  };
  const Case cases[] = {
      {[&](auto& d) { return d.GetNumDeviceIdsInCoreGroup(kCoreGroup, VXT_NodeType_LogicalCore, 2, &count); },
       "TargetManager.GetNumDeviceIdsInCoreGroup",
       "coreGroupId=0x0b000000, nodeType=LogicalCore, onlyEnabledDevices=0"},
      {[&](auto& d) { return d.GetDeviceIdsInCoreGroup(kCoreGroup, VXT_NodeType_LogicalCore, 1, 4, ids); },
       "TargetManager.GetDeviceIdsInCoreGroup",
       "coreGroupId=0x0b000000, nodeType=LogicalCore, onlyEnabledDevices=1, maxDeviceIds=4"},
      {[&](auto& d) { return d.GetNumDescendantIdsForType(kPackage, VXT_NodeType_LogicalThread, 2, &count); },
       "TargetManager.GetNumDescendantIdsForType",
       "deviceId=0x09000000, descendantType=LogicalThread, onlyEnabledDescendants=1"},
      {[&](auto& d) { return d.SetDeviceEnabled(kCore1, 0x100); }, "TargetManager.SetDeviceEnabled",
       "deviceId=0x04000001, enabled=1"},
  };
  tc::StartRecordingCalls();
  for (const Case& passed : cases) {
    EXPECT_EQ(passed.call(*devices), 0) << passed.operation;
    EXPECT_EQ(ArgumentsOf(passed.operation), passed.arguments);
  }

}

// The service compares no maximum with anything: a maximum of 0 is the
// component's to answer.
TEST_F(DeviceRecordsTest, AZeroMaximumStillAsksTheComponent) {
  const VXT_NodeType cores[] = {VXT_NodeType_LogicalCore};
  uint32_t ids[1] = {0xdead};
  tc::StartRecordingCalls();
  ASSERT_EQ(devices->GetDeviceIdsOfTypes(kDomain, 1, cores, 0, ids), 0);
  EXPECT_EQ(ArgumentsOf("TargetManager.GetDeviceIdsOfTypes"),
            "targetDomainId=0x02000000, numNodeTypes=1, maxNumDeviceIds=0");
  EXPECT_EQ(ids[0], 0xdeadu);
}

TEST_F(DeviceRecordsTest, OutputsAreWrittenWhateverTheComponentAnswers) {
  uint32_t enabled = 7;
  EXPECT_EQ(devices->IsDeviceEnabled(kUnknown, &enabled), kDeviceNotFound);
  EXPECT_EQ(enabled, 0u);
  EXPECT_STREQ(GetLastErrorMessage(), "TargetManager.IsDeviceEnabled knows no device 0x04000009");

  uint32_t broke = 7;
  EXPECT_EQ(devices->BreakLock(kUnknown, &broke), kDeviceNotFound);
  EXPECT_EQ(broke, 0u);
}

TEST_F(DeviceRecordsTest, TapControllerRecordsAreCutToTheComponentsFields) {
  VXT_TapController taps[2] = {};
  taps[0].structureSize = 12345;                                    // Not read
  std::memset(taps[0].deviceType, 'T', sizeof taps[0].deviceType);  // 128 characters, no terminator
  std::strcpy(taps[0].deviceSubType, "Sub");
  std::strcpy(taps[0].stepping, "A0");
  taps[0].irLength = 8;
  std::strcpy(taps[1].deviceType, "Uncore");
  taps[1].irLength = 6;
  tc::StartRecordingCalls();
  ASSERT_EQ(devices->SpecifyTopology(kChain, 2, taps), 0);
  EXPECT_EQ(ArgumentsOf("TargetManager.SpecifyTopology"),
            "jtagChainId=0x0d000000, tapControllerCount=2, tapControllers={" + std::string(127, 'T') +
                "/Sub/A0/8}, {Uncore///6}");

  ASSERT_EQ(devices->SpecifyTopology(kChain, 0, taps), 0);  // A zero count sends no array
  EXPECT_EQ(ArgumentsOf("TargetManager.SpecifyTopology"),
            "jtagChainId=0x0d000000, tapControllerCount=0, tapControllers=<NULL>");
}

TEST_F(DeviceRecordsTest, ALockIsTheCallingClientsAndItsTokenTellsTheOutcome) {
  uint64_t token = 0;
  ASSERT_EQ(devices->Lock(kCore0, VXT_INFINITE_TIMEOUT, &token), 0);
  char holder[VXT_CLIENT_TEXT_SIZE];
  ASSERT_EQ(devices->GetLockingClient(kCore0, holder), 0);
  EXPECT_STREQ(holder, "tool_3@here");

  // A second client cannot take it in time.
  VXT_Client other = vxt::test::MakeClient(4, "tool_4@there");
  ASSERT_EQ(StartNewInstance(&other, 1, 0, nullptr), 0);  // This thread now acts for client 4
  ASSERT_EQ(devices->Lock(kCore0, 10, &token), 0);
  ASSERT_EQ(receipts->Flush(token), 0);
  VXT_Result result = 0;
  ASSERT_EQ(receipts->GetOperationErrorResult(token, &result), 0);
  EXPECT_EQ(result, static_cast<VXT_Result>(0x80040008));
  char message[256];
  ASSERT_EQ(receipts->GetOperationErrorMessage(token, message, sizeof message, nullptr), 0);
  EXPECT_STREQ(message,
               "TargetManager.Lock timed out after 10 ms: device 0x04000000 (Core0) is locked by client 3 "
               "('tool_3@here')");

  // Its departure frees nothing of client 3's; client 3's departure frees its lock.
  ASSERT_EQ(Disconnect(4), 0);
  ASSERT_EQ(devices->GetLockingClient(kCore0, holder), 0);
  EXPECT_STREQ(holder, "tool_3@here");
  ASSERT_EQ(StartNewInstance(&other, 1, 0, nullptr), 0);
  ASSERT_EQ(Disconnect(3), 0);
  ASSERT_EQ(devices->GetLockingClient(kCore0, holder), 0);
  EXPECT_STREQ(holder, "");
  Disconnect(4);
}

}  // namespace
