// What the CPUs refuse, and that a refusal changes nothing; the machine's
// registers, CPUID and APIC ids as the description gives them; the lookup
// from device ids.
#include "CpuTestSupport.h"

namespace vxt::test {
namespace {

constexpr uint64_t kRamEnd = 0x1000000;  // Default.json's RAM is 16 MiB from 0
constexpr uint64_t kRom = 0xFFFF0000;

TEST(CpuChecksTest, MemoryOutsideRamAndRomIsRefusedWithoutChange) {
  CpuTarget target;
  target.Write(kRamEnd - 8, std::vector<uint8_t>(8, 0xAB));
  struct Case {
    const char* what;
    uint64_t address;
    uint64_t size;
    CpuResult read;
    CpuResult write;
  };
  const Case cases[] = {
      {"into the hole after RAM", kRamEnd - 8, 16, CpuResult::Unmapped, CpuResult::Unmapped},
      {"in a hole", 0x80000000, 4, CpuResult::Unmapped, CpuResult::Unmapped},
      {"ROM", kRom, 16, CpuResult::Ok, CpuResult::ReadOnly},
      {"past the end of the space", ~0ull - 3, 8, CpuResult::TooLarge, CpuResult::TooLarge},
      {"larger than a transfer", 0, kMaxTransferBytes + 1, CpuResult::TooLarge, CpuResult::TooLarge},
      {"nothing", kRamEnd, 0, CpuResult::Ok, CpuResult::Ok},
  };
  for (const Case& check : cases) {
    std::vector<uint8_t> bytes(check.size, 0x5A);
    EXPECT_EQ(target.Cpus().ReadPhysical(check.address, bytes), check.read) << check.what;
    EXPECT_EQ(target.Cpus().WritePhysical(check.address, bytes), check.write) << check.what;
  }
  EXPECT_EQ(target.ReadQword(kRamEnd - 8), 0xABABABABABABABABull);
  std::vector<uint8_t> vector(16);
  ASSERT_EQ(target.Cpus().ReadPhysical(0xFFFFFFF0, vector), CpuResult::Ok);
  EXPECT_EQ(vector[0], 0xE9) << "the reset vector's jump";
}

TEST(CpuChecksTest, CallsOutsideTheThreadsRegistersAndDevicesAreRefused) {
  CpuTarget target;
  CpuBackend& cpus = target.Cpus();
  uint64_t value = 0;
  uint32_t word = 0;
  uint8_t wide[8] = {};
  uint8_t narrow[4] = {};
  uint32_t id = 0;
  RunState state;
  CpuidResult cpuid;
  struct Case {
    const char* what;
    std::function<CpuResult()> call;
    CpuResult expected;
  };
  const Case cases[] = {
      {"IO of 3 bytes", [&] { return cpus.ReadIo(0x3F8, 3, word); }, CpuResult::BadSize},
      {"IO nothing claims", [&] { return cpus.WriteIo(0x60, 1, 0); }, CpuResult::Unmapped},
      {"UART line status", [&] { return cpus.ReadIo(0x3FD, 1, word); }, CpuResult::Ok},
      {"unknown register", [&] { return cpus.ReadRegister(0, "xmm99", wide); }, CpuResult::UnknownRegister},
      {"register of the wrong width", [&] { return cpus.ReadRegister(0, "RAX", narrow); }, CpuResult::BadSize},
      {"computed segment base", [&] { return cpus.WriteRegister(0, "cs_base", wide); }, CpuResult::ReadOnlyRegister},
      {"thread out of range", [&] { return cpus.ReadRegister(4, "rax", wide); }, CpuResult::UnknownThread},
      {"unknown MSR", [&] { return cpus.ReadMsr(0, 0x12345, value); }, CpuResult::GeneralProtection},
      {"reserved APIC base bits", [&] { return cpus.WriteMsr(0, 0x1B, 0xFEE00001); }, CpuResult::GeneralProtection},
      {"reserved EFER bits", [&] { return cpus.WriteMsr(0, 0xC0000080, 0x500 | 0x2); }, CpuResult::GeneralProtection},
      {"step of a running thread", [&] { return cpus.Step(1); }, CpuResult::NotHalted},
      {"data breakpoint of 3 bytes",
       [&] {
         return cpus.AddBreakpoint({BreakpointKind::Data, 0x3000, DataAccess::Write, 3}, id);
       },
       CpuResult::BadBreakpoint},
      {"unaligned data breakpoint",
       [&] {
         return cpus.AddBreakpoint({BreakpointKind::Data, 0x3002, DataAccess::Read, 4}, id);
       },
       CpuResult::BadBreakpoint},
      {"breakpoint of no thread",
       [&] {
         return cpus.AddBreakpoint({BreakpointKind::Execution, 0x3000, DataAccess::Write, 1, 9}, id);
       },
       CpuResult::UnknownThread},
      {"unknown breakpoint", [&] { return cpus.RemoveBreakpoint(77); }, CpuResult::UnknownBreakpoint},
      {"run state of no thread", [&] { return cpus.GetRunState(4, state); }, CpuResult::UnknownThread},
      {"CPUID of no thread", [&] { return cpus.Cpuid(4, 0, 0, cpuid); }, CpuResult::UnknownThread},
  };
  for (const Case& check : cases) EXPECT_EQ(check.call(), check.expected) << check.what;
  EXPECT_EQ(cpus.ReadMsr(0, 0xC0000080, value), CpuResult::Ok);
  EXPECT_EQ(value & 0x2, 0u) << "a refused write changed EFER";
}

TEST(CpuChecksTest, MachineRegistersCpuidAndApicIdsFollowTheDescription) {
  CpuTarget target;
  CpuBackend& cpus = target.Cpus();
  uint64_t value = 0;
  ASSERT_EQ(cpus.ReadMsr(0, 0x1B, value), CpuResult::Ok);
  EXPECT_EQ(value, 0xFEE00900u) << "enabled bootstrap APIC";
  ASSERT_EQ(cpus.ReadMsr(1, 0x1B, value), CpuResult::Ok);
  EXPECT_EQ(value, 0xFEE00800u);
  ASSERT_EQ(cpus.ReadMsr(2, 0x1A0, value), CpuResult::Ok);
  EXPECT_EQ(value, 0x850089u) << "the description's default";
  uint64_t before = 0, after = 0;
  ASSERT_EQ(cpus.ReadMsr(0, 0x10, before), CpuResult::Ok);
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  ASSERT_EQ(cpus.ReadMsr(0, 0x10, after), CpuResult::Ok);
  EXPECT_GT(after, before) << "the TSC advances";
  ASSERT_EQ(cpus.WriteMsr(0, 0x10, 0), CpuResult::Ok);
  ASSERT_EQ(cpus.ReadMsr(0, 0x10, after), CpuResult::Ok);
  EXPECT_LT(after, before);
  for (uint32_t thread = 0; thread < cpus.ThreadCount(); ++thread) {
    CpuidResult cpuid;
    ASSERT_EQ(cpus.Cpuid(thread, 1, 0, cpuid), CpuResult::Ok);
    uint32_t apicId = 99;
    ASSERT_EQ(cpus.ApicId(thread, apicId), CpuResult::Ok);
    EXPECT_EQ(apicId, thread);
    EXPECT_EQ(cpuid.ebx >> 24, apicId);
    EXPECT_EQ(cpuid.eax, 0x000906EAu);
  }
  CpuidResult vendor;
  ASSERT_EQ(cpus.Cpuid(0, 0, 0, vendor), CpuResult::Ok);
  char text[13] = {};
  std::memcpy(text, &vendor.ebx, 4);
  std::memcpy(text + 4, &vendor.edx, 4);
  std::memcpy(text + 8, &vendor.ecx, 4);
  EXPECT_STREQ(text, "SimulatedX86");
}

TEST(CpuChecksTest, DeviceIdsLeadToTheirThreads) {
  std::optional<CpuTarget> target(std::in_place);
  const CpuDomain& domain = target->Domain();
  const uint32_t firstThread = domain.threadDeviceIds.front();
  struct Case {
    const char* what;
    uint32_t deviceId;
    LookupResult result;
    std::vector<uint32_t> threads;
  };
  const Case cases[] = {
      {"a thread", domain.threadDeviceIds[2], LookupResult::Ok, {2}},
      {"a core", 0x04000001, LookupResult::Ok, {2, 3}},
      {"the domain", domain.targetDomainId, LookupResult::Ok, {0, 1, 2, 3}},
      {"a TAP controller", 0x0E000000, LookupResult::NotACpu, {}},
      {"no device", firstThread + 100, LookupResult::UnknownDevice, {}},
  };
  for (const Case& check : cases) {
    const CpuSelection selection = CpuDomains::Instance().Find(check.deviceId);
    EXPECT_EQ(selection.result, check.result) << check.what;
    EXPECT_EQ(selection.threadIndices, check.threads) << check.what;
  }
  std::shared_ptr<const CpuDomain> held = CpuDomains::Instance().Find(firstThread).domain;
  target.reset();
  EXPECT_EQ(CpuDomains::Instance().Find(firstThread).result, LookupResult::NotStarted);
  RunState state;
  EXPECT_EQ(held->backend->GetRunState(0, state), CpuResult::Unavailable) << "a backend outlives its stop safely";
}

}  // namespace
}  // namespace vxt::test
