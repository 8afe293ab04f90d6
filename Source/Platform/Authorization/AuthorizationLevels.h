// The authorization levels a device offers, from its "authorization" member
// (or its nearest ancestor's), lowest first:
//
//   "authorization": [
//     { "level": "Public" },
//     { "level": "Debug", "grants": ["WriteMsr"],
//       "users": [ { "name": "debugger", "passwordHash": "$6$rounds=5000$..." } ] }
//   ]
//
// The first level is in force until a client is authorized for another. A
// user named at a level may have it and every level below it. An operation
// that a level "grants" is refused on the device below that level.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "PlatformApi.h"
#include "Target/Failure.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::authorization {

inline constexpr size_t kMaxLevelNameLength = 63;
inline constexpr uint32_t kUnknownLevel = 0x20001;  // No level of that name on the device
inline constexpr uint32_t kNotAuthorized = 0x20002;  // No credentials, wrong ones, or a level too low

struct User {
  std::string name;
  std::string passwordHash;
};

struct Level {
  std::string name;
  std::vector<std::string> grants;
  std::vector<User> users;
};

// 0 when the level in force on `deviceId` (or on the device whose levels
// it shares) grants `operation`, or none of its levels names it; else the
// refusal's code, posted through `request`.
VOXTREL_PLATFORM_API uint32_t RequireGrant(target_manager::Request& request, uint32_t deviceId,
                                           std::string_view operation);
// The same, as a refusal that the caller posts; none for a device that is
// not known (the caller's own checks report it).
VOXTREL_PLATFORM_API target::Outcome GrantOutcome(uint32_t deviceId, std::string_view operation);

}  // namespace voxtrel::platform::authorization
