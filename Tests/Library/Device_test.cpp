// The Device service's checks and what it leaves to the TargetManager: every
// refusal with its message, the pointers it passes on unchecked, and the
// component's failures as the client sees them.
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DeviceTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using namespace vxt::test::device;
using vxt::test::kInvalidArgument;

class DeviceChecksTest : public vxt::test::DeviceTest {};

// Representatives of the operations that check their pointers.
TEST_F(DeviceChecksTest, NullPointersAreRefusedBeforeTheComponentIsAsked) {
  VXT_PropertyName names[1] = {"Platform"};
  struct Case {
    const char* operation;  // Also the component's operation
    std::function<VXT_Result(IInternalService_Device&)> call;
    const char* argument;
  };
  const Case cases[] = {
      {"GetDeviceIdForIdentifier", [&](auto& d) { return d.GetDeviceIdForIdentifier(kDomain, nullptr, nullptr); },
       "identifier"},
      {"GetDeviceIdForIdentifier", [&](auto& d) { return d.GetDeviceIdForIdentifier(kDomain, "Core0", nullptr); },
       "deviceId"},
      {"LockMany", [&](auto& d) { return d.LockMany(nullptr, 1, 0, nullptr); }, "deviceIds"},
      {"GetDeviceProperties", [&](auto& d) { return d.GetDeviceProperties(kDomain, 1, nullptr, nullptr); },
       "propertyNames"},
      {"GetDeviceProperties", [&](auto& d) { return d.GetDeviceProperties(kDomain, 1, names, nullptr); },
       "propertyValues"},
      {"GetDevice", [&](auto& d) { return d.GetDevice(kCore0, nullptr); }, "device"},
  };
  tc::StartRecordingCalls();
  for (const Case& refused : cases) {
    const std::string message = std::string("InProc_Device::") + refused.operation + "() argument error (" +
                                refused.argument + ") : Null pointer";
    EXPECT_EQ(refused.call(*devices), kInvalidArgument) << message;
    EXPECT_EQ(GetLastErrorMessage(), message);
  }
  for (const std::string& operation : tc::RecordedOperations())
    EXPECT_EQ(operation.rfind("TargetManager.", 0), std::string::npos) << operation;
}

TEST_F(DeviceChecksTest, GetDeviceNeedsItsStructureSizeAndTouchesNothingWithoutIt) {
  VXT_Device device{};
  device.deviceId = 77;
  device.nodeType = static_cast<VXT_NodeType>(99);
  tc::StartRecordingCalls();
  for (uint32_t size : {0u, VXT_DEVICE_SIZE - 1, VXT_DEVICE_SIZE + 4}) {
    device.structureSize = size;
    EXPECT_EQ(devices->GetDevice(kCore0, &device), vxt::test::kStructureSizeWrong) << size;
    EXPECT_STREQ(GetLastErrorMessage(),
                 "InProc_Device::GetDevice() argument error (device) : Structure size not initialized");
  }
  EXPECT_EQ(tc::CallCount("TargetManager.GetIdentifierForDeviceId"), 0u);
  EXPECT_EQ(device.deviceId, 77u);
  EXPECT_EQ(device.nodeType, static_cast<VXT_NodeType>(99));
  EXPECT_EQ(device.identifier[0], '\0');
}

