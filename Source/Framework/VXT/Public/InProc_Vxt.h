// InProc_Vxt: the in-process hardware debug interface.
//
// Include this header to use the library: the exported functions, the
// public records, result codes and the service interfaces.
#pragma once

#include "VXT_Client.h"
#include "VXT_Configuration.h"
#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"
#include "VXT_Events.h"
#include "VXT_Exports.h"
#include "VXT_Records.h"
#include "VXT_ServiceIds.h"
#include "VXT_Services.h"
#include "VXT_Topology.h"
#include "VXT_Version.h"
