// The short texts of the CPU results, stop reasons and lookups, for messages.
#include "Cpu/CpuDomains.h"
#include "Cpu/CpuTypes.h"

namespace voxtrel::platform::cpu {

std::string_view CpuResultText(CpuResult result) {
  switch (result) {
    case CpuResult::Ok:
      return "success";
    case CpuResult::UnknownThread:
      return "no such thread";
    case CpuResult::Unmapped:
      return "the range is not mapped";
    case CpuResult::ReadOnly:
      return "the range is read-only";
    case CpuResult::TooLarge:
      return "the size is too large";
    case CpuResult::BadSize:
      return "the size is not valid";
    case CpuResult::UnknownRegister:
      return "no such register";
    case CpuResult::ReadOnlyRegister:
      return "the register is read-only";
    case CpuResult::GeneralProtection:
      return "general protection fault";
    case CpuResult::UnknownBreakpoint:
      return "no such breakpoint";
    case CpuResult::BadBreakpoint:
      return "the breakpoint is not valid";
    case CpuResult::NotHalted:
      return "the thread is not halted";
    case CpuResult::Unavailable:
      return "the CPU is not available";
    case CpuResult::Faulted:
      return "the instruction faulted";
  }
  return "unknown result";
}

std::string_view StopReasonText(StopReason reason) {
  switch (reason) {
    case StopReason::HaltRequest:
      return "Halt";
    case StopReason::Step:
      return "Step";
    case StopReason::ExecutionBreakpoint:
      return "ExecutionBreakpoint";
    case StopReason::DataBreakpoint:
      return "DataBreakpoint";
    case StopReason::Reset:
      return "Reset";
    case StopReason::Shutdown:
      return "Shutdown";
    case StopReason::Hlt:
      return "Hlt";
  }
  return "Unknown";
}

std::string_view LookupResultText(LookupResult result) {
  switch (result) {
    case LookupResult::Ok:
      return "success";
    case LookupResult::NotStarted:
      return "the target's CPUs are not running";
    case LookupResult::UnknownDevice:
      return "no such device";
    case LookupResult::NotACpu:
      return "the device has no CPU";
    case LookupResult::NotEmulated:
      return "the device's target domain runs no CPUs";
  }
  return "unknown result";
}

}  // namespace voxtrel::platform::cpu
