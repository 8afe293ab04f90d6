// Service 17: the target's interface ports, byte channels to and from the
// target. A window opened on a port gives the direction and how arriving
// bytes are captured; bytes move through a caller's buffer or a shared
// memory region (General service).
#pragma once

#include <cstdint>

#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

class IInternalService_InterfacePort {
 public:
  virtual ~IInternalService_InterfacePort() = default;

  // The configuration of the port's window (the last one opened).
  virtual VXT_Result GetInterfacePortConfiguration(uint32_t portId,
                                                   VXT_InterfacePortConfiguration* configuration) = 0;
  virtual VXT_Result GetInterfacePortState(uint32_t portId, VXT_InterfacePortState* state) = 0;
  // Takes at most bufferSize of the bytes waiting; never waits for more.
  virtual VXT_Result Read(uint32_t portId, uint32_t bufferSize, uint8_t* buffer, uint32_t* returnedDataLength) = 0;
  virtual VXT_Result OpenWindow(uint32_t portId, const VXT_InterfacePortConfiguration* configuration) = 0;
  virtual VXT_Result CloseWindow(uint32_t portId) = 0;
  virtual VXT_Result IsDataAvailable(uint32_t portId, uint32_t* isDataAvailable) = 0;
  virtual VXT_Result Write(uint32_t portId, uint32_t bufferSize, const uint8_t* buffer,
                           uint32_t* writtenDataLength) = 0;
  // The bytes go to, or come from, the region at `bufferOffset`.
  virtual VXT_Result ReadToSharedMemory(uint32_t portId, uint32_t bytesToRead, uint32_t bufferOffset,
                                        uint64_t sharedMemoryHandle, uint32_t* returnedDataLength) = 0;
  virtual VXT_Result WriteFromSharedMemory(uint32_t portId, uint32_t bytesToWrite, uint32_t bufferOffset,
                                           uint64_t sharedMemoryHandle, uint32_t* writtenDataLength) = 0;
};
