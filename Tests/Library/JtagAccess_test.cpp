// The JtagAccess service: its checks in their order, its trace lines whole,
// and what each scan flavour does on a chain whose registers have reset
// values and read-only bits.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "JtagTestSupport.h"

namespace vxt::test {
namespace {

using namespace jtag;

constexpr uint32_t kBoardChain = 0x0d000000;
constexpr uint32_t kMainTap = 0x0e000000;  // IR 5, nearest TDI
constexpr uint32_t kSideTap = 0x0e000001;  // IR 3, nearest TDO

TEST_F(JtagTest, RefusalsStopAtTheFirstFailingRecordWithItsPrefix) {
  VXT_BitData good = Vector(8, 0x02);
  VXT_BitData unsized{0, 8, good.dataHandle};
  VXT_BitData foreign{VXT_BITDATA_SIZE, 8, 0x999};
  struct Case {
    const char* name;
    std::function<VXT_Result(uint64_t*)> call;
    VXT_Result code;
    std::string message;
  };
  const Case cases[] = {
      {"unsized tdi", [&](uint64_t* t) { return access->Shift(kChain, VXT_JtagState_ShfDR, 8, &unsized, t); },
       static_cast<VXT_Result>(0x80000010),
       "InProc_JtagAccess::Shift() argument error (tdiValue) : Structure size not initialized"},
      {"null ir", [&](uint64_t* t) { return access->IrDrScan(kChain, nullptr, 8, &good, t); },
       static_cast<VXT_Result>(0x80000001), "InProc_JtagAccess::IrDrScan() argument error (irValue) : Null pointer"},
      {"foreign ir, unsized dr: stage 1 runs whole first",
       [&](uint64_t* t) { return access->IrDrScanVerify(kChain, &foreign, 8, &unsized, t); },
       static_cast<VXT_Result>(0x80000010),
       "InProc_JtagAccess::IrDrScanVerify() argument error (drValue) : Structure size not initialized"},
      {"foreign ir", [&](uint64_t* t) { return access->IrDrScanAuto(kChain, &foreign, 8, nullptr, t); },
       static_cast<VXT_Result>(0x80010003), "InProc_JtagAccess::IrDrScanAuto() argument error Invalid"},
      {"foreign dr ends before the unsized mask is looked up",
       [&](uint64_t* t) { return access->IrDrScanReadModifyWrite(kCpuTap, &good, 8, &foreign, &unsized, t); },
       static_cast<VXT_Result>(0x80010003), "InProc_JtagAccess::IrDrScanReadModifyWrite() argument error Invalid"},
      {"unsized mask, looked up only",
       [&](uint64_t* t) { return access->IrDrScanReadModifyWrite(kCpuTap, &good, 8, &good, &unsized, t); },
       static_cast<VXT_Result>(0x80000010),
       "InProc_JtagAccess::IrDrScanReadModifyWrite() argument error Structure size not initialized"},
      {"foreign compare, good mask",
       [&](uint64_t* t) { return access->ShiftCompare(kChain, VXT_JtagState_ShfDR, 8, nullptr, &foreign, &good, t); },
       static_cast<VXT_Result>(0x80010003), "InProc_JtagAccess::ShiftCompare() argument error Invalid"},
      {"null mask",
       [&](uint64_t* t) { return access->ShiftCompare(kChain, VXT_JtagState_ShfDR, 8, nullptr, &good, nullptr, t); },
       static_cast<VXT_Result>(0x80000001),
       "InProc_JtagAccess::ShiftCompare() argument error (compareValueMask) : Null pointer"},
      {"IR of the wrong length for the TAP",
       [&](uint64_t* t) {
         VXT_BitData five = Vector(5, 1);
         return access->IrDrScan(kCpuTap, &five, 8, nullptr, t);
       },
       static_cast<VXT_Result>(0x80000002),
       "Jtag.IrDrScan: irValue holds 5 bits, and TAP controller CpuTap has 8 instruction register bits"},
      {"shift outside a shift state",
       [&](uint64_t* t) { return access->Shift(kChain, VXT_JtagState_RTI, 8, nullptr, t); },
       static_cast<VXT_Result>(0x80000003), "Jtag.Shift: chain JtagChain0 is in TLR, not in ShfDR or ShfIR"},
      {"a shift no probe could hold",
       [&](uint64_t* t) { return access->Shift(kChain, VXT_JtagState_ShfDR, 0xffffffff, nullptr, t); },
       static_cast<VXT_Result>(0x80000002), "Jtag.Shift: shiftCount 4294967295 is more than 16777216 bits"},
      {"malformed bundle",
       [&](uint64_t* t) {
         static const uint8_t bundle[] = {0x03, 0x02, 0x04, 0x10};
         return access->BundleScan(kChain, bundle, sizeof bundle, t);
       },
       static_cast<VXT_Result>(0x80000002), "Jtag.BundleScan: the record at byte 1 is cut short"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    uint64_t token = 0;
    EXPECT_EQ(c.call(&token), c.code);
    EXPECT_EQ(std::string(GetLastErrorMessage()), c.message);
    EXPECT_EQ(token, 0u);
  }
}

TEST_F(JtagTest, TraceLinesShowEveryArgumentAndTheToken) {
  VXT_BitData ir = Vector(18, 0x3ffff);
  const uint32_t chains[] = {kChain};
  uint64_t token = 0;
  const std::string handle = "{bitSize = 18 dataHandle = 0x0000000000000002}";
  const std::string ok = " ErrorCode = 0x00000000 [ClientID: 3]";
  struct Case {
    std::function<void()> call;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {[&] { access->GoToState(kChain, static_cast<VXT_JtagState>(16), 2, VXT_JtagWaitType_COUNT_TRIGTO, nullptr); },
       {"In  InProc_JtagAccess::GoToState(jtagChainIdOrDeviceId = 0x0d000000 jtagState = <UNKNOWN> jtagWaitType = "
        "COUNT_TRIGTO numClocks = 2) [ClientID: 3]",
        "VXT Error = 'Jtag.GoToState was given a null operationToken' [ClientID: 3]",
        "In  InProc ReportErrorMessage(<NULL>'Jtag.GoToState was given a null operationToken')",
        "Out InProc ReportErrorMessage()",
        "Out InProc_JtagAccess::GoToState(operationToken = <NULL>) ErrorCode = 0x80000001 [ClientID: 3]"}},
      {[&] { access->IrDrScan(kChain, &ir, 3, nullptr, &token); },
       {"In  InProc_JtagAccess::IrDrScan(jtagChainIdOrDeviceId = 0x0d000000 irValue = " + handle +
            " shiftCount = 3 drValue = <NULL>) [ClientID: 3]",
        "Out InProc_JtagAccess::IrDrScan(operationToken = 0x0000000000000001)" + ok}},
      {[&] { access->GoToStateOnMultipleChains(1, chains, VXT_JtagState_ShfIR, 0, &token); },
       {"In  InProc_JtagAccess::GoToStateOnMultipleChains(numJtagChains = 1 jtagChainIds = {0x0d000000} jtagState = "
        "ShfIR numClocks = 0) [ClientID: 3]",
        "Out InProc_JtagAccess::GoToStateOnMultipleChains(operationToken = 0x0000000000000003)" + ok}},
      {[&] { access->Shift(kChain, VXT_JtagState_UpdIR, 18, nullptr, &token); },
       {"In  InProc_JtagAccess::Shift(jtagChainIdOrDeviceId = 0x0d000000 jtagState = UpdIR shiftCount = 18 "
        "tdiValue = <NULL>) [ClientID: 3]",
        "Out InProc_JtagAccess::Shift(operationToken = 0x0000000000000004)" + ok}},
      {[&] { access->Repeat(kChain, 3, VXT_JtagRepeatType_MAX_ITER, &token); },
       {"In  InProc_JtagAccess::Repeat(jtagChainIdOrDeviceId = 0x0d000000 maxIterations = 3 repeatType = MAX_ITER) "
        "[ClientID: 3]",
        "VXT Error = 'Jtag.Repeat: the calling client set no Mark on chain JtagChain0' [ClientID: 3]",
        "In  InProc ReportErrorMessage(<NULL>'Jtag.Repeat: the calling client set no Mark on chain JtagChain0')",
        "Out InProc ReportErrorMessage()",
        "Out InProc_JtagAccess::Repeat(operationToken = 0x0000000000000004) ErrorCode = 0x80000003 [ClientID: 3]"}},
      {[&] { access->TapReset(kChain, VXT_JtagResetType_TLR_ONLY, &token); },
       {"In  InProc_JtagAccess::TapReset(jtagChainId = 0x0d000000 resetType = TLR_ONLY) [ClientID: 3]",
        "Out InProc_JtagAccess::TapReset(operationToken = 0x0000000000000005)" + ok}},
  };
  for (const Case& c : cases) {
    ClearTrace();
    c.call();
    EXPECT_EQ(Trace(), c.lines);
  }
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "JtagAccess::Repeat"), 1u);
}

// A refused Lock runs no error context: no error line, and the last error
// stays what it was.
TEST_F(JtagTest, RefusedLockLeavesTheLastErrorAsItWas) {
  uint64_t token = 0;
  ASSERT_EQ(access->Shift(kChain, VXT_JtagState_ShfDR, 1, nullptr, &token), static_cast<VXT_Result>(0x80000003));
  voxtrel::testing::FailWith("Jtag.Lock", 0xe0005);
  ClearTrace();
  EXPECT_EQ(access->Lock(kChain, &token), static_cast<VXT_Result>(0x80040008));
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_JtagAccess::Lock(jtagChainIdOrDeviceId = 0x0d000000) [ClientID: 3]",
                         "Out InProc_JtagAccess::Lock(operationToken = 0x0000000000000000) ErrorCode = 0x80040008 "
                         "[ClientID: 3]"}));
  EXPECT_EQ(std::string(GetLastErrorMessage()), "Jtag.Shift: chain JtagChain0 is in TLR, not in ShfDR or ShfIR");
}

