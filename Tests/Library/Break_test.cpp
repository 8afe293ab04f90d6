// The Break service on the emulated target: RunControl's break conditions
// that the CPUs really meet, "Reset" listed and routed to platform control
// on a target domain, and the system stall with its events.
#include "CallProgramTestSupport.h"

namespace vxt::test {
namespace {

using Names = char[5][VXT_BREAK_NAME_SIZE];

struct StallEvents {
  std::mutex mutex;
  std::vector<std::string> seen;
  static void Receive(const VXT_SystemStallEvent* event, void* userData) {
    auto* self = static_cast<StallEvents*>(userData);
    const std::lock_guard lock(self->mutex);
    self->seen.push_back(Line(event->eventType, " ", Text(event->stallName), " ", event->stallValue));
  }
};

class BreakTest : public CallProgramTest {
 protected:
  void SetUp() override {
    CallProgramTest::SetUp();
    service = Service<IInternalService_Break>(VXT_Service_Break);
  }
  // The thread runs from `at` until it stops on its own.
  std::string RunUntilStopped(uint64_t at) {
    Set("rip", at);
    uint64_t token = 0;
    Done(runControl->Go(kFirstThread, &token), token);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (Status(kFirstThread) != VXT_RunStatus_Halted && std::chrono::steady_clock::now() < deadline)
      std::this_thread::yield();
    return Status(kFirstThread) == VXT_RunStatus_Halted ? BreakType(kFirstThread) : "still running";
  }
  IInternalService_Break* service = nullptr;
};

TEST_F(BreakTest, ConditionsAndTheResetOfADomain) {
  uint32_t count = 0;
  Names names = {};
  ASSERT_EQ(service->GetNumBreakConditions(kFirstThread, &count), 0) << GetLastErrorMessage();
  EXPECT_EQ(count, 3u);
  // On a target domain platform control keeps "Reset": one more, in the
  // first unused entry.
  ASSERT_EQ(service->GetNumBreakConditions(kTargetDomain, &count), 0) << GetLastErrorMessage();
  EXPECT_EQ(count, 4u);
  ASSERT_EQ(service->GetBreakConditions(kTargetDomain, 5, names), 0) << GetLastErrorMessage();
  EXPECT_EQ((std::vector<std::string>{names[0], names[1], names[2], names[3], names[4]}),
            (std::vector<std::string>{"Hlt", "Init", "Shutdown", "Reset", ""}));
  // No entry left unused: "Reset" is not listed, and that is no failure.
  Names full = {};
  ASSERT_EQ(service->GetBreakConditions(kTargetDomain, 3, full), 0) << GetLastErrorMessage();
  EXPECT_EQ(std::string(full[2]), "Shutdown");
  EXPECT_EQ(std::string(full[3]), "");

  uint32_t value = 9;
  ASSERT_EQ(service->SetBreakCondition(kTargetDomain, "Reset", 2), 0) << GetLastErrorMessage();
  ASSERT_EQ(service->GetBreakCondition(kTargetDomain, "RESET", &value), 0) << GetLastErrorMessage();
  EXPECT_EQ(value, 2u);
  ASSERT_EQ(service->SetBreakCondition(kTargetDomain, "reset", 7), 0) << "any other value is passed as 0";
  ASSERT_EQ(service->GetBreakCondition(kTargetDomain, "Reset", &value), 0);
  EXPECT_EQ(value, 0u);
  // On a thread "Reset" is RunControl's, which has none.
  EXPECT_NE(service->GetBreakCondition(kFirstThread, "Reset", &value), 0);
  EXPECT_EQ(std::string(GetLastErrorMessage()),
            "'Reset' is no break condition of the emulated CPUs (Hlt, Init, Shutdown)");
}

TEST_F(BreakTest, TheCpuBreaksOnHltAndOnAShutdownTheBoardResets) {
  // At 0x40: hlt; at 0x44: ud2; at 0x48: xor ecx, ecx; div ecx (a fault that
  // no handler takes: the firmware has no interrupt table, so it ends as a
  // triple fault). Code fetched from the hole past the RAM cannot run.
  const std::vector<uint8_t> stops = {0xF4, 0x90, 0x90, 0x90, 0x0F, 0x0B, 0x90, 0x90, 0x31, 0xC9, 0xF7, 0xF1};
  constexpr uint64_t kHole = 0x5000000;
  VXT_BitData code = Vector(stops);
  const VXT_Address where = Physical(kCode + 0x40);
  uint64_t token = 0;
  ASSERT_EQ(memory->WriteMemory(kFirstThread, &where, static_cast<int32_t>(stops.size()), &code, &token), 0);
  receipts->Destroy(token);
  bitData->Destroy(&code);

  ASSERT_EQ(service->SetBreakCondition(kFirstThread, "Hlt", 1), 0) << GetLastErrorMessage();
  EXPECT_EQ(RunUntilStopped(kCode + 0x40), "Hlt");
  EXPECT_EQ(Read("rip"), kCode + 0x41) << "halted after the HLT";
  EXPECT_NE(runControl->Step(kFirstThread, VXT_StepType_Over, 1, &token), 0) << "it waits in its HLT";
  EXPECT_EQ(std::string(GetLastErrorMessage()),
            "the thread waits at 0x20041 and completes no instruction; only a step into can be made");
  ASSERT_EQ(service->SetBreakCondition(kFirstThread, "Hlt", 0), 0);

  struct Shutdown {
    const char* what;
    uint64_t from, stopsAt;
  };
  for (const Shutdown& c : {Shutdown{"fetch from a hole", kHole, kHole}, Shutdown{"ud2", kCode + 0x44, kCode + 0x44},
                            Shutdown{"unhandled fault", kCode + 0x48, kCode + 0x4A}}) {
    EXPECT_EQ(RunUntilStopped(c.from), "Shutdown") << c.what;
    EXPECT_EQ(Read("rip"), c.stopsAt) << c.what;
  }
  // The board resets on a shutdown; "Init" stops the thread at its reset state.
  ASSERT_EQ(service->SetBreakCondition(kFirstThread, "Shutdown", 0), 0);
  ASSERT_EQ(service->SetBreakCondition(kFirstThread, "Init", 1), 0);
  EXPECT_EQ(RunUntilStopped(kHole), "Reset");
  EXPECT_EQ(Read("rip"), 0xFFF0u);
  EXPECT_EQ(Status(kSecondThread), VXT_RunStatus_Running) << "a thread without Init goes on after the reset";
  uint64_t go = 0;
  Done(runControl->GoAll(&go), go);
}

TEST_F(BreakTest, AStallHaltsTheDomainUntilReleased) {
  StallEvents stalls;
  ASSERT_EQ(events->SubscribeSystemStallEvents(&StallEvents::Receive, &stalls), 0);
  uint32_t count = 0;
  Names names = {};
  ASSERT_EQ(service->GetNumSystemStalls(kTargetDomain, &count), 0) << GetLastErrorMessage();
  ASSERT_EQ(service->GetSystemStalls(kTargetDomain, count, names), 0);
  EXPECT_EQ(std::string(names[0]), "CpuStall");
  ASSERT_EQ(service->SetSystemStall(kTargetDomain, "CpuStall", 1), 0) << GetLastErrorMessage();
  EXPECT_EQ(Status(kTargetDomain), VXT_RunStatus_Halted);
  ASSERT_EQ(service->SetSystemStall(kTargetDomain, "CpuStall", 0), 0);
  EXPECT_EQ(Status(kSecondThread), VXT_RunStatus_Running);
  events->UnsubscribeSystemStallEvents(&StallEvents::Receive);
  EXPECT_EQ(stalls.seen, (std::vector<std::string>{"1 'CpuStall' 1", "2 'CpuStall' 0"}));

  // A thread has no stalls: the code's own text is the message.
  ClearTrace();
  EXPECT_EQ(service->SetSystemStall(kFirstThread, "CpuStall", 1), static_cast<VXT_Result>(0x80040007));
  EXPECT_EQ(std::string(GetLastErrorMessage()), "Wrong device type");
  EXPECT_EQ(Trace().front(), "In  InProc_Break::SetSystemStall(debugportOrTargetDomainId = 0x03000000 stallName = "
                             "'CpuStall' value = 0x00000001) [ClientID: 3]");
}

}  // namespace
}  // namespace vxt::test
