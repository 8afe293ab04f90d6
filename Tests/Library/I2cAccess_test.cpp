// The I2cAccess service on the default target's bus: its trace lines whole,
// its one check, the getter's failure, and the devices behind it: an EEPROM
// with pages and auto-increment, a temperature sensor, an address that no
// device answers, and a lock that keeps another client out.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "BitDataTestSupport.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace vxt::test {
namespace {

constexpr uint32_t kBus = 0x11000000;
constexpr uint8_t kEeprom = 0x50;  // 512 bytes, 16-byte pages, two address bytes
constexpr uint8_t kSensor = 0x4c;  // Reads 41 degrees

class I2cTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), VXT_SUCCESS);
    ASSERT_EQ(FinishInitialization(), VXT_SUCCESS);
    i2c = GetServiceAs<IInternalService_I2cAccess>(VXT_Service_I2cAccess);
    receipts = GetServiceAs<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
    ClearTrace();
  }
  void TearDown() override {
    if (IsConnected() != 0) Disconnect(client.clientId);
    PlatformTest::TearDown();
  }

  // The bytes a finished receipt holds; ends the token.
  std::vector<uint8_t> BytesOf(uint64_t token) {
    uint8_t bytes[64] = {};
    uint32_t count = 0;
    EXPECT_EQ(receipts->GetValueAsRawBytes(token, bytes, sizeof bytes, &count), VXT_SUCCESS);
    EXPECT_EQ(receipts->Destroy(token), VXT_SUCCESS);
    return {bytes, bytes + count};
  }
  void Write(uint8_t address, std::vector<uint8_t> bytes) {
    uint64_t token = 0;
    ASSERT_EQ(i2c->I2cRawWrite(kBus, address, bytes.data(), static_cast<uint32_t>(bytes.size()), 0, &token),
              VXT_SUCCESS);
    ASSERT_EQ(receipts->Destroy(token), VXT_SUCCESS);
  }
  std::vector<uint8_t> Read(uint8_t address, uint32_t count) {
    uint64_t token = 0;
    EXPECT_EQ(i2c->I2cRawRead(kBus, address, count, 0, &token), VXT_SUCCESS);
    return BytesOf(token);
  }

  VXT_Client client = MakeClient(3, "tool_3@here");
  IInternalService_I2cAccess* i2c = nullptr;
  IInternalService_OperationReceipt* receipts = nullptr;
};

