// The RunControlConfiguration service on the emulated target: what the
// RunControl component keeps for a core group, the trace forms of the four
// kinds of operation, and run control that a core group switches off.
#include "RunControlTestSupport.h"

namespace vxt::test {
namespace {

namespace tc = voxtrel::testing;

constexpr uint32_t kCoreGroup = 0x0b000000;

class RunControlConfigurationTest : public RunControlTest {
 protected:
  void SetUp() override {
    RunControlTest::SetUp();
    configuration = Service<IInternalService_RunControlConfiguration>(VXT_Service_RunControlConfiguration);
  }
  IInternalService_RunControlConfiguration* configuration = nullptr;
};

TEST_F(RunControlConfigurationTest, ValuesAreTheComponentsAndReadBack) {
  uint32_t count = 0;
  char names[2][VXT_METHOD_NAME_SIZE] = {};
  char name[VXT_METHOD_NAME_SIZE] = {};
  VXT_StepMode mode{};
  ASSERT_EQ(configuration->GetNumProbeModeDetectMethods(kCoreGroup, &count), 0) << GetLastErrorMessage();
  EXPECT_EQ(count, 1u);
  ASSERT_EQ(configuration->GetProbeModeEntryMethods(kCoreGroup, 2, names), 0) << GetLastErrorMessage();
  EXPECT_EQ(std::string(names[0]), "HaltFlag");
  EXPECT_EQ(configuration->SetProbeModeExitMethod(kCoreGroup, "Resume"), 0);
  ASSERT_EQ(configuration->GetProbeModeExitMethod(kCoreGroup, name), 0);
  EXPECT_EQ(std::string(name), "Resume");
  ASSERT_EQ(configuration->GetStepMode(kCoreGroup, &mode), 0);
  EXPECT_EQ(mode, VXT_StepMode_ReleaseTargetedThread);

  // The threads of interest: every thread of the group until set.
  ASSERT_EQ(configuration->GetNumInterestingThreads(kCoreGroup, &count), 0);
  EXPECT_EQ(count, 4u);
  ASSERT_EQ(configuration->SetInterestingThreads(kCoreGroup, 1, &kSecondThread), 0) << GetLastErrorMessage();
  uint32_t threads[4] = {};
  ASSERT_EQ(configuration->GetNumInterestingThreads(kCoreGroup, &count), 0);
  ASSERT_EQ(configuration->GetInterestingThreads(kCoreGroup, count, threads), 0);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(threads[0], kSecondThread);

  uint32_t enabled = 7;
  EXPECT_EQ(configuration->StepIntoExceptionEnabled(kCoreGroup, 5), 0);
  ASSERT_EQ(configuration->GetStepIntoExceptionEnabled(kCoreGroup, &enabled), 0);
  EXPECT_EQ(enabled, 1u);

  // What the emulated CPUs cannot do is refused by the component.
  const uint32_t stranger = 0x12345678;
  const struct {
    std::function<VXT_Result()> call;
    std::string message;
  } refusals[] = {
      {[&] { return configuration->SetStepMode(kCoreGroup, VXT_StepMode_ReleaseAllThreads); },
       "the emulated CPUs step the targeted thread alone (ReleaseTargetedThread)"},
      {[&] { return configuration->SetProbeModeEntryMethod(kCoreGroup, "Smi"); },
       "'Smi' is no probe mode entry method of the emulated CPUs (HaltFlag)"},
      {[&] { return configuration->SetProbeModeRedirectionMode(kCoreGroup, 1); },
       "the emulated CPUs have no probe mode redirection (mode 0)"},
      {[&] { return configuration->SetInterestingThreads(kCoreGroup, 1, &stranger); },
       "thread 0x12345678 is not in the core group"},
      {[&] { return configuration->GetStepMode(kFirstThread, &mode); }, "device 0x3000000 is no core group"},
      {[&] { return configuration->IsRunControlEnabled(kCoreGroup, nullptr); }, "enabled is a null pointer"},
  };
  for (const auto& refusal : refusals) {
    EXPECT_NE(refusal.call(), 0) << refusal.message;
    EXPECT_EQ(std::string(GetLastErrorMessage()), refusal.message);
  }
}

TEST_F(RunControlConfigurationTest, TraceFormsAndTelemetry) {
  char names[1][VXT_METHOD_NAME_SIZE] = {};
  const std::string trailer = " [ClientID: 3]";
  ClearTrace();
  configuration->SetStepMode(kCoreGroup, static_cast<VXT_StepMode>(2));
  configuration->GetProbeModeExitMethods(kCoreGroup, 0, names);
  configuration->SetProbeModeEntryMethod(kCoreGroup, nullptr);
  configuration->StepIntoExceptionEnabled(kCoreGroup, 1);
  configuration->IsRunControlEnabled(kCoreGroup, nullptr);
  const uint32_t threads[] = {kFirstThread, kSecondThread};
  configuration->SetInterestingThreads(kCoreGroup, 2, threads);
  std::vector<std::string> lines;
  for (const std::string& line : Trace())
    if (line.find("InProc_RunControlConfiguration::") != std::string::npos) lines.push_back(line);
  const std::string head = "InProc_RunControlConfiguration::";
  EXPECT_EQ(lines, (std::vector<std::string>{
                       "In  " + head + "SetStepMode(coreGroupId = 0x0b000000 stepMode = <UNKNOWN>)" + trailer,
                       "Out " + head + "SetStepMode() ErrorCode = 0x80000002" + trailer,
                       "In  " + head + "GetProbeModeExitMethods(coreGroupId = 0x0b000000 maxMethodCount = 0)" + trailer,
                       "Out " + head + "GetProbeModeExitMethods(methodNames = <EMPTY>) ErrorCode = 0x80000013",
                       "In  " + head + "SetProbeModeEntryMethod(coreGroupId = 0x0b000000 methodName = <NULL>)" + trailer,
                       "VXT Error = '" + head +
                           "SetProbeModeEntryMethod() argument error (methodName) : Null pointer'" + trailer,
                       "In  InProc ReportErrorMessage(<NULL>'" + head +
                           "SetProbeModeEntryMethod() argument error (methodName) : Null pointer')",
                       "Out " + head + "SetProbeModeEntryMethod() ErrorCode = 0x80000001" + trailer,
                       "In  " + head + "StepIntoExceptionEnabled(coreGroupId = 0x0b000000 enabled = True)" + trailer,
                       "Out " + head + "StepIntoExceptionEnabled() ErrorCode = 0x00000000" + trailer,
                       "In  " + head + "IsRunControlEnabled(coreGroupId = 0x0b000000)" + trailer,
                       "Out " + head + "IsRunControlEnabled(enabled = <NULL>) ErrorCode = 0x80000001" + trailer,
                       "In  " + head + "SetInterestingThreads(coreGroupId = 0x0b000000 threadIds = {0x03000000, "
                                       "0x03000001})" + trailer,
                       "Out " + head + "SetInterestingThreads() ErrorCode = 0x00000000" + trailer,
                   }));
  EXPECT_EQ(tc::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method",
                                 "RunControlConfiguration::SetStepIntoExceptionEnabled"),
            1u);
  EXPECT_EQ(tc::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method",
                                 "RunControlConfiguration::SetProbeModeEntryMethod"),
            1u);
}

TEST_F(RunControlConfigurationTest, AGroupWithRunControlOffRefusesHaltGoAndStep) {
  uint64_t token = 0;
  uint32_t enabled = 0;
  ASSERT_EQ(configuration->SetRunControlEnabled(kCoreGroup, 0), 0) << GetLastErrorMessage();
  ASSERT_EQ(configuration->IsRunControlEnabled(kCoreGroup, &enabled), 0);
  EXPECT_EQ(enabled, 0u);
  EXPECT_NE(runControl->Halt(kSecondThread, &token), 0);
  EXPECT_EQ(std::string(GetLastErrorMessage()), "run control of core group 0xb000000 is disabled (SetRunControlEnabled)");
  EXPECT_EQ(Status(kSecondThread), VXT_RunStatus_Running);
  ASSERT_EQ(configuration->SetRunControlEnabled(kCoreGroup, 1), 0);
  Done(runControl->Halt(kSecondThread, &token), token);
  Done(runControl->Go(kSecondThread, &token), token);
}

}  // namespace
}  // namespace vxt::test
