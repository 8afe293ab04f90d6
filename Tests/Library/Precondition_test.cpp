// The Precondition service on the default target, whose domain describes
// "probe mode" (the threads halted) and "debug enabled": trace lines whole,
// its checks, and a requirement that really halts and resumes the threads.
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "RunControlTestSupport.h"

namespace vxt::test {
namespace {

constexpr uint32_t kProbeMode = 1;
constexpr uint32_t kDebugEnabled = 2;

class PreconditionTest : public RunControlTest {
 protected:
  void SetUp() override {
    RunControlTest::SetUp();
    preconditions = Service<IInternalService_Precondition>(VXT_Service_Precondition);
  }
  void Require(uint32_t id, VXT_PreconditionState state) {
    uint64_t token = 0;
    ASSERT_EQ(preconditions->Require(kFirstThread, id, state, &token), 0) << GetLastErrorMessage();
    ASSERT_EQ(receipts->Flush(token), 0);
    OperationStatus status{};
    EXPECT_EQ(receipts->GetOperationStatus(token, &status), 0);
    EXPECT_EQ(status, VXT_OperationStatus_Completed);
    receipts->Destroy(token);
  }
  VXT_PreconditionState Current(uint32_t id) {
    VXT_PreconditionState state = static_cast<VXT_PreconditionState>(9);
    EXPECT_EQ(preconditions->GetCurrentState(kTargetDomain, id, &state), 0) << GetLastErrorMessage();
    return state;
  }
  VXT_RunStatus Threads() {
    VXT_RunStatus status{};
    EXPECT_EQ(runControl->GetAllRunStatus(kTargetDomain, &status), 0);
    return status;
  }

