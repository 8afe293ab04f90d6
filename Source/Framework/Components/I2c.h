// The I2c component. Its operations are declared as the services that
// call them are built; the getter answers from library load on.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

struct I2cComponent {};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetI2c(const I2cComponent** table);
