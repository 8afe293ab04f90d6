// The decoder's bounds: what keeps an input from hanging the fuzzer or
// making it report the client's own mistakes.
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ArgumentPool.h"
#include "CallSequence.h"

namespace vxt::fuzz {
namespace {

TEST(FuzzDecoder, RunsNoMoreCallsThanItsBound) {
  // Every call is FinishInitialization with no client: three bytes each.
  std::vector<uint8_t> bytes;
  for (size_t call = 0; call < 3 * kMaxCalls; ++call) bytes.insert(bytes.end(), {kFinishInitialization, 0, 0});
  EXPECT_EQ(RunCallSequence(bytes.data(), bytes.size()).calls, kMaxCalls);
}

TEST(FuzzDecoder, ReadsWhatANumberIsForFromItsName) {
  const std::vector<std::pair<std::string, Role>> cases = {
      {"numValues", Role::Count},       {"maxNumDeviceIds", Role::Count}, {"deviceIdCount", Role::Count},
      {"inputBufferSize", Role::Count}, {"bitOffset", Role::Count},       {"bitsToAdd", Role::Count},
      {"numBits", Role::Count},         {"timeout", Role::Duration},      {"pulseWidth", Role::Duration},
      {"deviceId", Role::Other},        {"operationToken", Role::Other},  {"value", Role::Other},
  };
  for (const auto& [name, role] : cases) EXPECT_EQ(RoleOf(name), role) << name;
}

}  // namespace
}  // namespace vxt::fuzz
