// Shared memory regions of the General service.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <boost/interprocess/mapped_region.hpp>
#include <boost/interprocess/shared_memory_object.hpp>

#include "InProc_Vxt.h"
#include "PlatformTestControl.h"
#include "VxtTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::MakeClient;
constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);
constexpr VXT_Result kNotSupported = static_cast<VXT_Result>(0x80000003);
constexpr VXT_Result kInvalidHandle = static_cast<VXT_Result>(0x80000011);

class SharedMemoryTest : public vxt::test::PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ASSERT_EQ(StartNewInstance(&client, 1, 0, nullptr), 0);
    ASSERT_EQ(FinishInitialization(), 0);
    void* service = nullptr;
    ASSERT_EQ(GetService(nullptr, VXT_Service_General, &service), 0);
    general = static_cast<IInternalService_General*>(service);
  }
  void TearDown() override {
    if (IsConnected() != 0) Disconnect(client.clientId);
    PlatformTest::TearDown();
  }

  std::string IdentifierOf(uint64_t handle) {
    char identifier[VXT_SHARED_MEMORY_IDENTIFIER_SIZE] = "";
    EXPECT_EQ(general->GetSharedMemoryIdentifier(handle, identifier), 0);
    return identifier;
  }
  static bool RegionExists(const std::string& identifier) { return std::filesystem::exists("/dev/shm/" + identifier); }

  VXT_Client client = MakeClient(3, "tool_3@here");
  IInternalService_General* general = nullptr;
};

// A failed creation takes no handle and leaves no object behind.
TEST_F(SharedMemoryTest, HandlesCountFromOneAndAreNotReused) {
  uint64_t handle = 99;
  EXPECT_EQ(general->AllocateSharedMemory(0, &handle), static_cast<VXT_Result>(0x8000000f));
  EXPECT_EQ(handle, 0u);
  const std::string message = GetLastErrorMessage();
  EXPECT_EQ(message.rfind("Failed to create a shared memory region with the following identifier: '", 0), 0u)
      << message;
  EXPECT_FALSE(RegionExists(message.substr(message.find('\'') + 1, 63)));

  ASSERT_EQ(general->AllocateSharedMemory(64, &handle), 0);
  EXPECT_EQ(handle, 1u);
  ASSERT_EQ(general->AllocateSharedMemory(64, &handle), 0);
  EXPECT_EQ(handle, 2u);
  ASSERT_EQ(general->FreeSharedMemory(2), 0);
  ASSERT_EQ(general->AllocateSharedMemory(64, &handle), 0);
  EXPECT_EQ(handle, 3u);

  EXPECT_EQ(general->FreeSharedMemory(2), kInvalidHandle);
  EXPECT_STREQ(GetLastErrorMessage(),
               "InProc_General::FreeSharedMemory() Unknown shared memory region handle: 0x0000000000000002");
}

// Each refusal, with its whole trace: In line, error line, the last error,
// Out line. An identifier buffer that a failed call leaves unterminated is
// shown within its 64 characters.
TEST_F(SharedMemoryTest, RefusalsGiveTheirMessagesAndTraceLines) {
  const auto identifier = std::make_unique<char[]>(VXT_SHARED_MEMORY_IDENTIFIER_SIZE);
  std::fill_n(identifier.get(), VXT_SHARED_MEMORY_IDENTIFIER_SIZE, 'x');
  const std::string shown = "'" + std::string(VXT_SHARED_MEMORY_IDENTIFIER_SIZE, 'x') + "'";
  struct Case {
    std::function<VXT_Result()> call;
    VXT_Result result;
    std::string inLine;
    std::string message;
    std::string outLine;
  };
  const Case cases[] = {
      {[&] { return general->GetSharedMemoryAddress(0, nullptr); }, kInvalidArgument,
       "In  InProc_General::GetSharedMemoryAddress(handle = 0x0000000000000000) [ClientID: 3]",
       "InProc_General::GetSharedMemoryAddress() argument error (address) : Null pointer",
       "Out InProc_General::GetSharedMemoryAddress(address = <NULL>) ErrorCode = 0x80000001 [ClientID: 3]"},
      {[&] { return general->GetSharedMemoryIdentifier(7, identifier.get()); }, kInvalidHandle,
       "In  InProc_General::GetSharedMemoryIdentifier(handle = 0x0000000000000007) [ClientID: 3]",
       "InProc_General::GetSharedMemoryIdentifier() Unknown shared memory region handle: 0x0000000000000007",
       "Out InProc_General::GetSharedMemoryIdentifier(identifier = " + shown +
           ") ErrorCode = 0x80000011 [ClientID: 3]"},
      {[&] { return general->FreeSharedMemory(0); }, kInvalidHandle,
       "In  InProc_General::FreeSharedMemory(handle = 0x0000000000000000) [ClientID: 3]",
       "InProc_General::FreeSharedMemory() argument error (handle) : Invalid handle",
       "Out InProc_General::FreeSharedMemory() ErrorCode = 0x80000011 [ClientID: 3]"},
      {[&] { return general->AllocateSharedMemory(16, nullptr); }, kInvalidArgument,
       "In  InProc_General::AllocateSharedMemory(memorySize = 16) [ClientID: 3]",
       "InProc_General::AllocateSharedMemory() argument error (handle) : Null pointer",
       "Out InProc_General::AllocateSharedMemory(handle = <NULL>) ErrorCode = 0x80000001 [ClientID: 3]"},
  };
  for (const Case& refused : cases) {
    ClearTrace();
    EXPECT_EQ(refused.call(), refused.result) << refused.message;
    EXPECT_EQ(GetLastErrorMessage(), refused.message);
    EXPECT_EQ(Trace(), (std::vector<std::string>{
                           refused.inLine,
                           "VXT Error = '" + refused.message + "' [ClientID: 3]",
                           "In  InProc ReportErrorMessage(<NULL>'" + refused.message + "')",
                           "Out InProc ReportErrorMessage()",
                           refused.outLine,
                           "In  InProc GetLastErrorMessage() [ClientID: 3]",
                           "Out InProc GetLastErrorMessage(msg = '" + refused.message + "') [ClientID: 3]",
                       }));
  }
}