TEST_F(I2cTest, TraceLinesShowEveryArgumentAndTheToken) {
  const uint8_t two[] = {0x00, 0x10};
  const uint8_t bundle[] = {'R', kSensor, 2, 0};
  uint64_t token = 0;
  const std::string ok = " ErrorCode = 0x00000000 [ClientID: 3]";
  struct Case {
    std::function<void()> call;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {[&] { i2c->I2cRawRead(kBus, kEeprom, 4, 0, &token); },
       {"In  InProc_I2cAccess::I2cRawRead(i2cBusId = 0x11000000 idbyte = 80 bytecnt = 4 options = 0x00000000) "
        "[ClientID: 3]",
        "Out InProc_I2cAccess::I2cRawRead(operationToken = 0x0000000000000001)" + ok}},
      {[&] { i2c->I2cRawWrite(kBus, kEeprom, two, 2, 0, &token); },
       {"In  InProc_I2cAccess::I2cRawWrite(i2cBusId = 0x11000000 idbyte = 80 bytebuffer = {0x00, 0x10} bytecnt = 2 "
        "options = 0x00000000) [ClientID: 3]",
        "Out InProc_I2cAccess::I2cRawWrite(operationToken = 0x0000000000000002)" + ok}},
      {[&] { i2c->I2cRawWrite(kBus, kEeprom, two, 0, 0, &token); },
       {"In  InProc_I2cAccess::I2cRawWrite(i2cBusId = 0x11000000 idbyte = 80 bytebuffer = <EMPTY> bytecnt = 0 "
        "options = 0x00000000) [ClientID: 3]",
        "Out InProc_I2cAccess::I2cRawWrite(operationToken = 0x0000000000000003)" + ok}},
      {[&] { i2c->I2cRawWrite(kBus, kEeprom, nullptr, 2, 0, &token); },
       {"In  InProc_I2cAccess::I2cRawWrite(i2cBusId = 0x11000000 idbyte = 80 bytebuffer = <NULL> bytecnt = 2 "
        "options = 0x00000000) [ClientID: 3]",
        "VXT Error = 'I2c.I2cRawWrite was given a null bytebuffer' [ClientID: 3]",
        "In  InProc ReportErrorMessage(<NULL>'I2c.I2cRawWrite was given a null bytebuffer')",
        "Out InProc ReportErrorMessage()",
        "Out InProc_I2cAccess::I2cRawWrite(operationToken = 0x0000000000000003) ErrorCode = 0x80000001 "
        "[ClientID: 3]"}},
      {[&] { i2c->Lock(kBus, nullptr); },
       {"In  InProc_I2cAccess::Lock(i2cBusId = 0x11000000) [ClientID: 3]",
        "VXT Error = 'I2c.Lock was given a null operationToken' [ClientID: 3]",
        "In  InProc ReportErrorMessage(<NULL>'I2c.Lock was given a null operationToken')",
        "Out InProc ReportErrorMessage()",
        "Out InProc_I2cAccess::Lock(operationToken = <NULL>) ErrorCode = 0x80000001 [ClientID: 3]"}},
      {[&] { i2c->Unlock(kBus, &token); },
       {"In  InProc_I2cAccess::Unlock(i2cBusId = 0x11000000) [ClientID: 3]",
        "Out InProc_I2cAccess::Unlock(operationToken = 0x0000000000000004)" + ok}},
      {[&] { i2c->BundleScan(kBus, bundle, sizeof bundle, &token); },
       {"In  InProc_I2cAccess::BundleScan(i2cBusId = 0x11000000 bundleBuffer = {...} bundleBufferSize = 4) "
        "[ClientID: 3]",
        "Out InProc_I2cAccess::BundleScan(operationToken = 0x0000000000000005)" + ok}},
      {[&] { i2c->BundleScan(kBus, nullptr, 4, &token); },
       {"In  InProc_I2cAccess::BundleScan(i2cBusId = 0x11000000 bundleBuffer = <NULL> bundleBufferSize = 4) "
        "[ClientID: 3]",
        "VXT Error = 'InProc_I2cAccess::BundleScan() argument error (bundleBuffer) : Null pointer' [ClientID: 3]",
        "In  InProc ReportErrorMessage(<NULL>'InProc_I2cAccess::BundleScan() argument error (bundleBuffer) : Null "
        "pointer')",
        "Out InProc ReportErrorMessage()",
        "Out InProc_I2cAccess::BundleScan(operationToken = 0x0000000000000005) ErrorCode = 0x80000001 "
        "[ClientID: 3]"}},
  };
  for (const Case& c : cases) {
    ClearTrace();
    c.call();
    EXPECT_EQ(Trace(), c.lines);
  }
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "I2cAccess::I2cRawWrite"), 3u);
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "I2cAccess::Lock"), 0u);
}

TEST_F(I2cTest, AFailingGetterFailsEveryOperationAndTheComponentIsNotCalled) {
  voxtrel::testing::FailWith("Voxtrel_GetI2c", 0xe0005);
  const uint8_t byte = 0;
  const std::function<VXT_Result(uint64_t*)> calls[] = {
      [&](uint64_t* t) { return i2c->I2cRawRead(kBus, kEeprom, 1, 0, t); },
      [&](uint64_t* t) { return i2c->I2cRawWrite(kBus, kEeprom, &byte, 1, 0, t); },
      [&](uint64_t* t) { return i2c->Lock(kBus, t); },
      [&](uint64_t* t) { return i2c->Unlock(kBus, t); },
      [&](uint64_t* t) { return i2c->BundleScan(kBus, &byte, 0, t); },
  };
  for (const auto& call : calls) {
    uint64_t token = 0;
    EXPECT_EQ(call(&token), static_cast<VXT_Result>(0x80040008));
    EXPECT_EQ(token, 0u);
  }
}

TEST_F(I2cTest, AnEepromWrittenOverTheBusReadsBackAcrossAPowerCycleAndAClientCycle) {
  Write(kEeprom, {0x00, 0x00});  // Pointer to 0: the described contents
  EXPECT_EQ(Read(kEeprom, 8), (std::vector<uint8_t>{0x92, 0x10, 0x0b, 0x02, 0x04, 0x21, 0xff, 0xff}));
  // A write that runs past its 16-byte page wraps to the page's start.
  Write(kEeprom, {0x01, 0x0e, 0xa1, 0xa2, 0xa3, 0xa4});
  Write(kEeprom, {0x01, 0x00});
  EXPECT_EQ(Read(kEeprom, 3), (std::vector<uint8_t>{0xa3, 0xa4, 0xff}));
  EXPECT_EQ(Read(kEeprom, 0x0b).back(), 0xff);
  EXPECT_EQ(Read(kEeprom, 2), (std::vector<uint8_t>{0xa1, 0xa2})) << "the read auto-increments";

  constexpr uint32_t kDebugPort = 0x0c000000;
  auto* platform = GetServiceAs<IInternalService_PlatformControl>(VXT_Service_PlatformControl);
  uint64_t token = 0;
  ASSERT_EQ(platform->PowerCycleTarget(kDebugPort, &token), VXT_SUCCESS);
  EXPECT_EQ(receipts->Flush(token), VXT_SUCCESS);
  EXPECT_EQ(receipts->Destroy(token), VXT_SUCCESS);
  Write(kEeprom, {0x01, 0x0e});
  EXPECT_EQ(Read(kEeprom, 2), (std::vector<uint8_t>{0xa1, 0xa2})) << "lost in the power cycle";

  ASSERT_EQ(Disconnect(client.clientId), VXT_SUCCESS);
  ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), VXT_SUCCESS);
  ASSERT_EQ(FinishInitialization(), VXT_SUCCESS);
  Write(kEeprom, {0x01, 0x0e});
  EXPECT_EQ(Read(kEeprom, 4), (std::vector<uint8_t>{0xa1, 0xa2, 0xff, 0xff})) << "reads run on into the next page";
}

