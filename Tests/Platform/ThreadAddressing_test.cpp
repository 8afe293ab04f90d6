// A thread's addresses: page walks of every paging mode, segment bases of
// logical addresses, the code width, and transfers that span pages, on a
// backend whose memory and registers the test sets.
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../../Source/Platform/RunControl/MemoryAccess.h"
#include "../../Source/Platform/RunControl/ThreadAddressing.h"

namespace {

using namespace voxtrel::platform;
using cpu::CpuResult;
using run_control::ThreadAddressing;

// 4 MiB of RAM from 0, the last 64 KiB of it read-only.
class FakeBackend : public cpu::CpuBackend {
 public:
  static constexpr uint64_t kRomStart = 0x3F0000;
  FakeBackend() : ram_(0x400000) {
    for (const char* name :
         {"cr0", "cr3", "cr4", "efer", "cs_base", "ds_base", "es_base", "ss_base", "fs_base", "gs_base", "gdtr_base"})
      registers_.push_back({name, 64, cpu::RegisterGroup::Control});
    for (const char* name : {"cs", "ds", "es", "ss", "fs", "gs", "ldtr"})
      registers_.push_back({name, 16, cpu::RegisterGroup::Segment});
  }
  void Set(const std::string& name, uint64_t value) { values_[name] = value; }
  void Put(uint64_t physical, uint64_t value, size_t size = 8) { std::memcpy(&ram_[physical], &value, size); }

  uint32_t ThreadCount() const override { return 1; }
  std::vector<cpu::MemoryRegion> MemoryMap() const override { return {}; }
  CpuResult ReadPhysical(uint64_t address, std::span<uint8_t> bytes) override {
    if (address > ram_.size() || bytes.size() > ram_.size() - address) return CpuResult::Unmapped;
    std::memcpy(bytes.data(), &ram_[address], bytes.size());
    return CpuResult::Ok;
  }
  CpuResult WritePhysical(uint64_t address, std::span<const uint8_t> bytes) override {
    if (address > ram_.size() || bytes.size() > ram_.size() - address) return CpuResult::Unmapped;
    if (address + bytes.size() > kRomStart) return CpuResult::ReadOnly;
    std::memcpy(&ram_[address], bytes.data(), bytes.size());
    return CpuResult::Ok;
  }
  const std::vector<cpu::RegisterInfo>& Registers() const override { return registers_; }
  CpuResult ReadRegister(uint32_t, std::string_view name, std::span<uint8_t> value) override {
    const uint64_t held = values_[std::string(name)];
    std::memcpy(value.data(), &held, value.size());
    return CpuResult::Ok;
  }
  CpuResult ReadIo(uint16_t, uint32_t, uint32_t&) override { return CpuResult::Unavailable; }
  CpuResult WriteIo(uint16_t, uint32_t, uint32_t) override { return CpuResult::Unavailable; }
  CpuResult WriteRegister(uint32_t, std::string_view, std::span<const uint8_t>) override {
    return CpuResult::Unavailable;
  }
  CpuResult ReadMsr(uint32_t, uint32_t, uint64_t&) override { return CpuResult::Unavailable; }
  CpuResult WriteMsr(uint32_t, uint32_t, uint64_t) override { return CpuResult::Unavailable; }
  CpuResult Cpuid(uint32_t, uint32_t, uint32_t, cpu::CpuidResult&) override { return CpuResult::Unavailable; }
  CpuResult ApicId(uint32_t, uint32_t&) override { return CpuResult::Unavailable; }
  CpuResult GetRunState(uint32_t, cpu::RunState&) override { return CpuResult::Unavailable; }
  CpuResult Halt(uint32_t) override { return CpuResult::Unavailable; }
  CpuResult Go(uint32_t) override { return CpuResult::Unavailable; }
  CpuResult HaltAll() override { return CpuResult::Unavailable; }
  CpuResult GoAll() override { return CpuResult::Unavailable; }
  CpuResult Step(uint32_t) override { return CpuResult::Unavailable; }
  CpuResult AddBreakpoint(const cpu::Breakpoint&, uint32_t&) override { return CpuResult::Unavailable; }
  CpuResult RemoveBreakpoint(uint32_t) override { return CpuResult::Unavailable; }
  uint32_t AddStopListener(cpu::StopListener) override { return 0; }
  void RemoveStopListener(uint32_t) override {}
  CpuResult Reset(cpu::ResetMode) override { return CpuResult::Unavailable; }
  void Shutdown() override {}

