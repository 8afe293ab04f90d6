// vxt i2c scan|read|write: raw transfers on an I2C bus of the target.
//
//   vxt i2c scan I2cBus0               which addresses answer, as i2cdetect shows them
//   vxt i2c read I2cBus0 0x50 8 0 0    writes the bytes after the count (an
//                                      address pointer), then reads 8 bytes,
//                                      with no other transfer in between
//   vxt i2c write I2cBus0 0x50 0 16 1 2 3
#include <cstdio>
#include <iostream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"
#include "NumberArguments.h"
#include "TargetCalls.h"

namespace vxt::cli {
namespace {

void Scan(IInternalService_I2cAccess& i2c, IInternalService_OperationReceipt& receipts, uint32_t bus,
          std::ostream& out) {
  out << "     0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f\n";
  for (unsigned row = 0; row < 0x80; row += 16) {
    char label[8];
    std::snprintf(label, sizeof label, "%02x:", row);
    out << label;
    for (unsigned address = row; address < row + 16; ++address) {
      // The reserved addresses are not probed, as i2cdetect leaves them.
      if (address < 0x03 || address > 0x77) {
        out << "   ";
        continue;
      }
      uint64_t token = 0;
      Check(i2c.I2cRawWrite(bus, static_cast<uint8_t>(address), nullptr, 0, 0, &token), "I2cRawWrite");
      std::vector<uint8_t> bytes;
      std::string failure;
      std::snprintf(label, sizeof label, " %02x", address);
      out << (TryOutcome(receipts, token, bytes, failure) ? label : " --");
    }
    out << '\n';
  }
}

int I2c(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::string& action = arguments.text.at("action");
  const std::vector<std::string>& values = arguments.lists.at("values");
  const size_t needed = action == "scan" ? 1 : action == "read" ? 3 : action == "write" ? 2 : 0;
  if (needed == 0) throw std::runtime_error("unknown i2c action '" + action + "' (scan, read or write)");
  if (values.size() < needed) throw std::runtime_error("i2c " + action + " needs more arguments; see --help");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& i2c = session.Get<IInternalService_I2cAccess>(VXT_Service_I2cAccess);
  auto& receipts = session.Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
  const uint32_t bus = ResolveDevice(devices, values[0]);
  if (action == "scan") {
    Scan(i2c, receipts, bus, out);
    return 0;
  }
  const auto address = static_cast<uint8_t>(ParseNumber(values[1], 0x7f, "7-bit address"));
  uint64_t token = 0;
  if (action == "write") {
    const std::vector<uint8_t> bytes = ParseBytes(values, 2);
    Check(i2c.I2cRawWrite(bus, address, bytes.data(), static_cast<uint32_t>(bytes.size()), 0, &token), "I2cRawWrite");
  } else {
    // One bundle: the pointer bytes written, then the read.
    const auto count = static_cast<uint32_t>(ParseNumber(values[2], 0xffff, "byte count"));
    const std::vector<uint8_t> pointer = ParseBytes(values, 3);
    std::vector<uint8_t> bundle;
    if (!pointer.empty()) {
      bundle = {'W', address, static_cast<uint8_t>(pointer.size()), 0};
      bundle.insert(bundle.end(), pointer.begin(), pointer.end());
    }
    bundle.insert(bundle.end(), {'R', address, static_cast<uint8_t>(count), static_cast<uint8_t>(count >> 8)});
    Check(i2c.BundleScan(bus, bundle.data(), static_cast<uint32_t>(bundle.size()), &token), "BundleScan");
  }
  const std::vector<uint8_t> bytes = Outcome(receipts, token);
  if (action == "write") {
    out << "wrote " << values.size() - 2 << " byte(s)\n";
    return 0;
  }
  out << HexBytes(bytes);
  return 0;
}

const bool registered = RegisterCommand(
    {"i2c", "I2C buses: scan BUS, read BUS ADDRESS COUNT [POINTER BYTES...], write BUS ADDRESS BYTES...",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("action", arguments.text["action"], "scan, read or write")->required();
       command.add_option("values", arguments.lists["values"], "The bus, the 7-bit address, the count and bytes");
     },
     &ReportingUserErrors<&I2c>});

}  // namespace
}  // namespace vxt::cli