// Identifiers are 63 letters and digits; the region is its owner's only.
TEST_F(SharedMemoryTest, AllocationIsTracedWithItsIdentifierAndHandle) {
  ClearTrace();
  uint64_t handle = 0;
  ASSERT_EQ(general->AllocateSharedMemory(32, &handle), 0);
  const std::string identifier = IdentifierOf(handle);
  ASSERT_EQ(identifier.size(), 63u);
  for (const char letter : identifier) EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(letter))) << identifier;
  EXPECT_EQ(std::filesystem::status("/dev/shm/" + identifier).permissions() & std::filesystem::perms::all,
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "In  InProc_General::AllocateSharedMemory(memorySize = 32) [ClientID: 3]",
                         "Allocated a new shared memory region with identifier = '" + identifier +
                             "' and handle = 0x0000000000000001 [ClientID: 3]",
                         "Out InProc_General::AllocateSharedMemory(handle = 0x0000000000000001) ErrorCode = "
                         "0x00000000 [ClientID: 3]",
                         "In  InProc_General::GetSharedMemoryIdentifier(handle = 0x0000000000000001) [ClientID: 3]",
                         "Out InProc_General::GetSharedMemoryIdentifier(identifier = '" + identifier +
                             "') ErrorCode = 0x00000000 [ClientID: 3]",
                     }));
}

TEST_F(SharedMemoryTest, AnotherProcessSeesWhatThisOneWrote) {
  uint64_t handle = 0;
  ASSERT_EQ(general->AllocateSharedMemory(4096, &handle), 0);
  void* address = nullptr;
  ASSERT_EQ(general->GetSharedMemoryAddress(handle, &address), 0);
  std::strcpy(static_cast<char*>(address), "written by the library's process");
  const std::string identifier = IdentifierOf(handle);

  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    namespace bip = boost::interprocess;
    bip::shared_memory_object object(bip::open_only, identifier.c_str(), bip::read_write);
    bip::mapped_region view(object, bip::read_write);
    const bool same =
        std::strcmp(static_cast<const char*>(view.get_address()), "written by the library's process") == 0;
    std::strcpy(static_cast<char*>(view.get_address()), "answered by the child");
    _exit(same ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_STREQ(static_cast<const char*>(address), "answered by the child");
}

TEST_F(SharedMemoryTest, NoRegionOutlivesItsFreeItsClientOrTheLastClient) {
  uint64_t freed = 0, kept = 0;
  ASSERT_EQ(general->AllocateSharedMemory(64, &freed), 0);
  ASSERT_EQ(general->AllocateSharedMemory(64, &kept), 0);
  const std::string freedName = IdentifierOf(freed);
  const std::string keptName = IdentifierOf(kept);
  ASSERT_EQ(general->FreeSharedMemory(freed), 0);
  EXPECT_FALSE(RegionExists(freedName));
  EXPECT_TRUE(RegionExists(keptName));

  // Another client reaches none of this client's regions, and its departure
  // leaves them alone; its own regions go with it.
  std::string othersName;
  std::thread other([&] {
    VXT_Client second = MakeClient(9, "other_9@there");
    ASSERT_EQ(StartNewInstance(&second, 1, 0, nullptr), 0);
    uint64_t handle = 0;
    ASSERT_EQ(general->AllocateSharedMemory(64, &handle), 0);
    EXPECT_EQ(handle, 1u);  // Per client
    othersName = IdentifierOf(handle);
    void* address = nullptr;
    EXPECT_EQ(general->GetSharedMemoryAddress(kept, &address), kInvalidHandle);
    EXPECT_EQ(address, nullptr);
    ASSERT_EQ(Disconnect(9), 0);
  });
  other.join();
  EXPECT_FALSE(RegionExists(othersName));
  EXPECT_TRUE(RegionExists(keptName));

  ASSERT_EQ(Disconnect(client.clientId), 0);
  EXPECT_FALSE(RegionExists(keptName));
}

// Only a client known to run on this machine gets a region.
TEST_F(SharedMemoryTest, ARemoteClientOrOneOfUnknownLocalityGetsNoRegion) {
  std::thread remote([&] {
    VXT_Client far = MakeClient(9, "far_9@elsewhere");
    ASSERT_EQ(StartNewInstance(&far, 0, 0, nullptr), 0);
    uint64_t handle = 0;
    EXPECT_EQ(general->AllocateSharedMemory(64, &handle), kNotSupported);
    EXPECT_STREQ(GetLastErrorMessage(),
                 "AllocateSharedMemory(): The client and the server are not running on the same machine. Allocating "
                 "shared memory makes no sense in such cases");
    Disconnect(9);
  });
  remote.join();

  tc::FailWith("Common.IsClientLocal", 0x20002);
  uint64_t handle = 0;
  EXPECT_EQ(general->AllocateSharedMemory(64, &handle), kNotSupported);
  EXPECT_STREQ(GetLastErrorMessage(), "AllocateSharedMemory(): Failed to determine whether the client is local or not");
  EXPECT_EQ(handle, 0u);
}

}  // namespace