TEST_F(I2cTest, TheSensorBundleAndAnAbsentAddress) {
  Write(kSensor, {0x00});
  EXPECT_EQ(Read(kSensor, 2), (std::vector<uint8_t>{41, 0x00}));
  Write(kSensor, {0x00, 0x7f});  // The reading is read-only
  Write(kSensor, {0x03, 90, 0x80});
  const uint8_t bundle[] = {'W', kSensor, 1, 0, 0x00, 'R', kSensor, 2, 0, 'W', kSensor, 1, 0, 0x03, 'R', kSensor, 2, 0};
  uint64_t token = 0;
  ASSERT_EQ(i2c->BundleScan(kBus, bundle, sizeof bundle, &token), VXT_SUCCESS);
  EXPECT_EQ(BytesOf(token), (std::vector<uint8_t>{41, 0x00, 90, 0x80}));

  ASSERT_EQ(i2c->I2cRawRead(kBus, 0x51, 1, 0, &token), VXT_SUCCESS);
  OperationStatus status{};
  EXPECT_EQ(receipts->GetOperationStatus(token, &status), VXT_SUCCESS);
  EXPECT_EQ(status, VXT_OperationStatus_Failed);
  char message[200] = "";
  EXPECT_EQ(receipts->GetOperationErrorMessage(token, message, sizeof message, nullptr), VXT_SUCCESS);
  EXPECT_EQ(std::string(message), "I2c.I2cRawRead: no device answers at address 0x51 on bus I2cBus0 (NACK)");

  struct Refusal {
    std::function<VXT_Result(uint64_t*)> call;
    std::string message;
  };
  const uint8_t shortBundle[] = {'W', kSensor, 3, 0, 0x01};
  const Refusal refusals[] = {
      {[&](uint64_t* t) { return i2c->I2cRawRead(kBus, 0x80, 1, 0, t); }, "I2c.I2cRawRead: idbyte 128 is no 7-bit address"},
      {[&](uint64_t* t) { return i2c->I2cRawRead(kBus, kEeprom, 1, 4, t); },
       "I2c.I2cRawRead: options must be 0; no option bits are defined"},
      {[&](uint64_t* t) { return i2c->BundleScan(kBus, shortBundle, sizeof shortBundle, t); },
       "I2c.BundleScan: the record at byte 0 is cut short"},
  };
  for (const Refusal& refusal : refusals) {
    EXPECT_EQ(refusal.call(&token), static_cast<VXT_Result>(0x80000002));
    EXPECT_EQ(std::string(GetLastErrorMessage()), refusal.message);
  }
}

TEST_F(I2cTest, ALockKeepsOtherClientsOffTheBusUntilUnlocked) {
  VXT_Client other = MakeClient(4, "tool_4@here");
  ASSERT_EQ(StartNewInstance(&other, 1, 0, nullptr), VXT_SUCCESS);
  uint64_t token = 0;
  ASSERT_TRUE(voxtrel::testing::BindThreadToClient(3));
  ASSERT_EQ(i2c->Lock(kBus, &token), VXT_SUCCESS);
  ASSERT_TRUE(voxtrel::testing::BindThreadToClient(4));
  EXPECT_EQ(i2c->I2cRawRead(kBus, kSensor, 1, 0, &token), static_cast<VXT_Result>(0x80040008));
  EXPECT_EQ(std::string(GetLastErrorMessage()),
            "I2c.I2cRawRead: bus I2cBus0 is locked by client 3 ('tool_3@here')");
  ASSERT_TRUE(voxtrel::testing::BindThreadToClient(3));
  ASSERT_EQ(i2c->Unlock(kBus, &token), VXT_SUCCESS);
  ASSERT_TRUE(voxtrel::testing::BindThreadToClient(4));
  EXPECT_EQ(i2c->I2cRawRead(kBus, kSensor, 1, 0, &token), VXT_SUCCESS);
  Disconnect(other.clientId);
}

}  // namespace
}  // namespace vxt::test
