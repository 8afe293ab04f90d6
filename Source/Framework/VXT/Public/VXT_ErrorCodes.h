// Public result codes. 0 is success; a failure has its top bit set. The text
// of a failure is read with GetLastErrorMessage on the failing thread.
#pragma once

#include <cstdint>

using VXT_Result = int32_t;

inline constexpr VXT_Result VXT_SUCCESS = 0;
inline constexpr VXT_Result VXT_E_INVALID_ARGUMENT = static_cast<VXT_Result>(0x80000001u);
inline constexpr VXT_Result VXT_E_OUT_OF_RANGE = static_cast<VXT_Result>(0x80000002u);
inline constexpr VXT_Result VXT_E_NOT_SUPPORTED = static_cast<VXT_Result>(0x80000003u);
inline constexpr VXT_Result VXT_E_NOT_IMPLEMENTED = static_cast<VXT_Result>(0x80000004u);
inline constexpr VXT_Result VXT_E_UNKNOWN_DEVICE = static_cast<VXT_Result>(0x80000009u);
inline constexpr VXT_Result VXT_E_UNEXPECTED = static_cast<VXT_Result>(0x8000000fu);
inline constexpr VXT_Result VXT_E_STRUCTURE_SIZE = static_cast<VXT_Result>(0x80000010u);
inline constexpr VXT_Result VXT_E_INVALID_HANDLE = static_cast<VXT_Result>(0x80000011u);
inline constexpr VXT_Result VXT_E_WRONG_DEVICE_TYPE = static_cast<VXT_Result>(0x80040007u);
inline constexpr VXT_Result VXT_E_SERVICE_NOT_FOUND = static_cast<VXT_Result>(0x80070000u);
