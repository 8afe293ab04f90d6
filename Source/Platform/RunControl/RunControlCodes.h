// Internal codes the RunControl component refuses with, and how a refusal
// is posted: every one carries a whole sentence for the client.
#pragma once

#include <cstdint>
#include <string>

#include "../Cpu/CpuTypes.h"
#include "../Target/Failure.h"

namespace voxtrel::platform::run_control {

inline constexpr uint32_t kInvalidArgument = 0x20000;  // Text that is no instruction, bytes that are none
inline constexpr uint32_t kValueOutOfRange = 0x20001;
inline constexpr uint32_t kNotSupported = 0x20002;
inline constexpr uint32_t kUnknownDevice = 0x20005;
inline constexpr uint32_t kStructureSize = 0x2000a;
inline constexpr uint32_t kBufferTooSmall = 0x2000b;
inline constexpr uint32_t kWrongDeviceType = 0x2000d;
inline constexpr uint32_t kNotInitialized = 0x20010;
inline constexpr uint32_t kAccessDenied = 0x20012;
inline constexpr uint32_t kOperationFailed = 0x20004;
inline constexpr uint32_t kThreadNotAvailable = 0x1c0017;
inline constexpr uint32_t kRegisterNotFound = 0x1e0000;
inline constexpr uint32_t kRegisterAccessFailed = 0x1e0001;
inline constexpr uint32_t kMemoryWriteFailed = 0x1f0001;
inline constexpr uint32_t kInvalidAddress = 0x1f0002;
inline constexpr uint32_t kAddressTypeNotSupported = 0x1f0003;
inline constexpr uint32_t kMemoryLengthInvalid = 0x1f0005;
inline constexpr uint32_t kAddressTranslationFailed = 0x1f0007;
inline constexpr uint32_t kMemoryNotAccessible = 0x1f0008;

// The refusal of a CPU backend call, with what was being done: "reading
// 0x10 bytes at physical 0xA0000: the range is not mapped".
target::Failure CpuFailure(cpu::CpuResult result, const std::string& what);

// "0x" and lower-case hexadecimal digits, as few as the value needs.
std::string HexText(uint64_t value);

}  // namespace voxtrel::platform::run_control
