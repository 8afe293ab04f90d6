// The StatePort component: named state ports of the target's devices.
// Reads and writes give the token of an operation receipt; every operation
// returns an internal code, 0 for success.
#pragma once

#include <cstdint>

#include "PlatformApi.h"

struct StatePortComponent {
  uint32_t (*Initialize)();  // Kept first: the library relies on it.
  uint32_t (*Uninitialize)();
  uint32_t (*Read)(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                   const uint64_t* addressFields, uint64_t* operationToken);
  uint32_t (*Write)(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                    const uint64_t* addressFields, uint64_t value, uint64_t* operationToken);
  uint32_t (*ReadModifyWrite)(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                              const uint64_t* addressFields, uint64_t value, uint64_t mask, uint64_t* operationToken);
  uint32_t (*GetNumStatePorts)(uint32_t deviceId, uint32_t* numStatePorts);
  // `statePortNames` holds maxNumStatePorts buffers of 64 characters.
  uint32_t (*GetStatePorts)(uint32_t deviceId, uint32_t maxNumStatePorts, char (*statePortNames)[64]);
  uint32_t (*GetAccessSize)(uint32_t deviceId, const char* statePortName, uint32_t* accessSize);
  uint32_t (*GetStatePortDescription)(uint32_t deviceId, const char* statePortName, char* description,
                                      uint32_t descriptionSize, uint32_t* actualStringSize);
  uint32_t (*GetNumAddressFields)(uint32_t deviceId, const char* statePortName, uint32_t* numAddressFields);
  uint32_t (*GetAddressFields)(uint32_t deviceId, const char* statePortName, uint32_t maxNumAddressFields,
                               char (*addressFields)[64]);
  uint32_t (*GetAddressFieldDescription)(uint32_t deviceId, const char* statePortName, const char* addressFieldName,
                                         char* description, uint32_t descriptionSize, uint32_t* actualStringSize);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetStatePort(const StatePortComponent** table);
