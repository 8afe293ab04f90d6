// vxt halt, go, step, status, break, watch and wait, as a user runs them.
#include <regex>
#include <string>

#include <gtest/gtest.h>

#include "VxtRun.h"

namespace vxt::test {
namespace {

// "Thread0_1 <why> at 0x<16 digits>: <instruction>"
std::string StopPattern(const std::string& why) {
  return "Thread0_1 " + why + " at 0x[0-9a-f]{16}: [a-z]+[^\n]*\n";
}

TEST(VxtRunControl, HaltStepStatusAndGo) {
  // The thread's first write of its own counter holds it in its loop,
  // however long the firmware takes to boot.
  const VxtRun run = RunVxt(
      "-e 'watch 0x1108 write 8 -t Thread0_1; wait; break remove 1; step -t Thread0_1; step over 2 -t Thread0_1; "
      "status Core0; go; halt Thread0_1'");
  ASSERT_EQ(run.exitStatus, 0) << run.output;
  EXPECT_TRUE(std::regex_search(
      run.output, std::regex("^breakpoint 1 on write of 8 byte\\(s\\) at 0x0000000000001108\n" +
                             StopPattern("Breakpoint Data") + "breakpoint 1 removed\n" + StopPattern("Step") +
                             StopPattern("Step") + "Thread0_0 Running\n" + StopPattern("Step") +
                             "Thread0_0 Running\nThread0_1 Running\nThread1_0 Running\nThread1_1 Running\n" +
                             StopPattern("Halt") + "$")))
      << run.output;

  const VxtRun refused = RunVxt("step sideways");
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_EQ(refused.output, "vxt: step takes [into|over|out|branch] [COUNT]; 'sideways' is neither\n");
}

TEST(VxtRunControl, BreakpointsHitAndAreListed) {
  // Where the second thread loops, from a first run: the firmware is the
  // same in every run.
  const VxtRun halted = RunVxt("-e 'watch 0x1108 write 8 -t Thread0_1; wait'");
  std::smatch found;
  ASSERT_TRUE(std::regex_search(halted.output, found, std::regex("at (0x[0-9a-f]{16})"))) << halted.output;
  const std::string address = found[1];

  const VxtRun run = RunVxt("-e 'break add " + address + " -t Thread0_1; watch 0x1108 write 8 -t Thread0_1; " +
                            "break list; wait; break disable 1; break remove 2; break list'");
  ASSERT_EQ(run.exitStatus, 0) << run.output;
  EXPECT_TRUE(std::regex_search(
      run.output, std::regex("^breakpoint 1 at " + address + "\n" +
                             "breakpoint 2 on write of 8 byte\\(s\\) at 0x0000000000001108\n" +
                             "1 execution " + address + " Thread0_1 enabled\n" +
                             "2 write 8 0x0000000000001108 Thread0_1 enabled\n" +
                             "Thread0_1 Breakpoint (Execution|Data) at 0x[0-9a-f]{16}: [^\n]+\n" +
                             "breakpoint 1 disabled\nbreakpoint 2 removed\n" +
                             "1 execution " + address + " Thread0_1 disabled\n$")))
      << run.output;
}

}  // namespace
}  // namespace vxt::test
