// Breakpoints on the emulated target: execution and data breakpoints hit
// where they should and say why; records are checked and traced whole.
#include <cstring>
#include <string>
#include <vector>

#include "RunControlTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::kFirstThread;
using vxt::test::kTargetDomain;
using vxt::test::Line;
using vxt::test::RunControlTest;
using vxt::test::Stops;

VXT_Breakpoint Record(VXT_BreakpointType type, uint64_t address, VXT_BreakpointDataSize size = VXT_BreakpointDataSize_Data_Size_1) {
  VXT_Breakpoint record{};
  record.structureSize = VXT_BREAKPOINT_SIZE;
  record.threadDeviceId = kFirstThread;
  record.breakpointType = type;
  record.dataSize = size;
  record.breakpointAddress = address;
  record.enabled = 1;
  std::strcpy(record.breakpointName, "loop");
  return record;
}

class BreakpointTest : public RunControlTest {
 protected:
  void SetUp() override {
    RunControlTest::SetUp();
    ASSERT_EQ(events->SubscribeRunControlEvents(&Stops::Receive, &stops), 0);
  }
  void TearDown() override {
    events->UnsubscribeRunControlEvents(&Stops::Receive);
    RunControlTest::TearDown();
  }
  std::string BreakSubtype(uint32_t thread) {
    char text[VXT_BREAK_TYPE_TEXT_SIZE] = {};
    EXPECT_EQ(runControl->GetBreakSubtype(thread, text), 0) << GetLastErrorMessage();
    return text;
  }
  Stops stops;
};

TEST_F(BreakpointTest, AnExecutionBreakpointHitsBeforeItsInstructionEveryTimeRound) {
  uint64_t token = 0;
  Done(runControl->Halt(kFirstThread, &token), token);
  const uint64_t loop = Rip(kFirstThread);
  VXT_Breakpoint record = Record(VXT_BreakpointType_HW_Exec, loop);
  ASSERT_EQ(breakpoints->CreateBreakpoint(&record), 0) << GetLastErrorMessage();
  ASSERT_NE(record.breakpointId, 0u);
  const std::string hit = Line("RunControl size=72 type=32 device=", kFirstThread, " address=", loop, " breakpoint=",
                               record.breakpointId, " name='' breakType='Breakpoint' subType='Execution' details='' extra=0/0");
  for (size_t round = 1; round <= 2; ++round) {
    Done(runControl->Go(kFirstThread, &token), token);
    EXPECT_EQ(stops.Wait(round), hit) << round;
    EXPECT_EQ(Rip(kFirstThread), loop);
    EXPECT_EQ(BreakType(kFirstThread), "Breakpoint");
    EXPECT_EQ(BreakSubtype(kFirstThread), "Execution");
  }
  // Disabled, it lets the thread run; removed, it is gone.
  ASSERT_EQ(management->DisableBreakpoint(record.breakpointId), 0);
  Done(runControl->Go(kFirstThread, &token), token);
  EXPECT_EQ(Status(kFirstThread), VXT_RunStatus_Running);
  uint32_t count = 0;
  ASSERT_EQ(management->GetNumBreakpoints(kTargetDomain, &count), 0);
  EXPECT_EQ(count, 1u);
  ASSERT_EQ(breakpoints->RemoveBreakpoint(&record), 0);
  ASSERT_EQ(management->GetNumBreakpoints(kTargetDomain, &count), 0);
  EXPECT_EQ(count, 0u);
  EXPECT_NE(breakpoints->RemoveBreakpointById(record.breakpointId), 0);
}

TEST_F(BreakpointTest, AWriteBreakpointStopsAfterTheWriteToTheCounter) {
  VXT_Breakpoint record = Record(VXT_BreakpointType_HW_Write, 0x1000);
  ASSERT_EQ(breakpoints->CreateBreakpoint(&record), 0) << GetLastErrorMessage();
  const std::string event = stops.First();
  EXPECT_NE(event.find("type=32 device=" + std::to_string(kFirstThread)), std::string::npos) << event;
  EXPECT_NE(event.find("subType='Data' details='' extra=4096/0"), std::string::npos) << event;
  EXPECT_EQ(BreakSubtype(kFirstThread), "Data");
  // The thread stands after the write: the instruction before it wrote.
  VXT_Address address{};
  ASSERT_EQ(runControl->GetBreakAddress(kFirstThread, &address), 0);
  EXPECT_EQ(address.offset, Rip(kFirstThread));
  ASSERT_EQ(breakpoints->RemoveBreakpointById(record.breakpointId), 0);
}

