// The StatePort service's operations that the component does not offer.
// Each traces its arguments and is refused with "not implemented", with no
// error context, no check and no change to the thread's last error: the
// code is posted with an empty text, so that a client reads its standing
// text, and out arguments stay as the caller left them.
#include "InProc_StatePort.h"
#include "StatePortTrace.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::CommaArgs;
using frame::Dec;
using frame::Hex16;
using frame::Hex8;
using frame::List;
using frame::NoArgs;
using frame::Out;
using frame::Quoted;

constexpr const char* kNotCounted = nullptr;

template <class InArgs, class OutArgs>
VXT_Result Refuse(const frame::ServiceLogger& logger, const frame::OperationSite& site, const InArgs& in,
                  const OutArgs& out, bool counted, const char* statePortName) {
  frame::TraceLine(logger, 1, frame::InLine<InArgs>{site, in}, frame::kTrailer);
  if (counted) frame::CountMethodCall(site.method, statePortName);
  Voxtrel_ErrorPostError(code::kNotImplemented, "", site.file, site.line);
  const int32_t publicCode = frame::TranslateErrorCode(code::kNotImplemented);
  frame::TraceLine(logger, site.outLevel, frame::OutLine<OutArgs>{site, out, publicCode}, frame::kTrailer);
  return publicCode;
}

auto PortArgs(uint32_t deviceId, const char* statePortName, auto... rest) {
  return CommaArgs("deviceId", Hex8{deviceId}, "statePortName", Quoted{statePortName}, rest...);
}

// "addressFieldsFrom = {...}, addressFieldsTo = {...}" and what follows them.
auto RangeArgs(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields, const uint64_t* from,
               const uint64_t* to, auto... rest) {
  return PortArgs(deviceId, statePortName, "addressFieldsFrom", List<Hex16>(from, numAddressFields),
                  "addressFieldsTo", List<Hex16>(to, numAddressFields), rest...);
}

}  // namespace

VXT_Result InProc_StatePort::Poll(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                                  const uint64_t* addressFields, uint64_t value, uint64_t mask, uint64_t timeout,
                                  uint64_t* operationToken) {
  return Refuse(logger, VXT_OPERATION(StatePort, Poll).ParenthesisAfterCode(),
                PortAccessArgs(deviceId, statePortName, numAddressFields, addressFields, "value", Hex16{value}, "mask",
                               Hex16{mask}, "timeout", Hex16{timeout}),
                TokenOut(operationToken), true, statePortName);
}

VXT_Result InProc_StatePort::BulkRead(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                                      const uint64_t* addressFieldsFrom, const uint64_t* addressFieldsTo,
                                      uint32_t maxNumOperationTokens, uint64_t* operationTokens) {
  return Refuse(logger, VXT_OPERATION(StatePort, BulkRead).ParenthesisAfterCode(),
                RangeArgs(deviceId, statePortName, numAddressFields, addressFieldsFrom, addressFieldsTo,
                          "maxNumOperationTokens", Hex8{maxNumOperationTokens}, "operationTokens",
                          List<Hex16>(operationTokens, maxNumOperationTokens)),
                CommaArgs("operationTokens", List<Hex16>(operationTokens, maxNumOperationTokens)), true,
                statePortName);
}

VXT_Result InProc_StatePort::BulkWrite(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                                       const uint64_t* addressFieldsFrom, const uint64_t* addressFieldsTo,
                                       uint32_t numValues, const uint64_t* values, uint64_t* operationTokens) {
  return Refuse(logger, VXT_OPERATION(StatePort, BulkWrite).ParenthesisAfterCode(),
                RangeArgs(deviceId, statePortName, numAddressFields, addressFieldsFrom, addressFieldsTo, "numValues",
                          Hex8{numValues}, "values", List<Hex16>(values, numValues), "operationTokens",
                          List<Hex16>(operationTokens, numValues)),
                CommaArgs("operationTokens", List<Hex16>(operationTokens, numValues)), true, statePortName);
}

