// The RunControl service on the emulated target: halting, stepping and
// resuming really move the threads; the trace, telemetry and checks of its
// operations; the "RunControl" event of a stop.
#include <cstdio>
#include <string>
#include <vector>

#include "CpuServiceTestSupport.h"
#include "RunControlTestSupport.h"

namespace {

namespace tc = voxtrel::testing;
using vxt::test::kFirstThread;
using vxt::test::kSecondThread;
using vxt::test::kTargetDomain;

constexpr VXT_Result kInvalidArgument = static_cast<VXT_Result>(0x80000001);
constexpr VXT_Result kOutOfRange = static_cast<VXT_Result>(0x80000002);
constexpr VXT_Result kRefused = static_cast<VXT_Result>(0x80000003);
constexpr VXT_Result kFailed = static_cast<VXT_Result>(0x80000005);

std::string Hex16(uint64_t value) {
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
  return text;
}

using vxt::test::RunControlTest;
using vxt::test::Stops;

TEST_F(RunControlTest, HaltStepAndGoMoveTheThread) {
  uint64_t token = 0;
  EXPECT_EQ(Status(kSecondThread), VXT_RunStatus_Running);
  Done(runControl->Halt(kSecondThread, &token), token);
  EXPECT_EQ(Status(kSecondThread), VXT_RunStatus_Halted);
  EXPECT_EQ(Status(kTargetDomain), VXT_RunStatus_SomeRunning);
  EXPECT_EQ(BreakType(kSecondThread), "Halt");

  const uint64_t halted = Rip(kSecondThread);
  EXPECT_EQ(Rip(kSecondThread), halted) << "a halted thread does not move";
  VXT_Address address{};
  ASSERT_EQ(runControl->GetBreakAddress(kSecondThread, &address), 0);
  EXPECT_EQ(address.offset, halted);
  EXPECT_EQ(address.addressType, VXT_AddressType_Linear);

  // The second thread never leaves its loop of 5 instructions (the first
  // prints now and then): five steps come back to the same place,
  // every one in between is elsewhere.
  std::vector<uint64_t> visited{halted};
  for (int i = 0; i < 5; ++i) {
    Done(runControl->Step(kSecondThread, VXT_StepType_Into, 1, &token), token);
    visited.push_back(Rip(kSecondThread));
  }
  EXPECT_EQ(visited.back(), halted);
  for (size_t i = 1; i + 1 < visited.size(); ++i) EXPECT_NE(visited[i], halted) << i;
  EXPECT_EQ(BreakType(kSecondThread), "Step");
  Done(runControl->Step(kSecondThread, VXT_StepType_Into, 5, &token), token);
  EXPECT_EQ(Rip(kSecondThread), halted);

  Done(runControl->Go(kSecondThread, &token), token);
  EXPECT_EQ(Status(kSecondThread), VXT_RunStatus_Running);
}

TEST_F(RunControlTest, DomainFormsActOnEveryThread) {
  uint64_t token = 0;
  VXT_RunStatus status = VXT_RunStatus_NotSupported;
  Done(runControl->HaltAllInDomain(kTargetDomain, &token), token);
  ASSERT_EQ(runControl->GetAllRunStatus(kTargetDomain, &status), 0);
  EXPECT_EQ(status, VXT_RunStatus_Halted);
  Done(runControl->GoAll(&token), token);
  const uint32_t threads[] = {kFirstThread, kSecondThread, kTargetDomain};
  VXT_RunStatus many[3] = {};
  ASSERT_EQ(runControl->GetRunStatusManyThreads(threads, many, 3), 0);
  EXPECT_EQ(many[0], VXT_RunStatus_Running);
  EXPECT_EQ(many[2], VXT_RunStatus_Running);
  Done(runControl->HaltAll(&token), token);
  EXPECT_EQ(Status(kSecondThread), VXT_RunStatus_Halted);
  Done(runControl->GoAllInDomain(kTargetDomain, &token), token);
  EXPECT_EQ(Status(kTargetDomain), VXT_RunStatus_Running);
  EXPECT_NE(runControl->HaltAllInDomain(0x7777, &token), 0);
  EXPECT_EQ(std::string(GetLastErrorMessage()), "no target domain 0x7777 runs emulated CPUs");
}

TEST_F(RunControlTest, AHaltReachesSubscribersWithItsRecord) {
  Stops stops;
  ASSERT_EQ(events->SubscribeRunControlEvents(&Stops::Receive, &stops), 0);
  uint64_t token = 0;
  Done(runControl->Halt(kFirstThread, &token), token);
  const std::string expected = vxt::test::Line("RunControl size=72 type=33 device=", kFirstThread,
                                               " address=", Rip(kFirstThread),
                                               " breakpoint=0 name='' breakType='Halt' subType='' details='' extra=0/0");
  EXPECT_EQ(stops.First(), expected);
  events->UnsubscribeRunControlEvents(&Stops::Receive);
  Done(runControl->Go(kFirstThread, &token), token);
}

TEST_F(RunControlTest, ChecksFailBeforeTheComponent) {
  uint32_t count = 0;
  const std::string head = "InProc_RunControl::";
  tc::StartRecordingCalls();
  ExpectRefusals({
      {[&] { return runControl->Halt(kFirstThread, nullptr); }, kInvalidArgument,
       head + "Halt() argument error (operationToken) : Null pointer"},
      {[&] { return runControl->GetRunStatusManyThreads(nullptr, nullptr, 1); }, kInvalidArgument,
       head + "GetRunStatusManyThreads() argument error (deviceIds) : Null pointer"},
      {[&] { return runControl->GetBreakSubtype(kFirstThread, nullptr); }, kInvalidArgument,
       head + "GetBreakSubtype() argument error (breakSubtype) : Null pointer"},
      {[&] { return runControl->GetNumOperatingModes(kFirstThread, nullptr); }, kInvalidArgument,
       head + "GetNumOperatingModes() argument voxTrelError (numOperatingModes) : Null pointer"},
      {[&] { return runControl->OperatingModes(kFirstThread, 3, nullptr); }, kInvalidArgument,
       head + "GetOperatingModes() argument error (operatingModes) : Null pointer"},
  });
  EXPECT_EQ(tc::CallCount("RunControl.Halt") + tc::CallCount("RunControl.GetRunStatusManyThreads") +
                tc::CallCount("RunControl.GetNumOperatingModes") + tc::CallCount("RunControl.GetOperatingModes"),
            0u);
  // What the emulated CPUs cannot do is the component's refusal.
  uint64_t token = 0;
  EXPECT_NE(runControl->Step(kFirstThread, static_cast<VXT_StepType>(9), 1, &token), 0);
  EXPECT_EQ(std::string(GetLastErrorMessage()), "step type 9 is unknown (1 Into, 2 Over, 3 Out, 4 Branch)");
  EXPECT_NE(runControl->SubmitInstruction(kFirstThread, "nop"), 0);
  EXPECT_EQ(runControl->GetNumOperatingModes(kFirstThread, &count), 0);
  EXPECT_EQ(count, 3u);
}

// A halted thread runs submitted instructions where it stands, as a probe
// has a core in probe mode run them: what they do stays, rip does not move,
// and the general registers they leave are read by their number.
TEST_F(RunControlTest, SubmittedInstructionsRunOnAHaltedThreadWithoutMovingIt) {
  uint64_t token = 0;
  Done(runControl->Halt(kFirstThread, &token), token);
  const uint64_t rip = Rip(kFirstThread);
  // The instructions borrow the memory 4 KiB below the stack pointer.
  ASSERT_EQ(registers->ReadRegister(kFirstThread, "rsp", &token), 0);
  const VXT_Address borrowed{VXT_ADDRESS_SIZE, 0, 0, Number(token) - 0x1000, VXT_AddressType_Linear};
  auto borrowedBytes = [&] {
    EXPECT_EQ(memory->ReadMemory(kFirstThread, &borrowed, 16, &token), 0) << GetLastErrorMessage();
    return Bytes(token);
  };
  const std::vector<uint8_t> before = borrowedBytes();
  for (const char* instruction : {"mov rax, 0x1122334455667788", "lea r15, [rax+0x1]", "mov rbx, cr0",
                                  "mov qword ptr [0x2000], rax", "mov rcx, qword ptr [0x2000]"})
    ASSERT_EQ(runControl->SubmitInstruction(kFirstThread, instruction), 0) << instruction << ": "
                                                                            << GetLastErrorMessage();
  struct Expected {
    uint32_t offset;
    uint64_t value;
  };
  for (const Expected expected : {Expected{0, 0x1122334455667788}, Expected{1, 0x1122334455667788},
                                  Expected{3, 0x80000011}, Expected{15, 0x1122334455667789}}) {
    uint64_t value = 0;
    EXPECT_EQ(runControl->GetInstructionResult(kFirstThread, expected.offset, &value), 0) << GetLastErrorMessage();
    EXPECT_EQ(value, expected.value) << expected.offset;
  }
  EXPECT_EQ(Rip(kFirstThread), rip);
  EXPECT_EQ(borrowedBytes(), before);
  EXPECT_EQ(BreakType(kFirstThread), "Halt") << "a submitted instruction is no stop";

  uint64_t value = 0;
  ExpectRefusals({
      {[&] { return runControl->SubmitInstruction(kFirstThread, "jmp 0x1000"); }, kInvalidArgument,
       "'jmp 0x1000' sends the thread elsewhere; a submitted instruction leaves it where it is"},
      {[&] { return runControl->SubmitInstruction(kFirstThread, "frobnicate rax"); }, kInvalidArgument,
       "cannot assemble 'frobnicate rax': unknown mnemonic 'frobnicate'"},
      {[&] { return runControl->SubmitInstruction(kFirstThread, "mov rax, qword ptr [0xfffffff000]"); }, kFailed,
       "executing 'mov rax, qword ptr [0xfffffff000]': the instruction faulted"},
      {[&] { return runControl->SubmitInstruction(kSecondThread, "nop"); }, kRefused,
       "the thread runs: an instruction is submitted to a halted thread"},
      {[&] { return runControl->GetInstructionResult(kFirstThread, 16, &value); }, kOutOfRange,
       "offset 16 is past the general registers (0 rax, 1 rcx, ... 15 r15)"},
      {[&] { return runControl->GetInstructionResult(kSecondThread, 0, &value); }, kFailed,
       "no instruction was submitted to thread 0x3000001"},
  });
  // The faulting instruction left the thread as it was.
  ASSERT_EQ(runControl->SubmitInstruction(kFirstThread, "nop"), 0);
  EXPECT_EQ(runControl->GetInstructionResult(kFirstThread, 0, &value), 0);
  EXPECT_EQ(value, 0x1122334455667788u);
  EXPECT_EQ(Rip(kFirstThread), rip);
  Done(runControl->Go(kFirstThread, &token), token);
}

TEST_F(RunControlTest, TraceLinesAndTelemetry) {
  uint64_t token = 0;
  VXT_RunStatus status{};
  uint32_t modes[3] = {};
  ASSERT_EQ(runControl->Halt(kFirstThread, &token), 0);
  receipts->Destroy(token);
  ClearTrace();
  runControl->Step(kFirstThread, VXT_StepType_Into, 1, &token);
  std::vector<std::string> step = Trace();
  step.resize(5);
  EXPECT_EQ(step, (std::vector<std::string>{
                      "In  InProc_RunControl::Step(deviceId = 0x03000000 stepType = Into numSteps = 1) [ClientID: 3]",
                      "In  InProc_Device::GetIdentifierForDeviceId(deviceId = 0x03000000) [ClientID: 3]",
                      "Out InProc_Device::GetIdentifierForDeviceId(identifier = 'Thread0_0') ErrorCode = 0x00000000 "
                      "[ClientID: 3]",
                      "In  InProc_Device::GetIdentifierForDeviceId(deviceId = 0x0b000000) [ClientID: 3]",
                      "Out InProc_Device::GetIdentifierForDeviceId(identifier = 'CoreGroup0') ErrorCode = 0x00000000 "
                      "[ClientID: 3]",
                  }));
  EXPECT_EQ(tc::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method",
                                 "RunControl::Halt(device=Thread0_0,coreGroup=CoreGroup0)"),
            1u);
  EXPECT_EQ(tc::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method",
                                 "RunControl::Step(device=Thread0_0,coreGroup=CoreGroup0)"),
            1u);
  receipts->Destroy(token);

  ClearTrace();
  runControl->HaltAllInDomain(kTargetDomain, &token);
  receipts->Destroy(token);
  runControl->GetAllRunStatus(kTargetDomain, &status);
  runControl->GetRunStatusManyThreads(&kFirstThread, &status, 0);
  runControl->OperatingModes(kFirstThread, 3, modes);
  runControl->GoAll(&token);
  std::vector<std::string> lines;
  for (const std::string& line : Trace()) {
    if (line.find("InProc_RunControl::") != std::string::npos) lines.push_back(line);
  }
  const std::string trailer = " [ClientID: 3]";
  EXPECT_EQ(lines, (std::vector<std::string>{
                       "In  InProc_RunControl::HaltAllInDomain(targetDomainId = 33554432)" + trailer,
                       "Out InProc_RunControl::HaltAllInDomain(operationToken = 0x" + Hex16(token - 1) +
                           ") ErrorCode = 0x00000000" + trailer,
                       "In  InProc_RunControl::GetAllRunStatus(targetDomainId = 0x02000000)" + trailer,
                       "Out InProc_RunControl::GetAllRunStatus(status = Halted) ErrorCode = 0x00000000" + trailer,
                       "In  InProc_RunControl::GetRunStatusManyThreads(deviceIds = <EMPTY> numStatus = 0)" + trailer,
                       "Out InProc_RunControl::GetRunStatusManyThreads(status = <EMPTY>) ErrorCode = 0x00000000" +
                           trailer,
                       "In  InProc_RunControl::OperatingModes(deviceId = 0x03000000)" + trailer,
                       "Out InProc_RunControl::GetOperatingModes ErrorCode = 0x00000000" + trailer,
                       "In  InProc_RunControl::GoAll()" + trailer,
                       "Out InProc_RunControl::GoAll(operationToken = 0x" + Hex16(token) + ") ErrorCode = 0x00000000" +
                           trailer,
                   }));
  EXPECT_EQ(modes[2], 64u);
  receipts->Destroy(token);
}

}  // namespace