class JtagBoardTest : public JtagTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), VXT_SUCCESS);
    ASSERT_EQ(SelectConfigurationByFileName(VXT_TEST_DATA_DIR "/Jtag/JtagBoard.json"), VXT_SUCCESS);
    ASSERT_EQ(FinishInitialization(), VXT_SUCCESS);
    access = GetServiceAs<IInternalService_JtagAccess>(VXT_Service_JtagAccess);
    bits = &BitDataService();
    receipts = GetServiceAs<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
  }
  uint64_t Run(const std::function<VXT_Result(uint64_t*)>& call) {
    uint64_t token = 0;
    EXPECT_EQ(call(&token), VXT_SUCCESS);
    return ValueOf(token);
  }
};

TEST_F(JtagBoardTest, ScanFlavoursOnRegistersWithResetValuesAndReadOnlyBits) {
  VXT_BitData control = Vector(5, 0x08);
  VXT_BitData userCode = Vector(5, 0x02);
  VXT_BitData written = Vector(16, 0x1234);
  VXT_BitData mask = Vector(16, 0x00ff);
  VXT_BitData other = Vector(16, 0xabcd);
  // USERCODE as described, behind SideTap's bypass bit.
  EXPECT_EQ(Run([&](uint64_t* t) { return access->IrDrScan(kMainTap, &userCode, 32, nullptr, t); }), 0xC0FFEE01u);
  // The reset value comes out; the write keeps the read-only top nibble.
  EXPECT_EQ(Run([&](uint64_t* t) { return access->IrDrScan(kMainTap, &control, 16, &written, t); }), 0x8001u);
  EXPECT_EQ(Run([&](uint64_t* t) { return access->IrDrScanOptimized(kMainTap, &control, 16, nullptr, t); }),
            0x8234u)
      << "and zeros go in where no data is given";
  // Replace shows what took and puts the old value back.
  EXPECT_EQ(Run([&](uint64_t* t) { return access->IrDrScanReplace(kMainTap, &control, 16, &other, t); }), 0x8bcdu);
  EXPECT_EQ(Run([&](uint64_t* t) { return access->IrDrScan(kMainTap, &control, 16, &written, t); }), 0x8000u)
      << "the old value was put back, and this scan read it";
  // Read-modify-write gives the old value and merges under the mask.
  EXPECT_EQ(Run([&](uint64_t* t) { return access->IrDrScanReadModifyWrite(kMainTap, &control, 16, &other, &mask, t); }),
            0x8234u);
  EXPECT_EQ(Run([&](uint64_t* t) { return access->IrDrScan(kMainTap, &control, 16, nullptr, t); }), 0x82cdu);
  // Auto finds the 16 bits on its own.
  EXPECT_EQ(Run([&](uint64_t* t) { return access->IrDrScanAuto(kMainTap, &control, 100, &written, t); }), 0x8000u);
  uint64_t token = 0;
  ASSERT_EQ(access->IrDrScanAuto(kMainTap, &control, 100, nullptr, &token), VXT_SUCCESS);
  VXT_BitData value = EmptyRecord();
  ASSERT_EQ(receipts->GetValue(token, &value), VXT_SUCCESS);
  EXPECT_EQ(value.bitSize, 16u);
  receipts->Destroy(token);
}

