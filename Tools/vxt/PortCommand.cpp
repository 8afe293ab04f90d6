// vxt port open|read|write|watch and vxt console: the byte channel of an
// interface port, whose far end is the target's UART.
//
//   vxt port open [--port P] [--mode read|write|readwrite] [--file PATH]
//   vxt port read [--port P]          the bytes waiting, as they came
//   vxt port write [--port P] TEXT... the text, words joined by blanks; \n, \r,
//                                     \t, \\ and \xNN stand for their bytes
//   vxt port watch [--port P] [--count N] [--timeout SECONDS]
//                                     bytes as they arrive, until Ctrl-C, N bytes
//                                     or the timeout
//   vxt console [--port P]            everything the target's UART sent so far
//
// The port is the target's first interface port unless --port names one.
// read, write and watch use the window open on the port, or open one of
// their own for the command. console reads through a fresh window, so an
// open one is closed first.
#include <chrono>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"
#include "NumberArguments.h"
#include "StopSignals.h"

namespace vxt::cli {
namespace {

// The first interface port of every description: type 15, first of its type.
constexpr uint32_t kFirstInterfacePort = 0x0f000000;
constexpr uint32_t kChunk = 4096;

VXT_InterfacePortConfiguration Configuration(VXT_InterfacePortAccessMode mode, const std::string& file) {
  VXT_InterfacePortConfiguration configuration{};
  configuration.structureSize = VXT_INTERFACE_PORT_CONFIGURATION_SIZE;
  configuration.accessMode = mode;
  if (!file.empty()) {
    if (file.size() >= sizeof configuration.fileName) throw std::runtime_error("the capture file's name is too long");
    configuration.dataCaptureType = VXT_InterfacePortDataCaptureType_File;
    std::memcpy(configuration.fileName, file.data(), file.size());
  }
  return configuration;
}

VXT_InterfacePortAccessMode ParseMode(const std::string& text) {
  if (text == "read") return VXT_InterfacePortAccessMode_Read;
  if (text == "write") return VXT_InterfacePortAccessMode_Write;
  if (text == "readwrite") return VXT_InterfacePortAccessMode_ReadWrite;
  throw std::runtime_error("unknown mode '" + text + "' (read, write or readwrite)");
}

// The window a command works through: the one open on the port, or one of
// its own, closed when the command ends.
class Window {
 public:
  Window(IInternalService_InterfacePort& ports, uint32_t port, bool fresh) : ports_(ports), port_(port) {
    VXT_InterfacePortState state = VXT_InterfacePortState_Unknown;
    Check(ports.GetInterfacePortState(port, &state), "GetInterfacePortState");
    if (state == VXT_InterfacePortState_WindowOpen && !fresh) return;
    if (state == VXT_InterfacePortState_WindowOpen) Check(ports.CloseWindow(port), "CloseWindow");
    const VXT_InterfacePortConfiguration configuration = Configuration(VXT_InterfacePortAccessMode_ReadWrite, "");
    Check(ports.OpenWindow(port, &configuration), "OpenWindow");
    owned_ = true;
  }
  ~Window() {
    if (owned_) ports_.CloseWindow(port_);
  }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

 private:
  IInternalService_InterfacePort& ports_;
  uint32_t port_;
  bool owned_ = false;
};

// Up to `limit` of the bytes waiting.
std::string ReadWaiting(IInternalService_InterfacePort& ports, uint32_t port, uint64_t limit) {
  std::string text;
  std::vector<uint8_t> buffer(kChunk);
  while (text.size() < limit) {
    uint32_t returned = 0;
    const auto wanted = static_cast<uint32_t>(std::min<uint64_t>(kChunk, limit - text.size()));
    Check(ports.Read(port, wanted, buffer.data(), &returned), "Read");
    if (returned == 0) break;
    text.append(buffer.begin(), buffer.begin() + returned);
  }
  return text;
}

// "a\n" written as "a\\n" on a command line.
std::vector<uint8_t> Unescape(const std::string& text) {
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      bytes.push_back(static_cast<uint8_t>(text[i]));
      continue;
    }
    const char escaped = text[++i];
    if (escaped == 'n') bytes.push_back('\n');
    else if (escaped == 'r') bytes.push_back('\r');
    else if (escaped == 't') bytes.push_back('\t');
    else if (escaped == 'x' && i + 2 < text.size()) {
      bytes.push_back(static_cast<uint8_t>(ParseNumber("0x" + text.substr(i + 1, 2), 0xff, "byte")));
      i += 2;
    } else {
      bytes.push_back(static_cast<uint8_t>(escaped));
    }
  }
  return bytes;
}

