// The StatePort service's supported operations. Each opens its error
// context ahead of its In line, counts "StatePort::<Op>(<port>)" where it
// counts, and separates its In line's arguments with ", ".
#include "InProc_StatePort.h"

#include "BindTable.h"
#include "Error.h"
#include "GluedArg.h"
#include "StatePortTrace.h"
#include "frame/Frame.h"
#include "frame/InternalCodes.h"

namespace vxt {
namespace {

InProc_StatePort instance;

using frame::Call;
using frame::CommaArgs;
using frame::Dec;
using frame::Hex16;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::Quoted;
using frame::WithDetail;
using Table = StatePortComponent;

// "InProc_StatePort::<Op>() argument voxTrelError (<argument>) : Null pointer"
Call& Present(Call& call, const void* pointer, const char* argument) {
  if (pointer == nullptr)
    call.Fail(code::kInvalidArgument, call.prefix(), " argument voxTrelError (", argument, ") : Null pointer");
  return call;
}

// A description may be asked for its size or its text, not for neither.
Call& DescriptionWanted(Call& call, const char* description, const uint32_t* actualStringSize) {
  if (description == nullptr && actualStringSize == nullptr)
    call.Fail(code::kInvalidArgument, call.prefix(),
              " arguments (description) and (actualStringSize) cannot both be NULL");
  return call;
}

auto PortDetail(const char* statePortName) {
  return WithDetail([statePortName] { return std::string(statePortName != nullptr ? statePortName : "<NULL>"); });
}

}  // namespace

InProc_StatePort& InProc_StatePort::Instance() { return instance; }

uint32_t InProc_StatePort::Initialize() {
  uint32_t result = BindTable(&Voxtrel_GetStatePort, statePort);
  if (result != 0)
    Voxtrel_ErrorPostError(result, "InProc_StatePort::Initialize - Error getting StatePort Interface", __FILE__,
                           __LINE__);
  if (statePort != nullptr) {
    result = statePort->Initialize();
  } else {
    Voxtrel_ErrorPostError(code::kInvalidArgument, "InProc_StatePort::Initialize - Error Null StatePort Interface",
                           __FILE__, __LINE__);
    if (result == 0) result = code::kInvalidArgument;
  }
  if (result != 0)
    Voxtrel_ErrorPostError(result, "InProc_StatePort::Initialize - Error Initializeing the StatePort Interface",
                           __FILE__, __LINE__);
  return result;
}

VXT_Result InProc_StatePort::Read(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                                  const uint64_t* addressFields, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(StatePort, Read).ContextFirst().ParenthesisAfterCode(),
                      PortAccessArgs(deviceId, statePortName, numAddressFields, addressFields),
                      TokenOut(operationToken), PortDetail(statePortName), [&](Call& call) {
                        Present(call, statePortName, "statePortName");
                        return Present(call, addressFields, "addressFields").Core(statePort, [&](const Table& t) {
                          return t.Read(deviceId, statePortName, numAddressFields, addressFields, operationToken);
                        });
                      });
}

VXT_Result InProc_StatePort::Write(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                                   const uint64_t* addressFields, uint64_t value, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(StatePort, Write).ContextFirst().ParenthesisAfterCode(),
                      PortAccessArgs(deviceId, statePortName, numAddressFields, addressFields, "value", Hex16{value}),
                      TokenOut(operationToken), PortDetail(statePortName), [&](Call& call) {
                        Present(call, statePortName, "statePortName");
                        return Present(call, addressFields, "addressFields").Core(statePort, [&](const Table& t) {
                          return t.Write(deviceId, statePortName, numAddressFields, addressFields, value,
                                         operationToken);
                        });
                      });
}

VXT_Result InProc_StatePort::ReadModifyWrite(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                                             const uint64_t* addressFields, uint64_t value, uint64_t mask,
                                             uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(StatePort, ReadModifyWrite).ContextFirst().ParenthesisAfterCode(),
                      PortAccessArgs(deviceId, statePortName, numAddressFields, addressFields, "value", Hex16{value},
                                     "mask", Hex16{mask}),
                      TokenOut(operationToken), PortDetail(statePortName), [&](Call& call) {
                        Present(call, statePortName, "statePortName");
                        return Present(call, addressFields, "addressFields").Core(statePort, [&](const Table& t) {
                          return t.ReadModifyWrite(deviceId, statePortName, numAddressFields, addressFields, value,
                                                   mask, operationToken);
                        });
                      });
}

VXT_Result InProc_StatePort::GetNumStatePorts(uint32_t deviceId, uint32_t* numStatePorts) {
  return RunOperation(logger, VXT_OPERATION(StatePort, GetNumStatePorts).ContextFirst(),
                      CommaArgs("deviceId", Hex8{deviceId}), CommaArgs("numStatePorts", Out<Dec>(numStatePorts)),
                      [&](Call& call) {
                        return Present(call, numStatePorts, "numStatePorts").Core(statePort, [&](const Table& t) {
                          return t.GetNumStatePorts(deviceId, numStatePorts);
                        });
                      });
}

