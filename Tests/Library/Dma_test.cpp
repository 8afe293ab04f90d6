// The Dma service on the default target: its trace lines whole, its checks
// in order, the methods of devices, transfers through buffers, regions and
// files, and the error a failed transfer leaves on its method.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <unistd.h>

#include <boost/interprocess/mapped_region.hpp>
#include <boost/interprocess/shared_memory_object.hpp>

#include "CpuServiceTestSupport.h"

namespace vxt::test {
namespace {

constexpr uint32_t kDebugPort = 0x0c000000;
constexpr uint64_t kScratch = 0x200000;  // RAM the firmware leaves alone
constexpr uint64_t kHole = 0x2000000;    // Past the 16 MiB of RAM
constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);
constexpr VXT_Result kOutOfRange = static_cast<VXT_Result>(0x80000002);
constexpr VXT_Result kNotSupported = static_cast<VXT_Result>(0x80000003);
constexpr VXT_Result kOperationFailed = static_cast<VXT_Result>(0x80000005);
constexpr VXT_Result kStructureSize = static_cast<VXT_Result>(0x80000010);
constexpr VXT_Result kNotAccessible = static_cast<VXT_Result>(0x80080007);

class DmaTest : public CpuServiceTest {
 protected:
  void SetUp() override {
    CpuServiceTest::SetUp();
    dma = Service<IInternalService_Dma>(VXT_Service_Dma);
    general = Service<IInternalService_General>(VXT_Service_General);
    ClearTrace();
  }
  void TearDown() override {
    std::filesystem::remove(file);
    CpuServiceTest::TearDown();
  }

  std::vector<uint8_t> Read(uint64_t at, uint32_t count) {
    const VXT_Address address = Physical(at);
    std::vector<uint8_t> bytes(count);
    uint32_t read = 0;
    EXPECT_EQ(dma->ReadMemory(kFirstThread, "SystemBus", &address, count, bytes.data(), &read), VXT_SUCCESS);
    EXPECT_EQ(read, count);
    return bytes;
  }
  uint64_t Region(uint32_t size, uint8_t*& view) {
    uint64_t handle = 0;
    EXPECT_EQ(general->AllocateSharedMemory(size, &handle), VXT_SUCCESS);
    void* address = nullptr;
    EXPECT_EQ(general->GetSharedMemoryAddress(handle, &address), VXT_SUCCESS);
    view = static_cast<uint8_t*>(address);
    return handle;
  }

