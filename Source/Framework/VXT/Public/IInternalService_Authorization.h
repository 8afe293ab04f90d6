// Service 20: credentials and the authorization levels of devices. The
// credentials go to the Authorization component, which judges them; the
// library never keeps, traces or counts a password.
#pragma once

#include <cstdint>

#include "VXT_ErrorCodes.h"

// The size of each field of a `levelNames` array, the name then a zero.
inline constexpr uint32_t VXT_AUTHORIZATION_LEVEL_NAME_SIZE = 64;

class IInternalService_Authorization {
 public:
  virtual ~IInternalService_Authorization() = default;

  virtual VXT_Result SetCredentials(const char* username, const char* password) = 0;
  virtual VXT_Result ClearCredentials() = 0;
  virtual VXT_Result GetNumAuthorizationLevels(uint32_t deviceId, uint32_t* numLevelNames) = 0;
  // `levelNames`: numLevelNames fields of VXT_AUTHORIZATION_LEVEL_NAME_SIZE bytes, one after the other.
  virtual VXT_Result GetAuthorizationLevels(uint32_t deviceId, uint32_t numLevelNames, char* levelNames) = 0;
  // `levelName`: a buffer of VXT_AUTHORIZATION_LEVEL_NAME_SIZE bytes.
  virtual VXT_Result QueryAuthorizationLevel(uint32_t deviceId, char* levelName) = 0;
  virtual VXT_Result Authorize(uint32_t deviceId, const char* levelName) = 0;
  // `hasCredentials`: 1 or 0; 0 also when the call fails.
  virtual VXT_Result HasCredentials(uint32_t* hasCredentials) = 0;
};
