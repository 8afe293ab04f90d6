// Reading and writing a thread's memory by any kind of address. A transfer
// is whole or nothing: a write that fails part way puts back what it had
// changed, so that a refused write leaves memory as it was.
#pragma once

#include <cstdint>
#include <span>

#include "../Cpu/CpuBackend.h"
#include "../Target/Failure.h"
#include "PlatformApi.h"
#include "VXT_Records.h"

namespace voxtrel::platform::run_control {

VOXTREL_PLATFORM_API target::Outcome ReadMemoryAt(cpu::CpuBackend& backend, uint32_t thread, const VXT_Address& address,
                                                  std::span<uint8_t> bytes);
VOXTREL_PLATFORM_API target::Outcome WriteMemoryAt(cpu::CpuBackend& backend, uint32_t thread,
                                                   const VXT_Address& address, std::span<const uint8_t> bytes);

// Refuses a transfer larger than one may be, before room is set aside for it.
target::Outcome CheckTransferSize(uint64_t size);
// Refuses a null record or one whose structureSize is not VXT_ADDRESS_SIZE,
// naming it `argument`.
target::Outcome CheckAddressRecord(const VXT_Address* address, const char* argument);
// Refuses a null pointer, naming it `argument`.
target::Outcome CheckNotNull(const void* pointer, const char* argument);

}  // namespace voxtrel::platform::run_control