void Write(IInternalService_InterfacePort& ports, uint32_t port, const std::vector<uint8_t>& bytes,
           std::ostream& out) {
  uint32_t written = 0;
  Check(ports.Write(port, static_cast<uint32_t>(bytes.size()), bytes.data(), &written), "Write");
  out << "wrote " << written << " of " << bytes.size() << " byte(s)\n";
}

int Watch(IInternalService_InterfacePort& ports, uint32_t port, uint64_t count, uint64_t timeoutSeconds,
          std::ostream& out) {
  BlockStopSignals();
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
  uint64_t seen = 0;
  while ((count == 0 || seen < count) && (timeoutSeconds == 0 || std::chrono::steady_clock::now() < end)) {
    if (TakeStopSignal()) break;
    const std::string text = ReadWaiting(ports, port, count == 0 ? UINT64_MAX : count - seen);
    seen += text.size();
    if (text.empty())
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    else
      out << text << std::flush;
  }
  return 0;
}

int Port(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::string& action = arguments.text.at("action");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& ports = session.Get<IInternalService_InterfacePort>(VXT_Service_InterfacePort);
  const std::string& name = arguments.text.at("port");
  const uint32_t port = name.empty() ? kFirstInterfacePort : ResolveDevice(devices, name);
  if (action == "open") {
    const VXT_InterfacePortConfiguration configuration =
        Configuration(ParseMode(arguments.text.at("mode")), arguments.text.at("file"));
    Check(ports.OpenWindow(port, &configuration), "OpenWindow");
    out << "window open on " << IdentifierOf(devices, port) << '\n';
    return 0;
  }
  if (action != "read" && action != "write" && action != "watch")
    throw std::runtime_error("unknown port action '" + action + "' (open, read, write or watch)");
  const Window window(ports, port, false);
  if (action == "read") {
    out << ReadWaiting(ports, port, UINT64_MAX) << std::flush;
    return 0;
  }
  if (action == "write") {
    std::string text;
    for (const std::string& word : arguments.lists.at("text")) text += (text.empty() ? "" : " ") + word;
    Write(ports, port, Unescape(text), out);
    return 0;
  }
  return Watch(ports, port, arguments.numbers.at("count"), arguments.numbers.at("timeout"), out);
}

int Console(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& ports = session.Get<IInternalService_InterfacePort>(VXT_Service_InterfacePort);
  const std::string& name = arguments.text.at("port");
  const uint32_t port = name.empty() ? kFirstInterfacePort : ResolveDevice(devices, name);
  const Window window(ports, port, true);
  out << ReadWaiting(ports, port, UINT64_MAX) << std::flush;
  return 0;
}

void AddPortOption(CLI::App& command, CommandArguments& arguments) {
  arguments.text["port"].clear();
  command.add_option("--port", arguments.text["port"], "The interface port (default: the first)");
}

const bool registered = RegisterCommand(
    {"port", "An interface port's bytes: open, read, write TEXT..., watch [--count N] [--timeout SECONDS]",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("action", arguments.text["action"], "open, read, write or watch")->required();
       command.add_option("text", arguments.lists["text"], "What write sends (\\n, \\r, \\t, \\xNN escapes)");
       AddPortOption(command, arguments);
       arguments.text["mode"] = "readwrite";
       command.add_option("--mode", arguments.text["mode"], "open: read, write or readwrite");
       command.add_option("--file", arguments.text["file"], "open: capture what arrives to this file");
       arguments.numbers["count"] = 0;
       command.add_option("--count", arguments.numbers["count"], "watch: stop after this many bytes");
       arguments.numbers["timeout"] = 0;
       command.add_option("--timeout", arguments.numbers["timeout"], "watch: stop after this many seconds");
     },
     &ReportingUserErrors<&Port>});

const bool registeredConsole = RegisterCommand(
    {"console", "Everything the target's UART has sent so far",
     [](CLI::App& command, CommandArguments& arguments) { AddPortOption(command, arguments); },
     &ReportingUserErrors<&Console>});

}  // namespace
}  // namespace vxt::cli