TEST_F(JtagBoardTest, VerifyCompareAndRepeatReportMismatchesThroughTheReceipt) {
  VXT_BitData ir = Vector(8, 0xff);  // Both TAPs in BYPASS
  VXT_BitData ones = Vector(4, 0xf);
  VXT_BitData expected = Vector(4, 0xc);  // Two bypass bits (0) lead, then TDI
  VXT_BitData mask = Vector(4, 0xf);
  uint64_t token = 0;
  ASSERT_EQ(access->IrDrScanVerify(kBoardChain, &ir, 1, nullptr, &token), VXT_SUCCESS);
  EXPECT_EQ(FailureOf(token), "");
  ASSERT_EQ(access->GoToState(kBoardChain, VXT_JtagState_ShfDR, 0, VXT_JtagWaitType_COUNT, &token), VXT_SUCCESS);
  receipts->Destroy(token);
  ASSERT_EQ(access->Mark(kBoardChain, &token), VXT_SUCCESS);
  receipts->Destroy(token);
  ASSERT_EQ(access->ShiftCompare(kBoardChain, VXT_JtagState_ShfDR, 4, &ones, &expected, &mask, &token), VXT_SUCCESS);
  EXPECT_EQ(FailureOf(token), "") << "00 from the bypass bits, then the first two ones";
  // Every later pass sees ones only.
  ASSERT_EQ(access->Repeat(kBoardChain, 3, VXT_JtagRepeatType_COMPARE_MATCH_OR_FAIL_AT_MAX_ITER, &token), VXT_SUCCESS);
  EXPECT_EQ(FailureOf(token), "Jtag.Repeat: no match in 3 iterations");
  ASSERT_EQ(access->ShiftCompare(kBoardChain, VXT_JtagState_ShfDR, 4, &ones, &expected, &mask, &token), VXT_SUCCESS);
  EXPECT_EQ(FailureOf(token), "Jtag.ShiftCompare: TDO 0b1111 differs from 0b1100 under the mask 0b1111");

  ASSERT_TRUE(voxtrel::testing::SetJtagChainFault(kBoardChain, "inverted"));
  ASSERT_EQ(access->IrDrScanVerify(kSideTap, &ones, 1, nullptr, &token), static_cast<VXT_Result>(0x80000002))
      << "a 4-bit IR for a 3-bit register";
  VXT_BitData sideBypass = Vector(3, 0x7);
  ASSERT_EQ(access->IrDrScanVerify(kSideTap, &sideBypass, 1, nullptr, &token), VXT_SUCCESS);
  EXPECT_EQ(FailureOf(token),
            "Jtag.IrDrScanVerify: the instruction registers captured 0b110, not ...01 for each TAP controller");
}

TEST_F(JtagBoardTest, BundleRunsItsRecordsInOrderAndGivesEveryShiftsTdo) {
  // TRST; to ShfDR; shift 8 ones and stay: SideTap's IDCODE comes out first.
  const uint8_t bundle[] = {0x03, 0x01, 0x04, 0, 0, 0, 0, 0x02, 0x04, 8, 0, 0, 0, 0xff,
                            0x02, 0x01, 8, 0, 0, 0, 0x00};
  EXPECT_EQ(Run([&](uint64_t* t) { return access->BundleScan(kBoardChain, bundle, sizeof bundle, t); }), 0x81ebu);
}

}  // namespace
}  // namespace vxt::test
