// The DeviceControl service on the default target's domain, which describes
// the configs CacheMode, TraceBuffer and DebugUnlock (locked below the
// "Manufacturing" level) and the actions LastPostCode and ResetThreads:
// its line forms, its counts, the modified list and its refusals.
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CpuServiceTestSupport.h"

namespace vxt::test {
namespace {

using voxtrel::testing::TelemetryCounter;

class DeviceControlTest : public CpuServiceTest {
 protected:
  void SetUp() override {
    CpuServiceTest::SetUp();
    control = Service<IInternalService_DeviceControl>(VXT_Service_DeviceControl);
  }
  uint32_t NumModified(uint32_t device = kTargetDomain) {
    uint32_t count = 99;
    EXPECT_EQ(control->GetNumModifiedDeviceConfigs(device, &count), 0) << GetLastErrorMessage();
    return count;
  }
  static uint64_t Counted(const std::string& value) {
    return TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", value);
  }

  IInternalService_DeviceControl* control = nullptr;
};

TEST_F(DeviceControlTest, LineFormsAndCounts) {
  char names[3][VXT_DEVICE_CONFIG_NAME_SIZE] = {};
  char values[2][VXT_DEVICE_CONFIG_VALUE_SIZE] = {};
  char defaults[2][VXT_DEVICE_CONFIG_VALUE_SIZE] = {};
  struct Case {
    std::function<VXT_Result()> call;
    std::string in;
  };
  const Case cases[] = {
      {[&] { return control->GetDeviceConfigNames(kTargetDomain, 3, names[0]); },
       "In  InProc_DeviceControl::GetDeviceConfigNames(deviceId: 0x02000000, maxNumDeviceConfigNames: 3) [ClientID: 3]"},
      {[&] { return control->GetModifiedDeviceConfigs(kTargetDomain, 2, names[0], values[0], defaults[0]); },
       "In  InProc_DeviceControl::GetModifiedDeviceConfigs(deviceId: 0x02000000 maxNumModifiedDeviceConfigs: 2) "
       "[ClientID: 3]"},
      {[&] { return control->RevertModifiedDeviceConfigs(kTargetDomain); },
       "In  InProc_DeviceControl::RevertModifiedDeviceConfigs(deviceId: 0x02000000) [ClientID: 3]"},
  };
  for (const Case& c : cases) {
    ClearTrace();
    EXPECT_EQ(c.call(), 0) << GetLastErrorMessage();
    const std::string name = c.in.substr(4, c.in.find('(') - 4);
    EXPECT_EQ(Trace(), (std::vector<std::string>{c.in, "Out " + name + "(ErrorCode = 0x00000000) [ClientID: 3]"}));
  }
  EXPECT_EQ(std::string(names[2]), "DebugUnlock");

  ClearTrace();
  ASSERT_EQ(control->SetDeviceConfig(kTargetDomain, "CacheMode", "WriteThrough"), 0) << GetLastErrorMessage();
  const std::vector<std::string> trace = Trace();
  ASSERT_GT(trace.size(), 2u);  // The identifier's own lines stand between these two
  EXPECT_EQ(trace.front(), "In  InProc_DeviceControl::SetDeviceConfig(deviceId: 0x02000000) [ClientID: 3]");
  EXPECT_EQ(trace.back(), "Out InProc_DeviceControl::SetDeviceConfig(ErrorCode = 0x00000000) [ClientID: 3]");
  EXPECT_EQ(Counted("DeviceControl::SetDeviceConfig(device=TargetDomain0,deviceConfigName=CacheMode,value=WriteThrough)"),
            1u);
  // An unknown device counts an empty identifier and lets the component answer;
  // a null value reaches the component and counts as empty.
  EXPECT_EQ(control->SetDeviceConfig(0x0200ffff, "CacheMode", "WriteBack"), static_cast<VXT_Result>(0x80040004));
  EXPECT_EQ(Counted("DeviceControl::SetDeviceConfig(device=,deviceConfigName=CacheMode,value=WriteBack)"), 1u);
  EXPECT_EQ(control->SetDeviceConfig(kTargetDomain, "CacheMode", nullptr), static_cast<VXT_Result>(0x80000001));
  EXPECT_EQ(std::string(GetLastErrorMessage()), "DeviceControl.SetDeviceConfig was given a null value");
  EXPECT_EQ(Counted("DeviceControl::SetDeviceConfig(device=TargetDomain0,deviceConfigName=CacheMode,value=)"), 1u);

  char result[VXT_DEVICE_CONTROL_TEXT_SIZE] = {};
  EXPECT_EQ(control->ExecuteDeviceAction(kTargetDomain, "Nap", nullptr, result), static_cast<VXT_Result>(0x80000002));
  EXPECT_EQ(Counted("DeviceControl::ExecuteDeviceAction(device=TargetDomain0,deviceActionName=Nap,input=,result=,"
                    "errorCode0x00020001)"),
            1u);
}

TEST_F(DeviceControlTest, AChangedConfigIsModifiedUntilSetBackOrReverted) {
  char value[VXT_DEVICE_CONFIG_VALUE_SIZE] = {};
  ASSERT_EQ(control->SetDeviceConfig(kFirstThread, "CacheMode", "WriteThrough"), 0) << GetLastErrorMessage();
  ASSERT_EQ(control->SetDeviceConfig(kTargetDomain, "TraceBuffer", std::string(127, '8').c_str()), 0);
  EXPECT_EQ(control->GetDeviceConfig(kTargetDomain, "CacheMode", value), 0);
  EXPECT_EQ(std::string(value), "WriteThrough");
  EXPECT_EQ(NumModified(kFirstThread), 2u);

  char names[2][VXT_DEVICE_CONFIG_NAME_SIZE] = {};
  char values[2][VXT_DEVICE_CONFIG_VALUE_SIZE] = {};
  char defaults[2][VXT_DEVICE_CONFIG_VALUE_SIZE] = {};
  std::memset(names, 'x', sizeof names);
  EXPECT_EQ(control->GetModifiedDeviceConfigs(kTargetDomain, 1, names[0], values[0], defaults[0]), 0);
  EXPECT_EQ(std::string(names[0]) + "=" + values[0] + "/" + defaults[0], "CacheMode=WriteThrough/WriteBack");
  EXPECT_EQ(names[1][0], 'x');  // A maximum below the count cuts the list
  EXPECT_EQ(control->GetModifiedDeviceConfigs(kTargetDomain, 2, names[0], values[0], defaults[0]), 0);
  EXPECT_EQ(std::string(values[1]), std::string(127, '8'));

  ASSERT_EQ(control->SetDeviceConfig(kTargetDomain, "CacheMode", "WriteBack"), 0);
  EXPECT_EQ(NumModified(), 1u);
  ASSERT_EQ(control->RevertModifiedDeviceConfigs(kFirstThread), 0);
  EXPECT_EQ(NumModified(), 0u);
}

TEST_F(DeviceControlTest, Refusals) {
  char names[1][VXT_DEVICE_CONFIG_NAME_SIZE] = {};
  char values[1][VXT_DEVICE_CONFIG_VALUE_SIZE] = {};
  uint32_t count = 0;
  struct Refusal {
    std::function<VXT_Result()> call;
    VXT_Result result;
    std::string message;
  };
  const Refusal refusals[] = {
      {[&] { return control->GetNumModifiedDeviceConfigs(kTargetDomain, nullptr); }, static_cast<VXT_Result>(0x80000001),
       ""},
      {[&] { return control->GetModifiedDeviceConfigs(kTargetDomain, 0, names[0], nullptr, values[0]); },
       static_cast<VXT_Result>(0x80000001), ""},
      {[&] { return control->GetNumModifiedDeviceConfigs(0x0200ffff, &count); }, static_cast<VXT_Result>(0x80000009),
       ""},
      {[&] { return control->SetDeviceConfig(kTargetDomain, "CacheMode", "Lazy"); }, static_cast<VXT_Result>(0x80000002),
       "DeviceControl.SetDeviceConfig: \"Lazy\" is no option of CacheMode"},
      {[&] { return control->SetDeviceConfig(kTargetDomain, "DebugUnlock", "Unlocked"); },
       static_cast<VXT_Result>(0x80000003),
       "DeviceControl.SetDeviceConfig: ChangeLockedSetting needs authorization level \"Manufacturing\" on device "
       "0x02000000 (TargetDomain0), and \"Public\" is in force"},
      {[&] { return control->GetDeviceConfigOptions(kTargetDomain, "CacheMode", 1, nullptr); },
       static_cast<VXT_Result>(0x80000001), "DeviceControl.GetDeviceConfigOptions was given a null deviceConfigOptions"},
  };
  for (const Refusal& refusal : refusals) {
    EXPECT_EQ(refusal.call(), refusal.result) << refusal.message;
    // An empty text leaves the code's standing message.
    if (!refusal.message.empty()) {
      EXPECT_EQ(std::string(GetLastErrorMessage()), refusal.message);
    }
  }
  EXPECT_EQ(control->GetDeviceConfigOptions(kTargetDomain, "CacheMode", 1, names[0]), 0);
  EXPECT_EQ(std::string(names[0]), "WriteBack");
  char result[VXT_DEVICE_CONTROL_TEXT_SIZE] = {};
  EXPECT_EQ(control->ExecuteDeviceAction(kTargetDomain, "LastPostCode", "", result), 0) << GetLastErrorMessage();
  EXPECT_EQ(std::string(result).rfind("0x", 0), 0u) << result;
}

}  // namespace
}  // namespace vxt::test
