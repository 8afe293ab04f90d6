// The fixture of the JTAG services' tests: client 3 connected to the
// default target, whose one chain holds, from TDI to TDO, CpuTap (IR 8
// bits), UncoreTap (6) and ChipsetTap (4).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "BitDataTestSupport.h"
#include "InProc_Vxt.h"
#include "VxtTestSupport.h"

namespace vxt::test {

namespace jtag {
inline constexpr uint32_t kChain = 0x0d000000;
inline constexpr uint32_t kCpuTap = 0x0e000000;
inline constexpr uint32_t kUncoreTap = 0x0e000001;
inline constexpr uint32_t kChipsetTap = 0x0e000002;
inline constexpr uint32_t kCpuIdcode = 0x1B0041EB;
inline constexpr uint32_t kUncoreIdcode = 0x1B0051EB;
inline constexpr uint32_t kChipsetIdcode = 0x2C0101EB;
}  // namespace jtag

class JtagTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), VXT_SUCCESS);
    ASSERT_EQ(FinishInitialization(), VXT_SUCCESS);
    access = GetServiceAs<IInternalService_JtagAccess>(VXT_Service_JtagAccess);
    configuration = GetServiceAs<IInternalService_JtagConfiguration>(VXT_Service_JtagConfiguration);
    diagnostic = GetServiceAs<IInternalService_JtagDiagnostic>(VXT_Service_JtagDiagnostic);
    bits = &BitDataService();
    receipts = GetServiceAs<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
    ClearTrace();
  }
  void TearDown() override {
    if (IsConnected() != 0) Disconnect(client.clientId);
    PlatformTest::TearDown();
  }

  VXT_BitData Vector(uint32_t bitSize, uint64_t value) {
    VXT_BitData record = EmptyRecord();
    EXPECT_EQ(bits->Create(&record, bitSize, value), VXT_SUCCESS);
    return record;
  }
  // The operation's value as a number (at most 64 bits); ends the token.
  uint64_t ValueOf(uint64_t token) {
    uint64_t value = 0;
    EXPECT_EQ(receipts->GetValueAsUInt64(token, &value), VXT_SUCCESS);
    EXPECT_EQ(receipts->Destroy(token), VXT_SUCCESS);
    return value;
  }
  // The failed operation's message; ends the token.
  std::string FailureOf(uint64_t token) {
    char message[512] = "";
    EXPECT_EQ(receipts->GetOperationErrorMessage(token, message, sizeof message, nullptr), VXT_SUCCESS);
    EXPECT_EQ(receipts->Destroy(token), VXT_SUCCESS);
    return message;
  }
  // IrDrScan through the access service; the DR's captured value.
  uint64_t Scan(uint32_t target, uint32_t irBits, uint64_t ir, uint32_t drBits, uint64_t dr) {
    VXT_BitData irValue = Vector(irBits, ir);
    VXT_BitData drValue = Vector(drBits, dr);
    uint64_t token = 0;
    EXPECT_EQ(access->IrDrScan(target, &irValue, drBits, &drValue, &token), VXT_SUCCESS);
    return ValueOf(token);
  }

  VXT_Client client = MakeClient(3, "tool_3@here");
  IInternalService_JtagAccess* access = nullptr;
  IInternalService_JtagConfiguration* configuration = nullptr;
  IInternalService_JtagDiagnostic* diagnostic = nullptr;
  IInternalService_BitData* bits = nullptr;
  IInternalService_OperationReceipt* receipts = nullptr;
};

}  // namespace vxt::test