// Lock, Unlock and BreakLock check nothing, and nodeTypes goes to the
// component as it is; the component refuses what it cannot use.
TEST_F(DeviceChecksTest, UncheckedPointersReachTheComponent) {
  uint32_t count = 0;
  struct Case {
    std::function<VXT_Result(IInternalService_Device&)> call;
    std::string message;
  };
  const Case cases[] = {
      {[&](auto& d) { return d.Lock(kCore0, 0, nullptr); }, "TargetManager.Lock was given a null operationToken"},
      {[&](auto& d) { return d.Unlock(nullptr); }, "TargetManager.Unlock was given a null operationToken"},
      {[&](auto& d) { return d.GetNumDeviceIdsOfTypes(kDomain, 2, nullptr, &count); },
       "TargetManager.GetNumDeviceIdsOfTypes was given a null nodeTypes"},
  };
  for (const Case& passed : cases) {
    EXPECT_EQ(passed.call(*devices), kInvalidArgument) << passed.message;
    EXPECT_EQ(GetLastErrorMessage(), passed.message);
  }
  EXPECT_EQ(devices->BreakLock(kCore0, nullptr), 0);
  EXPECT_EQ(devices->GetNumDeviceIdsOfTypes(kDomain, 0, nullptr, &count), 0);  // No types: nothing to read
  EXPECT_EQ(count, 0u);
}

TEST_F(DeviceChecksTest, TheComponentsRefusalsReachTheClientTranslated) {
  uint32_t id = 0;
  struct Case {
    std::function<VXT_Result(IInternalService_Device&)> call;
    VXT_Result result;
    std::string message;
  };
  const Case cases[] = {
      {[&](auto& d) { return d.GetNumDeviceIdsOfTypes(kCore0, 0, nullptr, &id); }, static_cast<VXT_Result>(0x80040007),
       "TargetManager.GetNumDeviceIdsOfTypes needs a TargetDomain or the LogicalRoot, and device 0x04000000 (Core0) "
       "is a LogicalCore"},
      {[&](auto& d) { return d.GetCoreGroupIdForDevice(kUncore, &id); }, static_cast<VXT_Result>(0x80040012),
       "TargetManager.GetCoreGroupIdForDevice: device 0x05000000 (Uncore0) is in no core group"},
  };
  for (const Case& refused : cases) {
    EXPECT_EQ(refused.call(*devices), refused.result) << refused.message;
    EXPECT_EQ(GetLastErrorMessage(), refused.message);
  }
}

TEST_F(DeviceChecksTest, ACallBeforeTheTargetIsBuiltIsRefusedByTheComponent) {
  Disconnect(client.clientId);
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
  void* service = nullptr;
  ASSERT_EQ(GetService(nullptr, VXT_Service_Device, &service), 0);
  uint32_t count = 0;
  EXPECT_EQ(static_cast<IInternalService_Device*>(service)->GetNumTargetDomainDeviceIds(&count),
            static_cast<VXT_Result>(0x80040010));
  EXPECT_STREQ(GetLastErrorMessage(),
               "TargetManager.GetNumTargetDomainDeviceIds: the target's topology is not built; FinishInitialization "
               "builds it");
}

// A telemetry count for the operations that change the target, none for
// queries.
TEST_F(DeviceChecksTest, OnlyChangesAreCounted) {
  uint32_t flag = 0;
  EXPECT_EQ(devices->BreakLock(kCore0, &flag), 0);
  EXPECT_EQ(devices->UpdateTopology(kCore0, 1), 0);
  EXPECT_EQ(devices->SpecifyTopology(kChain, 0, nullptr), 0);
  EXPECT_EQ(devices->SetDeviceEnabled(kCore0, 1), 0);
  EXPECT_EQ(devices->IsDeviceEnabled(kCore0, &flag), 0);
  EXPECT_EQ(devices->GetNumTargetDomainDeviceIds(&flag), 0);
  uint64_t token = 0;
  EXPECT_EQ(devices->Lock(kCore0, 0, &token), 0);
  EXPECT_EQ(devices->Unlock(&token), 0);
  std::vector<std::string> counted;
  for (const tc::TelemetryCall& call : tc::TelemetryCalls())
    if (call.function == "CountEvent" && call.args.size() == 4 && call.args[3].rfind("Device::", 0) == 0)
      counted.push_back(call.args[3]);
  EXPECT_EQ(counted, (std::vector<std::string>{"Device::BreakLock", "Device::UpdateTopology", "Device::SpecifyTopology",
                                               "Device::SetDeviceEnabled", "Device::IsDeviceEnabled"}));
}

}  // namespace
