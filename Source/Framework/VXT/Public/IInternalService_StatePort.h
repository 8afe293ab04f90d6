// Service 23: the named state ports of a device. A port has an access size
// and an ordered list of named address fields; a read or write names the
// port and gives one value for each field. Reads and writes give an
// operation token: a read's value is the token's, as wide as the port.
#pragma once

#include <cstdint>

#include "VXT_ErrorCodes.h"

// Characters of one port or address field name, terminating zero included.
inline constexpr uint32_t VXT_STATE_PORT_NAME_SIZE = 64;

class IInternalService_StatePort {
 public:
  virtual ~IInternalService_StatePort() = default;

  virtual VXT_Result Read(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                          const uint64_t* addressFields, uint64_t* operationToken) = 0;
  virtual VXT_Result Write(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                           const uint64_t* addressFields, uint64_t value, uint64_t* operationToken) = 0;
  // Bits of `mask` take those of `value`; the token's value is the port's former value.
  virtual VXT_Result ReadModifyWrite(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                                     const uint64_t* addressFields, uint64_t value, uint64_t mask,
                                     uint64_t* operationToken) = 0;
  // Not supported: traced, then refused with "not implemented".
  virtual VXT_Result Poll(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                          const uint64_t* addressFields, uint64_t value, uint64_t mask, uint64_t timeout,
                          uint64_t* operationToken) = 0;
  virtual VXT_Result BulkRead(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                              const uint64_t* addressFieldsFrom, const uint64_t* addressFieldsTo,
                              uint32_t maxNumOperationTokens, uint64_t* operationTokens) = 0;
  virtual VXT_Result BulkWrite(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                               const uint64_t* addressFieldsFrom, const uint64_t* addressFieldsTo, uint32_t numValues,
                               const uint64_t* values, uint64_t* operationTokens) = 0;
  virtual VXT_Result BulkInit(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                              const uint64_t* addressFieldsFrom, const uint64_t* addressFieldsTo, uint64_t value,
                              uint32_t maxNumOperationTokens, uint64_t* operationTokens) = 0;
  virtual VXT_Result GetNumStatePorts(uint32_t deviceId, uint32_t* numStatePorts) = 0;
  virtual VXT_Result GetStatePorts(uint32_t deviceId, uint32_t maxNumStatePorts,
                                   char (*statePortNames)[VXT_STATE_PORT_NAME_SIZE]) = 0;
  // In bytes: 1, 2, 4 or 8.
  virtual VXT_Result GetAccessSize(uint32_t deviceId, const char* statePortName, uint32_t* accessSize) = 0;
  virtual VXT_Result GetSupportedOperations(uint32_t deviceId, const char* statePortName,
                                            uint64_t* supportedOperations) = 0;
  // Either `description` or `actualStringSize` may be null, not both; the
  // size counts the terminating zero.
  virtual VXT_Result GetStatePortDescription(uint32_t deviceId, const char* statePortName, char* description,
                                             uint32_t descriptionSize, uint32_t* actualStringSize) = 0;
  virtual VXT_Result GetNumAddressFields(uint32_t deviceId, const char* statePortName,
                                         uint32_t* numAddressFields) = 0;
  // Names in buffers of VXT_STATE_PORT_NAME_SIZE characters, in the order a read takes their values.
  virtual VXT_Result GetAddressFields(uint32_t deviceId, const char* statePortName, uint32_t maxNumAddressFields,
                                      char (*addressFields)[VXT_STATE_PORT_NAME_SIZE]) = 0;
  virtual VXT_Result GetNumAddressFieldEnums(uint32_t deviceId, const char* statePortName,
                                             const char* addressFieldName, uint32_t* numAddressFieldEnums) = 0;
  virtual VXT_Result GetAddressFieldEnums(uint32_t deviceId, const char* statePortName, const char* addressFieldName,
                                          uint32_t maxNumAddressFieldEnums,
                                          char (*addressFieldEnums)[VXT_STATE_PORT_NAME_SIZE]) = 0;
  virtual VXT_Result GetAddressFieldValidValues(uint32_t deviceId, const char* statePortName,
                                                const char* addressFieldName, uint64_t* minValue,
                                                uint64_t* maxValue) = 0;
  virtual VXT_Result GetAddressFieldDescription(uint32_t deviceId, const char* statePortName,
                                                const char* addressFieldName, char* description,
                                                uint32_t descriptionSize, uint32_t* actualStringSize) = 0;
  virtual VXT_Result SetImplicitAddressFieldValue(uint32_t deviceId, const char* statePortName,
                                                  const char* addressFieldName, uint64_t value) = 0;
  virtual VXT_Result GetImplicitAddressFieldValue(uint32_t deviceId, const char* statePortName,
                                                  const char* addressFieldName, uint64_t* value) = 0;
};
