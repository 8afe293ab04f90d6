// vxt i2c: a scan finds the described devices, and bytes written to the
// EEPROM in a session read back through an address pointer.
#include <string>

#include <gtest/gtest.h>

#include "VxtRun.h"

namespace vxt::test {
namespace {

TEST(VxtI2c, ScanWriteAndReadBack) {
  const VxtRun scan = RunVxt("i2c scan I2cBus0");
  ASSERT_EQ(scan.exitStatus, 0) << scan.output;
  EXPECT_NE(scan.output.find("\n40: -- -- -- -- -- -- -- -- -- -- -- -- 4c -- -- --\n50: 50 -- "), std::string::npos)
      << scan.output;

  const VxtRun session = RunVxt("-e 'i2c write I2cBus0 0x50 0 0x20 0xde 0xad; i2c read I2cBus0 0x50 3 0 0x1f'");
  EXPECT_EQ(session.exitStatus, 0);
  EXPECT_EQ(session.output, "wrote 4 byte(s)\nff de ad\n");

  const VxtRun absent = RunVxt("i2c read I2cBus0 0x51 1");
  EXPECT_EQ(absent.exitStatus, 1);
  EXPECT_EQ(absent.output, "vxt: I2c.BundleScan: no device answers at address 0x51 on bus I2cBus0 (NACK)\n");
}

}  // namespace
}  // namespace vxt::test
