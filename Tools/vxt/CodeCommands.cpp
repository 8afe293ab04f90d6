// vxt asm|disasm: instructions in target memory, in the thread's own mode.
//
//   vxt asm 0x20000 "inc rcx" "jmp 0x20000"   assemble into memory
//   vxt disasm                                 8 instructions from the thread's rip
//   vxt disasm 0xffff0000 4                    the current instruction marked "=>"
#include <algorithm>
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

constexpr uint32_t kLongestInstruction = 15;

struct CodeAccess {
  CodeAccess(const SessionOptions& options, const std::string& thread)
      : session(options),
        memory(Session::Get<IInternalService_Memory>(VXT_Service_Memory)),
        assembler(Session::Get<IInternalService_AsmDasm>(VXT_Service_AsmDasm)),
        receipts(Session::Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt)),
        threadId(LogicalThreadNamed(Session::Get<IInternalService_Device>(VXT_Service_Device), thread)) {}

  VXT_Address Address(const std::string& text) const { return ParseAddress(memory, text); }
  uint64_t Rip() const {
    uint64_t token = 0;
    auto& registers = Session::Get<IInternalService_Register>(VXT_Service_Register);
    Check(registers.ReadRegister(threadId, "rip", &token), "ReadRegister");
    const std::vector<uint8_t> bytes = Outcome(receipts, token);
    uint64_t value = 0;
    for (size_t i = 0; i < bytes.size() && i < 8; ++i) value |= uint64_t{bytes[i]} << (8 * i);
    return value;
  }
  // Up to `count` bytes from `address`: fewer where memory ends.
  std::vector<uint8_t> Read(const VXT_Address& address, uint32_t count) const {
    for (; count > 0; --count) {
      uint64_t token = 0;
      if (memory.ReadMemory(threadId, &address, static_cast<int32_t>(count), &token) != VXT_SUCCESS) continue;
      std::vector<uint8_t> bytes;
      std::string failure;
      if (TryOutcome(receipts, token, bytes, failure)) return bytes;
    }
    return {};
  }

  Session session;
  IInternalService_Memory& memory;
  IInternalService_AsmDasm& assembler;
  IInternalService_OperationReceipt& receipts;
  uint32_t threadId;
};

std::string Bytes(const uint8_t* bytes, uint32_t count) {
  std::string text;
  for (uint32_t i = 0; i < count; ++i) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02x ", bytes[i]);
    text += digits;
  }
  return text;
}

std::string Line(const char* mark, uint64_t address, const std::string& bytes, const std::string& text) {
  char label[32];
  std::snprintf(label, sizeof label, "%s%08llx:  ", mark, static_cast<unsigned long long>(address));
  std::string line = label;
  line += bytes;
  line += std::string(bytes.size() < 30 ? 30 - bytes.size() : 1, ' ');
  line += text;
  line += '\n';
  return line;
}

int Asm(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::vector<std::string>& values = arguments.lists.at("values");
  if (values.size() < 2) throw std::runtime_error("asm takes ADDRESS INSTRUCTION...; see --help");
  CodeAccess access(options, arguments.text.at("thread"));
  const VXT_Address address = access.Address(values[0]);
  std::vector<uint8_t> code;
  std::string listing;
  for (size_t i = 1; i < values.size(); ++i) {
    uint8_t bytes[kLongestInstruction] = {};
    uint32_t size = 0;
    const uint64_t at = address.offset + code.size();
    Check(access.assembler.Assemble(access.threadId, VXT_InstructionType_XBit, values[i].c_str(), at, sizeof bytes,
                                    bytes, &size),
          "Assemble");
    listing += Line("", at, Bytes(bytes, size), values[i]);
    code.insert(code.end(), bytes, bytes + size);
  }
  const OwnedBits data(Session::Get<IInternalService_BitData>(VXT_Service_BitData), code);
  uint64_t token = 0;
  Check(access.memory.WriteMemory(access.threadId, &address, static_cast<int32_t>(code.size()), data.get(), &token),
        "WriteMemory");
  Outcome(access.receipts, token);
  out << listing;
  return 0;
}

int Disasm(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::vector<std::string>& values = arguments.lists.at("values");
  if (values.size() > 2) throw std::runtime_error("disasm takes [ADDRESS] [COUNT]; see --help");
  CodeAccess access(options, arguments.text.at("thread"));
  const uint64_t rip = access.Rip();
  VXT_Address address{VXT_ADDRESS_SIZE, 0, 0, rip, VXT_AddressType_Linear};
  if (!values.empty()) address = access.Address(values[0]);
  const uint64_t count = values.size() == 2 ? ParseNumber(values[1], 1000, "instruction count (at most 1000)") : 8;
  for (uint64_t i = 0; i < count; ++i) {
    const std::vector<uint8_t> bytes = access.Read(address, kLongestInstruction);
    if (bytes.empty()) throw std::runtime_error("no memory to read at the address");
    char text[VXT_DISASSEMBLY_TEXT_SIZE] = {};
    uint32_t size = 0;
    Check(access.assembler.Disassemble(access.threadId, VXT_InstructionType_XBit, static_cast<uint32_t>(bytes.size()),
                                       bytes.data(), address.offset, text, &size),
          "Disassemble");
    const bool current = address.addressType == VXT_AddressType_Linear && address.offset == rip;
    out << Line(current ? "=> " : "   ", address.offset, Bytes(bytes.data(), size), text);
    address.offset += std::max<uint32_t>(size, 1);
  }
  return 0;
}

void Options(CLI::App& command, CommandArguments& arguments, const char* values) {
  command.add_option("values", arguments.lists["values"], values);
  command.add_option("--thread", arguments.text["thread"], "The thread (default: the first)");
}

const bool registeredAsm = RegisterCommand(
    {"asm", "Assemble into memory: asm ADDRESS INSTRUCTION... [--thread THREAD]",
     [](CLI::App& command, CommandArguments& arguments) {
       Options(command, arguments, "The address, then one instruction per argument");
     },
     &ReportingUserErrors<&Asm>});

const bool registeredDisasm = RegisterCommand(
    {"disasm", "Disassemble memory: disasm [ADDRESS] [COUNT] [--thread THREAD]; the current instruction is marked =>",
     [](CLI::App& command, CommandArguments& arguments) {
       Options(command, arguments, "The address (default: the thread's rip) and the count (default 8)");
     },
     &ReportingUserErrors<&Disasm>});

}  // namespace
}  // namespace vxt::cli
