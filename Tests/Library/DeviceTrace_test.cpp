// The Device service's trace: the In and Out line of every operation, the
// forms that its own arguments take, and the lines of a failing call.
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DeviceTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using namespace vxt::test::device;
using vxt::test::MakeTap;
using Lines = std::vector<std::string>;

std::string Hex16Text(uint64_t value) {
  char text[19];
  std::snprintf(text, sizeof text, "0x%016llx", static_cast<unsigned long long>(value));
  return text;
}

std::string AddressText(const void* address) { return Hex16Text(reinterpret_cast<uintptr_t>(address)); }

class DeviceTraceTest : public vxt::test::DeviceTest {
 protected:
  // The lines one call writes.
  Lines TraceOf(const std::function<VXT_Result()>& call, VXT_Result expected = 0) {
    ClearTrace();
    EXPECT_EQ(call(), expected);
    return Trace();
  }
};

// Queries whose arguments and results take different forms.
TEST_F(DeviceTraceTest, QueriesTraceTheirArgumentsAndResults) {
  uint32_t count = 0;
  uint32_t ids[2] = {};
  uint32_t id = 0;
  VXT_NodeType type{};
  char identifier[VXT_DEVICE_IDENTIFIER_SIZE];
  const VXT_NodeType coresAndThreads[] = {VXT_NodeType_LogicalCore, VXT_NodeType_LogicalThread};
  struct Case {
    std::function<VXT_Result(IInternalService_Device&)> call;
    std::string in;
    std::string out;
  };
  const Case cases[] = {
      {[&](auto& d) { return d.GetTargetDomainDeviceIds(2, ids); }, "GetTargetDomainDeviceIds(maxNumTargetDomains = 2)",
       "GetTargetDomainDeviceIds(targetDomainDeviceIds = {0x02000000, 0x00000000})"},
      {[&](auto& d) { return d.GetNumDeviceIdsOfTypes(kDomain, 2, coresAndThreads, &count); },
       "GetNumDeviceIdsOfTypes(targetDomainId = 0x02000000 numNodeTypes = 2 nodeTypes = {LogicalCore, "
       "LogicalThread})",
       "GetNumDeviceIdsOfTypes(numDeviceIds = 6)"},
      {[&](auto& d) { return d.GetDeviceIdsOfTypes(kDomain, 1, coresAndThreads, 0, ids); },
       "GetDeviceIdsOfTypes(targetDomainId = 0x02000000 numNodeTypes = 1 nodeTypes = {LogicalCore} maxNumDeviceIds = "
       "0)",
       "GetDeviceIdsOfTypes(deviceIds = <EMPTY>)"},
      {[&](auto& d) { return d.GetDescendantIdsForType(kRoot, static_cast<VXT_NodeType>(20), 0, 1, ids); },
       "GetDescendantIdsForType(deviceId = 0x01000000 descendantType = <UNKNOWN> onlyEnabledDescendants = False "
       "maxDescendantIds = 1)",
       "GetDescendantIdsForType(descendantIds = {0x00000000})"},
      {[&](auto& d) { return d.GetNodeType(kCpuTap, &type); }, "GetNodeType(deviceId = 0x0e000000)",
       "GetNodeType(nodeType = TAPController)"},
      {[&](auto& d) { return d.GetIdentifierForDeviceId(kThread1_1, identifier); },
       "GetIdentifierForDeviceId(deviceId = 0x03000003)", "GetIdentifierForDeviceId(identifier = 'Thread1_1')"},
      {[&](auto& d) { return d.GetDebugportIdForDevice(kCore0, &id); },
       "GetDebugportIdForDevice(deviceId = 0x04000000)", "GetDebugportIdForDevice(debugPortID = 0x0c000000)"},
  };
  for (const Case& query : cases)
    EXPECT_EQ(TraceOf([&] { return query.call(*devices); }), InOutLines(query.in, query.out));
}

TEST_F(DeviceTraceTest, PropertiesAndDeviceRecordsTraceTheirOwnForms) {
  VXT_PropertyName names[2];
  VXT_PropertyValue values[2];
  EXPECT_EQ(TraceOf([&] { return devices->GetDevicePropertyNames(kDomain, 2, names); }),
            InOutLines("GetDevicePropertyNames(deviceId = 0x02000000 maxPropertyNames = 2)",
                       "GetDevicePropertyNames(propertyNames = {'Platform', 'Stepping'})"));
  EXPECT_EQ(TraceOf([&] { return devices->GetDeviceProperties(kDomain, 2, names, values); }),
            InOutLines("GetDeviceProperties(deviceId = 0x02000000 2 propertyNames = {'Platform', 'Stepping'})",
                       "GetDeviceProperties(propertyValues = {'Voxtrel SimBoard', 'B0'})"));

  VXT_Device device{VXT_DEVICE_SIZE, 0, {}, {}};
  const std::string address = AddressText(&device);
  EXPECT_EQ(
      TraceOf([&] { return devices->GetDevice(kCore0, &device); }),
      InOutLines("GetDevice(deviceId = 0x04000000 device = " + address + ")", "GetDevice(device = " + address + ")"));
  EXPECT_EQ(TraceOf([&] { return devices->GetDevice(kCore0, nullptr); }, vxt::test::kInvalidArgument).front(),
            "In  InProc_Device::GetDevice(deviceId = 0x04000000 device = <NULL>) [ClientID: 3]");
}