  std::vector<uint8_t> ram_;

 private:
  std::vector<cpu::RegisterInfo> registers_;
  mutable std::map<std::string, uint64_t> values_;
};

constexpr uint64_t kPresentWritable = 0x3;
constexpr uint64_t kLarge = 0x80;

VXT_Address Address(VXT_AddressType type, uint64_t offset, uint16_t segsel = 0, uint16_t ldtsel = 0) {
  return VXT_Address{VXT_ADDRESS_SIZE, ldtsel, segsel, offset, type};
}

// What the address is in physical memory, or nothing when it is refused.
std::optional<uint64_t> PhysicalOf(FakeBackend& backend, const VXT_Address& address) {
  VXT_Address physical{};
  if (ThreadAddressing(backend, 0).Convert(address, VXT_AddressType_Physical, physical)) return std::nullopt;
  return physical.offset;
}

class ThreadAddressingTest : public ::testing::Test {
 protected:
  // Long mode, four levels: linear 0x400000 is two 4 KiB pages at 0x100000
  // and 0x200000, linear 0x600000 a 2 MiB page at 0x000000.
  void LongMode() {
    backend.Set("cr0", 0x80000011);
    backend.Set("cr4", 0x20);
    backend.Set("efer", 0x500);
    backend.Set("cr3", 0x1000);
    backend.Put(0x1000, 0x2000 | kPresentWritable);
    backend.Put(0x2000, 0x3000 | kPresentWritable);
    backend.Put(0x3000 + 2 * 8, 0x4000 | kPresentWritable);
    backend.Put(0x3000 + 3 * 8, 0x000000 | kPresentWritable | kLarge);
    backend.Put(0x4000, 0x100000 | kPresentWritable);
    backend.Put(0x4000 + 8, 0x200000 | kPresentWritable);
    backend.Put(0x4000 + 16, kRomPage | kPresentWritable);
  }
  static constexpr uint64_t kRomPage = FakeBackend::kRomStart;
  FakeBackend backend;
};

TEST_F(ThreadAddressingTest, PageWalksOfEveryPagingMode) {
  LongMode();
  const struct {
    uint64_t linear;
    std::optional<uint64_t> physical;
  } longMode[] = {
      {0x400123, 0x100123},
      {0x401FFF, 0x200FFF},
      {0x6ABCDE, 0x0ABCDE},
      {0x403000, std::nullopt},            // Page table entry not present
      {0x800000, std::nullopt},            // Directory entry not present
      {0x0000800000000000, std::nullopt},  // Not canonical
  };
  for (const auto& [linear, physical] : longMode)
    EXPECT_EQ(PhysicalOf(backend, Address(VXT_AddressType_Linear, linear)), physical) << std::hex << linear;

  // 32-bit tables with a 4 MiB page; a linear address has 32 bits.
  backend.Set("efer", 0);
  backend.Set("cr4", 0x10);
  backend.Set("cr3", 0x5000);
  backend.Put(0x5000 + 1 * 4, 0x00000000 | kPresentWritable | kLarge, 4);
  backend.Put(0x5000 + 2 * 4, 0x6000 | kPresentWritable, 4);
  backend.Put(0x6000 + 5 * 4, 0x300000 | kPresentWritable, 4);
  EXPECT_EQ(PhysicalOf(backend, Address(VXT_AddressType_Linear, 0x412345)), 0x012345u);
  EXPECT_EQ(PhysicalOf(backend, Address(VXT_AddressType_Linear, 0x100000000ull + 0x805010)), 0x300010u);

  // PAE: four directory pointers, then 2 MiB or 4 KiB pages.
  backend.Set("cr4", 0x20);
  backend.Set("cr3", 0x7000);
  backend.Put(0x7000 + 1 * 8, 0x8000 | 1);
  backend.Put(0x8000 + 0 * 8, 0x200000 | kPresentWritable | kLarge);
  EXPECT_EQ(PhysicalOf(backend, Address(VXT_AddressType_Linear, 0x40012345)), 0x212345u);
  EXPECT_EQ(PhysicalOf(backend, Address(VXT_AddressType_Linear, 0x80000000)), std::nullopt);

  // Without paging linear is physical.
  backend.Set("cr0", 0x11);
  EXPECT_EQ(PhysicalOf(backend, Address(VXT_AddressType_Linear, 0x1234)), 0x1234u);
}

TEST_F(ThreadAddressingTest, LogicalAddressesTakeTheirSegmentsBase) {
  backend.Set("cr0", 0x0);  // Real mode
  EXPECT_EQ(PhysicalOf(backend, Address(VXT_AddressType_TwoFieldLogical, 0x10, 0x1234)), 0x12350u);

  backend.Set("cr0", 0x11);  // Protected mode, no paging
  backend.Set("ds", 0x10);
  backend.Set("ds_base", 0x20000);
  backend.Set("gdtr_base", 0x9000);
  backend.Put(0x9000 + 0x18, 0x00CF92013000FFFFull);   // Base 0x013000
  backend.Put(0x9000 + 0x20, 0x0000820A00000FFFull);   // An LDT at 0x0A0000
  backend.Put(0xA0000 + 0x08, 0x00CF920B0000FFFFull);  // Base 0x0B0000
  backend.Set("ldtr", 0x20);
  const struct {
    VXT_Address address;
    uint64_t physical;
  } rows[] = {
      {Address(VXT_AddressType_OneFieldDataLogical, 0x44), 0x20044},
      {Address(VXT_AddressType_TwoFieldLogical, 0x44, 0x10), 0x20044},  // Held in DS
      {Address(VXT_AddressType_TwoFieldLogical, 0x44, 0x18), 0x13044},  // From the GDT
      {Address(VXT_AddressType_TwoFieldLogical, 0x44, 0x0C), 0xB0044},  // TI: the thread's LDT
      {Address(VXT_AddressType_ThreeFieldLogical, 0x44, 0x0C, 0x20), 0xB0044},
  };
  for (const auto& [address, physical] : rows)
    EXPECT_EQ(PhysicalOf(backend, address), physical) << address.addressType << " " << address.segsel;

  backend.Set("efer", 0x500);  // Long mode: only held FS and GS have a base
  EXPECT_EQ(PhysicalOf(backend, Address(VXT_AddressType_TwoFieldLogical, 0x44, 0x18)), 0x44u);
  VXT_Address unconverted{};
  EXPECT_TRUE(
      ThreadAddressing(backend, 0).Convert(Address(VXT_AddressType_Physical, 0), VXT_AddressType_Linear, unconverted));
}

TEST_F(ThreadAddressingTest, CodeWidthFollowsModeAndCodeSegment) {
  uint32_t bits = 0;
  backend.Set("cr0", 0x10);
  ASSERT_FALSE(ThreadAddressing(backend, 0).CodeBits(bits));
  EXPECT_EQ(bits, 16u);
  backend.Set("cr0", 0x11);
  backend.Set("gdtr_base", 0x9000);
  backend.Set("cs", 0x08);
  backend.Put(0x9008, 0x00CF9A000000FFFFull);  // D set
  ASSERT_FALSE(ThreadAddressing(backend, 0).CodeBits(bits));
  EXPECT_EQ(bits, 32u);
  backend.Set("efer", 0x500);
  backend.Put(0x9008, 0x00AF9A000000FFFFull);  // L set
  ASSERT_FALSE(ThreadAddressing(backend, 0).CodeBits(bits));
  EXPECT_EQ(bits, 64u);
}

TEST_F(ThreadAddressingTest, TransfersAcrossPagesAreWholeOrNothing) {
  LongMode();
  backend.ram_[0x100FFF] = 0xAA;
  backend.ram_[0x200000] = 0xBB;
  std::vector<uint8_t> bytes(2);
  ASSERT_FALSE(run_control::ReadMemoryAt(backend, 0, Address(VXT_AddressType_Linear, 0x400FFF), bytes));
  EXPECT_EQ(bytes, (std::vector<uint8_t>{0xAA, 0xBB}));

  // The second page is read-only: the first keeps what it had.
  const std::vector<uint8_t> write(0x1001, 0x55);
  EXPECT_TRUE(run_control::WriteMemoryAt(backend, 0, Address(VXT_AddressType_Linear, 0x401FFF), write));
  EXPECT_EQ(backend.ram_[0x200FFF], 0x00);
  EXPECT_TRUE(run_control::ReadMemoryAt(backend, 0, Address(VXT_AddressType_Linear, 0x402FFF), bytes));
}

}  // namespace
