// The Authorization component: it holds a client's credentials, judges them
// and keeps the authorization level in force on each device. Its operations
// let no exception out: the service calls them without a catch-all.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

struct AuthorizationComponent {
  // Either may be null: null credentials are held as given and prove nothing.
  uint32_t (*SetCredentials)(const char* username, const char* password);
  uint32_t (*ClearCredentials)();
  uint32_t (*HasCredentials)(uint8_t* hasCredentials);
  uint32_t (*GetNumAuthorizationLevels)(uint32_t deviceId, uint32_t* numLevelNames);
  // Fills the first numLevelNames 64-byte fields of `levelNames`.
  uint32_t (*GetAuthorizationLevels)(uint32_t deviceId, uint32_t numLevelNames, char* levelNames);
  // Writes the level in force into a 64-byte buffer.
  uint32_t (*QueryAuthorizationLevel)(uint32_t deviceId, char* levelName);
  // Grants the level when the held credentials are those of a user the
  // device grants it to.
  uint32_t (*Authorize)(uint32_t deviceId, const char* levelName);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetAuthorization(const AuthorizationComponent** table);
