// A client on the emulated target with the RunControl, Breakpoint and Event
// services, and a subscriber that writes down every "RunControl" event.
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "CpuServiceTestSupport.h"
#include "EventTestSupport.h"

namespace vxt::test {

// Every "RunControl" event, described as it arrives on any thread.
struct Stops {
  std::mutex mutex;
  std::condition_variable arrived;
  std::vector<std::string> seen;

  static void Receive(const VXT_RunControlEvent* event, void* userData) {
    auto* self = static_cast<Stops*>(userData);
    const std::lock_guard lock(self->mutex);
    self->seen.push_back(Describe(*event));
    self->arrived.notify_all();
  }
  // Event number `index`, waited for up to 5 s.
  std::string Wait(size_t index) {
    std::unique_lock lock(mutex);
    arrived.wait_for(lock, std::chrono::seconds(5), [&] { return seen.size() > index; });
    return seen.size() > index ? seen[index] : "none";
  }
  std::string First() { return Wait(0); }
};

class RunControlTest : public CpuServiceTest {
 protected:
  void SetUp() override {
    CpuServiceTest::SetUp();
    runControl = Service<IInternalService_RunControl>(VXT_Service_RunControl);
    events = Service<IInternalService_Event>(VXT_Service_Event);
    breakpoints = Service<IInternalService_Breakpoint>(VXT_Service_Breakpoint);
    management = Service<IInternalService_BreakpointManagement>(VXT_Service_BreakpointManagement);
    WaitUntilLooping(0);
    WaitUntilLooping(1);
    ClearTrace();
  }

  // The firmware boots for a while before its loop; a test that halts a
  // thread to find the loop waits until that thread has counted an
  // iteration of it (its count is at 0x1100 + 8 * APIC id).
  void WaitUntilLooping(uint32_t apicId) {
    const VXT_Address count = Physical(0x1100 + 8 * apicId);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for (;;) {
      uint64_t token = 0;
      ASSERT_EQ(memory->ReadMemory(kFirstThread, &count, 8, &token), 0) << GetLastErrorMessage();
      const std::vector<uint8_t> bytes = Bytes(token);
      if (std::any_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte != 0; })) return;
      ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "thread " << apicId << " never reached its loop";
      std::this_thread::yield();
    }
  }

  uint64_t Rip(uint32_t thread) {
    uint64_t token = 0;
    EXPECT_EQ(registers->ReadRegister(thread, "rip", &token), 0) << GetLastErrorMessage();
    return Number(token);
  }
  // Runs one run-changing call, which must succeed with an ended token.
  void Done(VXT_Result result, const uint64_t& token) {
    ASSERT_EQ(result, 0) << GetLastErrorMessage();
    OperationStatus status{};
    EXPECT_EQ(receipts->GetOperationStatus(token, &status), 0);
    EXPECT_EQ(status, VXT_OperationStatus_Completed);
    receipts->Destroy(token);
  }
  VXT_RunStatus Status(uint32_t device) {
    VXT_RunStatus status = VXT_RunStatus_NotSupported;
    EXPECT_EQ(runControl->GetRunStatus(device, &status), 0) << GetLastErrorMessage();
    return status;
  }
  std::string BreakType(uint32_t thread) {
    char text[VXT_BREAK_TYPE_TEXT_SIZE] = {};
    EXPECT_EQ(runControl->GetBreakType(thread, text), 0) << GetLastErrorMessage();
    return text;
  }

  IInternalService_RunControl* runControl = nullptr;
  IInternalService_Event* events = nullptr;
  IInternalService_Breakpoint* breakpoints = nullptr;
  IInternalService_BreakpointManagement* management = nullptr;
};

}  // namespace vxt::test