  IInternalService_Dma* dma = nullptr;
  IInternalService_General* general = nullptr;
  // Of this process alone: the suite's tests run as processes side by side.
  const std::string file =
      (std::filesystem::temp_directory_path() / ("vxt_dma_test_" + std::to_string(::getpid()) + ".img")).string();
};

TEST_F(DmaTest, TraceLinesSeparateArgumentsWithCommasAndTheTransfersCount) {
  const VXT_Address address = Physical(kScratch);
  uint8_t buffer[16] = {};
  uint32_t count = 7;
  char methods[1][VXT_CONFIG_ACCESS_METHOD_SIZE] = {};
  const std::string ok = " ErrorCode = 0x00000000 [ClientID: 3]";
  const std::string at = "address = {ldtsel = 0x0000 segsel = 0x0000 offset = 0x0000000000200000 addressType = Physical}";
  struct Case {
    std::function<void()> call;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {[&] { dma->ReadMemory(kFirstThread, "SystemBus", &address, 16, buffer, &count); },
       {"In  InProc_Dma::ReadMemory(deviceId = 0x03000000, configMethod = 'SystemBus' " + at +
            ", byteCount = 16) [ClientID: 3]",
        "Out InProc_Dma::ReadMemory(numBytesRead = 16)" + ok}},
      {[&] { dma->ReadToSharedMemory(kFirstThread, "DebugPort", &address, 0, 8, 0x1234, &count); },
       {"In  InProc_Dma::ReadToSharedMemory(deviceId = 0x03000000, configMethod = 'DebugPort' " + at +
            ", byteCount = 0, bufferOffset = 8, sharedMemoryHandle = 0x00001234) [ClientID: 3]",
        "In  InProc_General::GetSharedMemoryAddress(handle = 0x0000000000001234) [ClientID: 3]",
        "VXT Error = 'InProc_General::GetSharedMemoryAddress() Unknown shared memory region handle: "
        "0x0000000000001234' [ClientID: 3]",
        "In  InProc ReportErrorMessage(<NULL>'InProc_General::GetSharedMemoryAddress() Unknown shared memory region "
        "handle: 0x0000000000001234')",
        "Out InProc ReportErrorMessage()",
        "Out InProc_General::GetSharedMemoryAddress(address = 0x0000000000000000) ErrorCode = 0x80000011 "
        "[ClientID: 3]",
        "Out InProc_Dma::ReadToSharedMemory(numBytesRead = 16) ErrorCode = 0x80000011 [ClientID: 3]"}},
      {[&] { dma->SaveMemory(kFirstThread, "SystemBus", &address, 0, "f.bin", 1, "bin", nullptr, &count); },
       {"In  InProc_Dma::SaveMemory(deviceId = 0x03000000, configMethod = 'SystemBus' " + at +
            ", byteCount = 0, fileName = 'f.bin', overwriteFile = True, fileType = 'bin', saveOptions = <NULL>) "
            "[ClientID: 3]",
        "Out InProc_Dma::SaveMemory(numBytesRead = 0)" + ok}},
      {[&] { dma->ClearError(kFirstThread, "SystemBus", 2); },
       {"In  InProc_Dma::ClearError(deviceId = 0x03000000, configMethod = 'SystemBus', force = True) [ClientID: 3]",
        "Out InProc_Dma::ClearError()" + ok}},
      {[&] { dma->GetSupportedConfigurationAccessMethods(kFirstThread, 0, methods); },
       {"In  InProc_Dma::GetSupportedConfigurationAccessMethods(deviceId = 0x03000000, maxNumMethods = 0) "
        "[ClientID: 3]",
        "Out InProc_Dma::GetSupportedConfigurationAccessMethods(configAccessMethods = <EMPTY>)" + ok}},
      {[&] { dma->GetDefaultConfigurationAccessMethod(kFirstThread, methods[0]); },
       {"In  InProc_Dma::GetDefaultConfigurationAccessMethod(deviceId = 0x03000000) [ClientID: 3]",
        "Out InProc_Dma::GetDefaultConfigurationAccessMethod(configMethod = 'SystemBus')" + ok}},
  };
  for (const Case& c : cases) {
    ClearTrace();
    c.call();
    EXPECT_EQ(Trace(), c.lines);
  }
  std::filesystem::remove("f.bin");
  for (const char* method : {"Dma::ReadMemory", "Dma::ReadToSharedMemory", "Dma::SaveMemory", "Dma::ClearError"})
    EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", method), 1u) << method;
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method",
                                               "Dma::GetDefaultConfigurationAccessMethod"),
            0u);
}

TEST_F(DmaTest, ChecksAndRefusalsTellTheFirstFault) {
  const VXT_Address address = Physical(kScratch);
  VXT_Address unsized = address;
  unsized.structureSize = 0;
  VXT_Address linear = address;
  linear.addressType = VXT_AddressType_Linear;
  uint8_t buffer[8] = {};
  std::vector<uint8_t> large(8192);
  uint32_t count = 0;
  ExpectRefusals({
      {[&] { return dma->ReadMemory(kFirstThread, nullptr, nullptr, 8, buffer, &count); }, kInvalidArgument,
       "InProc_Dma::ReadMemory() argument error (configMethod) : Null pointer"},
      {[&] { return dma->WriteMemory(kFirstThread, "SystemBus", &address, 8, nullptr, &count); }, kInvalidArgument,
       "InProc_Dma::WriteMemory() argument error (buffer) : Null pointer"},
      {[&] { return dma->ReadMemory(kFirstThread, "SystemBus", &unsized, 8, buffer, &count); }, kStructureSize,
       "InProc_Dma::ReadMemory() argument error (address) : Structure size not initialized"},
      {[&] { return dma->SaveMemory(kFirstThread, "SystemBus", &address, 8, "x", 0, nullptr, nullptr, &count); },
       kInvalidArgument, "InProc_Dma::SaveMemory() argument error (fileType) : Null pointer"},
      {[&] { return dma->LoadMemory(kFirstThread, "SystemBus", &address, 8, "x", "bin", nullptr, nullptr); },
       kInvalidArgument, "InProc_Dma::LoadMemory() argument error (numBytesWritten) : Null pointer"},
      {[&] { return dma->ClearError(kFirstThread, nullptr, 0); }, kInvalidArgument,
       "InProc_Dma::ClearError() argument error (configMethod) : Null pointer"},
      {[&] { return dma->GetNumSupportedConfigurationAccessMethods(kFirstThread, nullptr); }, kInvalidArgument,
       "InProc_Dma::GetNumSupportedConfigurationAccessMethods() argument error "
       "(numSupportedConfigurationAccessMethods) : Null pointer"},
      {[&] { return dma->ReadMemory(kFirstThread, "Pci", &address, 8, buffer, &count); }, kNotSupported,
       "Dma.ReadMemory: device 0x03000000 (Thread0_0) has no method 'Pci' (it has SystemBus, DebugPort)"},
      {[&] { return dma->ReadMemory(kDebugPort, "SystemBus", &address, 8, buffer, &count); }, kNotSupported,
       "Dma.ReadMemory: device 0x0c000000 (DebugPort0) reaches no memory by DMA"},
      {[&] { return dma->ReadMemory(kFirstThread, "SystemBus", &linear, 8, buffer, &count); },
       static_cast<VXT_Result>(0x80080003), "Dma.ReadMemory: DMA reaches physical memory only; the address is not physical"},
      {[&] { return dma->WriteMemory(kFirstThread, "DebugPort", &address, 8192, large.data(), &count); },
       static_cast<VXT_Result>(0x80080004),
       "Dma.WriteMemory: 0x2000 bytes are more than DebugPort of 0x03000000 (Thread0_0) moves at once (0x1000)"},
  });
  EXPECT_EQ(count, 0u);
}

