// vxt power, reset, precondition, login, logout, probe, scenario and the
// settings commands in sessions, and a mistake of the user.
#include <string>

#include <gtest/gtest.h>

#include "VxtRun.h"

namespace vxt::test {
namespace {

TEST(VxtPower, CycleResetStatusAndLogin) {
  const VxtRun session =
      RunVxt("-e 'power cycle; reset DebugPort0; power status; precondition require \"probe mode\" true; "
             "precondition list; logout' && echo sim-debug | "
             VXT_CLI_PATH " login debugger --level Debug");
  EXPECT_EQ(session.exitStatus, 0) << session.output;
  EXPECT_NE(session.output.find("power cycled\nreset\npower on\nprobe mode: true\n"
                                "1  probe mode  true (default false)\n2  debug enabled  true (default true)\n"
                                "credentials cleared\nauthorized: Debug\n"),
            std::string::npos)
      << session.output;
  const VxtRun settings =
      RunVxt("-e 'probe select VxtSim; scenario select ColdBoot; set TargetDomain0 CacheMode WriteThrough; settings; "
             "revert; probes'");
  EXPECT_EQ(settings.exitStatus, 0) << settings.output;
  EXPECT_NE(settings.output.find("selected VxtSim VXTSIM-0001\nscenario ColdBoot\nCacheMode = WriteThrough\n"
                                 "CacheMode = WriteThrough  (WriteBack, WriteThrough)\nTraceBuffer = 64\n"
                                 "DebugUnlock = Locked  (Locked, Unlocked)\nreverted 1 setting(s)\n"
                                 "VxtSim  VXTSIM-0001  Simulated debug probe on the SimBoard's debug connector\n"),
            std::string::npos)
      << settings.output;
  const VxtRun refused = RunVxt("power nap");
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_NE(refused.output.find("unknown power action 'nap' (cycle or status)"), std::string::npos) << refused.output;
}

}  // namespace
}  // namespace vxt::test
