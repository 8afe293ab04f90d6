// Step Over, Out and Branch through the RunControl service, on a small
// program of calls written into the first thread's memory.
#include "CallProgramTestSupport.h"

namespace vxt::test {
namespace {

TEST_F(CallProgramTest, EachKindStopsWhereItsGoalIs) {
  struct Case {
    const char* what;
    uint64_t from;
    std::initializer_list<VXT_StepType> steps;
    uint64_t to;
    uint64_t rdx;  // Increments the calls ran
  };
  const Case cases[] = {
      {"over a call runs it to its return", 0x00, {VXT_StepType_Over}, 0x05, 2},
      {"over a plain instruction steps it", 0x10, {VXT_StepType_Over}, 0x13, 1},
      {"into enters the call", 0x00, {VXT_StepType_Into}, 0x10, 0},
      {"out runs the rest of the function, over its own call", 0x00, {VXT_StepType_Into, VXT_StepType_Out}, 0x05, 2},
      {"out at a return returns", 0x00, {VXT_StepType_Into, VXT_StepType_Over, VXT_StepType_Into, VXT_StepType_Out},
       0x18, 1},
      {"branch passes plain instructions to a taken jump", 0x05, {VXT_StepType_Branch}, 0x00, 0},
      {"branch counts a call as taken", 0x00, {VXT_StepType_Branch}, 0x10, 0},
  };
  for (const Case& c : cases) {
    Set("rdx", 0);
    EXPECT_EQ(StepFrom(c.from, c.steps), c.to) << c.what;
    EXPECT_EQ(Read("rdx"), c.rdx) << c.what;
    EXPECT_EQ(BreakType(kFirstThread), "Step") << c.what;
  }
}

TEST_F(CallProgramTest, ACompoundStepAnnouncesOneStopAndABreakpointEndsIt) {
  Stops stops;
  ASSERT_EQ(events->SubscribeRunControlEvents(&Stops::Receive, &stops), 0);
  EXPECT_EQ(StepFrom(0x00, {VXT_StepType_Over}), 0x05);
  EXPECT_EQ(stops.First(), Line("RunControl size=72 type=1 device=", kFirstThread, " address=", kCode + 0x05,
                                " breakpoint=0 name='' breakType='Step' subType='' details='' extra=0/0"));

  const VXT_Breakpoint inside = BreakAt(0x18);
  EXPECT_EQ(StepFrom(0x00, {VXT_StepType_Over}), 0x18);
  EXPECT_EQ(BreakType(kFirstThread), "Breakpoint");
  EXPECT_EQ(stops.Wait(1), Line("RunControl size=72 type=32 device=", kFirstThread, " address=", kCode + 0x18,
                                " breakpoint=", inside.breakpointId,
                                " name='' breakType='Breakpoint' subType='Execution' details='' extra=0/0"));
  EXPECT_EQ(breakpoints->RemoveBreakpointById(inside.breakpointId), 0);
  events->UnsubscribeRunControlEvents(&Stops::Receive);
  {
    const std::lock_guard lock(stops.mutex);
    EXPECT_EQ(stops.seen.size(), 2u) << "the steps inside the compound ones stay quiet";
  }

  // A running thread cannot be stepped.
  uint64_t token = 0;
  Done(runControl->Go(kFirstThread, &token), token);
  EXPECT_NE(runControl->Step(kFirstThread, VXT_StepType_Over, 1, &token), 0);
  EXPECT_EQ(std::string(GetLastErrorMessage()), "stepping: the thread is not halted");
}

}  // namespace
}  // namespace vxt::test
