// The Memory service: target memory, IO ports, address conversion and
// memory images, all done by the RunControl component. The service checks
// addresses, sizes and access widths, turns the client's vectors into
// library objects for the writes, and refuses the VMCS operations itself.
// It keeps no state and takes no lock of its own.
#pragma once

#include <cstdint>

#include "ArgumentErrorReporter.h"
#include "IInternalService_Memory.h"
#include "RunControl.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

// Codes of the memory checks.
namespace code {
inline constexpr uint32_t kCountNotPositive = 0x2000e;
inline constexpr uint32_t kInvalidMemoryAccessWidth = 0x1f0006;
}  // namespace code

class InProc_Memory : public SingletonService<InProc_Memory>, public IInternalService_Memory {
 public:
  static InProc_Memory& Instance();

  VXT_Result ReadMemory(uint32_t deviceId, const VXT_Address* address, int32_t byteCount,
                        uint64_t* operationToken) override;
  VXT_Result WriteMemory(uint32_t deviceId, const VXT_Address* address, int32_t byteCount, const VXT_BitData* data,
                         uint64_t* operationToken) override;
  VXT_Result ReadIO(uint32_t deviceId, int32_t port, uint32_t portByteSize, uint64_t* operationToken) override;
  VXT_Result WriteIO(uint32_t deviceId, int32_t port, uint32_t portByteSize, uint32_t value,
                     uint64_t* operationToken) override;
  VXT_Result VMCSRead32(uint32_t deviceId, uint32_t fieldOffset, uint64_t* operationToken) override;
  VXT_Result VMCSRead64(uint32_t deviceId, uint64_t fieldOffset, uint64_t* operationToken) override;
  VXT_Result VMCSWrite32(uint32_t deviceId, uint32_t fieldOffset, uint32_t value, uint64_t* operationToken) override;
  VXT_Result VMCSWrite64(uint32_t deviceId, uint64_t fieldOffset, uint64_t value, uint64_t* operationToken) override;
  VXT_Result ConvertAddress(uint32_t deviceId, const VXT_Address* sourceAddress, VXT_AddressType destAddressType,
                            VXT_Address* destAddress) override;
  VXT_Result AddressToString(const VXT_Address* address, char* buffer) override;
  VXT_Result AddressFromString(const char* addressAsString, VXT_Address* address) override;
  VXT_Result InvalidateCache(uint32_t deviceId, uint32_t writeModifiedCacheToMainMemory,
                             uint64_t* operationToken) override;
  VXT_Result ReadMemoryWithAccessWidth(uint32_t deviceId, const VXT_Address* address, int32_t count,
                                       uint32_t accessWidth, uint64_t* operationToken) override;
  VXT_Result WriteMemoryWithAccessWidth(uint32_t deviceId, const VXT_Address* address, int32_t count,
                                        uint32_t accessWidth, const VXT_BitData* data,
                                        uint64_t* operationToken) override;
  VXT_Result LoadMemory(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                        const VXT_Address* toAddress, const char* fileType, const char* loadOptions,
                        uint64_t* operationToken) override;
  VXT_Result SaveMemory(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                        const VXT_Address* toAddress, uint32_t overwriteFile, const char* fileType,
                        const char* saveOptions, uint64_t* operationToken) override;

  // --- Internal operations -------------------------------------------------
  // An address record that is there and sized; the short text of a failure
  // goes to `report`. Shared with the services that take addresses.
  static uint32_t _CheckAddress(const VXT_Address* address, const ArgumentErrorReporter& report);

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const RunControlComponent* runControl = nullptr;
};

}  // namespace vxt