  IInternalService_Precondition* preconditions = nullptr;
};

TEST_F(PreconditionTest, TraceLinesAndChecks) {
  uint32_t count = 0;
  uint32_t id = 0;
  uint32_t suppressed = 7;
  char names[3][VXT_PRECONDITION_NAME_SIZE] = {"", "", "stale"};
  VXT_PreconditionState state = VXT_PreconditionState_True;
  const std::string ok = " ErrorCode = 0x00000000 [ClientID: 3]";
  auto failed = [](const std::string& message, const std::string& out, const char* code) {
    return std::vector<std::string>{"VXT Error = '" + message + "' [ClientID: 3]",
                                    "In  InProc ReportErrorMessage(<NULL>'" + message + "')",
                                    "Out InProc ReportErrorMessage()", out + " ErrorCode = " + code + " [ClientID: 3]"};
  };
  auto lines = [](std::string in, std::vector<std::string> rest) {
    rest.insert(rest.begin(), std::move(in));
    return rest;
  };
  struct Case {
    std::function<void()> call;
    std::vector<std::string> lines;
  };
  const Case cases[] = {
      {[&] { preconditions->GetNumPreconditions(kTargetDomain, &count); },
       {"In  InProc_Precondition::GetNumPreconditions(deviceId = 0x02000000) [ClientID: 3]",
        "Out InProc_Precondition::GetNumPreconditions(numPreconditions = 2)" + ok}},
      {[&] { preconditions->GetPreconditions(kFirstThread, 2, names[0]); },
       {"In  InProc_Precondition::GetPreconditions(deviceId = 0x03000000 maxNumPreconditions = 2) [ClientID: 3]",
        "Out InProc_Precondition::GetPreconditions(preconditionNames = {'probe mode', 'debug enabled'}) ErrorCode = "
        "0x00000000"}},
      // Fields past the list are emptied, not left as they were.
      {[&] { preconditions->GetPreconditions(kFirstThread, 3, names[0]); },
       {"In  InProc_Precondition::GetPreconditions(deviceId = 0x03000000 maxNumPreconditions = 3) [ClientID: 3]",
        "Out InProc_Precondition::GetPreconditions(preconditionNames = {'probe mode', 'debug enabled', ''}) "
        "ErrorCode = 0x00000000"}},
      {[&] { preconditions->GetPreconditions(kFirstThread, 0, names[0]); },
       {"In  InProc_Precondition::GetPreconditions(deviceId = 0x03000000 maxNumPreconditions = 0) [ClientID: 3]",
        "Out InProc_Precondition::GetPreconditions(preconditionNames = <EMPTY>) ErrorCode = 0x00000000"}},
      {[&] { preconditions->GetPreconditionId(kTargetDomain, "debug enabled", &id); },
       {"In  InProc_Precondition::GetPreconditionId(deviceId = 0x02000000 preconditionName = 'debug enabled') "
        "[ClientID: 3]",
        "Out InProc_Precondition::GetPreconditionId(preconditionId = 2)" + ok}},
      {[&] { preconditions->GetPreconditionId(kTargetDomain, nullptr, nullptr); },
       lines("In  InProc_Precondition::GetPreconditionId(deviceId = 0x02000000 preconditionName = <NULL>) "
             "[ClientID: 3]",
             failed("InProc_Precondition::GetPreconditionId() argument error (preconditionName) : Null pointer",
                    "Out InProc_Precondition::GetPreconditionId(preconditionId = <NULL>)", "0x80000001"))},
      {[&] { preconditions->SetSuppressed(kTargetDomain, kDebugEnabled, 2); },
       {"In  InProc_Precondition::SetSuppressed(deviceId = 0x02000000 preconditionId = 2 suppressed = True) "
        "[ClientID: 3]",
        "Out InProc_Precondition::SetSuppressed()" + ok}},
      {[&] { preconditions->IsSuppressed(kTargetDomain, kDebugEnabled, &suppressed); },
       {"In  InProc_Precondition::IsSuppressed(deviceId = 0x02000000 preconditionId = 2) [ClientID: 3]",
        "Out InProc_Precondition::IsSuppressed(suppressed = False)" + ok}},
      {[&] { preconditions->SetCurrentState(kTargetDomain, kDebugEnabled, static_cast<VXT_PreconditionState>(3)); },
       lines("In  InProc_Precondition::SetCurrentState(deviceId = 0x02000000 preconditionId = 2 state = <UNKNOWN>) "
             "[ClientID: 3]",
             failed("Precondition.SetCurrentState: 3 is no precondition state (0 to 2)",
                    "Out InProc_Precondition::SetCurrentState()", "0x80000002"))},
      {[&] { preconditions->GetCurrentState(kTargetDomain, 3, &state); },
       lines("In  InProc_Precondition::GetCurrentState(deviceId = 0x02000000 preconditionId = 3) [ClientID: 3]",
             failed("Precondition.GetCurrentState: device 0x02000000 has no precondition 3",
                    "Out InProc_Precondition::GetCurrentState(state = True)", "0x80000002"))},
      {[&] { preconditions->GetDefaultState(kTargetDomain, kProbeMode, &state); },
       {"In  InProc_Precondition::GetDefaultState(deviceId = 0x02000000 preconditionId = 1) [ClientID: 3]",
        "Out InProc_Precondition::GetDefaultState(state = False)" + ok}},
  };
  for (const Case& c : cases) {
    ClearTrace();
    c.call();
    EXPECT_EQ(Trace(), c.lines);
  }
  EXPECT_EQ(suppressed, 0u);
  EXPECT_EQ(voxtrel::testing::TelemetryCounter("Server_Lifespan", "VXT_Call", "Method", "Precondition::SetSuppressed"),
            1u);
}

TEST_F(PreconditionTest, RequiringProbeModeHaltsAndResumesTheThreadsUnlessSuppressed) {
  ASSERT_EQ(Threads(), VXT_RunStatus_Running);
  EXPECT_EQ(Current(kProbeMode), VXT_PreconditionState_False);
  Require(kProbeMode, VXT_PreconditionState_True);
  EXPECT_EQ(Threads(), VXT_RunStatus_Halted);
  EXPECT_EQ(Current(kProbeMode), VXT_PreconditionState_True);
  // The threads' state is the target's own: it cannot be set, only required.
  EXPECT_EQ(preconditions->SetCurrentState(kTargetDomain, kProbeMode, VXT_PreconditionState_False),
            static_cast<VXT_Result>(0x80000003));

  ASSERT_EQ(preconditions->SetSuppressed(kTargetDomain, kProbeMode, 1), 0);
  Require(kProbeMode, VXT_PreconditionState_False);
  EXPECT_EQ(Threads(), VXT_RunStatus_Halted);
  ASSERT_EQ(preconditions->SetSuppressed(kTargetDomain, kProbeMode, 0), 0);
  Require(kProbeMode, VXT_PreconditionState_False);
  EXPECT_EQ(Threads(), VXT_RunStatus_Running);

  // A precondition without an effect holds what was required or set.
  EXPECT_EQ(Current(kDebugEnabled), VXT_PreconditionState_True);
  Require(kDebugEnabled, VXT_PreconditionState_False);
  EXPECT_EQ(Current(kDebugEnabled), VXT_PreconditionState_False);
  ASSERT_EQ(preconditions->SetCurrentState(kTargetDomain, kDebugEnabled, VXT_PreconditionState_Unknown), 0);
  EXPECT_EQ(Current(kDebugEnabled), VXT_PreconditionState_Unknown);
  uint64_t token = 0;
  EXPECT_EQ(preconditions->Require(kTargetDomain, kDebugEnabled, VXT_PreconditionState_True, nullptr),
            static_cast<VXT_Result>(0x80000001));
  EXPECT_EQ(std::string(GetLastErrorMessage()), "Precondition.Require was given a null operationToken");
  EXPECT_EQ(preconditions->Require(kTargetDomain, kDebugEnabled, VXT_PreconditionState_Unknown, &token),
            static_cast<VXT_Result>(0x80000002));
}

}  // namespace
}  // namespace vxt::test
