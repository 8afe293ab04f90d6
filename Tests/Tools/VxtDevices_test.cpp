// vxt topology, vxt lock and vxt unlock, run as a user runs them.
#include <gtest/gtest.h>

#include <string>

#include "VxtRun.h"

namespace {

using vxt::test::RunVxt;
using vxt::test::VxtRun;

TEST(VxtDevices, TopologyShowsTheDefaultTargetAsATree) {
  const VxtRun run = RunVxt("topology");
  EXPECT_EQ(run.exitStatus, 0) << run.output;
  EXPECT_EQ(run.output,
            "0x01000000  LogicalRoot       Root\n"
            "  0x02000000  TargetDomain      TargetDomain0\n"
            "    0x09000000  LogicalPackage    Package0\n"
            "      0x04000000  LogicalCore       Core0\n"
            "        0x03000000  LogicalThread     Thread0_0\n"
            "        0x03000001  LogicalThread     Thread0_1\n"
            "      0x04000001  LogicalCore       Core1\n"
            "        0x03000002  LogicalThread     Thread1_0\n"
            "        0x03000003  LogicalThread     Thread1_1\n"
            "      0x05000000  LogicalUncore     Uncore0\n"
            "    0x0c000000  Debugport         DebugPort0\n"
            "      0x0d000000  JTAGScanChain     JtagChain0\n"
            "        0x0e000000  TAPController     CpuTap\n"
            "        0x0e000001  TAPController     UncoreTap\n"
            "        0x0e000002  TAPController     ChipsetTap\n"
            "      0x11000000  I2cBus            I2cBus0\n"
            "      0x12000000  PinsInterface     Pins0\n"
            "      0x0f000000  InterfacePort     InterfacePort0\n"
            "    0x0b000000  LogicalGroupCore  CoreGroup0\n");
}

TEST(VxtDevices, TopologyMarksDisabledDevicesAndShowsProperties) {
  const VxtRun run = RunVxt("--config TwoSocketServer topology --properties");
  EXPECT_EQ(run.exitStatus, 0) << run.output;
  for (const char* line : {
           "  0x02000000  TargetDomain      Server {Platform=Voxtrel SimServer, Sockets=2, "
           "MemoryRegion0=ram 0x0 0x1000000, MemoryRegion1=rom 0xFFFF0000 0x10000}\n",
           "        0x04000007  LogicalCore       Core7  (disabled)\n",
           "          0x0300000f  LogicalThread     Thread7_1  (disabled)\n",
       })
    EXPECT_NE(run.output.find(line), std::string::npos) << line << run.output;
}

TEST(VxtDevices, LockTakesDevicesByIdOrIdentifierAndNamesTheirHolder) {
  const VxtRun run = RunVxt("lock Core0 0x04000001");
  EXPECT_EQ(run.exitStatus, 0) << run.output;
  const std::string holder =
      run.output.substr(run.output.find(" by ") + 4, run.output.find('\n') - 4 - run.output.find(" by "));
  EXPECT_EQ(holder.rfind("vxt_", 0), 0u) << run.output;
  EXPECT_EQ(run.output, "locked    0x04000000  Core0  by " + holder + "\n" + "locked    0x04000001  Core1  by " +
                            holder + "\n" + "Locks are released when vxt ends.\n");
}

TEST(VxtDevices, NamesThatAreNoDeviceOrSeveralAreRefused) {
  struct Case {
    const char* arguments;
    const char* output;
  };
  const Case cases[] = {
      {"lock Core9", "vxt: no device is named 'Core9'\n"},
      {"--config HostWithBmc lock DebugPort0",
       "vxt: 'DebugPort0' names a device in several target domains; write <domain>/DebugPort0\n"},
      {"unlock 0x04000009",
       "vxt: GetIdentifierForDeviceId failed with 0x80040004: TargetManager.GetIdentifierForDeviceId knows no device "
       "0x04000009\n"},
  };
  for (const Case& refused : cases) {
    const VxtRun run = RunVxt(refused.arguments);
    EXPECT_EQ(run.exitStatus, 1) << refused.arguments;
    EXPECT_EQ(run.output, refused.output) << refused.arguments;
  }
  const VxtRun qualified = RunVxt("--config HostWithBmc lock Bmc/DebugPort0");
  EXPECT_EQ(qualified.exitStatus, 0) << qualified.output;
  EXPECT_EQ(qualified.output.rfind("locked    0x0c000001  DebugPort0  by vxt_", 0), 0u) << qualified.output;
}

TEST(VxtDevices, UnlockBreaksOnlyLocksThatAreHeld) {
  const VxtRun run = RunVxt("unlock Core0 Uncore0");
  EXPECT_EQ(run.exitStatus, 0) << run.output;
  EXPECT_EQ(run.output, "free      0x04000000  Core0\nfree      0x05000000  Uncore0\n");
}

}  // namespace
