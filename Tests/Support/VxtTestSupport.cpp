#include "VxtTestSupport.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace vxt::test {

VXT_Client MakeClient(uint32_t clientId, const std::string& identifier, uint32_t structureSize) {
  VXT_Client client{};
  client.structureSize = structureSize;
  client.clientId = clientId;
  const size_t length = std::min(identifier.size(), sizeof client.identifier - 1);
  std::memcpy(client.identifier, identifier.data(), length);
  return client;
}

VXT_TapController MakeTap(const char* deviceType, const char* deviceSubType, const char* stepping, uint32_t irLength) {
  VXT_TapController tap{};
  tap.structureSize = VXT_TAP_CONTROLLER_SIZE;
  std::snprintf(tap.deviceType, sizeof tap.deviceType, "%s", deviceType);
  std::snprintf(tap.deviceSubType, sizeof tap.deviceSubType, "%s", deviceSubType);
  std::snprintf(tap.stepping, sizeof tap.stepping, "%s", stepping);
  tap.irLength = irLength;
  return tap;
}

void PlatformTest::SetUp() {
  voxtrel::testing::ResetTestControl();
  voxtrel::testing::SetLogLevel(1);
  voxtrel::testing::StartTraceCapture();
}

void PlatformTest::TearDown() { voxtrel::testing::ResetTestControl(); }

std::vector<std::string> ReadLines(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

}  // namespace vxt::test
