// vxt port and vxt console: the firmware's UART text arrives on the
// interface port, console replays it from the start, and bytes written are
// taken whole.
#include <string>

#include <gtest/gtest.h>

#include "VxtRun.h"

namespace vxt::test {
namespace {

TEST(VxtPort, WatchSeesTheFirmwareConsoleReplaysItAndWriteSendsEscapes) {
  const std::string banner = "Voxtrel firmware: long mode reached\r\n";
  const VxtRun session = RunVxt("-e 'port watch --count 37 --timeout 60; console; port write ok\\r\\x0a'");
  ASSERT_EQ(session.exitStatus, 0) << session.output;
  EXPECT_EQ(session.output.rfind(banner + banner, 0), 0u) << session.output;
  EXPECT_NE(session.output.find("\nwrote 4 of 4 byte(s)\n"), std::string::npos) << session.output;

  const VxtRun refused = RunVxt("port open --mode sideways");
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_EQ(refused.output, "vxt: unknown mode 'sideways' (read, write or readwrite)\n");
}

}  // namespace
}  // namespace vxt::test
