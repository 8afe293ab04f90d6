// Two threads halt, resume and set and remove breakpoints at once while a
// subscriber, called on the CPUs' own thread, removes every breakpoint that
// hits and lets the thread go on: nothing deadlocks, and nothing is left.
#include <chrono>
#include <atomic>
#include <thread>
#include <vector>

#include "../Library/RunControlTestSupport.h"

namespace {

using vxt::test::kFirstThread;
using vxt::test::kSecondThread;
using vxt::test::kTargetDomain;

constexpr int kRounds = 40;

std::atomic<int> hits{0};

IInternalService_Breakpoint& Breakpoints() {
  void* service = nullptr;
  GetService(nullptr, VXT_Service_Breakpoint, &service);
  return *static_cast<IInternalService_Breakpoint*>(service);
}
IInternalService_RunControl& RunControl() {
  void* service = nullptr;
  GetService(nullptr, VXT_Service_RunControl, &service);
  return *static_cast<IInternalService_RunControl*>(service);
}

void RemoveAndGo(const VXT_RunControlEvent* event, void*) {
  if (event->eventType != VXT_RunControlEvent_Breakpoint) return;
  ++hits;
  Breakpoints().RemoveBreakpointById(event->breakpointId);
  uint64_t token = 0;
  if (RunControl().Go(event->deviceId, &token) == VXT_SUCCESS) {
    void* service = nullptr;
    GetService(nullptr, VXT_Service_OperationReceipt, &service);
    static_cast<IInternalService_OperationReceipt*>(service)->Destroy(token);
  }
}

class RunControlConcurrencyTest : public vxt::test::RunControlTest {};

TEST_F(RunControlConcurrencyTest, SubscribersRemoveBreakpointsWhileClientsHaltAndSetThem) {
  uint64_t token = 0;
  Done(runControl->Halt(kFirstThread, &token), token);
  const uint64_t loop = Rip(kFirstThread);
  Done(runControl->Go(kFirstThread, &token), token);
  ASSERT_EQ(events->SubscribeRunControlEvents(&RemoveAndGo, nullptr), 0);
  const auto AtLoop = [&] {
    VXT_Breakpoint record{};
    record.structureSize = VXT_BREAKPOINT_SIZE;
    record.threadDeviceId = kFirstThread;
    record.breakpointType = VXT_BreakpointType_HW_Exec;
    record.breakpointAddress = loop;
    record.enabled = 1;
    return record;
  };

  const auto work = [&](uint32_t haltedThread) {
    for (int round = 0; round < kRounds; ++round) {
      VXT_Breakpoint record = AtLoop();
      EXPECT_EQ(breakpoints->CreateBreakpoint(&record), 0) << GetLastErrorMessage();
      uint64_t own = 0;
      if (runControl->Halt(haltedThread, &own) == VXT_SUCCESS) receipts->Destroy(own);
      if (runControl->Go(haltedThread, &own) == VXT_SUCCESS) receipts->Destroy(own);
      breakpoints->RemoveBreakpointById(record.breakpointId);  // The subscriber may have been first
    }
  };
  std::vector<std::thread> clients;
  clients.emplace_back(work, kFirstThread);
  clients.emplace_back(work, kSecondThread);
  for (auto& client : clients) client.join();
  // A slow run may remove every round's breakpoint before the thread reaches
  // it; one left in place is reached, and the subscriber removes it. (Hits of
  // earlier rounds may still be arriving, so the count of hits cannot tell.)
  VXT_Breakpoint last = AtLoop();
  ASSERT_EQ(breakpoints->CreateBreakpoint(&last), 0) << GetLastErrorMessage();
  uint32_t left = 1;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (left != 0 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ASSERT_EQ(management->GetNumBreakpoints(kTargetDomain, &left), 0);
  }
  events->UnsubscribeRunControlEvents(&RemoveAndGo);
  EXPECT_EQ(left, 0u);
  Done(runControl->GoAll(&token), token);
  EXPECT_EQ(Status(kTargetDomain), VXT_RunStatus_Running);
  EXPECT_GT(hits.load(), 0);
}

}  // namespace
