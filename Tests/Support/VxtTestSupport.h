// Shared helpers of the test suites.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "PlatformTestControl.h"
#include "VXT_Client.h"
#include "VXT_Topology.h"

namespace vxt::test {

// A client record of the given form; identifier copied and terminated.
VXT_Client MakeClient(uint32_t clientId, const std::string& identifier, uint32_t structureSize = VXT_CLIENT_SIZE);

// A TAP controller record as a client declares it to the Device service.
VXT_TapController MakeTap(const char* deviceType, const char* deviceSubType, const char* stepping, uint32_t irLength);

// Every test starts from a quiet platform that writes all levels and
// captures what is written.
class PlatformTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  static std::vector<std::string> Trace() { return voxtrel::testing::CapturedTraceTexts(); }
  static void ClearTrace() { voxtrel::testing::ClearCapturedTrace(); }
};

// Lines of a text file, without their line ends.
std::vector<std::string> ReadLines(const std::string& path);

}  // namespace vxt::test
