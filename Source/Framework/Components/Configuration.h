// The Configuration component: target configurations and their parameters.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "VXT_Configuration.h"

struct ConfigurationComponent {
  uint32_t (*SelectConfigurationByFileName)(const char* fileName);
  uint32_t (*SelectConfigurationByName)(const char* configurationName);
  uint32_t (*GetAvailableConfigurationCount)(uint32_t* configurationCount);
  uint32_t (*GetAvailableConfigurations)(uint32_t maxConfigurationCount, VXT_ConfigurationName* configurations);
  uint32_t (*SetConfigurationParameters)(uint32_t parameterCount, const char* const* parameterNames,
                                         const char* const* parameterValues);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetConfiguration(const ConfigurationComponent** table);
