#include "InterfacePins/PinBoard.h"

#include <map>
#include <mutex>
#include <utility>

#include "Cpu/CpuBackend.h"
#include "Cpu/CpuDomains.h"
#include "RunControl/BreakConditions.h"

namespace voxtrel::platform::pins {
namespace {

using target::Node;
using target::NodeType;
using target_manager::Request;

// Driven states by device and signal; a pin never driven reads deasserted.
struct DrivenPins {
  std::mutex mutex;
  std::map<std::pair<uint32_t, uint32_t>, VXT_PinsState> states;
};

DrivenPins& Driven() {
  static DrivenPins pins;
  return pins;
}

std::shared_ptr<cpu::CpuBackend> BackendOf(const Node& device) {
  const cpu::CpuSelection selection = cpu::CpuDomains::Instance().Find(device.targetDomainId);
  return selection.result == cpu::LookupResult::Ok ? selection.domain->backend : nullptr;
}

bool AnyThreadHalted(cpu::CpuBackend& backend) {
  for (uint32_t thread = 0; thread < backend.ThreadCount(); ++thread) {
    cpu::RunState state = cpu::RunState::Running;
    if (backend.GetRunState(thread, state) == cpu::CpuResult::Ok && state == cpu::RunState::Halted) return true;
  }
  return false;
}

}  // namespace

const Node* PinsDevice(Request& request, uint32_t id) {
  const Node* device = request.Device(id);
  if (device == nullptr || device->type == NodeType::PinsInterface || device->type == NodeType::Debugport)
    return device;
  request.Refuse(target_manager::kWrongDeviceType, " needs a PinsInterface or a Debugport, and device " +
                                                       target_manager::DeviceName(*device) + " is a " +
                                                       std::string(target::NodeTypeName(device->type)));
  return nullptr;
}

uint32_t CheckDrivable(Request& request, VXT_PinsSignal signal) {
  if (signal > VXT_PinsSignal_PWRGOOD)
    return request.Refuse(kOutOfRange, ": " + std::to_string(signal) + " is no pins signal");
  if (signal == VXT_PinsSignal_PRDY || signal == VXT_PinsSignal_PWRGOOD)
    return request.Refuse(kReadOnlyPin, std::string(": the target drives ") +
                                            (signal == VXT_PinsSignal_PRDY ? "PRDY" : "PWRGOOD") +
                                            "; a probe can only read it");
  return 0;
}

VXT_PinsState ReadPin(const Node& device, VXT_PinsSignal signal) {
  const std::shared_ptr<cpu::CpuBackend> backend = BackendOf(device);
  if (signal == VXT_PinsSignal_PWRGOOD) return backend ? VXT_PinsState_Assert : VXT_PinsState_Deassert;
  if (signal == VXT_PinsSignal_PRDY)
    return backend && AnyThreadHalted(*backend) ? VXT_PinsState_Assert : VXT_PinsState_Deassert;
  DrivenPins& pins = Driven();
  std::lock_guard lock(pins.mutex);
  const auto found = pins.states.find({device.id, signal});
  return found == pins.states.end() ? VXT_PinsState_Deassert : found->second;
}

void DrivePin(const Node& device, VXT_PinsSignal signal, VXT_PinsState state) {
  {
    DrivenPins& pins = Driven();
    std::lock_guard lock(pins.mutex);
    pins.states[{device.id, signal}] = state;
  }
  if (state != VXT_PinsState_Assert) return;
  const cpu::CpuSelection selection = cpu::CpuDomains::Instance().Find(device.targetDomainId);
  if (selection.result != cpu::LookupResult::Ok) return;
  // Reset restarts the threads of the domain, halting those the reset break
  // and "Init" hold, as any other reset does; a probe-mode request halts
  // them, as the threads enter probe mode.
  if (signal == VXT_PinsSignal_Reset) run_control::ResetAsConfigured(*selection.domain);
  if (signal == VXT_PinsSignal_PREQ) selection.domain->backend->HaltAll();
}

}  // namespace voxtrel::platform::pins
