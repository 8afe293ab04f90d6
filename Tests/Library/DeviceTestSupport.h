// The fixture of the Device service's tests: one client connected to the
// default target, its Device service, and the default target's devices.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace vxt::test {

// The default description's devices.
namespace device {
inline constexpr uint32_t kRoot = 0x01000000;
inline constexpr uint32_t kDomain = 0x02000000;
inline constexpr uint32_t kThread1_1 = 0x03000003;
inline constexpr uint32_t kCore0 = 0x04000000;
inline constexpr uint32_t kCore1 = 0x04000001;
inline constexpr uint32_t kUncore = 0x05000000;
inline constexpr uint32_t kPackage = 0x09000000;
inline constexpr uint32_t kCoreGroup = 0x0b000000;
inline constexpr uint32_t kChain = 0x0d000000;
inline constexpr uint32_t kCpuTap = 0x0e000000;
inline constexpr uint32_t kUnknown = 0x04000009;
}  // namespace device

inline constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);
inline constexpr VXT_Result kStructureSizeWrong = static_cast<VXT_Result>(0x80000010);
inline constexpr VXT_Result kDeviceNotFound = static_cast<VXT_Result>(0x80040004);

class DeviceTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ConnectAndBuild();
  }
  void TearDown() override {
    if (IsConnected() != 0) Disconnect(client.clientId);
    PlatformTest::TearDown();
  }

  void ConnectAndBuild() {
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    ASSERT_EQ(FinishInitialization(), 0);
    void* service = nullptr;
    ASSERT_EQ(GetService(nullptr, VXT_Service_Device, &service), 0);
    devices = static_cast<IInternalService_Device*>(service);
    ASSERT_EQ(GetService(nullptr, VXT_Service_OperationReceipt, &service), 0);
    receipts = static_cast<IInternalService_OperationReceipt*>(service);
    ClearTrace();
  }

  // The In and Out lines of a call of this client.
  static std::vector<std::string> InOutLines(const std::string& in, const std::string& out,
                                             const std::string& errorCode = "0x00000000") {
    return {"In  InProc_Device::" + in + " [ClientID: 3]",
            "Out InProc_Device::" + out + " ErrorCode = " + errorCode + " [ClientID: 3]"};
  }

  VXT_Client client = MakeClient(3, "tool_3@here");
  IInternalService_Device* devices = nullptr;
  IInternalService_OperationReceipt* receipts = nullptr;
};

}  // namespace vxt::test
