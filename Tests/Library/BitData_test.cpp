// The BitData service: the handle table, the checks of every operation and
// their messages, the values the operations read and write, the trace, and
// what becomes of a client's vectors when it leaves.
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "BitDataTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::EmptyRecord;
using vxt::test::MakeClient;
using vxt::test::TraceAtLevel;
using vxt::test::TraceWithLevels;

using BitDataTest = vxt::test::BitDataServiceTest;

// The level-3 lines of the close callback, one for each vector it freed.
std::vector<std::string> LeftBehindLines() {
  std::vector<std::string> lines;
  for (const std::string& line : TraceAtLevel(3))
    if (line.rfind("InProc_BitData::_ClientCloseCallback", 0) == 0) lines.push_back(line);
  return lines;
}

TEST_F(BitDataTest, HandlesStartAtTwoAndReleasedOnesComeBackInOrderOfRelease) {
  VXT_BitData a = Make(8);
  VXT_BitData b = Make(8);
  VXT_BitData c = Make(8);
  EXPECT_EQ((std::vector<uint64_t>{a.dataHandle, b.dataHandle, c.dataHandle}), (std::vector<uint64_t>{2, 3, 4}));

  ASSERT_EQ(bits->Destroy(&c), VXT_SUCCESS);
  ASSERT_EQ(bits->Destroy(&a), VXT_SUCCESS);
  EXPECT_EQ(a.bitSize, 0u);
  EXPECT_EQ(a.dataHandle, 0u);

  // Oldest release first, then the counter goes on from where it stood.
  EXPECT_EQ(Make(1).dataHandle, 4u);
  EXPECT_EQ(Make(1).dataHandle, 2u);
  EXPECT_EQ(Make(1).dataHandle, 5u);
}

