// The diagnostic service on the default chain, sound and with each fault
// the platform can put on its TDI-TDO path.
#include <functional>
#include <string>
#include <vector>

#include "Error.h"
#include "JtagTestSupport.h"

namespace vxt::test {
namespace {

using namespace jtag;

TEST_F(JtagTest, IdcodesComeFromTheTdoEndAndFaultsShowAsTraits) {
  struct Case {
    const char* fault;
    int32_t devices;
    VXT_JtagTdiTdoContinuity traits;
  };
  const Case cases[] = {
      {"", 3, VXT_JtagTdiTdoContinuity_GOOD},
      {"inverted", 3, VXT_JtagTdiTdoContinuity_INVERTED},
      {"open", 0, VXT_JtagTdiTdoContinuity_OPEN},
      {"short", 0, VXT_JtagTdiTdoContinuity_SHORT},
      {"corrupted", 3, VXT_JtagTdiTdoContinuity_CORRUPTION},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.fault);
    ASSERT_TRUE(voxtrel::testing::SetJtagChainFault(kChain, c.fault));
    uint32_t idcodes[4] = {};
    int32_t numDevices = -1;
    auto traits = static_cast<VXT_JtagTdiTdoContinuity>(-1);
    ASSERT_EQ(diagnostic->TapResetGetIdcodes(kChain, 4, idcodes, &numDevices, &traits), VXT_SUCCESS);
    EXPECT_EQ(numDevices, c.devices);
    EXPECT_EQ(traits, c.traits);
    if (c.traits == VXT_JtagTdiTdoContinuity_GOOD || c.traits == VXT_JtagTdiTdoContinuity_INVERTED) {
      EXPECT_EQ(std::vector<uint32_t>(idcodes, idcodes + 3),
                (std::vector<uint32_t>{kChipsetIdcode, kUncoreIdcode, kCpuIdcode}));
    }
  }
}

TEST_F(JtagTest, CaptureIrBypassSplitsTheCapturePatternsAndLeavesEveryTapInBypass) {
  VXT_BitData records[4] = {EmptyRecord(), EmptyRecord(), EmptyRecord(), EmptyRecord()};
  VXT_BitData* pointers[4] = {&records[0], &records[1], &records[2], &records[3]};
  int32_t numDevices = 0;
  VXT_JtagTdiTdoContinuity traits{};
  ASSERT_EQ(diagnostic->CaptureIrBypass(kChain, 64, 4, pointers, &numDevices, &traits), VXT_SUCCESS);
  ASSERT_EQ(numDevices, 3);
  const uint32_t lengths[] = {4, 6, 8};  // Chipset, Uncore, Cpu
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(records[i].bitSize, lengths[i]);
    uint64_t value = 0;
    ASSERT_EQ(bits->ToUInt64(&records[i], 0, &value), VXT_SUCCESS);
    EXPECT_EQ(value, 1u) << "each instruction register captures ...01";
  }
  EXPECT_EQ(records[3].dataHandle, 0u);
  // In BYPASS the data path is one bit, capturing 0, for each TAP controller.
  EXPECT_EQ(Scan(kChain, 18, 0x3ffff, 8, 0xa5), (0xa5u << 3) & 0xffu);
}

TEST_F(JtagTest, CaptureDrGivesTheLengthFoundAndTheCapturedValue) {
  VXT_BitData ir = Vector(8, 0x02);  // CpuTap's IDCODE
  VXT_BitData dr = EmptyRecord();
  VXT_JtagTdiTdoContinuity traits{};
  ASSERT_EQ(diagnostic->CaptureDr(kCpuTap, &ir, 200, &dr, &traits), VXT_SUCCESS);
  EXPECT_EQ(dr.bitSize, 34u) << "the bypass bits of the two TAPs nearer TDO, then 32 IDCODE bits";
  uint64_t value = 0;
  ASSERT_EQ(bits->ToUInt64(&dr, 2, &value), VXT_SUCCESS);
  EXPECT_EQ(static_cast<uint32_t>(value), kCpuIdcode);
  EXPECT_EQ(traits, VXT_JtagTdiTdoContinuity_GOOD);
}

}  // namespace
}  // namespace vxt::test

