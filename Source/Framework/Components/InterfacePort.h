// The InterfacePort component: the target's interface ports.
#pragma once

#include <cstdint>

#include "PlatformApi.h"
#include "VXT_Records.h"

// Receives the component's event record (kind at offset 4, values at 8,
// port id at 16) and returns an internal code.
using InterfacePortEventCallbackFn = uint32_t (*)(const void* record);

struct InterfacePortComponent {
  uint32_t (*Initialize)();
  uint32_t (*SetEventCallback)(InterfacePortEventCallbackFn callback);
  // The port's window and its bytes. Every pointer is checked here.
  uint32_t (*GetInterfacePortConfiguration)(uint32_t portId, VXT_InterfacePortConfiguration* configuration);
  uint32_t (*GetInterfacePortState)(uint32_t portId, VXT_InterfacePortState* state);
  uint32_t (*Read)(uint32_t portId, uint32_t bufferSize, uint8_t* buffer, uint32_t* returnedDataLength);
  uint32_t (*OpenWindow)(uint32_t portId, const VXT_InterfacePortConfiguration* configuration);
  uint32_t (*CloseWindow)(uint32_t portId);
  uint32_t (*IsDataAvailable)(uint32_t portId, uint8_t* isDataAvailable);
  uint32_t (*Write)(uint32_t portId, uint32_t bufferSize, const uint8_t* buffer, uint32_t* writtenDataLength);
};

VOXTREL_PLATFORM_API uint32_t Voxtrel_GetInterfacePort(const InterfacePortComponent** table);
