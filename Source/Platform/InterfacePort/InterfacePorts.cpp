#include "InterfacePort/InterfacePorts.h"

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

#include "Cpu/CpuDomains.h"
#include "Cpu/EmulatedMachine.h"
#include "Cpu/IoDevices.h"
#include "Events/InterfacePortEvent.h"

namespace voxtrel::platform::interface_port {
namespace {

using target::Failure;
using target::Outcome;

// The UART a port is the channel of, and the machine that keeps it alive.
struct Channel {
  std::shared_ptr<cpu::EmulatedMachine> machine;
  cpu::Uart16550* uart = nullptr;
};

Channel FindChannel(uint32_t targetDomainId) {
  for (const auto& domain : cpu::CpuDomains::Instance().Domains()) {
    if (domain->targetDomainId != targetDomainId || !domain->machine) continue;
    for (const auto& device : domain->machine->Devices())
      if (auto* uart = dynamic_cast<cpu::Uart16550*>(device.get())) return Channel{domain->machine, uart};
  }
  return {};
}

bool ReadsFromTarget(const VXT_InterfacePortConfiguration& configuration) {
  return configuration.accessMode != VXT_InterfacePortAccessMode_Write;
}
bool WritesToTarget(const VXT_InterfacePortConfiguration& configuration) {
  return configuration.accessMode != VXT_InterfacePortAccessMode_Read;
}

std::string Text(const char (&field)[VXT_INTERFACE_PORT_FILE_TEXT_SIZE]) {
  return std::string(field, strnlen(field, sizeof field));
}

std::filesystem::path CapturePath(const VXT_InterfacePortConfiguration& configuration) {
  return std::filesystem::path(Text(configuration.filePath)) / Text(configuration.fileName);
}

Outcome CheckConfiguration(const VXT_InterfacePortConfiguration& configuration) {
  if (configuration.structureSize != VXT_INTERFACE_PORT_CONFIGURATION_SIZE)
    return Failure{kStructureSize, "the configuration's structureSize is " +
                                       std::to_string(configuration.structureSize) + ", not 532"};
  if (configuration.dataCaptureType > VXT_InterfacePortDataCaptureType_File)
    return Failure{kValueOutOfRange, "unknown data capture type " + std::to_string(configuration.dataCaptureType) +
                                         " (0 Stream, 1 File)"};
  if (configuration.accessMode > VXT_InterfacePortAccessMode_ReadWrite)
    return Failure{kValueOutOfRange, "unknown access mode " + std::to_string(configuration.accessMode) +
                                         " (0 Read, 1 Write, 2 ReadWrite)"};
  if (strnlen(configuration.fileName, VXT_INTERFACE_PORT_FILE_TEXT_SIZE) == VXT_INTERFACE_PORT_FILE_TEXT_SIZE ||
      strnlen(configuration.filePath, VXT_INTERFACE_PORT_FILE_TEXT_SIZE) == VXT_INTERFACE_PORT_FILE_TEXT_SIZE)
    return Failure{kValueOutOfRange, "the capture file's name or path is not terminated within 260 characters"};
  if (configuration.dataCaptureType == VXT_InterfacePortDataCaptureType_File && configuration.fileName[0] == '\0')
    return Failure{kValueOutOfRange, "a File capture needs a fileName"};
  return std::nullopt;
}

struct Port {
  uint32_t targetDomainId = 0;
  VXT_InterfacePortState state = VXT_InterfacePortState_Unknown;
  bool configured = false;
  VXT_InterfacePortConfiguration configuration{};
  std::weak_ptr<cpu::EmulatedMachine> machine;  // The machine `position` counts in
  uint64_t position = 0;                        // Of the UART's text, for the open window
  std::deque<uint8_t> waiting;                  // A Stream window's bytes for Read
  std::ofstream capture;                        // A File window's file
  bool captureFailed = false;                   // Reported once per window
};

class PortTable {
 public:
  ~PortTable() {
    pump_.request_stop();
    if (pump_.joinable()) pump_.join();
  }

  void Restart() {
    {
      std::lock_guard lock(mutex_);
      ports_.clear();
      pending_.clear();
    }
    std::call_once(started_, [this] { pump_ = std::jthread([this](std::stop_token stop) { Pump(stop); }); });
  }

