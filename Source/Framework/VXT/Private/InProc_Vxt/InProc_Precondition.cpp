// The Precondition service: each operation is its checks and one component
// call; state reads hand a value out only when the component succeeded.
#include "InProc_Precondition.h"

#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_Precondition instance;

using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::PreconditionStateName;
using frame::Quoted;
using frame::TraceArgs;
using Table = PreconditionComponent;
using StateName = Enum<&PreconditionStateName>;
using NameField = char[VXT_PRECONDITION_NAME_SIZE];

using ReadState = uint32_t (*Table::*)(uint32_t, uint32_t, VXT_PreconditionState*);
using WriteState = uint32_t (*Table::*)(uint32_t, uint32_t, VXT_PreconditionState);

// GetCurrentState and GetDefaultState: `state` changes only on success.
VXT_Result ReadStateOf(const frame::OperationSite& site, ReadState read, uint32_t deviceId, uint32_t preconditionId,
                       VXT_PreconditionState* state) {
  InProc_Precondition& service = InProc_Precondition::Instance();
  return RunOperation(service.logger, site, TraceArgs("deviceId", Hex8{deviceId}, "preconditionId", Dec{preconditionId}),
                      TraceArgs("state", Out<StateName>(state)), [&](Call& call) {
                        return call.NotNull(state, "state").Core(service.precondition, [&](const Table& t) {
                          VXT_PreconditionState value = *state;
                          const uint32_t code = (t.*read)(deviceId, preconditionId, &value);
                          if (code == 0) *state = value;
                          return code;
                        });
                      });
}

// SetCurrentState and SetDefaultState: any value goes to the component.
VXT_Result WriteStateOf(const frame::OperationSite& site, WriteState write, uint32_t deviceId,
                        uint32_t preconditionId, VXT_PreconditionState state) {
  InProc_Precondition& service = InProc_Precondition::Instance();
  return RunOperation(service.logger, site.Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "preconditionId", Dec{preconditionId}, "state",
                                StateName{state}),
                      TraceArgs(), [&](Call& call) {
                        return call.Core(service.precondition,
                                         [&](const Table& t) { return (t.*write)(deviceId, preconditionId, state); });
                      });
}

}  // namespace

InProc_Precondition& InProc_Precondition::Instance() { return instance; }

VXT_Result InProc_Precondition::GetNumPreconditions(uint32_t deviceId, uint32_t* numPreconditions) {
  return RunOperation(logger, VXT_OPERATION(Precondition, GetNumPreconditions), TraceArgs("deviceId", Hex8{deviceId}),
                      TraceArgs("numPreconditions", Out<Dec>(numPreconditions)), [&](Call& call) {
                        return call.NotNull(numPreconditions, "numPreconditions").Core(precondition, [&](const Table& t) {
                          return t.GetNumPreconditions(deviceId, numPreconditions);
                        });
                      });
}

VXT_Result InProc_Precondition::GetPreconditions(uint32_t deviceId, uint32_t maxNumPreconditions,
                                                 char* preconditionNames) {
  return RunOperation(logger, VXT_OPERATION(Precondition, GetPreconditions).UntrailedOut(),
                      TraceArgs("deviceId", Hex8{deviceId}, "maxNumPreconditions", Dec{maxNumPreconditions}),
                      TraceArgs("preconditionNames", List<Quoted>(reinterpret_cast<const NameField*>(preconditionNames),
                                                                  maxNumPreconditions)),
                      [&](Call& call) {
                        return call.NotNull(preconditionNames, "preconditionNames")
                            .Core(precondition, [&](const Table& t) {
                              return t.GetPreconditions(deviceId, maxNumPreconditions, preconditionNames);
                            });
                      });
}

VXT_Result InProc_Precondition::GetPreconditionId(uint32_t deviceId, const char* preconditionName,
                                                  uint32_t* preconditionId) {
  return RunOperation(logger, VXT_OPERATION(Precondition, GetPreconditionId),
                      TraceArgs("deviceId", Hex8{deviceId}, "preconditionName", Quoted{preconditionName}),
                      TraceArgs("preconditionId", Out<Dec>(preconditionId)), [&](Call& call) {
                        return call.NotNull(preconditionName, "preconditionName")
                            .NotNull(preconditionId, "preconditionId")
                            .Core(precondition, [&](const Table& t) {
                              return t.GetPreconditionId(deviceId, preconditionName, preconditionId);
                            });
                      });
}

VXT_Result InProc_Precondition::Require(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state,
                                        uint64_t* operationToken) {
  // A null token is the component's to refuse.
  return RunOperation(logger, VXT_OPERATION(Precondition, Require).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "preconditionId", Dec{preconditionId}, "state",
                                StateName{state}),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        return call.Core(precondition, [&](const Table& t) {
                          return t.Require(deviceId, preconditionId, state, operationToken);
                        });
                      });
}

VXT_Result InProc_Precondition::GetCurrentState(uint32_t deviceId, uint32_t preconditionId,
                                                VXT_PreconditionState* state) {
  return ReadStateOf(VXT_OPERATION(Precondition, GetCurrentState), &Table::GetCurrentState, deviceId, preconditionId,
                     state);
}

VXT_Result InProc_Precondition::SetCurrentState(uint32_t deviceId, uint32_t preconditionId,
                                                VXT_PreconditionState state) {
  return WriteStateOf(VXT_OPERATION(Precondition, SetCurrentState), &Table::SetCurrentState, deviceId, preconditionId,
                      state);
}

VXT_Result InProc_Precondition::GetDefaultState(uint32_t deviceId, uint32_t preconditionId,
                                                VXT_PreconditionState* state) {
  return ReadStateOf(VXT_OPERATION(Precondition, GetDefaultState), &Table::GetDefaultState, deviceId, preconditionId,
                     state);
}

VXT_Result InProc_Precondition::SetDefaultState(uint32_t deviceId, uint32_t preconditionId,
                                                VXT_PreconditionState state) {
  return WriteStateOf(VXT_OPERATION(Precondition, SetDefaultState), &Table::SetDefaultState, deviceId, preconditionId,
                      state);
}

VXT_Result InProc_Precondition::IsSuppressed(uint32_t deviceId, uint32_t preconditionId, uint32_t* suppressed) {
  return RunOperation(logger, VXT_OPERATION(Precondition, IsSuppressed),
                      TraceArgs("deviceId", Hex8{deviceId}, "preconditionId", Dec{preconditionId}),
                      TraceArgs("suppressed", Out<Bool>(suppressed)), [&](Call& call) {
                        return call.NotNull(suppressed, "suppressed").Core(precondition, [&](const Table& t) {
                          uint8_t byte = 0;
                          const uint32_t code = t.IsSuppressed(deviceId, preconditionId, &byte);
                          if (code == 0) *suppressed = byte != 0 ? 1 : 0;
                          return code;
                        });
                      });
}

VXT_Result InProc_Precondition::SetSuppressed(uint32_t deviceId, uint32_t preconditionId, uint32_t suppressed) {
  return RunOperation(logger, VXT_OPERATION(Precondition, SetSuppressed).Counted(),
                      TraceArgs("deviceId", Hex8{deviceId}, "preconditionId", Dec{preconditionId}, "suppressed",
                                Bool{suppressed}),
                      TraceArgs(), [&](Call& call) {
                        // Only exactly 1 suppresses, though the line shows any other
                        // non-zero value as "True".
                        return call.Core(precondition, [&](const Table& t) {
                          return t.SetSuppressed(deviceId, preconditionId, suppressed == 1);
                        });
                      });
}

}  // namespace vxt
