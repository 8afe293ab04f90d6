// The OperationReceipt service: its checks, the component's failures as
// clients see them, values turned into vectors and bytes, and its trace.
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::MakeClient;

constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);

std::string Hex16Text(uint64_t value) {
  char text[19];
  std::snprintf(text, sizeof text, "0x%016llx", static_cast<unsigned long long>(value));
  return text;
}

// The In and Out lines of a call that takes a token and nothing else in.
std::vector<std::string> Lines(const std::string& operation, uint64_t token, const std::string& outArguments,
                               const std::string& errorCode = "0x00000000") {
  return {"In  InProc_OperationReceipt::" + operation + "(operationToken = " + Hex16Text(token) + ") [ClientID: 3]",
          "Out InProc_OperationReceipt::" + operation + "(" + outArguments + ") ErrorCode = " + errorCode +
              " [ClientID: 3]"};
}

class OperationReceiptTest : public vxt::test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    void* service = nullptr;
    ASSERT_EQ(GetService(nullptr, VXT_Service_OperationReceipt, &service), 0);
    receipts = static_cast<IInternalService_OperationReceipt*>(service);
    ASSERT_EQ(GetService(nullptr, VXT_Service_BitData, &service), 0);
    bitData = static_cast<IInternalService_BitData*>(service);
    ClearTrace();
  }
  void TearDown() override {
    if (IsConnected() != 0) Disconnect(client.clientId);
    PlatformTest::TearDown();
  }

  OperationStatus StatusOf(uint64_t token) {
    auto status = static_cast<OperationStatus>(99);
    EXPECT_EQ(receipts->GetOperationStatus(token, &status), 0);
    return status;
  }
  bool IsAlive(uint64_t token) {
    auto status = static_cast<OperationStatus>(99);
    return receipts->GetOperationStatus(token, &status) == 0;
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
      EXPECT_EQ(GetLastErrorMessage(), refusal.message);
    }
  }

  VXT_Client client = MakeClient(3, "tool_3@here");
  IInternalService_OperationReceipt* receipts = nullptr;
  IInternalService_BitData* bitData = nullptr;
};

TEST_F(OperationReceiptTest, ArgumentChecksAreRefusedBeforeTheComponentIsAsked) {
  const uint64_t token = tc::StartCompletedReceipt({{0x5a}, 8});
  VXT_BitData held{VXT_BITDATA_SIZE, 0, 0};
  ASSERT_EQ(bitData->Create(&held, 8, 1), 0);
  const VXT_BitData heldBefore = held;
  VXT_BitData unsized{0, 0, 0};
  const std::string prefix = "InProc_OperationReceipt::";
  tc::StartRecordingCalls();
  ExpectRefusals({
      {[&] { return receipts->DestroyMany(nullptr, 2); }, kInvalidArgument,
       prefix + "DestroyMany() argument error (operationTokens) : Null pointer"},
      {[&] { return receipts->GetOperationErrorResult(token, nullptr); }, kInvalidArgument,
       prefix + "GetOperationErrorResult() argument error (operationErrorResult) : Null pointer"},
      {[&] { return receipts->GetOperationStatus(token, nullptr); }, kInvalidArgument,
       prefix + "GetOperationStatus() argument error (status) : Null pointer"},
      {[&] { return receipts->GetValue(token, nullptr); }, kInvalidArgument,
       prefix + "GetValue() argument error (value) : Null pointer"},
      {[&] { return receipts->GetValue(token, &unsized); }, static_cast<VXT_Result>(0x80000010),
       prefix + "GetValue() argument error (value) : Structure size not initialized"},
      {[&] { return receipts->GetValue(token, &held); }, static_cast<VXT_Result>(0x80010002),
       prefix + "GetValue() argument error (value) : Destination exists"},
      {[&] { return receipts->GetValueAsRawBytes(token, nullptr, 4, nullptr); }, kInvalidArgument,
       prefix + "GetValueAsRawBytes() argument error (bytes) : Null pointer" + prefix +
           "GetValueAsRawBytes() argument error (byteCount) : Null pointer"},
  });
  for (const tc::RecordedCall& call : tc::RecordedCalls())
    EXPECT_EQ(call.operation.rfind("OperationReceipt.", 0), std::string::npos) << call.operation;
  EXPECT_EQ(held.dataHandle, heldBefore.dataHandle);
  EXPECT_EQ(unsized.dataHandle, 0u);
  EXPECT_TRUE(IsAlive(token));
}

