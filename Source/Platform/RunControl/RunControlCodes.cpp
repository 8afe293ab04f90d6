#include "RunControlCodes.h"

#include <cstdio>

namespace voxtrel::platform::run_control {
namespace {

uint32_t CodeOf(cpu::CpuResult result) {
  using cpu::CpuResult;
  switch (result) {
    case CpuResult::Ok:
      return 0;
    case CpuResult::UnknownThread:
      return kThreadNotAvailable;
    case CpuResult::Unmapped:
      return kMemoryNotAccessible;
    case CpuResult::ReadOnly:
      return kMemoryWriteFailed;
    case CpuResult::TooLarge:
      return kMemoryLengthInvalid;
    case CpuResult::BadSize:
      return kValueOutOfRange;
    case CpuResult::UnknownRegister:
      return kRegisterNotFound;
    case CpuResult::ReadOnlyRegister:
      return kRegisterAccessFailed;
    case CpuResult::GeneralProtection:
      return kRegisterAccessFailed;
    case CpuResult::UnknownBreakpoint:
      return kValueOutOfRange;
    case CpuResult::BadBreakpoint:
      return kValueOutOfRange;
    case CpuResult::NotHalted:
      return kNotSupported;
    case CpuResult::Unavailable:
      return kThreadNotAvailable;
    case CpuResult::Faulted:
      return kOperationFailed;
  }
  return kOperationFailed;
}

}  // namespace

target::Failure CpuFailure(cpu::CpuResult result, const std::string& what) {
  return {CodeOf(result), what + ": " + std::string(cpu::CpuResultText(result))};
}

std::string HexText(uint64_t value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
  return text;
}

}  // namespace voxtrel::platform::run_control
