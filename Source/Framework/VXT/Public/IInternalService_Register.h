// Service 9: a thread's registers by name, its model-specific registers,
// CPUID and APIC id.
//
// Reads and writes run in the background from the caller's point of view:
// each gives one operation token per register, and a read's value comes
// back as the token's value (OperationReceipt service), as wide as the
// register. Names are those GetRegisters lists ("rax", "eflags", "cr0",
// ...), in any case.
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Records.h"

// Characters of one name of GetRegisters, terminating zero included.
inline constexpr uint32_t VXT_REGISTER_NAME_SIZE = 64;

class IInternalService_Register {
 public:
  virtual ~IInternalService_Register() = default;

  virtual VXT_Result ReadMsr(uint32_t deviceId, uint32_t msr, uint64_t* operationToken) = 0;
  virtual VXT_Result WriteMsr(uint32_t deviceId, uint32_t msr, const VXT_BitData* value, uint64_t* operationToken) = 0;
  // `operationTokens` receives numRegisters tokens.
  virtual VXT_Result ReadMsrs(uint32_t deviceId, const uint32_t* msrs, uint64_t* operationTokens,
                              uint32_t numRegisters) = 0;
  virtual VXT_Result WriteMsrs(uint32_t deviceId, const uint32_t* msrs, const VXT_BitData* values,
                               uint64_t* operationTokens, uint32_t numRegisters) = 0;
  virtual VXT_Result ReadRegister(uint32_t deviceId, const char* registerName, uint64_t* operationToken) = 0;
  virtual VXT_Result WriteRegister(uint32_t deviceId, const char* registerName, const VXT_BitData* value,
                                   uint64_t* operationToken) = 0;
  virtual VXT_Result ReadRegisters(uint32_t deviceId, const char* const* registerNames, uint64_t* operationTokens,
                                   uint32_t numRegisters) = 0;
  virtual VXT_Result WriteRegisters(uint32_t deviceId, const char* const* registerNames, const VXT_BitData* values,
                                    uint64_t* operationTokens, uint32_t numRegisters) = 0;
  // The value is the 32-bit register `whichRegister` of CPUID leaf inputEax,
  // subleaf inputEcx.
  virtual VXT_Result ReadCPUIDValue(uint32_t deviceId, uint32_t inputEax, uint32_t inputEcx,
                                    VXT_CpuidRegister whichRegister, uint64_t* operationToken) = 0;
  virtual VXT_Result ReadAPICIDValue(uint32_t deviceId, uint64_t* operationToken) = 0;
  virtual VXT_Result GetNumRegisters(uint32_t deviceId, uint32_t* numRegisters) = 0;
  // Names of VXT_REGISTER_NAME_SIZE characters, one after the other.
  virtual VXT_Result GetRegisters(uint32_t deviceId, uint32_t maxNumRegisters,
                                  char (*registerNames)[VXT_REGISTER_NAME_SIZE]) = 0;
};
