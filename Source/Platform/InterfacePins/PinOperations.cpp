// The InterfacePins component's table and the PlatformControl component's
// pin-change rule.
#include <algorithm>
#include <chrono>
#include <thread>

#include "InterfacePins.h"
#include "InterfacePins/PinBoard.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::pins {
namespace {

using target_manager::HexId;
using target_manager::Request;

// A pulse holds the pin for its width, at most this long, so that no
// client can stall its thread for ever.
constexpr uint32_t kLongestPulseMicroseconds = 1'000'000;

uint32_t GetPinState(uint32_t id, VXT_PinsSignal signal, VXT_PinsState* state) {
  VOXTREL_COMPONENT_CALL("InterfacePins.GetPinState", "id=", HexId(id), ", signal=", static_cast<uint32_t>(signal));
  Request request("InterfacePins.GetPinState");
  if (request.NotNull(state, "pinsState").failed()) return request.code();
  const target::Node* device = PinsDevice(request, id);
  if (device == nullptr) return request.code();
  if (signal > VXT_PinsSignal_PWRGOOD)
    return request.Refuse(kOutOfRange, ": " + std::to_string(signal) + " is no pins signal");
  *state = ReadPin(*device, signal);
  return 0;
}

uint32_t CheckedChange(Request& request, uint32_t id, VXT_PinsSignal signal, VXT_PinsState state,
                       const target::Node*& device) {
  device = PinsDevice(request, id);
  if (device == nullptr || CheckDrivable(request, signal) != 0) return request.code();
  if (state != VXT_PinsState_Assert && state != VXT_PinsState_Deassert)
    return request.Refuse(kOutOfRange, ": " + std::to_string(state) + " is no pin state");
  return 0;
}

uint32_t SetPinState(uint32_t id, VXT_PinsSignal signal, VXT_PinsState state) {
  VOXTREL_COMPONENT_CALL("InterfacePins.SetPinState", "id=", HexId(id), ", signal=", static_cast<uint32_t>(signal));
  Request request("InterfacePins.SetPinState");
  const target::Node* device = nullptr;
  if (CheckedChange(request, id, signal, state, device) != 0) return request.code();
  DrivePin(*device, signal, state);
  return 0;
}

// The pin takes `state` for the width, then goes back to what it was.
uint32_t PulsePinState(uint32_t id, VXT_PinsSignal signal, VXT_PinsState state, uint32_t pulseWidth) {
  VOXTREL_COMPONENT_CALL("InterfacePins.PulsePinState", "id=", HexId(id), ", signal=", static_cast<uint32_t>(signal),
                         ", width=", pulseWidth);
  Request request("InterfacePins.PulsePinState");
  const target::Node* device = nullptr;
  if (CheckedChange(request, id, signal, state, device) != 0) return request.code();
  const VXT_PinsState before = ReadPin(*device, signal);
  DrivePin(*device, signal, state);
  std::this_thread::sleep_for(std::chrono::microseconds(std::min(pulseWidth, kLongestPulseMicroseconds)));
  DrivePin(*device, signal, before);
  return 0;
}

}  // namespace

// The board's rule: a probe drives the hooks, Reset, DBR and PREQ of a
// pins interface or debug port; the target drives PRDY and PWRGOOD.
uint32_t CheckPinChange(uint32_t id, VXT_PinsSignal signal) {
  VOXTREL_COMPONENT_CALL("PlatformControl.CheckPinChange", "id=", HexId(id), ", signal=",
                         static_cast<uint32_t>(signal));
  Request request("PlatformControl.CheckPinChange");
  if (PinsDevice(request, id) == nullptr) return request.code();
  return CheckDrivable(request, signal);
}

const InterfacePinsComponent* PinsTable() {
  static constexpr InterfacePinsComponent kPins{&GetPinState, &SetPinState, &PulsePinState};
  return &kPins;
}

}  // namespace voxtrel::platform::pins
