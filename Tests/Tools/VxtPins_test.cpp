// vxt pins: a probe-mode request shows as the ready pin, and the board
// refuses a change of power-good.
#include <string>

#include <gtest/gtest.h>

#include "VxtRun.h"

namespace vxt::test {
namespace {

TEST(VxtPins, SetShowAndARefusedChange) {
  const VxtRun session = RunVxt("-e 'pins set Pins0 PREQ assert; pins show Pins0'");
  EXPECT_EQ(session.exitStatus, 0);
  EXPECT_NE(session.output.find("PREQ     asserted\nPRDY     asserted\nPWRGOOD  asserted\n"), std::string::npos)
      << session.output;
  const VxtRun refused = RunVxt("pins set Pins0 PWRGOOD deassert");
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_NE(refused.output.find("the target drives PWRGOOD; a probe can only read it"), std::string::npos)
      << refused.output;
}

}  // namespace
}  // namespace vxt::test