TEST_F(OperationReceiptTest, ComponentRefusalsReachTheClientTranslated) {
  const uint64_t unknown = 0xbeef;
  const std::string unknownText = "Unknown operation token " + Hex16Text(unknown);
  const uint64_t pending = tc::StartHeldReceipt();
  const uint64_t failed = tc::StartFailedReceipt(0x1d0001, "lost");
  const uint64_t wide = tc::StartCompletedReceipt({{0x00, 0x01}, 16});
  char buffer[8];
  uint32_t size = 0;
  VXT_BitData record{VXT_BITDATA_SIZE, 0, 0};
  uint8_t u8 = 0;
  ExpectRefusals({
      {[&] { return receipts->Cancel(unknown); }, VXT_E_INVALID_HANDLE, unknownText},
      {[&] { return receipts->GetValue(pending, &record); }, VXT_E_OPERATION_NOT_ENDED,
       "The operation of token " + Hex16Text(pending) + " has not ended"},
      {[&] { return receipts->GetValueAsRawBytes(failed, nullptr, 0, &size); }, VXT_E_OPERATION_HAS_NO_VALUE,
       "The operation of token " + Hex16Text(failed) + " failed"},
      {[&] { return receipts->GetValueAsUInt8(wide, &u8); }, VXT_E_OUT_OF_RANGE,
       "The value of operation token " + Hex16Text(wide) + " does not fit in 8 bits"},
      {[&] { return receipts->GetOperationErrorMessage(failed, buffer, 3, nullptr); }, VXT_E_BUFFER_TOO_SMALL,
       "The error message of operation token " + Hex16Text(failed) + " needs 5 bytes"},
  });
  // Nothing was handed out on the way.
  EXPECT_EQ(record.dataHandle, 0u);
  EXPECT_EQ(size + u8, 0u);
}

// Calls that take a token alone: the status by its name, the failure as a
// public code, values at their width, and nothing out for the calls that end
// an operation.
TEST_F(OperationReceiptTest, TokenCallsAreTracedWithTheTokenInAndTheirResultOut) {
  const uint64_t pending = tc::StartHeldReceipt();
  const uint64_t completed = tc::StartCompletedReceipt({{0xab}, 8});
  const uint64_t failed = tc::StartFailedReceipt(0x1d0001, "x");
  const uint64_t outsideItsFamily = tc::StartFailedReceipt(0x2000d, "x");
  const uint64_t withoutARow = tc::StartFailedReceipt(0x2000c, "x");
  const uint64_t canceled = tc::StartHeldReceipt();
  ASSERT_EQ(receipts->Cancel(canceled), 0);
  auto status = static_cast<OperationStatus>(99);
  VXT_Result result = 0x1234;
  uint8_t u8 = 0;
  uint64_t u64 = 0;
  const auto statusOf = [&](uint64_t token) { return receipts->GetOperationStatus(token, &status); };
  const auto resultOf = [&](uint64_t token) { return receipts->GetOperationErrorResult(token, &result); };
  struct Case {
    uint64_t token;
    const char* operation;
    std::function<VXT_Result(uint64_t)> call;
    std::string shown;
  };
  const Case cases[] = {
      {pending, "GetOperationStatus", statusOf, "status = Pending"},
      {completed, "GetOperationStatus", statusOf, "status = Completed"},
      {failed, "GetOperationStatus", statusOf, "status = Failed"},
      {canceled, "GetOperationStatus", statusOf, "status = Canceled"},
      {completed, "GetOperationErrorResult", resultOf, "operationErrorResult = 0x00000000"},
      {pending, "GetOperationErrorResult", resultOf, "operationErrorResult = 0x00000000"},
      {failed, "GetOperationErrorResult", resultOf, "operationErrorResult = 0x80090001"},
      {outsideItsFamily, "GetOperationErrorResult", resultOf, "operationErrorResult = 0x80040007"},
      {withoutARow, "GetOperationErrorResult", resultOf, "operationErrorResult = 0x8000000f"},
      {canceled, "GetOperationErrorResult", resultOf, "operationErrorResult = 0x8000000c"},
      {completed, "GetValueAsUInt8", [&](uint64_t t) { return receipts->GetValueAsUInt8(t, &u8); }, "value = 0xab"},
      {completed, "GetValueAsUInt64", [&](uint64_t t) { return receipts->GetValueAsUInt64(t, &u64); },
       "value = 0x00000000000000ab"},
      {pending, "Cancel", [&](uint64_t t) { return receipts->Cancel(t); }, ""},
      {pending, "Flush", [&](uint64_t t) { return receipts->Flush(t); }, ""},
      {pending, "Destroy", [&](uint64_t t) { return receipts->Destroy(t); }, ""},
  };
  for (const Case& c : cases) {
    ClearTrace();
    EXPECT_EQ(c.call(c.token), 0) << c.operation << " " << c.shown;
    EXPECT_EQ(Trace(), Lines(c.operation, c.token, c.shown));
  }
  EXPECT_EQ(u8 + u64, 2u * 0xab);
  EXPECT_EQ(static_cast<uint32_t>(result), 0x8000000cu);
  EXPECT_EQ(receipts->Destroy(pending), VXT_E_INVALID_HANDLE);
  ClearTrace();
  EXPECT_EQ(receipts->GetOperationStatus(failed, nullptr), kInvalidArgument);
  EXPECT_EQ(Trace().back(),
            "Out InProc_OperationReceipt::GetOperationStatus(status = <NULL>) ErrorCode = 0x80000001 [ClientID: 3]");
}

