// The OperationReceipt service against a component that answers as the
// platform's never does: statuses without a name, a value handed over with a
// failure, success without a value.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Error.h"
#include "InProc_OperationReceipt.h"
#include "VXT_Exports.h"
#include "VxtTestSupport.h"
#include "frame/LastError.h"

namespace vxt {
namespace {

// What the component below answers.
uint32_t givenStatus = 0;
uint32_t valueCode = 0;
bool valueMade = false;

constexpr OperationReceiptComponent kOddComponent{
    [](uint64_t) -> uint32_t { return 0; },
    [](uint64_t) -> uint32_t { return 0; },
    [](uint64_t) -> uint32_t { return 0; },
    [](uint64_t, char*, uint32_t, uint32_t*) -> uint32_t { return 0; },
    [](uint64_t, int32_t*) -> uint32_t { return 0; },
    [](uint64_t, uint32_t* status) -> uint32_t {
      *status = givenStatus;
      return 0;
    },
    [](uint64_t, BitData** value) -> uint32_t {
      // A value made and then a failure: the service frees it all the same.
      if (valueMade) *value = BitData_CreateManagedFromUInt64(12, 0xabc);
      return valueCode;
    },
    [](uint64_t, uint8_t*) -> uint32_t { return 0; },
    [](uint64_t, uint16_t*) -> uint32_t { return 0; },
    [](uint64_t, uint32_t*) -> uint32_t { return 0; },
    [](uint64_t, uint64_t*) -> uint32_t { return 0; },
};

class OperationReceiptServiceTest : public test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    bound = service.operationReceipt;
    service.operationReceipt = &kOddComponent;
    ClearTrace();
  }
  void TearDown() override {
    service.operationReceipt = bound;
    Disconnect(client.clientId);
    PlatformTest::TearDown();
  }

  InProc_OperationReceipt& service = InProc_OperationReceipt::Instance();
  const OperationReceiptComponent* bound = nullptr;
  VXT_Client client = test::MakeClient(3, "tool_3@here");
};

TEST_F(OperationReceiptServiceTest, AStatusWithoutANameIsPassedOnAndTracedUnknown) {
  givenStatus = 7;
  auto status = VXT_OperationStatus_Pending;
  EXPECT_EQ(service.GetOperationStatus(0x10, &status), 0);
  EXPECT_EQ(static_cast<uint32_t>(status), 7u);
  EXPECT_EQ(Trace().back(),
            "Out InProc_OperationReceipt::GetOperationStatus(status = <UNKNOWN>) ErrorCode = "
            "0x00000000 [ClientID: 3]");
}

TEST_F(OperationReceiptServiceTest, AValueIsFreedWhateverTheOutcome) {
  struct Case {
    const char* name;
    uint32_t code;
    bool made;
    VXT_Result result;
    std::string message;
  };
  const Case cases[] = {
      {"made, then a failure", 0x20013, true, static_cast<VXT_Result>(0x8000001c),
       Voxtrel_ErrorGetDefaultMessage(0x20013)},
      {"success without a value", 0, false, static_cast<VXT_Result>(0x8000000f),
       Voxtrel_ErrorGetDefaultMessage(0x20009)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    valueCode = c.code;
    valueMade = c.made;
    VXT_BitData record{VXT_BITDATA_SIZE, 0, 0};
    EXPECT_EQ(service.GetValue(0x10, &record), c.result);
    EXPECT_EQ(record.dataHandle, 0u);
    uint8_t bytes[2] = {0xee, 0xee};
    uint32_t count = 9;
    EXPECT_EQ(service.GetValueAsRawBytes(0x10, bytes, 2, &count), c.result);
    EXPECT_EQ(count, 9u);
    EXPECT_EQ(bytes[0], 0xee);
    EXPECT_EQ(frame::LastErrorMessage(), c.message);
  }
  // Made and handed over: the client's vector is a copy.
  valueCode = 0;
  valueMade = true;
  VXT_BitData record{VXT_BITDATA_SIZE, 0, 0};
  EXPECT_EQ(service.GetValue(0x10, &record), 0);
  EXPECT_EQ(record.bitSize, 12u);
}

}  // namespace
}  // namespace vxt