TEST_F(DmaTest, DevicesOfferTheirMethodsTheirOwnPathFirst) {
  struct Case {
    uint32_t deviceId;
    std::vector<std::string> methods;
  };
  const Case cases[] = {{kFirstThread, {"SystemBus", "DebugPort"}},
                        {kTargetDomain, {"SystemBus", "DebugPort"}},
                        {kDebugPort, {}}};
  for (const Case& c : cases) {
    uint32_t count = 99;
    ASSERT_EQ(dma->GetNumSupportedConfigurationAccessMethods(c.deviceId, &count), VXT_SUCCESS);
    ASSERT_EQ(count, c.methods.size());
    char names[3][VXT_CONFIG_ACCESS_METHOD_SIZE];
    std::memset(names, 'x', sizeof names);
    ASSERT_EQ(dma->GetSupportedConfigurationAccessMethods(c.deviceId, 3, names), VXT_SUCCESS);
    for (size_t i = 0; i < 3; ++i)
      EXPECT_EQ(std::string(names[i]), i < c.methods.size() ? c.methods[i] : "") << c.deviceId;
  }
  char name[VXT_CONFIG_ACCESS_METHOD_SIZE] = "";
  EXPECT_EQ(dma->GetDefaultConfigurationAccessMethod(kDebugPort, name), kNotSupported);
}

TEST_F(DmaTest, BytesTheMemoryServiceWroteReachTheClientThroughARegion) {
  const std::vector<uint8_t> written = {0xde, 0xad, 0xbe, 0xef, 0x01, 0x02, 0x03, 0x04};
  const VXT_Address address = Physical(kScratch);
  VXT_BitData vector = Vector(written);
  uint64_t token = 0;
  ASSERT_EQ(memory->WriteMemory(kFirstThread, &address, 8, &vector, &token), VXT_SUCCESS);
  ASSERT_EQ(receipts->Destroy(token), VXT_SUCCESS);

  uint8_t* view = nullptr;
  const uint64_t handle = Region(64, view);
  uint32_t read = 0;
  ASSERT_EQ(dma->ReadToSharedMemory(kFirstThread, "SystemBus", &address, 8, 16, handle, &read), VXT_SUCCESS);
  EXPECT_EQ(read, 8u);
  // The client opens its own view of the region by its name.
  char identifier[VXT_SHARED_MEMORY_IDENTIFIER_SIZE] = "";
  ASSERT_EQ(general->GetSharedMemoryIdentifier(handle, identifier), VXT_SUCCESS);
  namespace bip = boost::interprocess;
  bip::shared_memory_object object(bip::open_only, identifier, bip::read_write);
  bip::mapped_region own(object, bip::read_write);
  const uint8_t* bytes = static_cast<const uint8_t*>(own.get_address());
  EXPECT_EQ(std::vector<uint8_t>(bytes + 16, bytes + 24), written);
  EXPECT_EQ(bytes[15], 0);

  // And back: the client's bytes from the region into memory, read by the Memory service.
  std::memcpy(static_cast<uint8_t*>(own.get_address()) + 60, "\x11\x22\x33\x44", 4);
  uint32_t wrote = 0;
  ASSERT_EQ(dma->WriteFromSharedMemory(kFirstThread, "DebugPort", &address, 4, 60, handle, &wrote), VXT_SUCCESS);
  EXPECT_EQ(wrote, 4u);
  ASSERT_EQ(memory->ReadMemory(kFirstThread, &address, 4, &token), VXT_SUCCESS);
  EXPECT_EQ(Bytes(token), (std::vector<uint8_t>{0x11, 0x22, 0x33, 0x44}));

  // A transfer must lie inside the region.
  EXPECT_EQ(dma->ReadToSharedMemory(kFirstThread, "SystemBus", &address, 8, 57, handle, &read), kOutOfRange);
  EXPECT_STREQ(GetLastErrorMessage(),
               "InProc_Dma::ReadToSharedMemory() argument error (bufferOffset) : The transfer does not fit in the "
               "shared memory region");
  EXPECT_EQ(dma->WriteFromSharedMemory(kFirstThread, "SystemBus", &address, 1, 0xffffffff, handle, &wrote),
            kOutOfRange);
}

