// vxt dma and vxt stateport: bytes written by DMA read back in one session,
// a refused transfer names its cause, and state ports list, write and read.
#include <string>

#include <gtest/gtest.h>

#include "VxtRun.h"

namespace vxt::test {
namespace {

TEST(VxtSideband, DmaWritesAndReadsBackInASession) {
  const VxtRun session = RunVxt(
      "-e 'dma write Thread0_0 0x200000 1 2 0xff; dma read Thread0_0 0x200000 4 --method DebugPort'");
  EXPECT_EQ(session.exitStatus, 0);
  EXPECT_EQ(session.output, "wrote 3 byte(s) by SystemBus\n01 02 ff 00\n");

  const VxtRun hole = RunVxt("dma read TargetDomain0 0x2000000 4");
  EXPECT_EQ(hole.exitStatus, 1);
  EXPECT_NE(hole.output.find("SystemBus of 0x02000000 (TargetDomain0): reading 0x4 bytes at physical 0x2000000"),
            std::string::npos)
      << hole.output;
}

TEST(VxtSideband, StatePortsListWriteAndRead) {
  const VxtRun list = RunVxt("stateport list TargetDomain0");
  ASSERT_EQ(list.exitStatus, 0) << list.output;
  EXPECT_EQ(list.output,
            "PostCode  1 byte(s)\nThreadRunState  1 byte(s)  [Thread]\nScratch  4 byte(s)  [Bank, Index]\n");

  const VxtRun session = RunVxt(
      "-e 'stateport read TargetDomain0 Scratch 1 2; stateport write TargetDomain0 Scratch 0x42 1 2; "
      "stateport read TargetDomain0 Scratch 1 2'");
  EXPECT_EQ(session.exitStatus, 0);
  EXPECT_EQ(session.output, "0x5a5a5a5a\nwrote 0x42 to Scratch\n0x42\n");
}

}  // namespace
}  // namespace vxt::test
