// The diagnostic service on the default chain, sound and with each fault
// the platform can put on its TDI-TDO path.
#include <string>
#include <vector>

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
