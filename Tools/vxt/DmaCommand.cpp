// vxt dma read|write: blocks of target memory moved by a device's DMA
// method, at physical addresses.
//
//   vxt dma read Thread0_0 0x200000 32              32 bytes, 16 to a line
//   vxt dma write Thread0_0 0x200000 1 2 0xff       the bytes given
//   vxt dma read TargetDomain0 0x1000 8 --method DebugPort
//
// Without --method the device's default method moves the bytes.
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"
#include "NumberArguments.h"

namespace vxt::cli {
namespace {

int Dma(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::string& action = arguments.text.at("action");
  const std::vector<std::string>& values = arguments.lists.at("values");
  if (action != "read" && action != "write") throw std::runtime_error("unknown dma action '" + action + "' (read or write)");
  if (values.size() < 3) throw std::runtime_error("dma " + action + " needs a device, an address and bytes; see --help");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& dma = session.Get<IInternalService_Dma>(VXT_Service_Dma);
  const uint32_t device = ResolveDevice(devices, values[0]);
  const VXT_Address address{VXT_ADDRESS_SIZE, 0, 0, ParseNumber(values[1], UINT64_MAX, "address"),
                            VXT_AddressType_Physical};
  std::string method = arguments.text.at("method");
  if (method.empty()) {
    char name[VXT_CONFIG_ACCESS_METHOD_SIZE] = "";
    Check(dma.GetDefaultConfigurationAccessMethod(device, name), "GetDefaultConfigurationAccessMethod");
    method = name;
  }
  uint32_t moved = 0;
  if (action == "write") {
    const std::vector<uint8_t> bytes = ParseBytes(values, 2);
    Check(dma.WriteMemory(device, method.c_str(), &address, static_cast<uint32_t>(bytes.size()), bytes.data(), &moved),
          "WriteMemory");
    out << "wrote " << moved << " byte(s) by " << method << '\n';
    return 0;
  }
  std::vector<uint8_t> bytes(ParseNumber(values[2], 64u << 20, "byte count (at most 64 MiB)"));
  Check(dma.ReadMemory(device, method.c_str(), &address, static_cast<uint32_t>(bytes.size()), bytes.data(), &moved),
        "ReadMemory");
  bytes.resize(moved);
  out << HexBytes(bytes);
  return 0;
}

const bool registered = RegisterCommand(
    {"dma", "DMA of target memory: read DEVICE ADDRESS COUNT, write DEVICE ADDRESS BYTES... [--method NAME]",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("action", arguments.text["action"], "read or write")->required();
       command.add_option("values", arguments.lists["values"], "The device, the physical address, the count or bytes");
       command.add_option("--method", arguments.text["method"], "The DMA method; the device's default if not given");
     },
     &ReportingUserErrors<&Dma>});

}  // namespace
}  // namespace vxt::cli
