// vxt mem read|write|load|save: the target's memory as a thread sees it.
// Addresses are written as the library reads them ("lin:0x1000", a bare
// number is linear too, "phys:0x1000", "cs:0x1000", ...).
//
//   vxt mem read phys:0x1000 32              a hex dump
//   vxt mem write 0x20000 0x90 0x90 0xc3
//   vxt mem save image.bin phys:0 0x10000    the bytes into a file
//   vxt mem load image.bin phys:0x20000      a file's bytes into memory
#include <cctype>
#include <cstdio>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "NumberArguments.h"
#include "TargetCalls.h"

namespace vxt::cli {
namespace {

constexpr int32_t kMaxBytes = 0x7fffffff;

struct MemoryAccess {
  explicit MemoryAccess(const SessionOptions& options, const std::string& thread)
      : session(options),
        memory(Session::Get<IInternalService_Memory>(VXT_Service_Memory)),
        receipts(Session::Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt)),
        threadId(LogicalThreadNamed(Session::Get<IInternalService_Device>(VXT_Service_Device), thread)) {}

  VXT_Address Address(const std::string& text) const { return ParseAddress(memory, text); }

  Session session;
  IInternalService_Memory& memory;
  IInternalService_OperationReceipt& receipts;
  uint32_t threadId;
};

// 16 bytes a line: the address, the bytes, and the printable ones.
void Dump(uint64_t start, const std::vector<uint8_t>& bytes, std::ostream& out) {
  for (size_t line = 0; line < bytes.size(); line += 16) {
    char text[24];
    std::snprintf(text, sizeof text, "%08llx:", static_cast<unsigned long long>(start + line));
    out << text;
    std::string printable;
    for (size_t i = line; i < line + 16; ++i) {
      if (i < bytes.size()) {
        std::snprintf(text, sizeof text, " %02x", bytes[i]);
        out << text;
        printable += std::isprint(bytes[i]) != 0 ? static_cast<char>(bytes[i]) : '.';
      } else {
        out << "   ";
      }
    }
    out << "  " << printable << '\n';
  }
}

VXT_Address Last(VXT_Address first, uint64_t count) {
  first.offset += count - 1;
  return first;
}

int Mem(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::string& action = arguments.text.at("action");
  const std::vector<std::string>& values = arguments.lists.at("values");
  const bool known = action == "read" || action == "write" || action == "load" || action == "save";
  if (!known) throw std::runtime_error("unknown mem action '" + action + "' (read, write, load or save)");
  const size_t needed = action == "load" ? 2 : action == "write" ? 2 : action == "read" ? 2 : 3;
  if (values.size() < needed || (action != "write" && values.size() > needed))
    throw std::runtime_error("mem " + action + " takes " + std::to_string(needed) + (action == "write" ? " or more" : "") +
                             " argument(s); see --help");
  MemoryAccess access(options, arguments.text.at("thread"));
  uint64_t token = 0;
  if (action == "read") {
    const VXT_Address address = access.Address(values[0]);
    const auto count = static_cast<int32_t>(ParseNumber(values[1], kMaxBytes, "byte count"));
    Check(access.memory.ReadMemory(access.threadId, &address, count, &token), "ReadMemory");
    Dump(address.offset, Outcome(access.receipts, token), out);
  } else if (action == "write") {
    const VXT_Address address = access.Address(values[0]);
    const std::vector<uint8_t> bytes = ParseBytes(values, 1);
    const OwnedBits data(Session::Get<IInternalService_BitData>(VXT_Service_BitData), bytes);
    Check(access.memory.WriteMemory(access.threadId, &address, static_cast<int32_t>(bytes.size()), data.get(), &token),
          "WriteMemory");
    Outcome(access.receipts, token);
    out << "wrote " << bytes.size() << " byte(s)\n";
  } else if (action == "load") {
    const VXT_Address address = access.Address(values[1]);
    Check(access.memory.LoadMemory(access.threadId, values[0].c_str(), &address, nullptr, "bin", "", &token),
          "LoadMemory");
    Outcome(access.receipts, token);
    out << "loaded " << values[0] << '\n';
  } else {
    const VXT_Address first = access.Address(values[1]);
    const uint64_t count = ParseNumber(values[2], kMaxBytes, "byte count");
    if (count == 0) throw std::runtime_error("mem save needs at least one byte");
    const VXT_Address last = Last(first, count);
    Check(access.memory.SaveMemory(access.threadId, values[0].c_str(), &first, &last, 1, "bin", "", &token),
          "SaveMemory");
    Outcome(access.receipts, token);
    out << "saved " << count << " byte(s) to " << values[0] << '\n';
  }
  return 0;
}

const bool registered = RegisterCommand(
    {"mem",
     "Target memory: read ADDRESS COUNT, write ADDRESS BYTES..., load FILE ADDRESS, save FILE ADDRESS COUNT",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("action", arguments.text["action"], "read, write, load or save")->required();
       command.add_option("values", arguments.lists["values"], "The address, count, bytes or file");
       command.add_option("--thread", arguments.text["thread"], "The thread whose view of memory (default: the first)");
     },
     &ReportingUserErrors<&Mem>});

}  // namespace
}  // namespace vxt::cli
