// Names of target configurations, as GetAvailableConfigurations lists them.
#pragma once

#include <cstdint>

// Size of one configuration name, terminating zero included.
inline constexpr uint32_t VXT_CONFIGURATION_NAME_SIZE = 128;

struct VXT_ConfigurationName {
  char name[VXT_CONFIGURATION_NAME_SIZE];
};