TEST_F(DeviceTraceTest, LocksTraceTimeoutsTokensAndTheBrokenFlag) {
  uint64_t token = 0;
  const uint32_t cores[] = {kCore0, kCore1};

  Lines lines = TraceOf([&] { return devices->Lock(kCore0, VXT_INFINITE_TIMEOUT, &token); });
  EXPECT_EQ(lines, InOutLines("Lock(deviceId = 0x04000000 timeout = <INFINITE>)",
                              "Lock(operationToken = " + Hex16Text(token) + ")"));
  lines = TraceOf([&] { return devices->LockMany(cores, 2, 100, &token); });
  EXPECT_EQ(lines, InOutLines("LockMany(deviceIds = {0x04000000, 0x04000001} deviceIdCount = 2 timeout = 100)",
                              "LockMany(operationToken = " + Hex16Text(token) + ")"));
  lines = TraceOf([&] { return devices->Unlock(&token); });
  EXPECT_EQ(lines, InOutLines("Unlock()", "Unlock(operationToken = " + Hex16Text(token) + ")"));
  EXPECT_EQ(TraceOf([&] { return devices->Lock(kCore0, 0, nullptr); }, vxt::test::kInvalidArgument).back(),
            "Out InProc_Device::Lock(operationToken = <NULL>) ErrorCode = 0x80000001 [ClientID: 3]");

  EXPECT_EQ(TraceOf([&] { return devices->BreakLock(kCore0, nullptr); }),
            InOutLines("BreakLock(deviceId = 0x04000000)", "BreakLock(brokeLock = <NULL>)"));
}

TEST_F(DeviceTraceTest, ChangesTraceTheirRecordsAndTheReconfigurationTheyCause) {
  const VXT_TapController taps[] = {MakeTap("CPU", "CoreComplex", "B0", 8), MakeTap("Uncore", "", "C0", 6)};
  const std::string started = "InProc Event Service ReconfigurationEventHandler with devicesHaveChanged: False";
  const std::string changed = "InProc Event Service ReconfigurationEventHandler with devicesHaveChanged: True";
  EXPECT_EQ(TraceOf([&] { return devices->SpecifyTopology(kChain, 2, taps); }),
            (Lines{"In  InProc_Device::SpecifyTopology(jtagChainId = 0x0d000000 tapControllerCount = 2 "
                   "tapControllers = {{deviceType = CPU deviceSubType = CoreComplex stepping = B0 irLength = 8}, "
                   "{deviceType = Uncore deviceSubType =  stepping = C0 irLength = 6}}) [ClientID: 3]",
                   started, changed, "Out InProc_Device::SpecifyTopology() ErrorCode = 0x00000000 [ClientID: 3]"}));
  EXPECT_EQ(TraceOf([&] { return devices->SpecifyTopology(kChain, 0, nullptr); })[0],
            "In  InProc_Device::SpecifyTopology(jtagChainId = 0x0d000000 tapControllerCount = 0 tapControllers = "
            "<NULL>) [ClientID: 3]");
  EXPECT_EQ(TraceOf([&] { return devices->SetDeviceEnabled(kCore1, 7); }),
            InOutLines("SetDeviceEnabled(deviceId = 0x04000001 enabled = True)", "SetDeviceEnabled()"));
}

TEST_F(DeviceTraceTest, AFailingCallTracesItsErrorBetweenItsInAndOutLines) {
  uint32_t parent = 0;
  const std::string message = "TargetManager.GetParentIdForDevice knows no device 0x04000009";
  EXPECT_EQ(
      TraceOf([&] { return devices->GetParentIdForDevice(kUnknown, &parent); }, vxt::test::kDeviceNotFound),
      (Lines{"In  InProc_Device::GetParentIdForDevice(deviceId = 0x04000009) [ClientID: 3]",
             "VXT Error = '" + message + "' [ClientID: 3]", "In  InProc ReportErrorMessage(<NULL>'" + message + "')",
             "Out InProc ReportErrorMessage()",
             "Out InProc_Device::GetParentIdForDevice(parentId = 0x00000000) ErrorCode = 0x80040004 [ClientID: 3]"}));
}

TEST_F(DeviceTraceTest, NothingIsRenderedWhileTheLevelIsOff) {
  tc::SetLogLevel(5);
  tc::StartRecordingCalls();
  uint32_t count = 0;
  EXPECT_EQ(devices->GetNumChildrenIds(kPackage, &count), 0);
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(Trace(), Lines{});
  EXPECT_EQ(tc::CallCount("Common.GetClientId"), 0u);
}

}  // namespace
