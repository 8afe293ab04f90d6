// The Register service: a thread's registers by name, its model-specific
// registers, CPUID and APIC id, all done by the RunControl component. The
// service checks the arguments, walks the name arrays, and hands the
// component the client's own vectors for the writes. It keeps no state and
// takes no lock of its own.
#pragma once

#include <cstdint>

#include "IInternalService_Register.h"
#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

static_assert(VXT_REGISTER_NAME_SIZE == kRegisterNameSize);

class InProc_Register : public SingletonService<InProc_Register>, public IInternalService_Register {
 public:
  static InProc_Register& Instance();

  VXT_Result ReadMsr(uint32_t deviceId, uint32_t msr, uint64_t* operationToken) override;
  VXT_Result WriteMsr(uint32_t deviceId, uint32_t msr, const VXT_BitData* value, uint64_t* operationToken) override;
  VXT_Result ReadMsrs(uint32_t deviceId, const uint32_t* msrs, uint64_t* operationTokens,
                      uint32_t numRegisters) override;
  VXT_Result WriteMsrs(uint32_t deviceId, const uint32_t* msrs, const VXT_BitData* values, uint64_t* operationTokens,
                       uint32_t numRegisters) override;
  VXT_Result ReadRegister(uint32_t deviceId, const char* registerName, uint64_t* operationToken) override;
  VXT_Result WriteRegister(uint32_t deviceId, const char* registerName, const VXT_BitData* value,
                           uint64_t* operationToken) override;
  VXT_Result ReadRegisters(uint32_t deviceId, const char* const* registerNames, uint64_t* operationTokens,
                           uint32_t numRegisters) override;
  VXT_Result WriteRegisters(uint32_t deviceId, const char* const* registerNames, const VXT_BitData* values,
                            uint64_t* operationTokens, uint32_t numRegisters) override;
  VXT_Result ReadCPUIDValue(uint32_t deviceId, uint32_t inputEax, uint32_t inputEcx, VXT_CpuidRegister whichRegister,
                            uint64_t* operationToken) override;
  VXT_Result ReadAPICIDValue(uint32_t deviceId, uint64_t* operationToken) override;
  VXT_Result GetNumRegisters(uint32_t deviceId, uint32_t* numRegisters) override;
  VXT_Result GetRegisters(uint32_t deviceId, uint32_t maxNumRegisters,
                          char (*registerNames)[VXT_REGISTER_NAME_SIZE]) override;

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
};

}  // namespace vxt
