// What the Device service offers the other services: a device's identifier
// through GetIdentifierForDeviceId's whole frame, and the internal forms
// that report their checks to the calling operation.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Device.h"
#include "PlatformTestControl.h"
#include "TargetManager.h"
#include "VxtTestSupport.h"
#include "frame/LastError.h"

namespace vxt {
namespace {

namespace tc = voxtrel::testing;

class DeviceServiceTest : public test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_NE(service_.targetManager, nullptr);  // Bound when the library was loaded
    ASSERT_EQ(service_.targetManager->FinishInitialization(), 0u);
    ClearTrace();
  }
  void TearDown() override {
    service_.targetManager->Uninitialize();
    PlatformTest::TearDown();
  }

  InProc_Device& service_ = InProc_Device::Instance();
};

TEST_F(DeviceServiceTest, IdentifierOfRunsTheWholeFrameAndGivesNothingOnFailure) {
  EXPECT_EQ(service_.IdentifierOf(0x0f000000), "InterfacePort0");
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_Device::GetIdentifierForDeviceId(deviceId = 0x0f000000) [ClientID: 0]",
                         "Out InProc_Device::GetIdentifierForDeviceId(identifier = 'InterfacePort0') ErrorCode = "
                         "0x00000000 [ClientID: 0]",
                     }));
  EXPECT_EQ(service_.IdentifierOf(0x0f000001), "");
  EXPECT_STREQ(frame::LastErrorMessage(), "TargetManager.GetIdentifierForDeviceId knows no device 0x0f000001");
}

TEST_F(DeviceServiceTest, InternalFormsReportTheirChecksToTheCaller) {
  std::vector<std::string> reported;
  const auto report = [&](std::string_view text) { reported.emplace_back(text); };
  EXPECT_EQ(service_._GetIdentifierForDeviceId(0x04000000, nullptr, report), 0x20000u);
  EXPECT_EQ(service_._GetNodeType(0x04000000, nullptr, report), 0x20000u);
  EXPECT_EQ(reported, (std::vector<std::string>{"(identifier) : Null pointer", "(nodeType) : Null pointer"}));

  VXT_NodeType type = VXT_NodeType_Unknown;
  EXPECT_EQ(service_._GetNodeType(0x0e000002, &type, report), 0u);
  EXPECT_EQ(type, VXT_NodeType_TAPController);
  EXPECT_EQ(service_._GetNodeType(0x0e000003, &type, report), 0xe0002u);
  EXPECT_EQ(reported.size(), 2u);  // The component's refusal is posted, not reported
}

}  // namespace
}  // namespace vxt
