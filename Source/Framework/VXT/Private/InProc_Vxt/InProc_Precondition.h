// The Precondition service: a thin, traced layer over the Precondition
// component, which owns the preconditions and what they mean.
#pragma once

#include "IInternalService_Precondition.h"
#include "Precondition.h"
#include "SingletonService.h"
#include "frame/ServiceLogger.h"

namespace vxt {

class InProc_Precondition : public SingletonService<InProc_Precondition>, public IInternalService_Precondition {
 public:
  static InProc_Precondition& Instance();

  VXT_Result GetNumPreconditions(uint32_t deviceId, uint32_t* numPreconditions) override;
  VXT_Result GetPreconditions(uint32_t deviceId, uint32_t maxNumPreconditions, char* preconditionNames) override;
  VXT_Result GetPreconditionId(uint32_t deviceId, const char* preconditionName, uint32_t* preconditionId) override;
  VXT_Result Require(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state,
                     uint64_t* operationToken) override;
  VXT_Result GetCurrentState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState* state) override;
  VXT_Result SetCurrentState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state) override;
  VXT_Result GetDefaultState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState* state) override;
  VXT_Result SetDefaultState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state) override;
  VXT_Result IsSuppressed(uint32_t deviceId, uint32_t preconditionId, uint32_t* suppressed) override;
  VXT_Result SetSuppressed(uint32_t deviceId, uint32_t preconditionId, uint32_t suppressed) override;

  frame::ServiceLogger logger;
  // Component tables. Bound by FinishInitialization.
  const PreconditionComponent* precondition = nullptr;
};

}  // namespace vxt