// Every refusal of the service: its public code, its whole message, and a
// failed call leaves every record and vector as it was.
TEST_F(BitDataTest, RefusalsNameTheOperationTheArgumentAndTheReason) {
  VXT_BitData good = Make(8, 0xa5);
  VXT_BitData other = Make(8, 0x3c);
  VXT_BitData small = Make(4, 0x9);
  VXT_BitData empty = EmptyRecord();
  VXT_BitData unsized{0, 8, good.dataHandle};
  VXT_BitData unknown{VXT_BITDATA_SIZE, 8, 999};
  uint64_t u64 = 0;
  uint16_t u16 = 0;
  uint8_t u8 = 0;

  struct Refusal {
    std::function<VXT_Result()> call;
    VXT_Result code;
    std::string message;
  };
  const Refusal refusals[] = {
      {[&] { return bits->Create(nullptr, 8, 0); }, VXT_E_INVALID_ARGUMENT,
       "InProc_BitData::Create() argument error (bitData) : Null pointer"},
      {[&] { return bits->Create(&unsized, 8, 0); }, VXT_E_STRUCTURE_SIZE,
       "InProc_BitData::Create() argument error (bitData) : Structure size not initialized"},
      {[&] { return bits->Create(&good, 8, 0); }, VXT_E_BITDATA_DESTINATION_EXISTS,
       "InProc_BitData::Create() argument error (bitData) : Destination exists"},
      // Both records are checked before the source is looked up.
      {[&] { return bits->Copy(&unknown, &other); }, VXT_E_BITDATA_DESTINATION_EXISTS,
       "InProc_BitData::Copy() argument error (dest) : Destination exists"},
      // Text that is no vector takes no handle.
      {[&] { return bits->CreateFromString(&empty, "3'h1f"); }, VXT_E_OUT_OF_RANGE,
       "InProc_BitData::CreateFromString() argument error (value) : Cannot be read as a bit vector"},
      {[&] { return bits->Copy(&unknown, &empty); }, VXT_E_BITDATA_INVALID,
       "InProc_BitData::Copy() argument error (src) : Invalid"},
      {[&] { return bits->DestroyManyBitData(nullptr, 0); }, VXT_E_INVALID_ARGUMENT,
       "InProc_BitData::DestroyManyBitData() argument error (items) : Null pointer"},
      {[&] { return bits->Extract(&empty, 0, 8, &u64); }, VXT_E_BITDATA_INVALID,
       "InProc_BitData::Extract() argument error (bitData) : Invalid"},
      // Too wide is told by its code alone, ahead of the range.
      {[&] { return bits->Extract(&good, 9, 65, &u64); }, VXT_E_BITDATA_FIELD_TOO_WIDE, "Bit size invalid"},
      {[&] { return bits->Extract(&good, 8, 1, &u64); }, VXT_E_BITDATA_BIT_OFFSET_INVALID,
       "InProc_BitData::Extract() argument error (bitData) : Bit offset invalid"},
      {[&] { return bits->Extract(&good, 0, 64, &u64); }, VXT_E_BITDATA_BIT_RANGE_INVALID,
       "InProc_BitData::Extract() argument error (bitData) : Bit range invalid"},
      // An offset and a size whose sum wraps 32 bits still run past the end.
      {[&] { return bits->ExtractAsBitData(&good, 4, 0xfffffffd, &empty); }, VXT_E_BITDATA_BIT_RANGE_INVALID,
       "InProc_BitData::ExtractAsBitData() argument error (bitData) : Bit range invalid"},
      {[&] { return bits->ToUInt64(&unsized, 0, nullptr); }, VXT_E_INVALID_ARGUMENT,
       "InProc_BitData::ToUInt64() argument error (value) : Null pointer"},
      {[&] { return bits->ToUInt16(&good, 9, &u16); }, VXT_E_BITDATA_BIT_OFFSET_INVALID,
       "InProc_BitData::ToUInt16() argument error (bitData) : Bit offset invalid"},
      // Fewer than eight bits behind the offset: the offset's code with the
      // range's text.
      {[&] { return bits->ToUInt8(&small, 0, &u8); }, VXT_E_BITDATA_BIT_OFFSET_INVALID,
       "InProc_BitData::ToUInt8() argument error (bitData) : Bit range invalid"},
      {[&] { return bits->DepositFromBitData(&good, 0, 8, nullptr, 0); }, VXT_E_INVALID_ARGUMENT,
       "InProc_BitData::DepositFromBitData() argument error (srcBitData) : Null pointer"},
      {[&] { return bits->DepositFromBitData(&good, 4, 8, &unknown, 0); }, VXT_E_BITDATA_BIT_RANGE_INVALID,
       "InProc_BitData::DepositFromBitData() argument error (destBitData) : Bit range invalid"},
      {[&] { return bits->DepositFromBitData(&good, 0, 8, &unknown, 0); }, VXT_E_BITDATA_INVALID,
       "InProc_BitData::DepositFromBitData() argument error (srcBitData) : Invalid"},
      // One size serves both fields.
      {[&] { return bits->DepositFromBitData(&good, 0, 8, &small, 0); }, VXT_E_BITDATA_BIT_RANGE_INVALID,
       "InProc_BitData::DepositFromBitData() argument error (srcBitData) : Bit range invalid"},
  };

  const std::vector<VXT_BitData> records{good, other, small, empty, unsized, unknown};
  for (const Refusal& refusal : refusals) {
    EXPECT_EQ(refusal.call(), refusal.code) << refusal.message;
    EXPECT_EQ(GetLastErrorMessage(), refusal.message);

    const std::vector<VXT_BitData> after{good, other, small, empty, unsized, unknown};
    for (size_t i = 0; i < records.size(); ++i) {
      EXPECT_EQ(after[i].bitSize, records[i].bitSize) << refusal.message;
      EXPECT_EQ(after[i].dataHandle, records[i].dataHandle) << refusal.message;
    }
    EXPECT_EQ(Hex(good) + Hex(other) + Hex(small), "0xa50x3c0x9") << refusal.message;
  }
  EXPECT_EQ(Make(1).dataHandle, 5u);
}

TEST_F(BitDataTest, ClientLessThreadGetsUnknownClientOnLookupAndTheBareCodeOnCreation) {
  VXT_BitData held = Make(8, 1);
  tc::FailWith("Common.GetClientId", 0x140000);
  uint64_t value = 7;
  EXPECT_EQ(bits->Extract(&held, 0, 8, &value), VXT_E_BITDATA_INVALID);
  EXPECT_STREQ(GetLastErrorMessage(), "InProc_BitData::Extract() argument error (bitData) : Unknown Client");
  EXPECT_EQ(value, 7u);

  VXT_BitData fresh = EmptyRecord();
  EXPECT_EQ(bits->Create(&fresh, 8, 0), VXT_E_BITDATA_INVALID);
  EXPECT_STREQ(GetLastErrorMessage(), "Invalid BitData");
  EXPECT_EQ(fresh.dataHandle, 0u);
}