TEST_F(BreakpointTest, RecordsAreCheckedAndTracedWhole) {
  VXT_Breakpoint unset{};
  const std::string head = "InProc_Breakpoint";
  tc::StartRecordingCalls();
  ExpectRefusals({
      {[&] { return breakpoints->CreateBreakpoint(&unset); }, static_cast<VXT_Result>(0x80000010),
       head + "::CreateBreakpoint() argument error (breakpoint) : Structure size not initialized"},
      {[&] { return management->GetBreakpoint(1, &unset); }, static_cast<VXT_Result>(0x80000010),
       head + "Management::GetBreakpoint() argument error (breakpoint) : Structure size not initialized"},
      {[&] { return breakpoints->RemoveBreakpoints(0, nullptr); }, static_cast<VXT_Result>(0x80000001),
       head + "::RemoveBreakpoints() argument error (breakpoints) : Null pointer"},
  });
  EXPECT_EQ(tc::CallCount("RunControl.CreateBreakpoint") + tc::CallCount("RunControl.GetBreakpoint") +
                tc::CallCount("RunControl.RemoveBreakpoints"),
            0u);

  // Three short records: one stride for the check and the lines alike; the
  // odd type prints as a bare number, the odd register as unknown.
  std::vector<uint8_t> bytes(3 * VXT_BREAKPOINT_SHORT_SIZE);
  for (int i = 0; i < 3; ++i) {
    VXT_Breakpoint record = Record(static_cast<VXT_BreakpointType>(77), 0x10 * i);
    record.structureSize = VXT_BREAKPOINT_SHORT_SIZE;
    record.debugRegister = static_cast<VXT_DebugRegister>(77);
    std::memcpy(&bytes[i * VXT_BREAKPOINT_SHORT_SIZE], &record, VXT_BREAKPOINT_SHORT_SIZE);
  }
  ClearTrace();
  EXPECT_NE(breakpoints->CreateBreakpoints(3, reinterpret_cast<VXT_Breakpoint*>(bytes.data())), 0);
  const auto record = [](int i) {
    return "{breakpointId = 0 threadDeviceId = 0x03000000 breakpointType = 4d debugRegister = <UNKNOWN> dataSize = "
           "Data_Size_1 breakpointAddress = 0x00000000000000" +
           std::string(i == 0 ? "00" : i == 1 ? "10" : "20") + " enabled = True breakpointName = loop}";
  };
  EXPECT_EQ(Trace().front(), "In  InProc_Breakpoint::CreateBreakpoints(numBreakpoints = 3 breakpoints = {" +
                                 record(0) + ", " + record(1) + ", " + record(2) + "}) [ClientID: 3]");

  // A long record with a full address prints it in place of the plain one.
  VXT_Breakpoint full = Record(VXT_BreakpointType_SW, 0);
  full.fullBreakpointAddress = VXT_Address{VXT_ADDRESS_SIZE, 0, 0, 0xFFFF0000, VXT_AddressType_Linear};
  ClearTrace();
  breakpoints->CreateBreakpoint(&full);
  EXPECT_EQ(Trace().back(),
            "Out InProc_Breakpoint::CreateBreakpoint(breakpoint = {breakpointId = " + std::to_string(full.breakpointId) +
                " threadDeviceId = 0x03000000 breakpointType = SW debugRegister = Register_Any dataSize = Data_Size_1 "
                "fullBreakpointAddress = {ldtsel = 0x0000 segsel = 0x0000 offset = 0x00000000ffff0000 addressType = "
                "Linear} enabled = True breakpointName = loop}) ErrorCode = 0x00000000 [ClientID: 3]");
  breakpoints->RemoveBreakpointById(full.breakpointId);
}

}  // namespace
