// The Memory service on the emulated target: its checks, its trace, and
// memory and images written and read back through it.
#include <unistd.h>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "CpuServiceTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::kFirstThread;
using vxt::test::Physical;

constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);
constexpr VXT_Result kNotImplemented = static_cast<VXT_Result>(0x80000004);
constexpr VXT_Result kInvalidHandle = static_cast<VXT_Result>(0x80000011);
constexpr VXT_Result kStructureSize = static_cast<VXT_Result>(0x80000010);
constexpr VXT_Result kBitDataInvalid = static_cast<VXT_Result>(0x80010003);
constexpr VXT_Result kInvalidAccessWidth = static_cast<VXT_Result>(0x80080005);
constexpr VXT_Result kMemoryNotAccessible = static_cast<VXT_Result>(0x80080007);
constexpr VXT_Result kMemoryWriteFailed = static_cast<VXT_Result>(0x80080001);
constexpr VXT_Result kMemoryLengthInvalid = static_cast<VXT_Result>(0x80080004);
constexpr VXT_Result kAccessDenied = static_cast<VXT_Result>(0x8000001b);

// RAM of the default target is 0x0-0xFFFFFF; its firmware ROM is the last
// 64 KiB below 4 GiB; between them is a hole.
constexpr uint64_t kScratch = 0x800000;
constexpr uint64_t kRom = 0xFFFF0000;
constexpr uint64_t kHole = 0x2000000;

class MemoryTest : public vxt::test::CpuServiceTest {
 protected:
  std::vector<uint8_t> Read(uint64_t physical, int32_t size) {
    const VXT_Address address = Physical(physical);
    uint64_t token = 0;
    EXPECT_EQ(memory->ReadMemory(kFirstThread, &address, size, &token), 0) << GetLastErrorMessage();
    return Bytes(token);
  }
  VXT_Result Write(uint64_t physical, const std::vector<uint8_t>& bytes) {
    const VXT_Address address = Physical(physical);
    VXT_BitData data = Vector(bytes);
    uint64_t token = 0;
    const VXT_Result result =
        memory->WriteMemory(kFirstThread, &address, static_cast<int32_t>(bytes.size()), &data, &token);
    if (result == 0) receipts->Destroy(token);
    bitData->Destroy(&data);
    return result;
  }
  std::string TempFile(const char* name) {
    const std::string path = (std::filesystem::temp_directory_path() /
                              (std::string("vxt_memory_") + std::to_string(::getpid()) + "_" + name))
                                 .string();
    std::filesystem::remove(path);
    files.push_back(path);
    return path;
  }
  void TearDown() override {
    for (const std::string& file : files) std::filesystem::remove(file);
    CpuServiceTest::TearDown();
  }
  std::vector<std::string> files;
};

