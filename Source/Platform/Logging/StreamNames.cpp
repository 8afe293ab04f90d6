// Names of the logging streams, shared by every part of the system.
#include <array>
#include <cstdint>

#include "Logging.h"
#include "Logging/LogLevels.h"

namespace {

constexpr std::array<const char*, voxtrel::platform::logging::kStreamCount> kStreamNames = {
    "Unknown",
    "VxtInterface",
    "Common",
    "ProbeModeRegister",
    "Authorization",
    "Jtag",
    "OperationReceipt",
    "Probe",
    "RunControl",
    "TargetManager",
    "ScanEngine",
    "StatePort",
    "ProbeVendorAPI",
    "ProbePluginImplementation",
    "InterfacePort",
    "I2c",
    "Error",
    "InterfacePins",
    "DataStore",
    "Precondition",
    "PlatformControl",
    "EventBroker",
    "NamedState",
    "ProbePluginAPI",
    "DeviceControl",
    "ProbePluginHardwareCommunication",
    "ProbePluginHardwareCommunicationBackend",
    "Telemetry",
    "Dma",
    "Diagnostic",
    "Configuration",
};

}  // namespace

const char* Voxtrel_LoggingGetStreamName(uint32_t stream) {
  return stream < kStreamNames.size() ? kStreamNames[stream] : kStreamNames[0];
}