TEST_F(BitDataTest, DestroyLeavesARecordWithoutVectorAloneAndKeepsTheLastError) {
  VXT_BitData unsized{};
  ASSERT_NE(bits->Destroy(&unsized), VXT_SUCCESS);
  const std::string lastError = GetLastErrorMessage();

  VXT_BitData empty{VXT_BITDATA_SIZE, 5, 0};
  EXPECT_EQ(bits->Destroy(&empty), VXT_SUCCESS);
  EXPECT_EQ(empty.bitSize, 5u);
  EXPECT_EQ(GetLastErrorMessage(), lastError);
}

TEST_F(BitDataTest, DestroyManyClearsWhatItCannotDestroyAndStopsAtAnyOtherFailure) {
  VXT_BitData first = Make(8);   // 2
  VXT_BitData second = Make(8);  // 3
  VXT_BitData items[] = {second, EmptyRecord(), VXT_BitData{VXT_BITDATA_SIZE, 8, 999}, first};
  items[1].bitSize = 3;
  EXPECT_EQ(bits->DestroyManyBitData(items, 4), VXT_SUCCESS);
  for (const VXT_BitData& item : items) {
    EXPECT_EQ(item.bitSize, 0u);
    EXPECT_EQ(item.dataHandle, 0u);
  }
  // Released in the order of the array.
  EXPECT_EQ(Make(1).dataHandle, 3u);
  EXPECT_EQ(Make(1).dataHandle, 2u);

  VXT_BitData untouched{VXT_BITDATA_SIZE, 9, 1234};
  EXPECT_EQ(bits->DestroyManyBitData(&untouched, 0), VXT_SUCCESS);
  EXPECT_EQ(untouched.dataHandle, 1234u);

  VXT_BitData destroyed = Make(8);
  VXT_BitData kept = Make(8, 0x5a);
  VXT_BitData stopping[] = {destroyed, VXT_BitData{0, 8, 999}, kept};
  EXPECT_EQ(bits->DestroyManyBitData(stopping, 3), VXT_E_STRUCTURE_SIZE);
  EXPECT_STREQ(GetLastErrorMessage(),
               "InProc_BitData::DestroyManyBitData() argument error (items[1]) : Structure size not initialized");
  EXPECT_EQ(stopping[0].dataHandle, 0u);
  EXPECT_EQ(stopping[1].dataHandle, 999u);
  EXPECT_EQ(stopping[2].dataHandle, kept.dataHandle);
  EXPECT_EQ(Hex(kept), "0x5a");
}

// Copy makes a vector of its own: the source keeps its handle.
TEST_F(BitDataTest, CreationsHoldTheBitsTheyWereGiven) {
  const uint8_t bytes[] = {0xbc, 0xfa, 0x77};
  const VXT_BitData source = Make(12, 0xabc);
  struct Creation {
    std::function<VXT_Result(VXT_BitData*)> create;
    uint32_t bitSize;
    std::string binary;
  };
  const Creation creations[] = {
      {[&](VXT_BitData* r) { return bits->Create(r, 12, 0xfabc); }, 12, "0b101010111100"},
      {[&](VXT_BitData* r) { return bits->Create(r, 70, ~uint64_t{0}); }, 70, "0b000000" + std::string(64, '1')},
      {[&](VXT_BitData* r) { return bits->CreateFromRawBits(r, 12, bytes, 3); }, 12, "0b101010111100"},
      // Bytes the caller did not give count as zeros.
      {[&](VXT_BitData* r) { return bits->CreateFromRawBits(r, 20, bytes, 1); }, 20, "0b00000000000010111100"},
      {[&](VXT_BitData* r) { return bits->CreateFromRawBits(r, 0, nullptr, 0); }, 0, "0b"},
      {[&](VXT_BitData* r) { return bits->CreateFromString(r, "5'h1f"); }, 5, "0b11111"},
      // The hexadecimal text of an empty vector reads back as one.
      {[&](VXT_BitData* r) { return bits->CreateFromString(r, "0x"); }, 0, "0b"},
      {[&](VXT_BitData* r) { return bits->Copy(&source, r); }, 12, "0b101010111100"},
  };
  for (const Creation& creation : creations) {
    VXT_BitData record = EmptyRecord();
    ASSERT_EQ(creation.create(&record), VXT_SUCCESS) << creation.binary << ": " << GetLastErrorMessage();
    EXPECT_EQ(record.bitSize, creation.bitSize) << creation.binary;
    EXPECT_EQ(Binary(record), creation.binary);
  }
}

