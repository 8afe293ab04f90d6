// The InterfacePort service: reads a port's configuration and state, opens
// and closes its window and moves bytes through a caller's buffer or a
// shared memory region. The InterfacePort component does the work; the
// service checks and copies the configuration record, turns a region's
// handle into an address and counts the transfers by the port's identifier.
// It keeps no state after initialization and takes no lock.
#pragma once

#include "IInternalService_InterfacePort.h"
#include "InterfacePort.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_InterfacePort : public SingletonService<InProc_InterfacePort>, public IInternalService_InterfacePort {
 public:
  static InProc_InterfacePort& Instance();

  VXT_Result GetInterfacePortConfiguration(uint32_t portId, VXT_InterfacePortConfiguration* configuration) override;
  VXT_Result GetInterfacePortState(uint32_t portId, VXT_InterfacePortState* state) override;
  VXT_Result Read(uint32_t portId, uint32_t bufferSize, uint8_t* buffer, uint32_t* returnedDataLength) override;
  VXT_Result OpenWindow(uint32_t portId, const VXT_InterfacePortConfiguration* configuration) override;
  VXT_Result CloseWindow(uint32_t portId) override;
  VXT_Result IsDataAvailable(uint32_t portId, uint32_t* isDataAvailable) override;
  VXT_Result Write(uint32_t portId, uint32_t bufferSize, const uint8_t* buffer, uint32_t* writtenDataLength) override;
  VXT_Result ReadToSharedMemory(uint32_t portId, uint32_t bytesToRead, uint32_t bufferOffset,
                                uint64_t sharedMemoryHandle, uint32_t* returnedDataLength) override;
  VXT_Result WriteFromSharedMemory(uint32_t portId, uint32_t bytesToWrite, uint32_t bufferOffset,
                                   uint64_t sharedMemoryHandle, uint32_t* writtenDataLength) override;

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const InterfacePortComponent* interfacePort = nullptr;
};

}  // namespace vxt
