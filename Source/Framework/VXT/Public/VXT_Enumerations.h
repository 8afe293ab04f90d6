// Public enumerations of the service interfaces. Every one is 32 bits wide.
// A value outside an enumeration is passed to the components unchanged; the
// trace shows it as "<UNKNOWN>" or, for the enumerations whose values are not
// a run from 0, as a bare number.
#pragma once

#include <cstdint>

// Instruction width of the assembler service.
enum VXT_InstructionType : uint32_t {
  VXT_InstructionType_16Bit = 0,
  VXT_InstructionType_32Bit = 1,
  VXT_InstructionType_64Bit = 2,
  VXT_InstructionType_XBit = 3,
};

// Level driven onto an interface pin.
enum VXT_PinsState : uint32_t {
  VXT_PinsState_Assert = 0,
  VXT_PinsState_Deassert = 1,
};

// The interface pins a probe drives or reads.
enum VXT_PinsSignal : uint32_t {
  VXT_PinsSignal_HOOK0 = 0,
  VXT_PinsSignal_HOOK1 = 1,
  VXT_PinsSignal_HOOK2 = 2,
  VXT_PinsSignal_HOOK3 = 3,
  VXT_PinsSignal_HOOK4 = 4,
  VXT_PinsSignal_HOOK5 = 5,
  VXT_PinsSignal_HOOK6 = 6,
  VXT_PinsSignal_HOOK7 = 7,
  VXT_PinsSignal_Reset = 8,
  VXT_PinsSignal_DBR = 9,
  VXT_PinsSignal_PREQ = 10,
  VXT_PinsSignal_PRDY = 11,
  VXT_PinsSignal_PWRGOOD = 12,
};

// Operation of BitDataOperations::BitwiseOp. OR comes first.
enum BitwiseOperation : uint32_t {
  VXT_BitwiseOperation_OR = 0,
  VXT_BitwiseOperation_AND = 1,
  VXT_BitwiseOperation_XOR = 2,
};

// Whether a breakpoint stops all threads.
enum VXT_BreakAllSetting : uint32_t {
  VXT_BreakAllSetting_Disabled = 0,
  VXT_BreakAllSetting_Enabled = 1,
};

// How the fields of a VXT_Address are to be read.
enum VXT_AddressType : uint32_t {
  VXT_AddressType_Physical = 0,
  VXT_AddressType_Linear = 1,
  VXT_AddressType_GuestPhysical = 2,
  VXT_AddressType_OneFieldCodeLogical = 3,
  VXT_AddressType_OneFieldDataLogical = 4,
  VXT_AddressType_OneFieldStackLogical = 5,
  VXT_AddressType_TwoFieldLogical = 6,
  VXT_AddressType_ThreeFieldLogical = 7,
};

// Width of the data a hardware breakpoint watches.
enum VXT_BreakpointDataSize : uint32_t {
  VXT_BreakpointDataSize_Data_Size_1 = 0,
  VXT_BreakpointDataSize_Data_Size_2 = 1,
  VXT_BreakpointDataSize_Data_Size_4 = 2,
  VXT_BreakpointDataSize_Data_Size_8 = 3,
};

// Debug register a hardware breakpoint uses.
enum VXT_DebugRegister : uint32_t {
  VXT_DebugRegister_Register_Any = 0,
  VXT_DebugRegister_Register_0 = 1,
  VXT_DebugRegister_Register_1 = 2,
  VXT_DebugRegister_Register_2 = 3,
  VXT_DebugRegister_Register_3 = 4,
};

// Kind of a node of the target topology.
enum VXT_NodeType : uint32_t {
  VXT_NodeType_Unknown = 0,
  VXT_NodeType_LogicalRoot = 1,
  VXT_NodeType_TargetDomain = 2,
  VXT_NodeType_LogicalThread = 3,
  VXT_NodeType_LogicalCore = 4,
  VXT_NodeType_LogicalUncore = 5,
  VXT_NodeType_LogicalChipset = 6,
  VXT_NodeType_LogicalBox = 7,
  VXT_NodeType_LogicalDie = 8,
  VXT_NodeType_LogicalPackage = 9,
  VXT_NodeType_LogicalGroupDomain = 10,
  VXT_NodeType_LogicalGroupCore = 11,
  VXT_NodeType_Debugport = 12,
  VXT_NodeType_JTAGScanChain = 13,
  VXT_NodeType_TAPController = 14,
  VXT_NodeType_InterfacePort = 15,
  VXT_NodeType_LogicalModule = 16,
  VXT_NodeType_I2cBus = 17,
  VXT_NodeType_PinsInterface = 18,
  VXT_NodeType_VirtualJTAGScanChain = 19,
};

// State of an interface port.
enum VXT_InterfacePortState : uint32_t {
  VXT_InterfacePortState_Unknown = 0,
  VXT_InterfacePortState_Online = 1,
  VXT_InterfacePortState_Configured = 2,
  VXT_InterfacePortState_WindowOpen = 3,
  VXT_InterfacePortState_Offline = 4,
};

// When a repeated JTAG scan stops.
enum VXT_JtagRepeatType : uint32_t {
  VXT_JtagRepeatType_MAX_ITER = 0,
  VXT_JtagRepeatType_COMPARE_MATCH_OR_FAIL_AT_MAX_ITER = 1,
  VXT_JtagRepeatType_TRIGGER_OR_FAIL_AT_MAX_ITER = 2,
};