TEST_F(BitDataTest, FieldsAreReadAndWrittenWhereTheySay) {
  const VXT_BitData source = Make(12, 0xabc);
  uint64_t u64 = 0;
  EXPECT_EQ(bits->Extract(&source, 4, 8, &u64), VXT_SUCCESS);
  EXPECT_EQ(u64, 0xabu);
  // Bits behind the end read as zero.
  EXPECT_EQ(bits->ToUInt64(&source, 4, &u64), VXT_SUCCESS);
  EXPECT_EQ(u64, 0xabu);

  const VXT_BitData word = Make(16, 0xbeef);
  uint16_t u16 = 0;
  EXPECT_EQ(bits->ToUInt16(&word, 4, &u16), VXT_SUCCESS);
  EXPECT_EQ(u16, 0xbeeu);
  const VXT_BitData nibble = Make(4, 0x9);
  EXPECT_EQ(bits->ToUInt16(&nibble, 0, &u16), VXT_SUCCESS);
  EXPECT_EQ(u16, 0x9u);

  VXT_BitData field = EmptyRecord();
  EXPECT_EQ(bits->ExtractAsBitData(&source, 4, 8, &field), VXT_SUCCESS);
  EXPECT_EQ(field.bitSize, 8u);
  EXPECT_EQ(Hex(field), "0xab");

  // A size of 0 asks nothing of the record.
  VXT_BitData broken{0, 0, 0xdead};
  uint8_t raw = 0xee;
  EXPECT_EQ(bits->ExtractAsRawBits(&broken, 77, 0, &raw, 1), VXT_SUCCESS);
  EXPECT_EQ(raw, 0xee);

  VXT_BitData target = Make(16);
  EXPECT_EQ(bits->Deposit(&target, 4, 8, 0xffab), VXT_SUCCESS);
  EXPECT_EQ(Hex(target), "0x0ab0");
  EXPECT_EQ(bits->DepositFromBitData(&target, 12, 4, &source, 8), VXT_SUCCESS);
  EXPECT_EQ(Hex(target), "0xaab0");
  EXPECT_EQ(Hex(source), "0xabc");
}

// The raw bytes of a field go into exactly maxValues bytes: cut to them when
// the field needs more, zeros behind the field when it needs fewer, and
// nothing written past them.
TEST_F(BitDataTest, RawBitsFillExactlyTheBytesTheCallerAllows) {
  const VXT_BitData source = Make(24, 0x12abcd);
  struct Case {
    uint32_t bitOffset;
    uint32_t bitSize;
    uint32_t maxValues;
    std::vector<uint8_t> bytes;  // The whole buffer afterwards, 0xee untouched
  };
  const Case cases[] = {
      {0, 16, 1, {0xcd, 0xee, 0xee, 0xee}},
      {0, 16, 4, {0xcd, 0xab, 0x00, 0x00}},
      {4, 12, 3, {0xbc, 0x0a, 0x00, 0xee}},
      {0, 24, 0, {0xee, 0xee, 0xee, 0xee}},
  };
  for (const Case& c : cases) {
    std::vector<uint8_t> buffer(4, 0xee);
    EXPECT_EQ(bits->ExtractAsRawBits(&source, c.bitOffset, c.bitSize, buffer.data(), c.maxValues), VXT_SUCCESS)
        << c.bitOffset << " " << c.bitSize << " " << c.maxValues;
    EXPECT_EQ(buffer, c.bytes) << c.bitOffset << " " << c.bitSize << " " << c.maxValues;
  }
}

