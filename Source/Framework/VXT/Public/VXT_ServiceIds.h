// Ids of the services that GetService hands out.
#pragma once

#include <cstdint>

enum VXT_ServiceId : uint32_t {
  VXT_Service_BitData = 1,
  VXT_Service_Breakpoint = 2,
  VXT_Service_Device = 4,
  VXT_Service_Event = 6,
  VXT_Service_General = 7,
  VXT_Service_Memory = 8,
  VXT_Service_Register = 9,
  VXT_Service_RunControl = 10,
  VXT_Service_BreakpointManagement = 11,
  VXT_Service_PlatformControl = 12,
  VXT_Service_JtagAccess = 13,
  VXT_Service_OperationReceipt = 14,
  VXT_Service_BitDataOperations = 16,
  VXT_Service_InterfacePort = 17,
  VXT_Service_JtagConfiguration = 18,
  VXT_Service_JtagDiagnostic = 19,
  VXT_Service_Authorization = 20,
  VXT_Service_Break = 22,
  VXT_Service_StatePort = 23,
  VXT_Service_I2cAccess = 24,
  VXT_Service_AsmDasm = 25,
  VXT_Service_InterfacePins = 26,
  VXT_Service_Precondition = 27,
  VXT_Service_DeviceControl = 28,
  VXT_Service_RunControlConfiguration = 29,
  VXT_Service_Dma = 30,
  VXT_Service_Initialization = 31,
};