  // Runs `work` on the port, brought up to date first, under the lock; the
  // events it queues are delivered by the platform thread.
  template <class Work>
  auto With(const PortPlace& place, Work&& work) {
    std::unique_lock lock(mutex_);
    Port& port = ports_[place.portId];
    port.targetDomainId = place.targetDomainId;
    const Channel channel = FindChannel(place.targetDomainId);
    Refresh(place.portId, port, channel);
    auto result = work(port, channel);
    const bool wake = !pending_.empty();
    lock.unlock();
    if (wake) wakeup_.notify_all();
    return result;
  }

  void Transition(uint32_t portId, Port& port, VXT_InterfacePortState next) {
    if (port.state == next) return;
    // A port's first look is no change of state.
    if (port.state != VXT_InterfacePortState_Unknown)
      pending_.push_back(events::MakeInterfacePortStateChangeData(portId, port.state, next));
    port.state = next;
  }

  void Error(uint32_t portId, uint64_t value) {
    pending_.push_back(events::MakeInterfacePortErrorData(portId, value));
  }

  void EndWindow(Port& port) {
    port.capture.close();
    port.waiting.clear();
    port.captureFailed = false;
  }

  // Follows the UART: offline without it, back online with it, and the
  // open window's bytes taken from it.
  void Refresh(uint32_t portId, Port& port, const Channel& channel) {
    if (channel.uart == nullptr) {
      if (port.state == VXT_InterfacePortState_WindowOpen) EndWindow(port);
      Transition(portId, port, VXT_InterfacePortState_Offline);
      return;
    }
    if (port.machine.lock() != channel.machine) {
      port.machine = channel.machine;
      port.position = 0;
    }
    if (port.state == VXT_InterfacePortState_Unknown || port.state == VXT_InterfacePortState_Offline)
      Transition(portId, port, port.configured ? VXT_InterfacePortState_Configured : VXT_InterfacePortState_Online);
    if (port.state == VXT_InterfacePortState_WindowOpen && ReadsFromTarget(port.configuration))
      TakeArrived(portId, port, *channel.uart);
  }

  void TakeArrived(uint32_t portId, Port& port, const cpu::Uart16550& uart) {
    uint64_t skipped = 0;
    const std::string bytes = uart.TextSince(port.position, kMaxWaiting, skipped);
    bool lost = skipped != 0;
    if (port.configuration.dataCaptureType == VXT_InterfacePortDataCaptureType_File) {
      if (!bytes.empty() && !port.captureFailed) {
        port.capture.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        port.capture.flush();
        if (!port.capture) {
          port.captureFailed = true;
          Error(portId, kErrorCaptureWrite);
        }
      }
    } else {
      port.waiting.insert(port.waiting.end(), bytes.begin(), bytes.end());
      if (port.waiting.size() > kMaxWaiting) {
        port.waiting.erase(port.waiting.begin(), port.waiting.end() - static_cast<std::ptrdiff_t>(kMaxWaiting));
        lost = true;
      }
    }
    if (lost) Error(portId, kErrorBytesLost);
  }

  void Follow() {
    std::vector<events::InterfacePortEventData> due;
    {
      std::lock_guard lock(mutex_);
      for (auto& [portId, port] : ports_) Refresh(portId, port, FindChannel(port.targetDomainId));
      due.swap(pending_);
    }
    // Delivered without the lock: a subscriber may call back into the ports.
    for (const auto& event : due) events::RaiseInterfacePortEvent(event);
  }

 private:
  void Pump(std::stop_token stop) {
    while (!stop.stop_requested()) {
      {
        std::unique_lock lock(mutex_);
        wakeup_.wait_for(lock, stop, std::chrono::milliseconds(kFollowMilliseconds),
                         [this] { return !pending_.empty(); });
      }
      if (!stop.stop_requested()) Follow();
    }
  }

