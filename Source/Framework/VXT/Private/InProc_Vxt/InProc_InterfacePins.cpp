#include "InProc_InterfacePins.h"

#include <ostream>

#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_InterfacePins instance;

using frame::Call;
using frame::Hex8;
using frame::Out;
using frame::TraceArgs;
using Signal = frame::Enum<&frame::PinsSignalName>;
using State = frame::Enum<&frame::PinsStateName>;

// A number in whatever base the value before it left: the pulse width
// follows the hex8 id, so 100 prints as 64.
struct InStreamBase {
  uint32_t value;
  friend std::ostream& operator<<(std::ostream& out, InStreamBase number) { return out << number.value; }
};

// The change after the pin-change rule let it through; the rule's refusal
// is the call's code and the pin is not touched.
template <class ChangeFn>
uint32_t CheckedChange(const InProc_InterfacePins& service, Call& call, uint32_t id, VXT_PinsSignal signal,
                       ChangeFn&& change) {
  call.Core(service.platformControl,
            [&](const PlatformControlComponent& control) { return control.CheckPinChange(id, signal); });
  return call.Core(service.interfacePins, change);
}

}  // namespace

InProc_InterfacePins& InProc_InterfacePins::Instance() { return instance; }

VXT_Result InProc_InterfacePins::GetPinState(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal,
                                             VXT_PinsState* pinsState) {
  return RunOperation(logger, VXT_OPERATION(InterfacePins, GetPinState),
                      TraceArgs("pinsInterfaceOrDebugPortId", Hex8{pinsInterfaceOrDebugPortId}, "pinsSignal",
                                Signal{pinsSignal}),
                      TraceArgs("pinsState", Out<State>(pinsState)), [&](Call& call) {
                        return call.Core(interfacePins, [&](const InterfacePinsComponent& pins) {
                          return pins.GetPinState(pinsInterfaceOrDebugPortId, pinsSignal, pinsState);
                        });
                      });
}

VXT_Result InProc_InterfacePins::SetPinState(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal,
                                             VXT_PinsState pinsState) {
  return RunOperation(logger, VXT_OPERATION(InterfacePins, SetPinState).Counted(),
                      TraceArgs("pinsInterfaceOrDebugPortId", Hex8{pinsInterfaceOrDebugPortId}, "pinsSignal",
                                Signal{pinsSignal}, "pinsState", State{pinsState}),
                      TraceArgs(), [&](Call& call) {
                        return CheckedChange(*this, call, pinsInterfaceOrDebugPortId, pinsSignal,
                                             [&](const InterfacePinsComponent& pins) {
                                               return pins.SetPinState(pinsInterfaceOrDebugPortId, pinsSignal,
                                                                       pinsState);
                                             });
                      });
}

VXT_Result InProc_InterfacePins::PulsePinState(uint32_t pinsInterfaceOrDebugPortId, VXT_PinsSignal pinsSignal,
                                               VXT_PinsState pinsState, uint32_t pulseWidth) {
  return RunOperation(logger, VXT_OPERATION(InterfacePins, PulsePinState).Counted(),
                      TraceArgs("pinsInterfaceOrDebugPortId", Hex8{pinsInterfaceOrDebugPortId}, "pinsSignal",
                                Signal{pinsSignal}, "pinsState", State{pinsState}, "pulseWidth",
                                InStreamBase{pulseWidth}),
                      TraceArgs(), [&](Call& call) {
                        return CheckedChange(*this, call, pinsInterfaceOrDebugPortId, pinsSignal,
                                             [&](const InterfacePinsComponent& pins) {
                                               return pins.PulsePinState(pinsInterfaceOrDebugPortId, pinsSignal,
                                                                         pinsState, pulseWidth);
                                             });
                      });
}

}  // namespace vxt