VXT_Result InProc_StatePort::BulkInit(uint32_t deviceId, const char* statePortName, uint32_t numAddressFields,
                                      const uint64_t* addressFieldsFrom, const uint64_t* addressFieldsTo,
                                      uint64_t value, uint32_t maxNumOperationTokens, uint64_t* operationTokens) {
  return Refuse(logger, VXT_OPERATION(StatePort, BulkInit).ParenthesisAfterCode(),
                RangeArgs(deviceId, statePortName, numAddressFields, addressFieldsFrom, addressFieldsTo, "value",
                          Hex16{value}, "maxNumOperationTokens", Hex8{maxNumOperationTokens}, "operationTokens",
                          List<Hex16>(operationTokens, maxNumOperationTokens)),
                CommaArgs("operationTokens", List<Hex16>(operationTokens, maxNumOperationTokens)), true,
                statePortName);
}

VXT_Result InProc_StatePort::GetSupportedOperations(uint32_t deviceId, const char* statePortName,
                                                    uint64_t* supportedOperations) {
  return Refuse(logger, VXT_OPERATION(StatePort, GetSupportedOperations), PortArgs(deviceId, statePortName),
                CommaArgs("supportedOperations", Out<Hex16>(supportedOperations)), false, kNotCounted);
}

VXT_Result InProc_StatePort::GetNumAddressFieldEnums(uint32_t deviceId, const char* statePortName,
                                                     const char* addressFieldName, uint32_t* numAddressFieldEnums) {
  return Refuse(logger, VXT_OPERATION(StatePort, GetNumAddressFieldEnums),
                PortArgs(deviceId, statePortName, "addressFieldName", Quoted{addressFieldName}),
                CommaArgs("numAddressFieldEnums", Out<Dec>(numAddressFieldEnums)), false, kNotCounted);
}

VXT_Result InProc_StatePort::GetAddressFieldEnums(uint32_t deviceId, const char* statePortName,
                                                  const char* addressFieldName, uint32_t maxNumAddressFieldEnums,
                                                  char (*)[VXT_STATE_PORT_NAME_SIZE]) {
  return Refuse(logger, VXT_OPERATION(StatePort, GetAddressFieldEnums),
                PortArgs(deviceId, statePortName, "addressFieldName", Quoted{addressFieldName},
                         "maxNumAddressFieldEnums", Dec{maxNumAddressFieldEnums}),
                NoArgs{}, false, kNotCounted);
}

VXT_Result InProc_StatePort::GetAddressFieldValidValues(uint32_t deviceId, const char* statePortName,
                                                        const char* addressFieldName, uint64_t*, uint64_t*) {
  return Refuse(logger, VXT_OPERATION(StatePort, GetAddressFieldValidValues),
                PortArgs(deviceId, statePortName, "addressFieldName", Quoted{addressFieldName}), NoArgs{}, false,
                kNotCounted);
}

VXT_Result InProc_StatePort::SetImplicitAddressFieldValue(uint32_t deviceId, const char* statePortName,
                                                          const char* addressFieldName, uint64_t value) {
  return Refuse(logger, VXT_OPERATION(StatePort, SetImplicitAddressFieldValue),
                PortArgs(deviceId, statePortName, "addressFieldName", Quoted{addressFieldName}, "value",
                         Hex16{value}),
                NoArgs{}, true, statePortName);
}

VXT_Result InProc_StatePort::GetImplicitAddressFieldValue(uint32_t deviceId, const char* statePortName,
                                                          const char* addressFieldName, uint64_t* value) {
  return Refuse(logger, VXT_OPERATION(StatePort, GetImplicitAddressFieldValue),
                PortArgs(deviceId, statePortName, "addressFieldName", Quoted{addressFieldName}),
                CommaArgs("value", Out<Hex16>(value)), false, kNotCounted);
}

}  // namespace vxt