namespace vxt::test {
namespace {

using namespace jtag;

TEST_F(JtagTest, DiagnosticChecksRunInTheirOrderBeforeTheComponent) {
  VXT_BitData ir = Vector(18, 0x3ffff);
  VXT_BitData held = Vector(4, 0x5);
  VXT_BitData record = EmptyRecord();
  VXT_BitData* withNulls[3] = {nullptr, &record, nullptr};
  uint32_t idcodes[1] = {};
  int32_t count = 0;
  const std::string prefix = "InProc_JtagDiagnostic::";
  struct Case {
    std::function<VXT_Result()> call;
    VXT_Result code;
    std::string message;
  };
  const Case cases[] = {
      {[&] { return diagnostic->TapResetGetIdcodes(kChain, 0, nullptr, nullptr, nullptr); },
       static_cast<VXT_Result>(0x80000002),
       prefix + "TapResetGetIdcodes() argument error (maxDeviceCount) : Must be a positive non-zero integer"},
      {[&] { return diagnostic->TapResetGetIdcodes(kChain, 1, idcodes, nullptr, nullptr); },
       static_cast<VXT_Result>(0x80000001), prefix + "TapResetGetIdcodes() argument error (numDevices) : Null pointer"},
      {[&] { return diagnostic->CaptureDr(kChain, &ir, -1, &record, nullptr); }, static_cast<VXT_Result>(0x80000002),
       prefix + "CaptureDr() argument error (maxDrLength) : Must be a positive non-zero integer"},
      {[&] { return diagnostic->CaptureIrBypass(kChain, 0, 0, withNulls, &count, nullptr); },
       static_cast<VXT_Result>(0x80000002),
       prefix + "CaptureIrBypass() argument error (maxDeviceCount) : Must be a positive non-zero integer"},
      {[&] { return diagnostic->CaptureIrBypass(kChain, 64, 3, withNulls, &count, nullptr); },
       static_cast<VXT_Result>(0x80000001),
       prefix + "CaptureIrBypass() argument error (capturedIrValue[0]) : Null pointer" + prefix +
           "CaptureIrBypass() argument error (capturedIrValue[2]) : Null pointer"},
      {[&] { return diagnostic->GetLockingClient(kChain, nullptr); }, static_cast<VXT_Result>(0x80000001),
       prefix + "GetLockingClient() argument error (clientIdentifier) : Null pointer"},
  };
  voxtrel::testing::StartRecordingCalls();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    EXPECT_EQ(c.call(), c.code);
    EXPECT_EQ(std::string(GetLastErrorMessage()), c.message);
  }
  EXPECT_EQ(voxtrel::testing::CallCount("Jtag.TapResetGetIdcodes") + voxtrel::testing::CallCount("Jtag.CaptureDr") +
                voxtrel::testing::CallCount("Jtag.CaptureIrBypass") +
                voxtrel::testing::CallCount("Jtag.GetLockingClient"),
            0u);
  // A record that holds a vector is refused, and its vector survives.
  EXPECT_EQ(diagnostic->CaptureDr(kChain, &ir, 8, &held, nullptr), static_cast<VXT_Result>(0x80010002));
  uint64_t value = 0;
  EXPECT_EQ(bits->ToUInt64(&held, 0, &value), VXT_SUCCESS);
  EXPECT_EQ(value, 0x5u);
}

// A capture the component refuses takes the new vector back through the
// whole Destroy operation; the Out line shows the empty record.
TEST_F(JtagTest, FailedCaptureDestroysTheVectorItMade) {
  VXT_BitData ir = Vector(18, 0x3ffff);
  VXT_BitData dr = EmptyRecord();
  VXT_JtagTdiTdoContinuity traits = VXT_JtagTdiTdoContinuity_GOOD;
  voxtrel::testing::FailWith("Jtag.CaptureDr", 0xe0002);
  ClearTrace();
  EXPECT_EQ(diagnostic->CaptureDr(kChain, &ir, 8, &dr, &traits), static_cast<VXT_Result>(0x80040004));
  EXPECT_EQ(dr.dataHandle, 0u);
  const std::vector<std::string> trace = Trace();
  ASSERT_GE(trace.size(), 4u);
  EXPECT_EQ(trace[1].rfind("In  InProc_BitData::Destroy(bitData = {bitSize = 8 dataHandle = 0x", 0), 0u) << trace[1];
  EXPECT_EQ(trace.back(),
            "Out InProc_JtagDiagnostic::CaptureDr(drValue = {bitSize = 0 dataHandle = 0x0000000000000000} "
            "detectedTraits = GOOD) ErrorCode = 0x80040004 [ClientID: 3]");
}

TEST_F(JtagTest, ConfigurationAnswersIrLengthsAndEncryptedDebug) {
  uint32_t value = 77;
  EXPECT_EQ(configuration->GetJtagChainCount(0x02000000, &value), static_cast<VXT_Result>(0x80000004));
  EXPECT_EQ(value, 77u) << "not implemented: the caller's value stays";
  EXPECT_EQ(std::string(GetLastErrorMessage()), Voxtrel_ErrorGetDefaultMessage(0x20003));
  EXPECT_EQ(configuration->GetJtagChainDevices(kChain, 4, nullptr), static_cast<VXT_Result>(0x80000001));
  const std::pair<uint32_t, uint32_t> lengths[] = {{kChain, 18}, {kCpuTap, 8}, {kChipsetTap, 4}};
  for (const auto& [device, length] : lengths) {
    ASSERT_EQ(configuration->GetDeviceIrLength(device, &value), VXT_SUCCESS);
    EXPECT_EQ(value, length);
  }
  EXPECT_EQ(configuration->GetDeviceIrLength(0x04000000, &value), static_cast<VXT_Result>(0x80040007));
  for (const uint32_t on : {1u, 0u}) {
    ASSERT_EQ(on ? configuration->StartEncryptedDebug(kCpuTap) : configuration->StopEncryptedDebug(kCpuTap),
              VXT_SUCCESS);
    ASSERT_EQ(configuration->GetEncryptedDebugStatus(kCpuTap, &value), VXT_SUCCESS);
    EXPECT_EQ(value, on);
  }
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method",
                                               "JtagConfiguration::StartEncryptedDebug"),
            1u);
}

}  // namespace
}  // namespace vxt::test