TEST_F(MemoryTest, ChecksRefuseBeforeTheComponentIsAsked) {
  const VXT_Address good = Physical(kScratch);
  VXT_Address unsized = good;
  unsized.structureSize = 0;
  VXT_BitData noVector{VXT_BITDATA_SIZE, 0, 0};
  VXT_BitData data = Vector({1, 2});
  uint64_t token = 0;
  const std::string head = "InProc_Memory::";
  tc::StartRecordingCalls();
  ExpectRefusals({
      {[&] { return memory->ReadMemory(kFirstThread, &good, 0, &token); }, kInvalidHandle,
       head + "ReadMemory() argument error (byteCount) : Byte count must be greater than zero."},
      {[&] { return memory->ReadMemory(kFirstThread, &unsized, 4, nullptr); }, kStructureSize,
       head + "ReadMemory() argument error (address) : Structure size not initialized"},
      {[&] { return memory->ReadMemory(kFirstThread, &good, 4, nullptr); }, kInvalidArgument,
       head + "ReadMemory() argument error (operationToken) : Null pointer"},
      {[&] { return memory->WriteMemory(kFirstThread, &good, 2, &noVector, &token); }, kBitDataInvalid,
       head + "WriteMemory() argument error (data) : Invalid"},
      {[&] { return memory->WriteMemoryWithAccessWidth(kFirstThread, &good, 1, 3, &data, &token); },
       kInvalidAccessWidth,
       head + "WriteMemoryWithAccessWidth() argument error (accessWidth) : Invalid memory access width"},
      {[&] { return memory->ReadMemoryWithAccessWidth(kFirstThread, &good, -1, 3, &token); }, kInvalidHandle,
       head + "ReadMemoryWithAccessWidth() argument error (count) : Count must be greater than zero."},
      {[&] { return memory->WriteMemory(kFirstThread, &good, 0x20000000, &data, &token); },
       static_cast<VXT_Result>(0x80000002), head + "WriteMemory() argument error (byteCount) : Byte count too large"},
      {[&] { return memory->VMCSRead32(kFirstThread, 0, nullptr); }, kInvalidArgument,
       head + "VMCSRead32() argument error (operationToken) : Null pointer"},
      {[&] { return memory->VMCSWrite64(kFirstThread, 0, 0, &token); }, kNotImplemented, "Not implemented"},
      {[&] { return memory->AddressFromString(nullptr, nullptr); }, kInvalidArgument,
       head + "AddressFromString() argument error (addressAsString) : Null pointer" + head +
           "AddressFromString() argument error (address) : Null pointer"},
      {[&] { return memory->LoadMemory(kFirstThread, nullptr, &good, nullptr, "bin", "", nullptr); }, kInvalidArgument,
       head + "LoadMemory() argument error (fileName) : Null pointer" + head +
           "LoadMemory() argument error (operationToken) : Null pointer"},
  });
  for (const std::string& operation : tc::RecordedOperations())
    EXPECT_EQ(operation.rfind("RunControl.", 0), std::string::npos) << operation;
  bitData->Destroy(&data);
}

TEST_F(MemoryTest, TraceShowsEveryArgumentInItsForm) {
  const VXT_Address address = Physical(kScratch);
  uint64_t token = 0;
  ASSERT_EQ(memory->ReadMemoryWithAccessWidth(kFirstThread, &address, 2, 4, &token), 0);
  char tokenText[19];
  std::snprintf(tokenText, sizeof tokenText, "0x%016llx", static_cast<unsigned long long>(token));
  receipts->Destroy(token);
  ASSERT_EQ(memory->LoadMemory(kFirstThread, "/no/such/file.bin", &address, nullptr, "bin", "", &token),
            static_cast<VXT_Result>(0x80000005));
  const std::string addressText =
      "{ldtsel = 0x0000 segsel = 0x0000 offset = 0x0000000000800000 addressType = Physical}";
  EXPECT_EQ(Trace(),
            (std::vector<std::string>{
                "In  InProc_Memory::ReadMemoryWithAccessWidth(deviceId = 0x03000000 address = " + addressText +
                    " count = 2 accessWidth = DWord) [ClientID: 3]",
                "Out InProc_Memory::ReadMemoryWithAccessWidth(operationToken = " + std::string(tokenText) +
                    ") ErrorCode = 0x00000000 [ClientID: 3]",
                "In  InProc_OperationReceipt::Destroy(operationToken = " + std::string(tokenText) + ") [ClientID: 3]",
                "Out InProc_OperationReceipt::Destroy() ErrorCode = 0x00000000 [ClientID: 3]",
                "In  InProc_Memory::LoadMemory(deviceId = 0x03000000fileName = '/no/such/file.bin' "
                "fromAddress = " +
                    addressText + " toAddress = <NULL>fileType = 'bin'loadOptions = '') [ClientID: 3]",
                "VXT Error = 'cannot read '/no/such/file.bin': No such file or directory' [ClientID: 3]",
                "In  InProc ReportErrorMessage(<NULL>'cannot read '/no/such/file.bin': No such file or "
                "directory')",
                "Out InProc ReportErrorMessage()",
                "Out InProc_Memory::LoadMemory(operationToken = " + std::string(tokenText) +
                    ") ErrorCode = 0x80000005 [ClientID: 3]",
            }));
}

