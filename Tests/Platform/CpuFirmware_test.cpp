// The default firmware on the emulated CPUs: it reaches long mode on every
// thread and its visible work arrives.
#include "CpuTestSupport.h"
#include "PlatformTestControl.h"

namespace vxt::test {
namespace {

TEST(CpuFirmwareTest, EveryThreadCountsAndTheBootstrapThreadReports) {
  CpuTarget target;
  const uint32_t domainId = target.Domain().targetDomainId;
  ASSERT_EQ(target.Cpus().ThreadCount(), 4u);
  EXPECT_TRUE(WaitForCondition([&] {
    return voxtrel::testing::CpuUartText(domainId, "COM1").find("tick 00000001\r\n") != std::string::npos;
  })) << voxtrel::testing::CpuUartText(domainId, "COM1");
  for (uint32_t apicId = 0; apicId < 4; ++apicId) EXPECT_GT(target.ReadQword(ThreadCounter(apicId)), 0u) << apicId;
  const std::string text = voxtrel::testing::CpuUartText(domainId, "COM1");
  EXPECT_EQ(text.rfind("Voxtrel firmware: long mode reached\r\ntick 00000001\r\n", 0), 0u) << text;
  const std::vector<uint8_t> codes = voxtrel::testing::CpuPostCodes(domainId);
  ASSERT_GE(codes.size(), 5u);
  EXPECT_EQ(std::vector<uint8_t>(codes.begin(), codes.begin() + 5), (std::vector<uint8_t>{1, 2, 3, 0x10, 1}));
  EXPECT_EQ(target.Register(0, "efer") & 0x500, 0x500u);  // Long mode active
}

}  // namespace
}  // namespace vxt::test

namespace vxt::test {
namespace {

// Every shipped description runs the firmware on every domain it emulates.
TEST(CpuFirmwareTest, EveryShippedDescriptionBootsEveryDomain) {
  for (const char* name : {"Default", "TwoSocketServer", "HostWithBmc"}) {
    CpuTarget target(ShippedDescription(name));
    const auto domains = CpuDomains::Instance().Domains();
    EXPECT_FALSE(domains.empty()) << name;
    for (const auto& domain : domains)
      EXPECT_TRUE(WaitForCondition([&] {
        return voxtrel::testing::CpuUartText(domain->targetDomainId, "COM1").find("long mode reached") !=
               std::string::npos;
      })) << name
          << " domain " << std::hex << domain->targetDomainId;
  }
}

}  // namespace
}  // namespace vxt::test
