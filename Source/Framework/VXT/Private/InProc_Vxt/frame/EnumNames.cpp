#include "frame/EnumNames.h"

#include <cstddef>

namespace vxt::frame {
namespace {

template <size_t N>
const char* IndexedName(const char* const (&names)[N], uint32_t value) {
  return value < N ? names[value] : kUnknownName;
}

struct ValueName {
  uint32_t value;
  const char* name;
};

template <size_t N>
const char* SparseName(const ValueName (&names)[N], uint32_t value) {
  for (const ValueName& entry : names) {
    if (entry.value == value) return entry.name;
  }
  return nullptr;
}

constexpr const char* kInstructionTypes[] = {"16Bit", "32Bit", "64Bit", "XBit"};
constexpr const char* kPinsStates[] = {"Assert", "Deassert"};
constexpr const char* kPinsSignals[] = {"HOOK0", "HOOK1", "HOOK2", "HOOK3", "HOOK4", "HOOK5",  "HOOK6",
                                        "HOOK7", "Reset", "DBR",   "PREQ",  "PRDY",  "PWRGOOD"};
constexpr const char* kBitwiseOperations[] = {"OR", "AND", "XOR"};
constexpr const char* kBreakAllSettings[] = {"Disabled", "Enabled"};
constexpr const char* kAddressTypes[] = {"Physical",
                                         "Linear",
                                         "GuestPhysical",
                                         "OneFieldCodeLogical",
                                         "OneFieldDataLogical",
                                         "OneFieldStackLogical",
                                         "TwoFieldLogical",
                                         "ThreeFieldLogical"};
constexpr const char* kBreakpointDataSizes[] = {"Data_Size_1", "Data_Size_2", "Data_Size_4", "Data_Size_8"};
constexpr const char* kDebugRegisters[] = {"Register_Any", "Register_0", "Register_1", "Register_2", "Register_3"};
constexpr const char* kNodeTypes[] = {"Unknown",        "LogicalRoot",        "TargetDomain",     "LogicalThread",
                                      "LogicalCore",    "LogicalUncore",      "LogicalChipset",   "LogicalBox",
                                      "LogicalDie",     "LogicalPackage",     "LogicalGroupDomain", "LogicalGroupCore",
                                      "Debugport",      "JTAGScanChain",      "TAPController",    "InterfacePort",
                                      "LogicalModule",  "I2cBus",             "PinsInterface",    "VirtualJTAGScanChain"};
constexpr const char* kInterfacePortStates[] = {"Unknown", "Online", "Configured", "WindowOpen", "Offline"};
constexpr const char* kInterfacePortCaptureTypes[] = {"Stream", "File"};
constexpr const char* kInterfacePortAccessModes[] = {"Read", "Write", "ReadWrite"};
constexpr const char* kJtagRepeatTypes[] = {"MAX_ITER", "COMPARE_MATCH_OR_FAIL_AT_MAX_ITER",
                                            "TRIGGER_OR_FAIL_AT_MAX_ITER"};
constexpr const char* kJtagStates[] = {"TLR",   "RTI",   "SelDR", "CapDR", "ShfDR", "Ex1DR", "PauDR", "Ex2DR",
                                       "UpdDR", "SelIR", "CapIR", "ShfIR", "Ex1IR", "PauIR", "Ex2IR", "UpdIR"};
constexpr const char* kJtagResetTypes[] = {"TLR_TRST", "TLR_ONLY", "TRST_ONLY"};
constexpr const char* kJtagWaitTypes[] = {"COUNT", "COUNT_OR_TRIG", "COUNT_TRIGTO", "COUNT_OR_TRIG_TRIGTO"};
constexpr const char* kOperationStatuses[] = {"Pending", "Active", "Completed", "Canceled", "Failed"};
constexpr const char* kSurvivabilityPresets[] = {"PlatformDefault", "LowPower", "ExtremelyLowPower", "Custom"};
constexpr const char* kTransportFeatures[] = {"Transport", "Trace"};
constexpr const char* kPreferences[] = {"Dont_Care", "Prefer", "Disfavor"};
constexpr const char* kPreconditionStates[] = {"False", "True", "Unknown"};
constexpr const char* kCpuidRegisters[] = {"EAX", "EBX", "ECX", "EDX"};
constexpr const char* kStepTypes[] = {"INVALID", "Into", "Over", "Out", "Branch"};
constexpr const char* kRunStatuses[] = {"Running", "SomeRunning", "Halted", "Other", "NotSupported"};
constexpr const char* kStepModes[] = {"ReleaseTargetedThread", "ReleaseAllThreads"};

constexpr ValueName kBreakpointTypes[] = {{0, "SW"},       {1, "HW_Exec"},        {2, "HW_Access"},    {3, "HW_Write"},
                                          {4, "HW_IO"},    {0x8000, "HW_Global"}, {0x8001, "Default"}};
constexpr ValueName kAccessWidths[] = {{1, "Byte"}, {2, "Word"}, {4, "DWord"}, {8, "QWord"}};
// An I/O port is at most four bytes wide, so its sizes stop before "QWord".
constexpr ValueName kPortByteSizes[] = {{1, "Byte"}, {2, "Word"}, {4, "DWord"}};
constexpr ValueName kJtagTdiTdoContinuities[] = {
    {0, "GOOD"}, {1, "OPEN"}, {2, "SHORT"}, {4, "INVERTED"}, {8, "CORRUPTION"}};

}  // namespace

const char* InstructionTypeName(uint32_t value) { return IndexedName(kInstructionTypes, value); }
const char* PinsStateName(uint32_t value) { return IndexedName(kPinsStates, value); }
const char* PinsSignalName(uint32_t value) { return IndexedName(kPinsSignals, value); }
const char* BitwiseOperationName(uint32_t value) { return IndexedName(kBitwiseOperations, value); }
const char* BreakAllSettingName(uint32_t value) { return IndexedName(kBreakAllSettings, value); }
const char* AddressTypeName(uint32_t value) { return IndexedName(kAddressTypes, value); }
const char* BreakpointDataSizeName(uint32_t value) { return IndexedName(kBreakpointDataSizes, value); }
const char* DebugRegisterName(uint32_t value) { return IndexedName(kDebugRegisters, value); }
const char* NodeTypeName(uint32_t value) { return IndexedName(kNodeTypes, value); }
const char* InterfacePortStateName(uint32_t value) { return IndexedName(kInterfacePortStates, value); }
const char* InterfacePortCaptureTypeName(uint32_t value) { return IndexedName(kInterfacePortCaptureTypes, value); }
const char* InterfacePortAccessModeName(uint32_t value) { return IndexedName(kInterfacePortAccessModes, value); }
const char* JtagRepeatTypeName(uint32_t value) { return IndexedName(kJtagRepeatTypes, value); }
const char* JtagStateName(uint32_t value) { return IndexedName(kJtagStates, value); }
const char* JtagResetTypeName(uint32_t value) { return IndexedName(kJtagResetTypes, value); }
const char* JtagWaitTypeName(uint32_t value) { return IndexedName(kJtagWaitTypes, value); }
const char* OperationStatusName(uint32_t value) { return IndexedName(kOperationStatuses, value); }
const char* SurvivabilityPresetName(uint32_t value) { return IndexedName(kSurvivabilityPresets, value); }
const char* TransportFeatureName(uint32_t value) { return IndexedName(kTransportFeatures, value); }
const char* PreferenceName(uint32_t value) { return IndexedName(kPreferences, value); }
const char* PreconditionStateName(uint32_t value) { return IndexedName(kPreconditionStates, value); }
const char* CpuidRegisterName(uint32_t value) { return IndexedName(kCpuidRegisters, value); }
const char* StepTypeName(uint32_t value) { return IndexedName(kStepTypes, value); }
const char* RunStatusName(uint32_t value) { return IndexedName(kRunStatuses, value); }
const char* StepModeName(uint32_t value) { return IndexedName(kStepModes, value); }

const char* BreakpointTypeName(uint32_t value) { return SparseName(kBreakpointTypes, value); }
const char* AccessWidthName(uint32_t value) { return SparseName(kAccessWidths, value); }
const char* PortByteSizeName(uint32_t value) { return SparseName(kPortByteSizes, value); }
const char* JtagTdiTdoContinuityName(uint32_t value) { return SparseName(kJtagTdiTdoContinuities, value); }

}  // namespace vxt::frame
