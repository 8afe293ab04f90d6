// UncoreTap's MEM_ADDRESS and MEM_DATA registers reach the default
// domain's physical memory: what a scan writes the Memory service reads,
// and what the Memory service writes a scan captures.
#include <cstdint>
#include <optional>
#include <vector>

#include "JtagTestSupport.h"

namespace vxt::test {
namespace {

using namespace jtag;

constexpr uint32_t kThread = 0x03000000;
constexpr uint64_t kMemAddress = 0x15;  // 6-bit opcodes of UncoreTap
constexpr uint64_t kMemData = 0x16;

class JtagMemoryReach : public JtagTest {
 protected:
  void SetUp() override {
    JtagTest::SetUp();
    memory = GetServiceAs<IInternalService_Memory>(VXT_Service_Memory);
  }
  void SelectAddress(uint64_t address) { Scan(kUncoreTap, 6, kMemAddress, 32, address); }
  // A data scan that shifts `value` in: its Update-DR writes it.
  uint64_t ScanData(uint64_t value) { return Scan(kUncoreTap, 6, kMemData, 32, value); }
  // A read-modify-write that changes no bit: the captured value, written
  // back as it was.
  uint64_t ReadData() {
    VXT_BitData ir = Vector(6, kMemData);
    VXT_BitData none = Vector(32, 0);
    uint64_t token = 0;
    EXPECT_EQ(access->IrDrScanReadModifyWrite(kUncoreTap, &ir, 32, &none, &none, &token), VXT_SUCCESS);
    return ValueOf(token);
  }
  // Nullopt when the Memory service refuses the read (a hole).
  std::optional<uint64_t> MemoryAt(uint64_t address) {
    const VXT_Address where{VXT_ADDRESS_SIZE, 0, 0, address, VXT_AddressType_Physical};
    uint64_t token = 0;
    if (memory->ReadMemory(kThread, &where, 4, &token) != VXT_SUCCESS) return std::nullopt;
    return ValueOf(token);
  }
  void WriteMemory(uint64_t address, uint64_t value) {
    const VXT_Address where{VXT_ADDRESS_SIZE, 0, 0, address, VXT_AddressType_Physical};
    VXT_BitData data = Vector(32, value);
    uint64_t token = 0;
    ASSERT_EQ(memory->WriteMemory(kThread, &where, 4, &data, &token), VXT_SUCCESS);
    VXT_Result failure = 0;
    EXPECT_EQ(receipts->GetOperationErrorResult(token, &failure), VXT_SUCCESS);
    EXPECT_EQ(failure, VXT_SUCCESS);
    receipts->Destroy(token);
  }
  IInternalService_Memory* memory = nullptr;
};

TEST_F(JtagMemoryReach, ScansAndTheMemoryServiceSeeTheSameBytes) {
  // A scan writes; the Memory service reads it back.
  SelectAddress(0x30000);
  ScanData(0x11223344);
  EXPECT_EQ(MemoryAt(0x30000), 0x11223344u);
  // The Memory service writes; a scan captures it, and a scan that changes
  // no bit leaves it there.
  WriteMemory(0x30008, 0x00c0ffee);
  SelectAddress(0x30008);
  EXPECT_EQ(ReadData(), 0x00c0ffeeu);
  EXPECT_EQ(MemoryAt(0x30008), 0x00c0ffeeu);
  // A plain scan captures the old value as it writes the new one.
  EXPECT_EQ(ScanData(42), 0x00c0ffeeu);
  EXPECT_EQ(MemoryAt(0x30008), 42u);
  EXPECT_EQ(MemoryAt(0x30000), 0x11223344u) << "only the selected address changes";
}

TEST_F(JtagMemoryReach, WhatNoRamTakesIsLostAndHolesReadAllOnes) {
  struct Case {
    uint64_t address;
    bool mapped;
  };
  // The firmware's reset vector in ROM; an address in no region.
  const Case cases[] = {{0xFFFFFFF0, true}, {0x80000000, false}};
  for (const Case& item : cases) {
    SelectAddress(item.address);
    const uint64_t before = ReadData();
    ScanData(0x5555aaaa);
    EXPECT_EQ(ReadData(), before) << std::hex << item.address;
    EXPECT_EQ(MemoryAt(item.address), item.mapped ? std::optional(before) : std::nullopt) << std::hex << item.address;
    if (!item.mapped) {
      EXPECT_EQ(before, 0xffffffffu);
    }
  }
}

}  // namespace
}  // namespace vxt::test