TEST_F(OperationReceiptTest, EveryGetValueMakesANewVectorOfTheCallingClient) {
  const uint64_t token = tc::StartCompletedReceipt({{0x34, 0x12, 0x05}, 20});
  VXT_BitData first{VXT_BITDATA_SIZE, 0, 0};
  VXT_BitData second{VXT_BITDATA_SIZE, 0, 0};
  ASSERT_EQ(receipts->GetValue(token, &first), 0);
  ClearTrace();
  ASSERT_EQ(receipts->GetValue(token, &second), 0);
  EXPECT_EQ(Trace(),
            Lines("GetValue", token, "value = {bitSize = 20 dataHandle = " + Hex16Text(second.dataHandle) + "}"));
  EXPECT_NE(first.dataHandle, 0u);
  EXPECT_NE(first.dataHandle, second.dataHandle);
  ASSERT_EQ(bitData->Deposit(&first, 0, 20, 0), 0);
  for (const VXT_BitData* record : {&first, &second}) EXPECT_EQ(record->bitSize, 20u);
  uint64_t value = 0;
  ASSERT_EQ(bitData->Extract(&second, 0, 20, &value), 0);
  EXPECT_EQ(value, 0x51234u);
  EXPECT_EQ(bitData->Destroy(&first), 0);
  EXPECT_EQ(bitData->Destroy(&second), 0);

  // A value of no bits is a vector too.
  VXT_BitData empty{VXT_BITDATA_SIZE, 0, 0};
  ASSERT_EQ(receipts->GetValue(tc::StartCompletedReceipt({}), &empty), 0);
  EXPECT_EQ(empty.bitSize, 0u);
  EXPECT_NE(empty.dataHandle, 0u);
}

TEST_F(OperationReceiptTest, GetValueNeedsAClient) {
  const uint64_t token = tc::StartCompletedReceipt({{1}, 8});
  VXT_BitData record{VXT_BITDATA_SIZE, 0, 0};
  tc::FailWith("Common.GetClientId", 0x140000);
  EXPECT_EQ(receipts->GetValue(token, &record), VXT_E_BITDATA_INVALID);
  EXPECT_EQ(record.dataHandle, 0u);
}

