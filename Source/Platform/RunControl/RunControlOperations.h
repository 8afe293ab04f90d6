// The RunControl component's operations on memory, registers and
// instructions, as its table (RunControl.h) holds them. Each does its work
// at once, in the call: a refusal is the call's result, with its message
// posted, and changes nothing; a success writes a token of a receipt that
// has ended already and holds the value read.
#pragma once

#include "RunControl.h"

namespace voxtrel::platform::run_control {

// Memory (MemoryOperations.cpp, AddressOperations.cpp, MemoryFiles.cpp).
uint32_t ReadMemory(uint32_t deviceId, const VXT_Address* address, int32_t byteCount, uint32_t accessWidth,
                    uint64_t* operationToken);
uint32_t WriteMemory(uint32_t deviceId, const VXT_Address* address, int32_t byteCount, uint32_t accessWidth,
                     const BitData* data, uint64_t* operationToken);
uint32_t ReadIO(uint32_t deviceId, int32_t port, uint32_t portByteSize, uint64_t* operationToken);
uint32_t WriteIO(uint32_t deviceId, int32_t port, uint32_t portByteSize, const BitData* value,
                 uint64_t* operationToken);
uint32_t ConvertAddress(uint32_t deviceId, const VXT_Address* sourceAddress, VXT_AddressType destAddressType,
                        VXT_Address* destAddress);
uint32_t AddressToString(const VXT_Address* address, char* buffer);
uint32_t AddressFromString(const char* addressAsString, VXT_Address* address);
uint32_t InvalidateCache(uint32_t deviceId, bool writeModifiedCacheToMainMemory, uint64_t* operationToken);
uint32_t LoadMemory(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                    const VXT_Address* toAddress, const char* fileType, const char* loadOptions,
                    uint64_t* operationToken);
uint32_t SaveMemory(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                    const VXT_Address* toAddress, bool overwriteFile, const char* fileType, const char* saveOptions,
                    uint64_t* operationToken);

// Registers (RegisterOperations.cpp).
uint32_t ReadMsr(uint32_t deviceId, uint32_t msr, uint64_t* operationToken);
uint32_t WriteMsr(uint32_t deviceId, uint32_t msr, const BitData* value, uint64_t* operationToken);
uint32_t ReadMsrs(uint32_t deviceId, const uint32_t* msrs, uint32_t numRegisters, uint64_t* operationTokens);
uint32_t WriteMsrs(uint32_t deviceId, const uint32_t* msrs, uint32_t numRegisters, const BitData* const* values,
                   uint64_t* operationTokens);
uint32_t ReadRegister(uint32_t deviceId, const char* registerName, uint64_t* operationToken);
uint32_t WriteRegister(uint32_t deviceId, const char* registerName, const BitData* value, uint64_t* operationToken);
uint32_t ReadRegisters(uint32_t deviceId, const char* const* registerNames, uint32_t numRegisters,
                       uint64_t* operationTokens);
uint32_t WriteRegisters(uint32_t deviceId, const char* const* registerNames, uint32_t numRegisters,
                        const BitData* const* values, uint64_t* operationTokens);
uint32_t ReadCPUIDValue(uint32_t deviceId, uint32_t inputEax, uint32_t inputEcx, uint32_t whichRegister,
                        uint32_t valueWidthInDwords, uint64_t* operationToken);
uint32_t ReadAPICIDValue(uint32_t deviceId, uint64_t* operationToken);
uint32_t GetNumRegisters(uint32_t deviceId, uint32_t* numRegisters);
uint32_t GetRegisters(uint32_t deviceId, uint32_t maxNumRegisters, char (*registerNames)[kRegisterNameSize]);

// Instructions (AsmDasmOperations.cpp).
uint32_t Assemble(uint32_t deviceId, uint32_t instructionType, const char* instruction,
                  uint64_t instructionAddressOffset, uint32_t maxBufferSize, uint8_t* outputBuffer,
                  uint32_t* numBytesAssembled);
uint32_t Disassemble(uint32_t deviceId, uint32_t instructionType, uint32_t inputBufferSize, const uint8_t* inputBuffer,
                     uint64_t instructionAddressOffset, char* outputBuffer, uint32_t* numBytesDisassembled);

}  // namespace voxtrel::platform::run_control