// A client that changes bitSize in its record gets a code or a neutral
// value from the library, which checks every field against the vector's
// real length.
TEST_F(BitDataTest, AForgedLengthReachesNothingBehindTheVector) {
  VXT_BitData forged = Make(8, 0xa5);
  forged.bitSize = 1u << 20;
  uint64_t u64 = 1;
  uint8_t raw[8] = {};
  VXT_BitData field = EmptyRecord();
  VXT_BitData other = Make(8);

  EXPECT_EQ(bits->Extract(&forged, 100000, 64, &u64), VXT_SUCCESS);
  EXPECT_EQ(u64, 0u);
  EXPECT_EQ(bits->ToUInt64(&forged, 500000, &u64), VXT_SUCCESS);
  EXPECT_EQ(u64, 0u);
  EXPECT_EQ(bits->Deposit(&forged, 100000, 8, 0xff), VXT_E_BITDATA_BIT_OFFSET_INVALID);
  EXPECT_EQ(bits->ExtractAsBitData(&forged, 4, 64, &field), VXT_E_BITDATA_BIT_RANGE_INVALID);
  EXPECT_EQ(field.dataHandle, 0u);
  EXPECT_EQ(bits->ExtractAsRawBits(&forged, 1000, 64, raw, 8), VXT_E_BITDATA_BIT_OFFSET_INVALID);
  EXPECT_EQ(bits->DepositFromBitData(&forged, 1000, 8, &other, 0), VXT_E_BITDATA_BIT_OFFSET_INVALID);
  EXPECT_EQ(bits->DepositFromBitData(&other, 0, 8, &forged, 4), VXT_E_BITDATA_BIT_RANGE_INVALID);
  EXPECT_STREQ(GetLastErrorMessage(), "Bit range invalid");
  forged.bitSize = 8;
  EXPECT_EQ(Hex(forged), "0xa5");
}

TEST_F(BitDataTest, TraceShowsEachOperationsArgumentsInTheirClasses) {
  VXT_BitData record = EmptyRecord();
  ASSERT_EQ(bits->Create(&record, 12, 0xabc), VXT_SUCCESS);
  uint64_t u64 = 0;
  ASSERT_EQ(bits->Extract(&record, 4, 8, &u64), VXT_SUCCESS);
  const uint8_t bytes[] = {1, 2, 0xff};
  VXT_BitData raw = EmptyRecord();
  ASSERT_EQ(bits->CreateFromRawBits(&raw, 24, bytes, 3), VXT_SUCCESS);
  VXT_BitData items[] = {raw, EmptyRecord()};
  ASSERT_EQ(bits->DestroyManyBitData(items, 2), VXT_SUCCESS);

  const std::string held = "{bitSize = 12 dataHandle = 0x0000000000000002}";
  EXPECT_EQ(TraceWithLevels(),
            (std::vector<std::pair<uint32_t, std::string>>{
                {1, "In  InProc_BitData::Create(bitSize = 12 initialValue = 0x0000000000000abc) [ClientID: 3]"},
                {1, "Out InProc_BitData::Create(bitData = " + held + ") ErrorCode = 0x00000000 [ClientID: 3]"},
                {1, "In  InProc_BitData::Extract(bitData = " + held + " bitOffset = 4 bitSize = 8) [ClientID: 3]"},
                {2, "Out InProc_BitData::Extract(value = 0x00000000000000ab) ErrorCode = 0x00000000"},
                {1,
                 "In  InProc_BitData::CreateFromRawBits(bitSize = 24 values = {0x01, 0x02, 0xff} numValues = 3) "
                 "[ClientID: 3]"},
                {1,
                 "Out InProc_BitData::CreateFromRawBits(bitData = {bitSize = 24 dataHandle = 0x0000000000000003}) "
                 "ErrorCode = 0x00000000 [ClientID: 3]"},
                {1,
                 "In  InProc_BitData::DestroyManyBitData(items = {{bitSize = 24 dataHandle = 0x0000000000000003}, "
                 "{bitSize = 0 dataHandle = 0x0000000000000000}} numItems = 2) [ClientID: 3]"},
                {1, "Out InProc_BitData::DestroyManyBitData() ErrorCode = 0x00000000 [ClientID: 3]"},
            }));
}

