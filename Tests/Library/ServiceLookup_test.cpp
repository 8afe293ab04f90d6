// Service lookup by id and the calling thread's last error.
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "InProc_Vxt.h"
#include "VxtTestSupport.h"

namespace {

using Strings = std::vector<std::string>;

constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);
constexpr VXT_Result kNoService = static_cast<VXT_Result>(0x80070000);

class ServiceLookupTest : public vxt::test::PlatformTest {
 protected:
  // Leaves a failure's text as the calling thread's last error.
  static void FailOnce() {
    ASSERT_EQ(SetClientInfo(nullptr, nullptr), kInvalidArgument);
    ASSERT_STREQ(GetLastErrorMessage(), "VXT_SetClienInfo was passed a null pointer");
  }
};

// An id without a service gives null; a null out argument is refused before
// the lookup. Neither leaves a last error.
TEST_F(ServiceLookupTest, FailedLookupsTraceWhyAndEmptyTheLastError) {
  for (const uint32_t id : {0u, 3u, 5u, 15u, 21u, 32u, 0xFFFFFFFFu, uint32_t{VXT_Service_General}}) {
    const std::string in = "In  InProc GetService(serviceId = " + std::to_string(id) + ") [ClientID: 0]";
    if (id != VXT_Service_General) {
      FailOnce();
      ClearTrace();
      int sentinel = 0;
      void* service = &sentinel;
      EXPECT_EQ(GetService(nullptr, id, &service), kNoService) << id;
      EXPECT_EQ(service, nullptr) << id;
      EXPECT_EQ(Trace(), (Strings{in, "Out InProc GetService() Unable to find service",
                                  "Out InProc GetService(service = True) ErrorCode = 0x80070000 [ClientID: 0]"}));
      EXPECT_STREQ(GetLastErrorMessage(), "") << id;
    }
    FailOnce();
    ClearTrace();
    EXPECT_EQ(GetService(nullptr, id, nullptr), kInvalidArgument) << id;
    EXPECT_EQ(Trace(), (Strings{in, "Out InProc GetService(service = False) ErrorCode = 0x80000001 [ClientID: 0]"}));
    EXPECT_STREQ(GetLastErrorMessage(), "") << id;
  }
}

TEST_F(ServiceLookupTest, AServiceIsOneObjectWhateverAsksAndNeedsNoClient) {
  for (const VXT_ServiceId id : {VXT_Service_BitData, VXT_Service_Device, VXT_Service_Event, VXT_Service_General,
                                 VXT_Service_OperationReceipt, VXT_Service_BitDataOperations}) {
    void* first = nullptr;
    void* second = nullptr;
    ClearTrace();
    EXPECT_EQ(GetService(nullptr, id, &first), 0) << id;
    EXPECT_NE(first, nullptr) << id;
    EXPECT_EQ(Trace().back(), "Out InProc GetService(service = True) ErrorCode = 0x00000000 [ClientID: 0]");
    std::thread([&] { EXPECT_EQ(GetService(nullptr, id, &second), 0) << id; }).join();
    EXPECT_EQ(first, second) << id;
  }
}

TEST_F(ServiceLookupTest, LastErrorBelongsToItsThread) {
  FailOnce();
  std::string seenElsewhere = "unread";
  std::thread([&] { seenElsewhere = GetLastErrorMessage(); }).join();
  EXPECT_EQ(seenElsewhere, "");
  ClearTrace();
  EXPECT_STREQ(GetLastErrorMessage(), "VXT_SetClienInfo was passed a null pointer");
  EXPECT_EQ(Trace(), (Strings{
                         "In  InProc GetLastErrorMessage() [ClientID: 0]",
                         "Out InProc GetLastErrorMessage(msg = 'VXT_SetClienInfo was passed a null pointer') "
                         "[ClientID: 0]",
                     }));
}

}  // namespace
