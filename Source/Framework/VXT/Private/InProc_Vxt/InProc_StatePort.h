// The StatePort service: reads, writes and read-modify-writes of a device's
// named state ports, and what a port is (access size, description, address
// fields), all done by the StatePort component. Ten operations that the
// component does not offer trace their arguments and are refused with "not
// implemented". The service keeps no state and takes no lock of its own.
#pragma once

#include <cstdint>

#include "IInternalService_StatePort.h"
#include "SingletonService.h"
#include "StatePort.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_StatePort : public SingletonService<InProc_StatePort>, public IInternalService_StatePort {
 public:
  static InProc_StatePort& Instance();

  // Binds the component table and starts the component. Runs inside
  // FinishInitialization's error context; a non-zero result stops it.
  uint32_t Initialize();

  VXT_Result Read(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                  const uint64_t* addressFields, uint64_t* operationToken) override;
  VXT_Result Write(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                   const uint64_t* addressFields, uint64_t value, uint64_t* operationToken) override;
  VXT_Result ReadModifyWrite(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                             const uint64_t* addressFields, uint64_t value, uint64_t mask,
                             uint64_t* operationToken) override;
  VXT_Result Poll(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                  const uint64_t* addressFields, uint64_t value, uint64_t mask, uint64_t timeout,
                  uint64_t* operationToken) override;
  VXT_Result BulkRead(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                      const uint64_t* addressFieldsFrom, const uint64_t* addressFieldsTo,
                      uint32_t maxNumOperationTokens, uint64_t* operationTokens) override;
  VXT_Result BulkWrite(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                       const uint64_t* addressFieldsFrom, const uint64_t* addressFieldsTo, uint32_t numValues,
                       const uint64_t* values, uint64_t* operationTokens) override;
  VXT_Result BulkInit(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                      const uint64_t* addressFieldsFrom, const uint64_t* addressFieldsTo, uint64_t value,
                      uint32_t maxNumOperationTokens, uint64_t* operationTokens) override;
  VXT_Result GetNumStatePorts(uint32_t deviceId, uint32_t* numStatePorts) override;
  VXT_Result GetStatePorts(uint32_t deviceId, uint32_t maxNumStatePorts,
                           char (*statePortNames)[VXT_STATE_PORT_NAME_SIZE]) override;
  VXT_Result GetAccessSize(uint32_t deviceId, const char* statePortName, uint32_t* accessSize) override;
  VXT_Result GetSupportedOperations(uint32_t deviceId, const char* statePortName,
                                    uint64_t* supportedOperations) override;
  VXT_Result GetStatePortDescription(uint32_t deviceId, const char* statePortName, char* description,
                                     uint32_t descriptionSize, uint32_t* actualStringSize) override;
  VXT_Result GetNumAddressFields(uint32_t deviceId, const char* statePortName, uint32_t* numAddressFields) override;
  VXT_Result GetAddressFields(uint32_t deviceId, const char* statePortName, uint32_t maxNumAddressFields,
                              char (*addressFields)[VXT_STATE_PORT_NAME_SIZE]) override;
  VXT_Result GetNumAddressFieldEnums(uint32_t deviceId, const char* statePortName, const char* addressFieldName,
                                     uint32_t* numAddressFieldEnums) override;
  VXT_Result GetAddressFieldEnums(uint32_t deviceId, const char* statePortName, const char* addressFieldName,
                                  uint32_t maxNumAddressFieldEnums,
                                  char (*addressFieldEnums)[VXT_STATE_PORT_NAME_SIZE]) override;
  VXT_Result GetAddressFieldValidValues(uint32_t deviceId, const char* statePortName, const char* addressFieldName,
                                        uint64_t* minValue, uint64_t* maxValue) override;
  VXT_Result GetAddressFieldDescription(uint32_t deviceId, const char* statePortName, const char* addressFieldName,
                                        char* description, uint32_t descriptionSize,
                                        uint32_t* actualStringSize) override;
  VXT_Result SetImplicitAddressFieldValue(uint32_t deviceId, const char* statePortName, const char* addressFieldName,
                                          uint64_t value) override;
  VXT_Result GetImplicitAddressFieldValue(uint32_t deviceId, const char* statePortName, const char* addressFieldName,
                                          uint64_t* value) override;

  // Component tables. Bound by FinishInitialization.
  const StatePortComponent* statePort = nullptr;
  frame::ServiceLogger logger;
};

}  // namespace vxt