TEST_F(OperationReceiptTest, RawBytesServeASizeQueryOrARead) {
  constexpr uint8_t kUntouched = 0xee;
  constexpr uint32_t kUnset = 77;
  struct Case {
    const char* name;
    tc::ReceiptBits value;
    bool bytes;
    uint32_t maxByteCount;
    bool byteCount;
    std::vector<uint8_t> buffer;  // The first four bytes afterwards
    uint32_t reported;
  };
  const std::vector<uint8_t> untouched(4, kUntouched);
  const Case cases[] = {
      {"size of 9 bits", {{0xff, 0x01}, 9}, false, 0, true, untouched, 2},
      {"size whatever the maximum", {{0x34, 0x12, 0x56}, 24}, false, 1, true, untouched, 3},
      {"one byte of two", {{0x34, 0x12}, 16}, true, 1, true, {0x34, kUntouched, kUntouched, kUntouched}, 1},
      {"read without a count", {{0x34, 0x12}, 16}, true, 4, false, {0x34, 0x12, kUntouched, kUntouched}, kUnset},
      {"nothing of no bits", {{}, 0}, true, 4, true, untouched, 0},
      {"a maximum of 0", {{0x34}, 8}, true, 0, true, untouched, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const uint64_t token = tc::StartCompletedReceipt(c.value);
    std::vector<uint8_t> buffer(4, kUntouched);
    uint32_t count = kUnset;
    EXPECT_EQ(receipts->GetValueAsRawBytes(token, c.bytes ? buffer.data() : nullptr, c.maxByteCount,
                                           c.byteCount ? &count : nullptr),
              0);
    EXPECT_EQ(buffer, c.buffer);
    EXPECT_EQ(count, c.reported);
  }
}

TEST_F(OperationReceiptTest, RawBytesOutLineShowsAtMostAHundredBytes) {
  std::vector<uint8_t> value(300);
  for (size_t i = 0; i < value.size(); ++i) value[i] = static_cast<uint8_t>(i * 7);
  const uint64_t token = tc::StartCompletedReceipt({value, 300 * 8});
  std::vector<uint8_t> buffer(300);
  uint32_t count = 0;
  ClearTrace();
  ASSERT_EQ(receipts->GetValueAsRawBytes(token, buffer.data(), 300, &count), 0);
  EXPECT_EQ(buffer, value);
  EXPECT_EQ(count, 300u);
  std::string shown;
  for (size_t i = 0; i < 100; ++i) {
    char byte[8];
    std::snprintf(byte, sizeof byte, "%s0x%02x", i == 0 ? "" : ", ", value[i]);
    shown += byte;
  }
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_OperationReceipt::GetValueAsRawBytes(operationToken = " + Hex16Text(token) +
                             " maxByteCount = 300) [ClientID: 3]",
                         "Out InProc_OperationReceipt::GetValueAsRawBytes(bytes = {" + shown +
                             "} byteCount = 300) ErrorCode = 0x00000000 [ClientID: 3]",
                     }));
}

TEST_F(OperationReceiptTest, RawBytesOutLineNeverReadsPastTheCallersBuffer) {
  // A failure leaves the count as the caller set it, here far beyond the
  // buffer; the line shows no more than the buffer holds.
  uint8_t buffer[2] = {0x0a, 0x0b};
  uint32_t count = 5000;
  EXPECT_EQ(receipts->GetValueAsRawBytes(0xbeef, buffer, 2, &count), VXT_E_INVALID_HANDLE);
  EXPECT_EQ(count, 5000u);
  EXPECT_EQ(Trace().back(),
            "Out InProc_OperationReceipt::GetValueAsRawBytes(bytes = {0x0a, 0x0b} byteCount = 5000) "
            "ErrorCode = 0x80000011 [ClientID: 3]");

  const std::string message =
      "InProc_OperationReceipt::GetValueAsRawBytes() argument error (bytes) : Null pointer"
      "InProc_OperationReceipt::GetValueAsRawBytes() argument error (byteCount) : Null pointer";
  const uint64_t token = tc::StartCompletedReceipt({{1}, 8});
  ClearTrace();
  EXPECT_EQ(receipts->GetValueAsRawBytes(token, nullptr, 2, nullptr), kInvalidArgument);
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_OperationReceipt::GetValueAsRawBytes(operationToken = " + Hex16Text(token) +
                             " maxByteCount = 2) [ClientID: 3]",
                         "VXT Error = '" + message + "' [ClientID: 3]",
                         "In  InProc ReportErrorMessage(<NULL>'" + message + "')",
                         "Out InProc ReportErrorMessage()",
                         "Out InProc_OperationReceipt::GetValueAsRawBytes(bytes = <NULL> byteCount = <NULL>) "
                         "ErrorCode = 0x80000001 [ClientID: 3]",
                     }));
}