// The sixteen states of a TAP controller.
enum VXT_JtagState : uint32_t {
  VXT_JtagState_TLR = 0,
  VXT_JtagState_RTI = 1,
  VXT_JtagState_SelDR = 2,
  VXT_JtagState_CapDR = 3,
  VXT_JtagState_ShfDR = 4,
  VXT_JtagState_Ex1DR = 5,
  VXT_JtagState_PauDR = 6,
  VXT_JtagState_Ex2DR = 7,
  VXT_JtagState_UpdDR = 8,
  VXT_JtagState_SelIR = 9,
  VXT_JtagState_CapIR = 10,
  VXT_JtagState_ShfIR = 11,
  VXT_JtagState_Ex1IR = 12,
  VXT_JtagState_PauIR = 13,
  VXT_JtagState_Ex2IR = 14,
  VXT_JtagState_UpdIR = 15,
};

// How a TAP is reset.
enum VXT_JtagResetType : uint32_t {
  VXT_JtagResetType_TLR_TRST = 0,
  VXT_JtagResetType_TLR_ONLY = 1,
  VXT_JtagResetType_TRST_ONLY = 2,
};

// What a JTAG wait waits for.
enum VXT_JtagWaitType : uint32_t {
  VXT_JtagWaitType_COUNT = 0,
  VXT_JtagWaitType_COUNT_OR_TRIG = 1,
  VXT_JtagWaitType_COUNT_TRIGTO = 2,
  VXT_JtagWaitType_COUNT_OR_TRIG_TRIGTO = 3,
};

// State of a background operation behind an operation token.
enum OperationStatus : uint32_t {
  VXT_OperationStatus_Pending = 0,
  VXT_OperationStatus_Active = 1,
  VXT_OperationStatus_Completed = 2,
  VXT_OperationStatus_Canceled = 3,
  VXT_OperationStatus_Failed = 4,
};

// Survivability preset of a transport feature of the platform.
enum VXT_SurvivabilityPreset : uint32_t {
  VXT_SurvivabilityPreset_PlatformDefault = 0,
  VXT_SurvivabilityPreset_LowPower = 1,
  VXT_SurvivabilityPreset_ExtremelyLowPower = 2,
  VXT_SurvivabilityPreset_Custom = 3,
};

// Feature of the platform's transport that a preset applies to.
enum VXT_TransportFeature : uint32_t {
  VXT_TransportFeature_Transport = 0,
  VXT_TransportFeature_Trace = 1,
};

// Whether high-bandwidth transports are preferred.
enum VXT_Preference : uint32_t {
  VXT_Preference_Dont_Care = 0,
  VXT_Preference_Prefer = 1,
  VXT_Preference_Disfavor = 2,
};

// State a precondition is required to be in.
enum VXT_PreconditionState : uint32_t {
  VXT_PreconditionState_False = 0,
  VXT_PreconditionState_True = 1,
  VXT_PreconditionState_Unknown = 2,
};

// Register of a CPUID result.
enum VXT_CpuidRegister : uint32_t {
  VXT_CpuidRegister_EAX = 0,
  VXT_CpuidRegister_EBX = 1,
  VXT_CpuidRegister_ECX = 2,
  VXT_CpuidRegister_EDX = 3,
};

// Kind of a single step.
enum VXT_StepType : uint32_t {
  VXT_StepType_INVALID = 0,
  VXT_StepType_Into = 1,
  VXT_StepType_Over = 2,
  VXT_StepType_Out = 3,
  VXT_StepType_Branch = 4,
};

// Run state of a device.
enum VXT_RunStatus : uint32_t {
  VXT_RunStatus_Running = 0,
  VXT_RunStatus_SomeRunning = 1,
  VXT_RunStatus_Halted = 2,
  VXT_RunStatus_Other = 3,
  VXT_RunStatus_NotSupported = 4,
};

// Which threads a step lets run.
enum VXT_StepMode : uint32_t {
  VXT_StepMode_ReleaseTargetedThread = 0,
  VXT_StepMode_ReleaseAllThreads = 1,
};

// Kind of a breakpoint. The values are not contiguous.
enum VXT_BreakpointType : uint32_t {
  VXT_BreakpointType_SW = 0,
  VXT_BreakpointType_HW_Exec = 1,
  VXT_BreakpointType_HW_Access = 2,
  VXT_BreakpointType_HW_Write = 3,
  VXT_BreakpointType_HW_IO = 4,
  VXT_BreakpointType_HW_Global = 0x8000,
  VXT_BreakpointType_Default = 0x8001,
};

// Width of one memory access in bytes; an I/O port's byte size takes the
// values 1, 2 and 4 of it.
enum VXT_AccessWidth : uint32_t {
  VXT_AccessWidth_Byte = 1,
  VXT_AccessWidth_Word = 2,
  VXT_AccessWidth_DWord = 4,
  VXT_AccessWidth_QWord = 8,
};

// Traits of the TDI-TDO path that a continuity test detected. Signed.
enum VXT_JtagTdiTdoContinuity : int32_t {
  VXT_JtagTdiTdoContinuity_GOOD = 0,
  VXT_JtagTdiTdoContinuity_OPEN = 1,
  VXT_JtagTdiTdoContinuity_SHORT = 2,
  VXT_JtagTdiTdoContinuity_INVERTED = 4,
  VXT_JtagTdiTdoContinuity_CORRUPTION = 8,
};

// How an interface port's window hands on the bytes that arrive.
enum VXT_InterfacePortDataCaptureType : uint32_t {
  VXT_InterfacePortDataCaptureType_Stream = 0,  // Kept for Read
  VXT_InterfacePortDataCaptureType_File = 1,    // Appended to the capture file
};

// The direction of an interface port's window.
enum VXT_InterfacePortAccessMode : uint32_t {
  VXT_InterfacePortAccessMode_Read = 0,
  VXT_InterfacePortAccessMode_Write = 1,
  VXT_InterfacePortAccessMode_ReadWrite = 2,
};
