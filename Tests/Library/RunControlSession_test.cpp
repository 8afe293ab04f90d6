// The whole trace of a short debugging session, compared with the one kept
// in Data/golden: halt a thread, read where it is, step, set a breakpoint,
// go, hit it, remove it, go again.
#include <algorithm>
#include <fstream>
#include <regex>

#include "CallProgramTestSupport.h"

namespace vxt::test {
namespace {

// Tokens and breakpoint ids count up through the process: their values are
// left out.
std::string WithoutToken(const std::string& line) {
  static const std::regex token("(operationToken = )0x[0-9a-f]{16}");
  static const std::regex id("(breakpointId = )[1-9][0-9]*");
  return std::regex_replace(std::regex_replace(line, token, "$1<token>"), id, "$1<id>");
}

TEST_F(CallProgramTest, ADebuggingSessionTracesAsKept) {
  // The thread waits in its last instruction, a jump to itself, so that the
  // halt finds it there.
  Set("rip", kCode + 0x30);
  uint64_t token = 0;
  Done(runControl->Go(kFirstThread, &token), token);
  Stops stops;
  ASSERT_EQ(events->SubscribeRunControlEvents(&Stops::Receive, &stops), 0);
  ClearTrace();

  Done(runControl->Halt(kFirstThread, &token), token);
  EXPECT_EQ(Read("rip"), kCode + 0x30);
  Set("rip", kCode);
  Done(runControl->Step(kFirstThread, VXT_StepType_Into, 1, &token), token);
  const VXT_Breakpoint breakpoint = BreakAt(0x18);
  Done(runControl->Go(kFirstThread, &token), token);
  ASSERT_NE(stops.Wait(2), "none") << "the breakpoint never hit";
  EXPECT_EQ(BreakType(kFirstThread), "Breakpoint");
  EXPECT_EQ(breakpoints->RemoveBreakpointById(breakpoint.breakpointId), 0);
  Done(runControl->Go(kFirstThread, &token), token);

  std::vector<std::string> lines = Trace();
  // The hit is delivered on the target's own thread, before or after the
  // Out line of the Go that let the thread run: it is put after it.
  const auto hit = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
    return line.find("RunControlEventHandler") != std::string::npos && line.find("eventType: 32") != std::string::npos;
  });
  ASSERT_NE(hit, lines.end());
  const std::string hitLine = *hit;
  lines.erase(hit);
  const auto go = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
    return line.rfind("Out InProc_RunControl::Go(", 0) == 0;
  });
  ASSERT_NE(go, lines.end());
  lines.insert(go + 1, hitLine);
  std::transform(lines.begin(), lines.end(), lines.begin(), WithoutToken);

  const std::string golden = std::string(VXT_TEST_DATA_DIR) + "/golden/debug_session_trace.txt";
  const bool same = lines == ReadLines(golden);
  EXPECT_TRUE(same) << "the session's trace is in debug_session_trace.actual.txt of the working directory";
  if (!same) {
    std::ofstream actual("debug_session_trace.actual.txt");
    for (const std::string& line : lines) actual << line << '\n';
  }
  events->UnsubscribeRunControlEvents(&Stops::Receive);
}

}  // namespace
}  // namespace vxt::test