TEST_F(OperationReceiptTest, ErrorMessageIsShownWithinTheCallersBuffer) {
  const uint64_t token = tc::StartFailedReceipt(0x1d0001, "probe gone");
  struct Case {
    uint32_t maxBufferSize;
    VXT_Result result;
    std::string shown;
  };
  const Case cases[] = {
      {32, 0, "buffer = 'probe gone' actualStringSize = 11) ErrorCode = 0x00000000"},
      {5, VXT_E_BUFFER_TOO_SMALL, "buffer = 'prob' actualStringSize = 11) ErrorCode = 0x80000013"},
      // Nothing written: the line stops at the buffer's end.
      {0, VXT_E_BUFFER_TOO_SMALL, "buffer = '' actualStringSize = 11) ErrorCode = 0x80000013"},
  };
  for (const Case& c : cases) {
    char buffer[32];
    std::fill(std::begin(buffer), std::end(buffer), 'z');
    uint32_t size = 0;
    ClearTrace();
    EXPECT_EQ(receipts->GetOperationErrorMessage(token, buffer, c.maxBufferSize, &size), c.result);
    EXPECT_EQ(Trace().front(),
              "In  InProc_OperationReceipt::GetOperationErrorMessage(operationToken = " + Hex16Text(token) +
                  " maxBufferSize = " + std::to_string(c.maxBufferSize) + ") [ClientID: 3]");
    EXPECT_EQ(Trace().back(), "Out InProc_OperationReceipt::GetOperationErrorMessage(" + c.shown + " [ClientID: 3]");
  }
}

TEST_F(OperationReceiptTest, DestroyManyStopsAtTheFirstTokenThatFails) {
  const uint64_t a = tc::StartCompletedReceipt({});
  const uint64_t b = tc::StartHeldReceipt();
  const uint64_t c = tc::StartFailedReceipt(0x1d0001, "x");
  const uint64_t bad = 0xbeef;
  const uint64_t tokens[] = {a, bad, b, c};
  EXPECT_EQ(receipts->DestroyMany(tokens, 4), VXT_E_INVALID_HANDLE);
  EXPECT_EQ(GetLastErrorMessage(), "Unknown operation token " + Hex16Text(bad));
  EXPECT_FALSE(IsAlive(a));
  EXPECT_TRUE(IsAlive(b));
  EXPECT_TRUE(IsAlive(c));

  ClearTrace();
  EXPECT_EQ(receipts->DestroyMany(tokens + 2, 2), 0);
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_OperationReceipt::DestroyMany(operationTokens = {" + Hex16Text(b) + ", " +
                             Hex16Text(c) + "} numTokens = 2) [ClientID: 3]",
                         "Out InProc_OperationReceipt::DestroyMany() ErrorCode = 0x00000000 [ClientID: 3]",
                     }));
  EXPECT_FALSE(IsAlive(b));
  EXPECT_FALSE(IsAlive(c));

  ClearTrace();
  EXPECT_EQ(receipts->DestroyMany(tokens, 0), 0);
  EXPECT_EQ(Trace().front(),
            "In  InProc_OperationReceipt::DestroyMany(operationTokens = <EMPTY> numTokens = 0) [ClientID: 3]");
}

TEST_F(OperationReceiptTest, AnyClientMayEndAnyTokenAndNoDisconnectionDoes) {
  const uint64_t mine = tc::StartHeldReceipt();
  uint64_t theirs = 0;
  std::thread other([&] {
    VXT_Client otherClient = MakeClient(5, "tool_5@here");
    ASSERT_EQ(StartNewInstance(&otherClient, 1, 0, nullptr), 0);
    theirs = tc::StartHeldReceipt();
    ClearTrace();
    EXPECT_EQ(receipts->Destroy(mine), 0);
    EXPECT_EQ(Trace().back(), "Out InProc_OperationReceipt::Destroy() ErrorCode = 0x00000000 [ClientID: 5]");
    EXPECT_EQ(Disconnect(5), 0);
  });
  other.join();
  EXPECT_FALSE(IsAlive(mine));
  EXPECT_EQ(StatusOf(theirs), VXT_OperationStatus_Pending);
  EXPECT_EQ(receipts->Destroy(theirs), 0);
}

}  // namespace