  std::mutex mutex_;
  std::condition_variable_any wakeup_;
  std::map<uint32_t, Port> ports_;
  std::vector<events::InterfacePortEventData> pending_;
  std::once_flag started_;
  std::jthread pump_;  // Last: stopped and joined before the rest goes
};

PortTable& Table() {
  static PortTable table;
  return table;
}

std::string StateText(VXT_InterfacePortState state) {
  static constexpr const char* kNames[] = {"Unknown", "Online", "Configured", "WindowOpen", "Offline"};
  return state <= VXT_InterfacePortState_Offline ? kNames[state] : std::to_string(state);
}

Failure Refused(const PortPlace& place, const std::string& why) {
  return Failure{kRefusedInThisState, place.name + " " + why};
}

// The open window, or why there is none.
Outcome NeedWindow(const PortPlace& place, const Port& port) {
  if (port.state == VXT_InterfacePortState_WindowOpen) return std::nullopt;
  return Refused(place, "has no open window (it is " + StateText(port.state) + ")");
}

}  // namespace

Ports& Ports::Instance() {
  static Ports ports;
  return ports;
}

void Ports::Restart() { Table().Restart(); }

void Ports::Follow() { Table().Follow(); }

VXT_InterfacePortState Ports::State(const PortPlace& place) {
  return Table().With(place, [](Port& port, const Channel&) { return port.state; });
}

void Ports::Configuration(const PortPlace& place, VXT_InterfacePortConfiguration& configuration) {
  Table().With(place, [&](Port& port, const Channel&) {
    const uint32_t size = configuration.structureSize;
    configuration = port.configuration;
    configuration.structureSize = size;
    return 0;
  });
}

Outcome Ports::Open(const PortPlace& place, const VXT_InterfacePortConfiguration& configuration) {
  if (auto refused = CheckConfiguration(configuration)) return refused;
  PortTable& table = Table();
  return table.With(place, [&](Port& port, const Channel&) -> Outcome {
    if (port.state == VXT_InterfacePortState_Offline)
      return Refused(place, "is offline: its target domain has no running UART");
    if (port.state == VXT_InterfacePortState_WindowOpen) return Refused(place, "has a window open already");
    if (configuration.dataCaptureType == VXT_InterfacePortDataCaptureType_File) {
      const std::filesystem::path path = CapturePath(configuration);
      port.capture.open(path, std::ios::binary | std::ios::trunc);
      if (!port.capture)
        return Failure{kCaptureFailed, "cannot open the capture file '" + path.string() + "': " + std::strerror(errno)};
    }
    port.configuration = configuration;
    port.configured = true;
    // A window starts with the text the target has sent so far.
    port.position = 0;
    table.Transition(place.portId, port, VXT_InterfacePortState_WindowOpen);
    return std::nullopt;
  });
}

Outcome Ports::Close(const PortPlace& place) {
  PortTable& table = Table();
  return table.With(place, [&](Port& port, const Channel&) -> Outcome {
    if (auto refused = NeedWindow(place, port)) return refused;
    table.EndWindow(port);
    table.Transition(place.portId, port, VXT_InterfacePortState_Configured);
    return std::nullopt;
  });
}

bool Ports::Available(const PortPlace& place) {
  return Table().With(place, [](Port& port, const Channel&) { return !port.waiting.empty(); });
}

Outcome Ports::Read(const PortPlace& place, std::span<uint8_t> buffer, uint32_t& returned) {
  returned = 0;
  return Table().With(place, [&](Port& port, const Channel&) -> Outcome {
    if (auto refused = NeedWindow(place, port)) return refused;
    if (!ReadsFromTarget(port.configuration)) return Refused(place, "has a window open for writing only");
    if (port.configuration.dataCaptureType == VXT_InterfacePortDataCaptureType_File)
      return Refused(place, "captures what arrives to '" + CapturePath(port.configuration).string() + "'");
    const size_t count = std::min(buffer.size(), port.waiting.size());
    std::copy_n(port.waiting.begin(), count, buffer.begin());
    port.waiting.erase(port.waiting.begin(), port.waiting.begin() + static_cast<std::ptrdiff_t>(count));
    returned = static_cast<uint32_t>(count);
    return std::nullopt;
  });
}

Outcome Ports::Write(const PortPlace& place, std::span<const uint8_t> bytes, uint32_t& written) {
  written = 0;
  return Table().With(place, [&](Port& port, const Channel& channel) -> Outcome {
    if (auto refused = NeedWindow(place, port)) return refused;
    if (!WritesToTarget(port.configuration)) return Refused(place, "has a window open for reading only");
    written = static_cast<uint32_t>(channel.uart->Accept(bytes.data(), bytes.size(), kMaxToTarget));
    return std::nullopt;
  });
}

}  // namespace voxtrel::platform::interface_port
