// vxt pins show|set|pulse: the sideband signals of a pins interface or
// debug port.
//
//   vxt pins show Pins0                 every signal's state
//   vxt pins set Pins0 PREQ assert      drive a signal (the board refuses PRDY and PWRGOOD)
//   vxt pins pulse Pins0 Reset 100      assert for 100 microseconds, then back
#include <array>
#include <iostream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"

namespace vxt::cli {
namespace {

constexpr std::array<const char*, 13> kSignals = {"HOOK0", "HOOK1", "HOOK2", "HOOK3", "HOOK4", "HOOK5", "HOOK6",
                                                  "HOOK7", "Reset", "DBR",   "PREQ",  "PRDY",  "PWRGOOD"};

VXT_PinsSignal SignalNamed(const std::string& name) {
  for (size_t i = 0; i < kSignals.size(); ++i)
    if (name == kSignals[i]) return static_cast<VXT_PinsSignal>(i);
  throw std::runtime_error("unknown signal '" + name + "' (HOOK0..HOOK7, Reset, DBR, PREQ, PRDY, PWRGOOD)");
}

VXT_PinsState StateNamed(const std::string& name) {
  if (name == "assert") return VXT_PinsState_Assert;
  if (name == "deassert") return VXT_PinsState_Deassert;
  throw std::runtime_error("unknown pin state '" + name + "' (assert or deassert)");
}

int Pins(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::string& action = arguments.text.at("action");
  const std::vector<std::string>& values = arguments.lists.at("values");
  const size_t needed = action == "show" ? 1 : action == "set" || action == "pulse" ? 3 : 0;
  if (needed == 0) throw std::runtime_error("unknown pins action '" + action + "' (show, set or pulse)");
  if (values.size() != needed) throw std::runtime_error("pins " + action + " takes " + std::to_string(needed) +
                                                        " argument(s); see --help");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& pins = session.Get<IInternalService_InterfacePins>(VXT_Service_InterfacePins);
  const uint32_t device = ResolveDevice(devices, values[0]);
  if (action == "show") {
    for (size_t i = 0; i < kSignals.size(); ++i) {
      VXT_PinsState state = VXT_PinsState_Deassert;
      Check(pins.GetPinState(device, static_cast<VXT_PinsSignal>(i), &state), "GetPinState");
      out << kSignals[i] << std::string(9 - std::string(kSignals[i]).size(), ' ')
          << (state == VXT_PinsState_Assert ? "asserted" : "deasserted") << '\n';
    }
    return 0;
  }
  const VXT_PinsSignal signal = SignalNamed(values[1]);
  if (action == "set") {
    Check(pins.SetPinState(device, signal, StateNamed(values[2])), "SetPinState");
    out << values[1] << ' ' << values[2] << "ed\n";
  } else {
    const auto width = static_cast<uint32_t>(std::stoul(values[2], nullptr, 0));
    Check(pins.PulsePinState(device, signal, VXT_PinsState_Assert, width), "PulsePinState");
    out << values[1] << " pulsed for " << width << " us\n";
  }
  return 0;
}

const bool registered = RegisterCommand(
    {"pins", "Sideband pins: show DEVICE, set DEVICE SIGNAL assert|deassert, pulse DEVICE SIGNAL MICROSECONDS",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("action", arguments.text["action"], "show, set or pulse")->required();
       command.add_option("values", arguments.lists["values"], "The pins interface, the signal and the state or width");
     },
     &ReportingUserErrors<&Pins>});

}  // namespace
}  // namespace vxt::cli
