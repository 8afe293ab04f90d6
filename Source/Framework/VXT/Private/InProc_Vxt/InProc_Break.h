// The Break service: the conditions on which a device breaks, and the
// system stalls of a debug port or target domain. Break conditions are the
// RunControl component's, but for "Reset", which on some devices platform
// control keeps: the service adds it to RunControl's list there and routes
// its reads and writes. System stalls are platform control's.
#pragma once

#include <cstdint>

#include "IInternalService_Break.h"
#include "PlatformControl.h"
#include "RunControl.h"
#include "SingletonService.h"
#include "TargetManager.h"
#include "frame/ServiceLogger.h"

namespace vxt {

static_assert(VXT_BREAK_NAME_SIZE == kBreakNameSize);

class InProc_Break : public SingletonService<InProc_Break>, public IInternalService_Break {
 public:
  static InProc_Break& Instance();

  VXT_Result GetNumBreakConditions(uint32_t deviceId, uint32_t* numBreakNames) override;
  VXT_Result GetBreakConditions(uint32_t deviceId, uint32_t numBreakNames,
                                char (*breakNames)[VXT_BREAK_NAME_SIZE]) override;
  VXT_Result GetBreakCondition(uint32_t deviceId, const char* breakName, uint32_t* value) override;
  VXT_Result SetBreakCondition(uint32_t deviceId, const char* breakName, uint32_t value) override;
  VXT_Result GetNumSystemStalls(uint32_t debugportOrTargetDomainId, uint32_t* numStallNames) override;
  VXT_Result GetSystemStalls(uint32_t debugportOrTargetDomainId, uint32_t numStallNames,
                             char (*stallNames)[VXT_BREAK_NAME_SIZE]) override;
  VXT_Result GetSystemStall(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t* value) override;
  VXT_Result SetSystemStall(uint32_t debugportOrTargetDomainId, const char* stallName, uint32_t value) override;

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization; the system stall
  // operations bind the PlatformControl and TargetManager tables themselves
  // when they find them unbound.
  const PlatformControlComponent* platformControl = nullptr;
  const RunControlComponent* runControl = nullptr;
  const TargetManagerComponent* targetManager = nullptr;
};

}  // namespace vxt
