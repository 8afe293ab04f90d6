// vxt stateport list|read|write: the named state ports of a device.
//
//   vxt stateport list TargetDomain0                   each port, its size and address fields
//   vxt stateport read TargetDomain0 Scratch 1 15      the value at address fields (1, 15)
//   vxt stateport write TargetDomain0 Scratch 0x42 1 15
#include <cstdio>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "DeviceNames.h"
#include "NumberArguments.h"

namespace vxt::cli {
namespace {

using Name = char[VXT_STATE_PORT_NAME_SIZE];

std::vector<uint64_t> AddressFields(const std::vector<std::string>& values, size_t from) {
  std::vector<uint64_t> fields;
  for (size_t i = from; i < values.size(); ++i) fields.push_back(ParseNumber(values[i], UINT64_MAX, "address field"));
  return fields;
}

// The service wants an array even for a port without address fields.
const uint64_t* ArrayOf(const std::vector<uint64_t>& fields) {
  static const uint64_t none = 0;
  return fields.empty() ? &none : fields.data();
}

void List(IInternalService_StatePort& ports, uint32_t device, std::ostream& out) {
  uint32_t count = 0;
  Check(ports.GetNumStatePorts(device, &count), "GetNumStatePorts");
  std::vector<Name> names(count);
  if (count > 0) Check(ports.GetStatePorts(device, count, names.data()), "GetStatePorts");
  for (const Name& name : names) {
    uint32_t size = 0, numFields = 0;
    Check(ports.GetAccessSize(device, name, &size), "GetAccessSize");
    Check(ports.GetNumAddressFields(device, name, &numFields), "GetNumAddressFields");
    std::vector<Name> fields(numFields);
    if (numFields > 0) Check(ports.GetAddressFields(device, name, numFields, fields.data()), "GetAddressFields");
    out << name << "  " << size << " byte(s)";
    for (const Name& field : fields) out << (&field == &fields.front() ? "  [" : ", ") << field;
    out << (fields.empty() ? "\n" : "]\n");
  }
}

int StatePort(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::string& action = arguments.text.at("action");
  const std::vector<std::string>& values = arguments.lists.at("values");
  const size_t needed = action == "list" ? 1 : action == "read" ? 2 : action == "write" ? 3 : 0;
  if (needed == 0) throw std::runtime_error("unknown stateport action '" + action + "' (list, read or write)");
  if (values.size() < needed) throw std::runtime_error("stateport " + action + " needs more arguments; see --help");
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& ports = session.Get<IInternalService_StatePort>(VXT_Service_StatePort);
  auto& receipts = session.Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
  const uint32_t device = ResolveDevice(devices, values[0]);
  if (action == "list") {
    List(ports, device, out);
    return 0;
  }
  const char* port = values[1].c_str();
  uint64_t token = 0;
  if (action == "write") {
    const std::vector<uint64_t> fields = AddressFields(values, 3);
    Check(ports.Write(device, port, static_cast<uint32_t>(fields.size()), ArrayOf(fields),
                      ParseNumber(values[2], UINT64_MAX, "value"), &token),
          "Write");
    Check(receipts.Destroy(token), "Destroy");
    out << "wrote " << values[2] << " to " << port << '\n';
    return 0;
  }
  const std::vector<uint64_t> fields = AddressFields(values, 2);
  Check(ports.Read(device, port, static_cast<uint32_t>(fields.size()), ArrayOf(fields), &token), "Read");
  uint64_t value = 0;
  Check(receipts.GetValueAsUInt64(token, &value), "GetValueAsUInt64");
  Check(receipts.Destroy(token), "Destroy");
  char text[24];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
  out << text << '\n';
  return 0;
}

const bool registered = RegisterCommand(
    {"stateport",
     "State ports: list DEVICE, read DEVICE PORT [FIELDS...], write DEVICE PORT VALUE [FIELDS...]",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("action", arguments.text["action"], "list, read or write")->required();
       command.add_option("values", arguments.lists["values"],
                          "The device, the port, a write's value and the address fields' values");
     },
     &ReportingUserErrors<&StatePort>});

}  // namespace
}  // namespace vxt::cli