VXT_Result InProc_StatePort::GetStatePorts(uint32_t deviceId, uint32_t maxNumStatePorts,
                                           char (*statePortNames)[VXT_STATE_PORT_NAME_SIZE]) {
  return RunOperation(logger, VXT_OPERATION(StatePort, GetStatePorts).ContextFirst(),
                      CommaArgs("deviceId", Hex8{deviceId}),
                      CommaArgs("statePortNames", List<Quoted>(statePortNames, maxNumStatePorts)), [&](Call& call) {
                        return Present(call, statePortNames, "statePortNames").Core(statePort, [&](const Table& t) {
                          return t.GetStatePorts(deviceId, maxNumStatePorts, statePortNames);
                        });
                      });
}

VXT_Result InProc_StatePort::GetAccessSize(uint32_t deviceId, const char* statePortName, uint32_t* accessSize) {
  return RunOperation(logger, VXT_OPERATION(StatePort, GetAccessSize).ContextFirst(),
                      CommaArgs("deviceId", Hex8{deviceId}, "statePortName", Quoted{statePortName}),
                      CommaArgs("accessSize", Out<Dec>(accessSize)), [&](Call& call) {
                        Present(call, statePortName, "statePortName");
                        return Present(call, accessSize, "accessSize").Core(statePort, [&](const Table& t) {
                          return t.GetAccessSize(deviceId, statePortName, accessSize);
                        });
                      });
}

VXT_Result InProc_StatePort::GetStatePortDescription(uint32_t deviceId, const char* statePortName, char* description,
                                                     uint32_t descriptionSize, uint32_t* actualStringSize) {
  return RunOperation(logger, VXT_OPERATION(StatePort, GetStatePortDescription).ContextFirst(),
                      CommaArgs("deviceId", Hex8{deviceId}, "statePortName", Quoted{statePortName}, "descriptionSize",
                                Dec{descriptionSize}),
                      frame::NoArgs{}, [&](Call& call) {
                        Present(call, statePortName, "statePortName");
                        return DescriptionWanted(call, description, actualStringSize)
                            .Core(statePort, [&](const Table& t) {
                              return t.GetStatePortDescription(deviceId, statePortName, description, descriptionSize,
                                                               actualStringSize);
                            });
                      });
}

VXT_Result InProc_StatePort::GetNumAddressFields(uint32_t deviceId, const char* statePortName,
                                                 uint32_t* numAddressFields) {
  return RunOperation(logger, VXT_OPERATION(StatePort, GetNumAddressFields).ContextFirst(),
                      CommaArgs("deviceId", Hex8{deviceId}, "statePortName", Quoted{statePortName}),
                      CommaArgs("numAddressFields", Out<Dec>(numAddressFields)), [&](Call& call) {
                        return Present(call, numAddressFields, "numAddressFields")
                            .Core(statePort, [&](const Table& t) {
                              return t.GetNumAddressFields(deviceId, statePortName, numAddressFields);
                            });
                      });
}

VXT_Result InProc_StatePort::GetAddressFields(uint32_t deviceId, const char* statePortName,
                                              uint32_t maxNumAddressFields,
                                              char (*addressFields)[VXT_STATE_PORT_NAME_SIZE]) {
  return RunOperation(logger, VXT_OPERATION(StatePort, GetAddressFields).ContextFirst(),
                      CommaArgs("deviceId", Hex8{deviceId}, "statePortName",
                                Glued(Quoted{statePortName}, " maxNumAddressFields", Dec{maxNumAddressFields})),
                      frame::ArgsBehindParentheses("<<"), [&](Call& call) {
                        Present(call, statePortName, "statePortName");
                        return Present(call, addressFields, "addressFields").Core(statePort, [&](const Table& t) {
                          return t.GetAddressFields(deviceId, statePortName, maxNumAddressFields, addressFields);
                        });
                      });
}

VXT_Result InProc_StatePort::GetAddressFieldDescription(uint32_t deviceId, const char* statePortName,
                                                        const char* addressFieldName, char* description,
                                                        uint32_t descriptionSize, uint32_t* actualStringSize) {
  return RunOperation(logger, VXT_OPERATION(StatePort, GetAddressFieldDescription).ContextFirst(),
                      CommaArgs("deviceId", Hex8{deviceId}, "statePortName", Quoted{statePortName},
                                "addressFieldName", Quoted{addressFieldName}, "descriptionSize", Dec{descriptionSize}),
                      frame::NoArgs{}, [&](Call& call) {
                        Present(call, statePortName, "statePortName");
                        Present(call, addressFieldName, "addressFieldName");
                        return DescriptionWanted(call, description, actualStringSize)
                            .Core(statePort, [&](const Table& t) {
                              return t.GetAddressFieldDescription(deviceId, statePortName, addressFieldName,
                                                                  description, descriptionSize, actualStringSize);
                            });
                      });
}

}  // namespace vxt