TEST_F(MemoryTest, WrittenMemoryReadsBackThroughEveryWidthAndAddressKind) {
  const std::vector<uint8_t> bytes{0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
  ASSERT_EQ(Write(kScratch, bytes), 0) << GetLastErrorMessage();
  EXPECT_EQ(Read(kScratch, 8), bytes);
  EXPECT_EQ(Read(kScratch + 6, 2), (std::vector<uint8_t>{0x77, 0x88}));

  const VXT_Address address = Physical(kScratch);
  uint64_t token = 0;
  ASSERT_EQ(memory->ReadMemoryWithAccessWidth(kFirstThread, &address, 2, 4, &token), 0);
  EXPECT_EQ(Bytes(token), bytes);
  VXT_Address guest = address;
  guest.addressType = VXT_AddressType_GuestPhysical;
  ASSERT_EQ(memory->ReadMemory(kFirstThread, &guest, 8, &token), 0);
  EXPECT_EQ(Bytes(token), bytes);
}

TEST_F(MemoryTest, RefusedAccessesNameTheirCauseAndChangeNothing) {
  const std::vector<uint8_t> romBefore = Read(kRom, 4);
  const struct {
    uint64_t physical;
    int32_t size;
    VXT_Result result;
  } refusals[] = {
      {kHole, 4, kMemoryNotAccessible},
      {0xFFFFFF - 1, 4, kMemoryNotAccessible},  // Runs from RAM into the hole
      {0, 0x7FFFFFFF, kMemoryLengthInvalid},
      {0xFFFFFFFFFFFFFFF0, 0x20, kMemoryLengthInvalid},  // Wraps past 2^64
  };
  for (const auto& [physical, size, result] : refusals) {
    const VXT_Address address = Physical(physical);
    uint64_t token = 0;
    EXPECT_EQ(memory->ReadMemory(kFirstThread, &address, size, &token), result) << physical;
    EXPECT_NE(std::string(GetLastErrorMessage()), "");
    EXPECT_EQ(token, 0u);
  }
  EXPECT_EQ(Write(kRom, {1, 2, 3, 4}), kMemoryWriteFailed);
  EXPECT_EQ(Read(kRom, 4), romBefore);
  ASSERT_EQ(Write(0xFFFFFC, {9, 9, 9, 9}), 0);
  EXPECT_EQ(Write(0xFFFFFC, {1, 2, 3, 4, 5, 6, 7, 8}), kMemoryNotAccessible);
  EXPECT_EQ(Read(0xFFFFFC, 4), (std::vector<uint8_t>{9, 9, 9, 9}));
}

TEST_F(MemoryTest, IoPortsReachTheirDevices) {
  uint64_t token = 0;
  ASSERT_EQ(memory->WriteIO(kFirstThread, 0x80, 1, 0x5A, &token), 0) << GetLastErrorMessage();
  receipts->Destroy(token);
  EXPECT_EQ(memory->WriteIO(kFirstThread, 0x80, 1, 0x1FF, &token), static_cast<VXT_Result>(0x80000002));
  EXPECT_EQ(memory->ReadIO(kFirstThread, 0x10000, 1, &token), static_cast<VXT_Result>(0x80000002));
  ASSERT_EQ(memory->ReadIO(kFirstThread, 0x3F8 + 5, 1, &token), 0) << GetLastErrorMessage();  // Line status
  uint8_t lineStatus = 0;
  EXPECT_EQ(receipts->GetValueAsUInt8(token, &lineStatus), 0);
  EXPECT_NE(lineStatus & 0x20, 0) << "the UART's transmitter is ready";
  receipts->Destroy(token);
}

TEST_F(MemoryTest, AddressesRoundTripThroughTheirText) {
  const struct {
    VXT_Address address;
    const char* text;
  } addresses[] = {
      {Physical(0x1000), "phys:0x1000"},
      {{VXT_ADDRESS_SIZE, 0, 0, 0xFFFFFFFFFFFFFFFF, VXT_AddressType_Linear}, "lin:0xffffffffffffffff"},
      {{VXT_ADDRESS_SIZE, 0, 0, 0, VXT_AddressType_GuestPhysical}, "gphys:0x0"},
      {{VXT_ADDRESS_SIZE, 0, 0, 0x10, VXT_AddressType_OneFieldStackLogical}, "ss:0x10"},
      {{VXT_ADDRESS_SIZE, 0, 0x10, 0x1000, VXT_AddressType_TwoFieldLogical}, "0x0010:0x1000"},
      {{VXT_ADDRESS_SIZE, 0x28, 0xFFFF, 0x2, VXT_AddressType_ThreeFieldLogical}, "0x0028:0xffff:0x2"},
  };
  for (const auto& [address, text] : addresses) {
    char buffer[VXT_ADDRESS_TEXT_SIZE] = {};
    ASSERT_EQ(memory->AddressToString(&address, buffer), 0) << GetLastErrorMessage();
    EXPECT_STREQ(buffer, text);
    VXT_Address back{VXT_ADDRESS_SIZE, 1, 1, 1, VXT_AddressType_Linear};
    ASSERT_EQ(memory->AddressFromString(buffer, &back), 0) << GetLastErrorMessage();
    EXPECT_EQ(back.addressType, address.addressType) << text;
    EXPECT_EQ(back.ldtsel, address.ldtsel) << text;
    EXPECT_EQ(back.segsel, address.segsel) << text;
    EXPECT_EQ(back.offset, address.offset) << text;
  }
  VXT_Address untouched = Physical(7);
  for (const char* text : {"", "phys:", "xyz:0x10", "0x10000:0x0", "1:2:3:4", "phys:0x1g"}) {
    EXPECT_EQ(memory->AddressFromString(text, &untouched), static_cast<VXT_Result>(0x80080002)) << text;
    EXPECT_EQ(untouched.offset, 7u);
  }
}

TEST_F(MemoryTest, ImagesSavedAreLoadedBackInBothFileTypes) {
  std::vector<uint8_t> image(300);
  for (size_t i = 0; i < image.size(); ++i) image[i] = static_cast<uint8_t>(i * 7);
  ASSERT_EQ(Write(kScratch, image), 0);
  const VXT_Address from = Physical(kScratch);
  const VXT_Address to = Physical(kScratch + image.size() - 1);
  for (const char* type : {"bin", "hex"}) {
    const std::string file = TempFile(type);
    uint64_t token = 0;
    ASSERT_EQ(memory->SaveMemory(kFirstThread, file.c_str(), &from, &to, 0, type, "", &token), 0)
        << GetLastErrorMessage();
    EXPECT_EQ(Number(token), image.size());
    EXPECT_EQ(memory->SaveMemory(kFirstThread, file.c_str(), &from, &to, 0, type, "", &token), kAccessDenied);
    EXPECT_EQ(memory->SaveMemory(kFirstThread, file.c_str(), &from, &to, 1, type, "", &token), 0);
    receipts->Destroy(token);

    const VXT_Address elsewhere = Physical(kScratch + 0x1000);
    ASSERT_EQ(memory->LoadMemory(kFirstThread, file.c_str(), &elsewhere, nullptr, type, "", &token), 0)
        << GetLastErrorMessage();
    EXPECT_EQ(Number(token), image.size());
    EXPECT_EQ(Read(kScratch + 0x1000, static_cast<int32_t>(image.size())), image) << type;
    const VXT_Address tooNear = Physical(kScratch + 0x1000 + 10);
    EXPECT_EQ(memory->LoadMemory(kFirstThread, file.c_str(), &elsewhere, &tooNear, type, "", &token),
              kMemoryLengthInvalid);
  }
  const std::string broken = TempFile("broken.hex");
  std::ofstream(broken) << ":0400000001020304F0\n";  // Wrong checksum, no end record
  uint64_t token = 0;
  EXPECT_EQ(memory->LoadMemory(kFirstThread, broken.c_str(), &from, nullptr, "hex", "", &token),
            static_cast<VXT_Result>(0x80000002));
  EXPECT_EQ(std::string(GetLastErrorMessage()), "Intel HEX line 1: wrong checksum");
  EXPECT_EQ(Read(kScratch, static_cast<int32_t>(image.size())), image);
}

}  // namespace
