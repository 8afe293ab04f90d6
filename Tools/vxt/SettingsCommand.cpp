// vxt settings / set / revert: the settings of a device.
//
//   vxt settings [DEVICE]               every setting, its value, its options; * marks a changed one
//   vxt set TargetDomain0 CacheMode WriteThrough
//   vxt revert [DEVICE]                 every changed setting back to its default
#include <ostream>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"

namespace vxt::cli {
namespace {

constexpr const char* kDefaultDevice = "TargetDomain0";

int Settings(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& control = session.Get<IInternalService_DeviceControl>(VXT_Service_DeviceControl);
  const uint32_t device =
      ResolveDevice(session.Get<IInternalService_Device>(VXT_Service_Device), arguments.text.at("device"));
  uint32_t count = 0;
  Check(control.GetNumDeviceConfigNames(device, &count), "GetNumDeviceConfigNames");
  std::vector<char> names(size_t{count} * VXT_DEVICE_CONFIG_NAME_SIZE + 1);
  Check(control.GetDeviceConfigNames(device, count, names.data()), "GetDeviceConfigNames");
  for (uint32_t i = 0; i < count; ++i) {
    const char* name = &names[i * VXT_DEVICE_CONFIG_NAME_SIZE];
    char value[VXT_DEVICE_CONFIG_VALUE_SIZE] = "";
    Check(control.GetDeviceConfig(device, name, value), "GetDeviceConfig");
    uint32_t numOptions = 0;
    Check(control.GetNumDeviceConfigOptions(device, name, &numOptions), "GetNumDeviceConfigOptions");
    std::vector<char> optionNames(size_t{numOptions} * VXT_DEVICE_CONFIG_NAME_SIZE + 1);
    Check(control.GetDeviceConfigOptions(device, name, numOptions, optionNames.data()), "GetDeviceConfigOptions");
    out << name << " = " << value;
    for (uint32_t o = 0; o < numOptions; ++o) out << (o == 0 ? "  (" : ", ") << &optionNames[o * VXT_DEVICE_CONFIG_NAME_SIZE];
    out << (numOptions > 0 ? ")" : "") << '\n';
  }
  return 0;
}

int Set(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& control = session.Get<IInternalService_DeviceControl>(VXT_Service_DeviceControl);
  const uint32_t device =
      ResolveDevice(session.Get<IInternalService_Device>(VXT_Service_Device), arguments.text.at("device"));
  const std::string& name = arguments.text.at("name");
  Check(control.SetDeviceConfig(device, name.c_str(), arguments.text.at("value").c_str()), "SetDeviceConfig");
  out << name << " = " << arguments.text.at("value") << '\n';
  return 0;
}

int Revert(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& control = session.Get<IInternalService_DeviceControl>(VXT_Service_DeviceControl);
  const uint32_t device =
      ResolveDevice(session.Get<IInternalService_Device>(VXT_Service_Device), arguments.text.at("device"));
  uint32_t count = 0;
  Check(control.GetNumModifiedDeviceConfigs(device, &count), "GetNumModifiedDeviceConfigs");
  Check(control.RevertModifiedDeviceConfigs(device), "RevertModifiedDeviceConfigs");
  out << "reverted " << count << " setting(s)\n";
  return 0;
}

void OptionalDevice(CLI::App& command, CommandArguments& arguments) {
  arguments.text["device"] = kDefaultDevice;
  command.add_option("device", arguments.text["device"], "The device (default TargetDomain0)");
}

const bool settingsRegistered = RegisterCommand(
    {"settings", "The settings of a device [DEVICE]: values and options", &OptionalDevice,
     &ReportingUserErrors<&Settings>});
const bool setRegistered = RegisterCommand(
    {"set", "Set a setting of a device: DEVICE NAME VALUE",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("device", arguments.text["device"], "The device")->required();
       command.add_option("name", arguments.text["name"], "The setting")->required();
       command.add_option("value", arguments.text["value"], "Its new value")->required();
     },
     &ReportingUserErrors<&Set>});
const bool revertRegistered = RegisterCommand(
    {"revert", "Every changed setting of a device [DEVICE] back to its default", &OptionalDevice,
     &ReportingUserErrors<&Revert>});

}  // namespace
}  // namespace vxt::cli
