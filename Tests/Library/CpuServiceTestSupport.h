// A connected client on the default target, whose threads are emulated
// CPUs, with the services that reach them, and a few helpers to follow an
// operation's token.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace vxt::test {

// The first LogicalThread, and the target domain, of the default target.
inline constexpr uint32_t kFirstThread = 0x03000000;
inline constexpr uint32_t kSecondThread = 0x03000001;
inline constexpr uint32_t kTargetDomain = 0x02000000;

inline VXT_Address Physical(uint64_t offset) {
  return VXT_Address{VXT_ADDRESS_SIZE, 0, 0, offset, VXT_AddressType_Physical};
}

class CpuServiceTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    ASSERT_EQ(FinishInitialization(), 0);
    memory = Service<IInternalService_Memory>(VXT_Service_Memory);
    registers = Service<IInternalService_Register>(VXT_Service_Register);
    asmDasm = Service<IInternalService_AsmDasm>(VXT_Service_AsmDasm);
    receipts = Service<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
    bitData = Service<IInternalService_BitData>(VXT_Service_BitData);
    ClearTrace();
  }
  void TearDown() override {
    if (IsConnected() != 0) Disconnect(client.clientId);
    PlatformTest::TearDown();
  }

  template <class Interface>
  static Interface* Service(uint32_t id) {
    void* service = nullptr;
    EXPECT_EQ(GetService(nullptr, id, &service), 0);
    return static_cast<Interface*>(service);
  }

  // A token's value as bytes; the token is destroyed.
  std::vector<uint8_t> Bytes(uint64_t token) {
    uint32_t size = 0;
    EXPECT_EQ(receipts->GetValueAsRawBytes(token, nullptr, 0, &size), 0);
    std::vector<uint8_t> bytes(size);
    EXPECT_EQ(receipts->GetValueAsRawBytes(token, bytes.data(), size, &size), 0);
    EXPECT_EQ(receipts->Destroy(token), 0);
    return bytes;
  }
  uint64_t Number(uint64_t token) {
    uint64_t value = 0;
    EXPECT_EQ(receipts->GetValueAsUInt64(token, &value), 0);
    EXPECT_EQ(receipts->Destroy(token), 0);
    return value;
  }
  VXT_BitData Vector(const std::vector<uint8_t>& bytes) {
    VXT_BitData vector{VXT_BITDATA_SIZE, 0, 0};
    EXPECT_EQ(bitData->CreateFromRawBits(&vector, static_cast<uint32_t>(bytes.size() * 8), bytes.data(),
                                         static_cast<uint32_t>(bytes.size())),
              0);
    return vector;
  }

  // Each call gives its public code and its whole message.
  struct Refusal {
    std::function<VXT_Result()> call;
    VXT_Result result;
    std::string message;
  };
  static void ExpectRefusals(const std::vector<Refusal>& refusals) {
    for (const Refusal& refusal : refusals) {
      EXPECT_EQ(refusal.call(), refusal.result) << refusal.message;
      EXPECT_EQ(std::string(GetLastErrorMessage()), refusal.message);
    }
  }

  VXT_Client client = MakeClient(3, "tool_3@here");
  IInternalService_Memory* memory = nullptr;
  IInternalService_Register* registers = nullptr;
  IInternalService_AsmDasm* asmDasm = nullptr;
  IInternalService_OperationReceipt* receipts = nullptr;
  IInternalService_BitData* bitData = nullptr;
};

}  // namespace vxt::test