TEST_F(DmaTest, AFailedTransferLeavesItsErrorOnTheMethodUntilCleared) {
  const VXT_Address hole = Physical(kHole);
  const VXT_Address good = Physical(kScratch);
  uint8_t buffer[4] = {};
  uint32_t read = 5;
  ASSERT_EQ(dma->ReadMemory(kFirstThread, "SystemBus", &hole, 4, buffer, &read), kNotAccessible);
  EXPECT_EQ(read, 0u);
  EXPECT_STREQ(GetLastErrorMessage(),
               "Dma.ReadMemory: SystemBus of 0x03000000 (Thread0_0): reading 0x4 bytes at physical 0x2000000: the "
               "range is not mapped");
  // The error stays on the domain's SystemBus, whichever device names it; DebugPort is another way in.
  EXPECT_EQ(dma->ReadMemory(kTargetDomain, "SystemBus", &good, 4, buffer, &read), kOperationFailed);
  EXPECT_STREQ(GetLastErrorMessage(),
               "Dma.ReadMemory: SystemBus of 0x02000000 (TargetDomain0) holds the error of an earlier transfer "
               "(reading 0x4 bytes at physical 0x2000000: the range is not mapped); ClearError ends it");
  EXPECT_EQ(dma->ReadMemory(kFirstThread, "DebugPort", &good, 4, buffer, &read), VXT_SUCCESS);

  // Another client clears it only by force.
  VXT_Client other = MakeClient(4, "tool_4@here");
  ASSERT_EQ(StartNewInstance(&other, 1, 0, nullptr), VXT_SUCCESS);
  ASSERT_TRUE(voxtrel::testing::BindThreadToClient(4));
  EXPECT_EQ(dma->ClearError(kFirstThread, "SystemBus", 0), kNotSupported);
  EXPECT_STREQ(GetLastErrorMessage(),
               "Dma.ClearError: the error of SystemBus of 0x03000000 (Thread0_0) was left by client 3; only that "
               "client clears it, unless forced");
  EXPECT_EQ(dma->ClearError(kFirstThread, "SystemBus", 1), VXT_SUCCESS);
  EXPECT_EQ(dma->ReadMemory(kFirstThread, "SystemBus", &good, 4, buffer, &read), VXT_SUCCESS);
  EXPECT_EQ(dma->ClearError(kFirstThread, "SystemBus", 0), VXT_SUCCESS) << "nothing pending is no fault";
  ASSERT_TRUE(voxtrel::testing::BindThreadToClient(3));
  EXPECT_EQ(Disconnect(other.clientId), VXT_SUCCESS);
}

TEST_F(DmaTest, MemorySavedToAFileLoadsBackInEitherForm) {
  const std::vector<uint8_t> pattern = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  const VXT_Address from = Physical(kScratch);
  const VXT_Address to = Physical(kScratch + 0x100);
  uint32_t count = 0;
  ASSERT_EQ(dma->WriteMemory(kFirstThread, "SystemBus", &from, 10, pattern.data(), &count), VXT_SUCCESS);
  for (const char* type : {"bin", "HEX"}) {
    ASSERT_EQ(dma->SaveMemory(kFirstThread, "SystemBus", &from, 10, file.c_str(), 1, type, "", &count), VXT_SUCCESS);
    EXPECT_EQ(count, 10u);
    EXPECT_EQ(dma->SaveMemory(kFirstThread, "SystemBus", &from, 10, file.c_str(), 0, type, "", &count),
              static_cast<VXT_Result>(0x8000001b));
    ASSERT_EQ(dma->LoadMemory(kFirstThread, "SystemBus", &to, 16, file.c_str(), type, nullptr, &count), VXT_SUCCESS);
    EXPECT_EQ(count, 10u);
    EXPECT_EQ(Read(kScratch + 0x100, 10), pattern) << type;
  }
  EXPECT_EQ(dma->LoadMemory(kFirstThread, "SystemBus", &to, 9, file.c_str(), "hex", nullptr, &count),
            static_cast<VXT_Result>(0x80080004));
  EXPECT_EQ(dma->LoadMemory(kFirstThread, "SystemBus", &to, 16, file.c_str(), "elf", nullptr, &count), kNotSupported);
  EXPECT_EQ(count, 0u);
}

}  // namespace
}  // namespace vxt::test
