// Names of the enumeration values as the trace lines show them.
//
// Every function takes the value as unsigned 32 bits, so that a negative
// value lies outside every table. Two kinds of table exist:
//
// - Index tables name the values 0, 1, 2, ... in order; any other value is
//   named kUnknownName.
// - Sparse tables name a few chosen values; any other value has no name and
//   the function returns null, so that the caller prints the number instead.
#pragma once

#include <cstdint>

namespace vxt::frame {

inline constexpr const char* kUnknownName = "<UNKNOWN>";

// Index tables.
const char* InstructionTypeName(uint32_t value);
const char* PinsStateName(uint32_t value);
const char* PinsSignalName(uint32_t value);
const char* BitwiseOperationName(uint32_t value);
const char* BreakAllSettingName(uint32_t value);
const char* AddressTypeName(uint32_t value);
const char* BreakpointDataSizeName(uint32_t value);
const char* DebugRegisterName(uint32_t value);
const char* NodeTypeName(uint32_t value);
const char* InterfacePortStateName(uint32_t value);
const char* InterfacePortCaptureTypeName(uint32_t value);
const char* InterfacePortAccessModeName(uint32_t value);
const char* JtagRepeatTypeName(uint32_t value);
const char* JtagStateName(uint32_t value);
const char* JtagResetTypeName(uint32_t value);
const char* JtagWaitTypeName(uint32_t value);
const char* OperationStatusName(uint32_t value);
const char* SurvivabilityPresetName(uint32_t value);
const char* TransportFeatureName(uint32_t value);
const char* PreferenceName(uint32_t value);
const char* PreconditionStateName(uint32_t value);
const char* CpuidRegisterName(uint32_t value);
const char* StepTypeName(uint32_t value);
const char* RunStatusName(uint32_t value);
const char* StepModeName(uint32_t value);

// Sparse tables: null for a value without a name.
const char* BreakpointTypeName(uint32_t value);
const char* AccessWidthName(uint32_t value);
const char* PortByteSizeName(uint32_t value);
const char* JtagTdiTdoContinuityName(uint32_t value);

}  // namespace vxt::frame