TEST_F(BitDataTest, NarrowReadsShowTheirValueInItsOwnWidthAtLevelTwo) {
  const VXT_BitData record = Make(16, 0xbeef);
  uint32_t u32 = 0;
  uint16_t u16 = 0;
  uint8_t u8 = 0;
  const std::pair<std::function<VXT_Result()>, std::string> reads[] = {
      {[&] { return bits->ToUInt32(&record, 0, &u32); },
       "Out InProc_BitData::ToUInt32(value = 0x0000beef) ErrorCode = 0x00000000"},
      {[&] { return bits->ToUInt16(&record, 0, &u16); },
       "Out InProc_BitData::ToUInt16(value = 0xbeef) ErrorCode = 0x00000000"},
      {[&] { return bits->ToUInt8(&record, 0, &u8); },
       "Out InProc_BitData::ToUInt8(value = 0xef) ErrorCode = 0x00000000"},
      {[&] { return bits->ToUInt8(&record, 0, nullptr); },
       "Out InProc_BitData::ToUInt8(value = <NULL>) ErrorCode = 0x80000001"},
  };
  for (const auto& [read, outLine] : reads) {
    ClearTrace();
    read();
    EXPECT_EQ(TraceAtLevel(2).back(), outLine);
  }
}

TEST_F(BitDataTest, AFailedCallTracesItsErrorBetweenItsInAndOutLines) {
  uint64_t u64 = 0;
  const VXT_BitData held = Make(8);
  ClearTrace();
  ASSERT_EQ(bits->Extract(&held, 0, 65, &u64), VXT_E_BITDATA_FIELD_TOO_WIDE);
  EXPECT_EQ(TraceWithLevels(),
            (std::vector<std::pair<uint32_t, std::string>>{
                {1,
                 "In  InProc_BitData::Extract(bitData = {bitSize = 8 dataHandle = 0x0000000000000002} bitOffset = "
                 "0 bitSize = 65) [ClientID: 3]"},
                {2, "VXT Error = 'Bit size invalid' [ClientID: 3]"},
                {1, "In  InProc ReportErrorMessage(<NULL>'Bit size invalid')"},
                {1, "Out InProc ReportErrorMessage()"},
                {2, "Out InProc_BitData::Extract(value = 0x0000000000000000) ErrorCode = 0x80010000"},
            }));
}

// ---- Clients ----------------------------------------------------------------

// Runs `work` on a thread of its own for client `clientId`, connected for it
// and, unless `stay`, disconnected after.
void AsOtherClient(uint32_t clientId, const std::function<void()>& work, bool stay = false) {
  std::thread other([&] {
    VXT_Client client = MakeClient(clientId, "other@there");
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), VXT_SUCCESS);
    work();
    if (!stay) {
      EXPECT_EQ(Disconnect(clientId), VXT_SUCCESS);
    }
  });
  other.join();
}

TEST_F(BitDataTest, ADepartingClientsVectorsAreFreedInHandleOrderAndTheirHandlesGoToOthers) {
  const VXT_BitData kept = Make(8, 0x11);  // 2
  AsOtherClient(9, [&] {
    VXT_BitData a = Make(8);  // 3
    VXT_BitData b = Make(8);  // 4
    VXT_BitData c = Make(8);  // 5
    // Handle 3 comes back for the newest vector: creation order is no longer
    // handle order.
    ASSERT_EQ(bits->Destroy(&a), VXT_SUCCESS);
    EXPECT_EQ(Make(8).dataHandle, 3u);
    (void)b;
    (void)c;
  });

  EXPECT_EQ(LeftBehindLines(), (std::vector<std::string>{
                                   "InProc_BitData::_ClientCloseCallback Client (9) did not destroy BitData handle (3)",
                                   "InProc_BitData::_ClientCloseCallback Client (9) did not destroy BitData handle (4)",
                                   "InProc_BitData::_ClientCloseCallback Client (9) did not destroy BitData handle (5)",
                               }));
  EXPECT_EQ((std::vector<uint64_t>{Make(1).dataHandle, Make(1).dataHandle, Make(1).dataHandle, Make(1).dataHandle}),
            (std::vector<uint64_t>{3, 4, 5, 6}));
  EXPECT_EQ(Hex(kept), "0x11");
}

