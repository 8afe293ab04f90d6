#include "ServiceTable.h"

#include "InProc_AsmDasm.h"
#include "InProc_BitData.h"
#include "InProc_BitDataOperations.h"
#include "InProc_Device.h"
#include "InProc_Dma.h"
#include "InProc_DeviceControl.h"
#include "InProc_Event.h"
#include "InProc_General.h"
#include "InProc_I2cAccess.h"
#include "InProc_Initialization.h"
#include "InProc_InterfacePins.h"
#include "InProc_InterfacePort.h"
#include "InProc_Memory.h"
#include "InProc_JtagAccess.h"
#include "InProc_JtagConfiguration.h"
#include "InProc_JtagDiagnostic.h"
#include "InProc_OperationReceipt.h"
#include "InProc_Register.h"
#include "InProc_RunControl.h"
#include "InProc_StatePort.h"
#include "InProc_Authorization.h"
#include "InProc_Breakpoint.h"
#include "InProc_PlatformControl.h"
#include "InProc_Precondition.h"
#include "InProc_BreakpointManagement.h"
#include "InProc_RunControlConfiguration.h"
#include "InProc_Break.h"
#include "VXT_ServiceIds.h"

namespace vxt {

void* FindService(uint32_t serviceId) {
  switch (serviceId) {
    case VXT_Service_BitData:
      return static_cast<IInternalService_BitData*>(&InProc_BitData::Instance());
    case VXT_Service_BitDataOperations:
      return static_cast<IInternalService_BitDataOperations*>(&InProc_BitDataOperations::Instance());
    case VXT_Service_Device:
      return static_cast<IInternalService_Device*>(&InProc_Device::Instance());
    case VXT_Service_Event:
      return static_cast<IInternalService_Event*>(&InProc_Event::Instance());
    case VXT_Service_General:
      return static_cast<IInternalService_General*>(&InProc_General::Instance());
    case VXT_Service_Memory:
      return static_cast<IInternalService_Memory*>(&InProc_Memory::Instance());
    case VXT_Service_Register:
      return static_cast<IInternalService_Register*>(&InProc_Register::Instance());
    case VXT_Service_RunControl:
      return static_cast<IInternalService_RunControl*>(&InProc_RunControl::Instance());
    case VXT_Service_Breakpoint:
      return static_cast<IInternalService_Breakpoint*>(&InProc_Breakpoint::Instance());
    case VXT_Service_BreakpointManagement:
      return static_cast<IInternalService_BreakpointManagement*>(&InProc_BreakpointManagement::Instance());
    case VXT_Service_AsmDasm:
      return static_cast<IInternalService_AsmDasm*>(&InProc_AsmDasm::Instance());
    case VXT_Service_JtagAccess:
      return static_cast<IInternalService_JtagAccess*>(&InProc_JtagAccess::Instance());
    case VXT_Service_JtagConfiguration:
      return static_cast<IInternalService_JtagConfiguration*>(&InProc_JtagConfiguration::Instance());
    case VXT_Service_JtagDiagnostic:
      return static_cast<IInternalService_JtagDiagnostic*>(&InProc_JtagDiagnostic::Instance());
    case VXT_Service_OperationReceipt:
      return static_cast<IInternalService_OperationReceipt*>(&InProc_OperationReceipt::Instance());
    case VXT_Service_I2cAccess:
      return static_cast<IInternalService_I2cAccess*>(&InProc_I2cAccess::Instance());
    case VXT_Service_InterfacePins:
      return static_cast<IInternalService_InterfacePins*>(&InProc_InterfacePins::Instance());
    case VXT_Service_InterfacePort:
      return static_cast<IInternalService_InterfacePort*>(&InProc_InterfacePort::Instance());
    case VXT_Service_StatePort:
      return static_cast<IInternalService_StatePort*>(&InProc_StatePort::Instance());
    case VXT_Service_Dma:
      return static_cast<IInternalService_Dma*>(&InProc_Dma::Instance());
    case VXT_Service_PlatformControl:
      return static_cast<IInternalService_PlatformControl*>(&InProc_PlatformControl::Instance());
    case VXT_Service_Authorization:
      return static_cast<IInternalService_Authorization*>(&InProc_Authorization::Instance());
    case VXT_Service_Precondition:
      return static_cast<IInternalService_Precondition*>(&InProc_Precondition::Instance());
    case VXT_Service_DeviceControl:
      return static_cast<IInternalService_DeviceControl*>(&InProc_DeviceControl::Instance());
    case VXT_Service_Initialization:
      return static_cast<IInternalService_Initialization*>(&InProc_Initialization::Instance());
    case VXT_Service_RunControlConfiguration:
      return static_cast<IInternalService_RunControlConfiguration*>(&InProc_RunControlConfiguration::Instance());
    case VXT_Service_Break:
      return static_cast<IInternalService_Break*>(&InProc_Break::Instance());
    default:
      return nullptr;
  }
}

}  // namespace vxt
