// Service 27: the named preconditions of a device: conditions of the target
// that debug work depends on, which a client can require, read, set and
// suppress.
#pragma once

#include <cstdint>

#include "VXT_Enumerations.h"
#include "VXT_ErrorCodes.h"

// The size of each field of a `preconditionNames` array.
inline constexpr uint32_t VXT_PRECONDITION_NAME_SIZE = 64;

class IInternalService_Precondition {
 public:
  virtual ~IInternalService_Precondition() = default;

  virtual VXT_Result GetNumPreconditions(uint32_t deviceId, uint32_t* numPreconditions) = 0;
  // `preconditionNames`: maxNumPreconditions fields of VXT_PRECONDITION_NAME_SIZE bytes.
  virtual VXT_Result GetPreconditions(uint32_t deviceId, uint32_t maxNumPreconditions, char* preconditionNames) = 0;
  virtual VXT_Result GetPreconditionId(uint32_t deviceId, const char* preconditionName, uint32_t* preconditionId) = 0;
  // Starts bringing the precondition to `state`; the token tells when it is.
  virtual VXT_Result Require(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state,
                             uint64_t* operationToken) = 0;
  virtual VXT_Result GetCurrentState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState* state) = 0;
  virtual VXT_Result SetCurrentState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state) = 0;
  virtual VXT_Result GetDefaultState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState* state) = 0;
  virtual VXT_Result SetDefaultState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state) = 0;
  // `suppressed`: 1 or 0.
  virtual VXT_Result IsSuppressed(uint32_t deviceId, uint32_t preconditionId, uint32_t* suppressed) = 0;
  // Only the value 1 suppresses; any other value stops suppressing.
  virtual VXT_Result SetSuppressed(uint32_t deviceId, uint32_t preconditionId, uint32_t suppressed) = 0;
};