// The level-3 line for each vector left behind is written only while that
// level is on and logging is not held off; the vectors are freed and their
// handles come back either way.
TEST_F(BitDataTest, LeftVectorsAreFreedWhetherOrNotTheirLinesAreWritten) {
  struct Logging {
    const char* what;
    uint32_t lowestLevel;
    bool suppressed;
    std::vector<std::string> lines;
  };
  const Logging loggings[] = {
      {"level 3 on",
       3,
       false,
       {"InProc_BitData::_ClientCloseCallback Client (9) did not destroy BitData handle (2)",
        "InProc_BitData::_ClientCloseCallback Client (9) did not destroy BitData handle (3)"}},
      {"level 3 off", 4, false, {}},
      {"held off", 1, true, {}},
  };
  for (const Logging& logging : loggings) {
    tc::SetLogLevel(logging.lowestLevel);
    tc::SetLoggingSuppressed(logging.suppressed);
    ClearTrace();
    std::vector<uint64_t> handles;
    AsOtherClient(9, [&] { handles = {Make(8).dataHandle, Make(8).dataHandle}; });
    tc::SetLoggingSuppressed(false);
    tc::SetLogLevel(1);
    // The handles of the row before came back, oldest first.
    EXPECT_EQ(handles, (std::vector<uint64_t>{2, 3})) << logging.what;
    EXPECT_EQ(LeftBehindLines(), logging.lines) << logging.what;
  }
}

TEST_F(BitDataTest, OneClientCannotReachAnothersVector) {
  const VXT_BitData mine = Make(8, 0x11);
  AsOtherClient(9, [&] {
    VXT_BitData stolen = mine;
    uint64_t value = 0;
    EXPECT_EQ(bits->Extract(&stolen, 0, 8, &value), VXT_E_BITDATA_INVALID);
    EXPECT_STREQ(GetLastErrorMessage(), "InProc_BitData::Extract() argument error (bitData) : Invalid");
    EXPECT_EQ(bits->Deposit(&stolen, 0, 8, 0xff), VXT_E_BITDATA_INVALID);
    EXPECT_EQ(bits->Destroy(&stolen), VXT_E_BITDATA_INVALID);
    uint32_t count = 0;
    EXPECT_EQ(ops->PopCount(&stolen, &count), VXT_E_BITDATA_INVALID);
    // Cleared in the caller's array, never freed in the owner's table.
    EXPECT_EQ(bits->DestroyManyBitData(&stolen, 1), VXT_SUCCESS);
    EXPECT_EQ(stolen.dataHandle, 0u);
  });
  EXPECT_EQ(Hex(mine), "0x11");
  EXPECT_TRUE(LeftBehindLines().empty());
}

TEST_F(BitDataTest, OnlyTheDisconnectedEventOfAClientFreesItsVectors) {
  const VXT_BitData mine = Make(8, 0x11);
  VXT_Client record = MakeClient(kClientId, "tool_3@here");
  for (const char* name : {"Connected", "disconnected", "Disconnected "}) {
    tc::PublishBrokerEvent("Client", name, &record);
    EXPECT_EQ(Hex(mine), "0x11") << name;
  }
  tc::PublishBrokerEvent("Client", "Disconnected", nullptr);
  EXPECT_EQ(Hex(mine), "0x11");

  tc::PublishBrokerEvent("Client", "Disconnected", &record);
  uint32_t count = 0;
  EXPECT_EQ(ops->PopCount(&mine, &count), VXT_E_BITDATA_INVALID);
  EXPECT_EQ(
      LeftBehindLines(),
      (std::vector<std::string>{"InProc_BitData::_ClientCloseCallback Client (3) did not destroy BitData handle (2)"}));
}

TEST_F(BitDataTest, TheCloseCallbackIsSubscribedOncePerRunOfClients) {
  const size_t subscribers = tc::BrokerSubscriberCount("Client");
  ASSERT_EQ(Disconnect(kClientId), VXT_SUCCESS);
  VXT_Client again = MakeClient(kClientId, "tool_3@here");
  ASSERT_EQ(StartNewInstance(&again, 1, 0, nullptr), VXT_SUCCESS);
  VXT_Client second = MakeClient(4, "tool_4@here");
  ASSERT_EQ(StartNewInstance(&second, 1, 0, nullptr), VXT_SUCCESS);
  EXPECT_EQ(tc::BrokerSubscriberCount("Client"), subscribers);
  Disconnect(4);
}

}  // namespace
