// The service interfaces that GetService hands out.
#pragma once

#include "IInternalService_Event.h"
#include "IInternalService_AsmDasm.h"
#include "IInternalService_BitData.h"
#include "IInternalService_BitDataOperations.h"
#include "IInternalService_Device.h"
#include "IInternalService_General.h"
#include "IInternalService_I2cAccess.h"
#include "IInternalService_InterfacePins.h"
#include "IInternalService_Memory.h"
#include "IInternalService_JtagAccess.h"
#include "IInternalService_JtagConfiguration.h"
#include "IInternalService_JtagDiagnostic.h"
#include "IInternalService_OperationReceipt.h"
#include "IInternalService_Register.h"
#include "IInternalService_RunControl.h"
#include "IInternalService_Breakpoint.h"
