// vxt regs|reg|msr: a thread's registers and model-specific registers.
//
//   vxt regs [THREAD]                  every register the thread has
//   vxt reg rip [--thread THREAD]      one register
//   vxt reg rax 0x1234                 write it (the thread must be halted)
//   vxt msr 0x10 [VALUE]               read or write an MSR
#include <algorithm>
#include <cstring>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "NumberArguments.h"
#include "TargetCalls.h"

namespace vxt::cli {
namespace {

struct RegisterAccess {
  RegisterAccess(const SessionOptions& options, const std::string& thread)
      : session(options),
        registers(Session::Get<IInternalService_Register>(VXT_Service_Register)),
        receipts(Session::Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt)),
        bits(Session::Get<IInternalService_BitData>(VXT_Service_BitData)),
        threadId(LogicalThreadNamed(Session::Get<IInternalService_Device>(VXT_Service_Device), thread)) {}

  std::vector<std::string> Names() const {
    uint32_t count = 0;
    Check(registers.GetNumRegisters(threadId, &count), "GetNumRegisters");
    auto names = std::make_unique<char[][VXT_REGISTER_NAME_SIZE]>(count);
    Check(registers.GetRegisters(threadId, count, names.get()), "GetRegisters");
    std::vector<std::string> result;
    for (uint32_t i = 0; i < count; ++i) result.emplace_back(names[i], strnlen(names[i], VXT_REGISTER_NAME_SIZE));
    return result;
  }

  Session session;
  IInternalService_Register& registers;
  IInternalService_OperationReceipt& receipts;
  IInternalService_BitData& bits;
  uint32_t threadId;
};

int Regs(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  RegisterAccess access(options, arguments.text.at("thread"));
  const std::vector<std::string> names = access.Names();
  std::vector<const char*> pointers;
  for (const std::string& name : names) pointers.push_back(name.c_str());
  std::vector<uint64_t> tokens(names.size());
  Check(access.registers.ReadRegisters(access.threadId, pointers.data(), tokens.data(),
                                       static_cast<uint32_t>(names.size())),
        "ReadRegisters");
  size_t width = 0;
  for (const std::string& name : names) width = std::max(width, name.size());
  for (size_t i = 0; i < names.size(); ++i) {
    std::vector<uint8_t> value;
    std::string failure;
    const bool read = TryOutcome(access.receipts, tokens[i], value, failure);
    out << names[i] << std::string(width + 2 - names[i].size(), ' ') << (read ? HexValue(value) : "(" + failure + ")")
        << '\n';
  }
  return 0;
}

int Reg(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::vector<std::string>& values = arguments.lists.at("values");
  if (values.empty() || values.size() > 2) throw std::runtime_error("reg takes NAME [VALUE]; see --help");
  RegisterAccess access(options, arguments.text.at("thread"));
  uint64_t token = 0;
  Check(access.registers.ReadRegister(access.threadId, values[0].c_str(), &token), "ReadRegister");
  std::vector<uint8_t> value = Outcome(access.receipts, token);
  if (values.size() == 2) {
    const uint64_t max = value.size() >= 8 ? ~uint64_t{0} : (uint64_t{1} << (8 * value.size())) - 1;
    value = LittleEndian(ParseNumber(values[1], max, "value for the register"), value.size());
    const OwnedBits bits(access.bits, value);
    Check(access.registers.WriteRegister(access.threadId, values[0].c_str(), bits.get(), &token), "WriteRegister");
    Outcome(access.receipts, token);
  }
  out << values[0] << ' ' << HexValue(value) << '\n';
  return 0;
}

int Msr(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  const std::vector<std::string>& values = arguments.lists.at("values");
  if (values.empty() || values.size() > 2) throw std::runtime_error("msr takes INDEX [VALUE]; see --help");
  RegisterAccess access(options, arguments.text.at("thread"));
  const auto index = static_cast<uint32_t>(ParseNumber(values[0], 0xffffffff, "MSR index"));
  uint64_t token = 0;
  std::vector<uint8_t> value;
  if (values.size() == 2) {
    value = LittleEndian(ParseNumber(values[1], ~uint64_t{0}, "64-bit value"), 8);
    const OwnedBits bits(access.bits, value);
    Check(access.registers.WriteMsr(access.threadId, index, bits.get(), &token), "WriteMsr");
    Outcome(access.receipts, token);
  } else {
    Check(access.registers.ReadMsr(access.threadId, index, &token), "ReadMsr");
    value = Outcome(access.receipts, token);
  }
  out << "msr " << values[0] << ' ' << HexValue(value) << '\n';
  return 0;
}

void ThreadOption(CLI::App& command, CommandArguments& arguments) {
  command.add_option("--thread", arguments.text["thread"], "The thread (default: the first)");
}

const bool registeredRegs = RegisterCommand({"regs", "Every register of a thread: regs [THREAD]",
                                             [](CLI::App& command, CommandArguments& arguments) {
                                               command.add_option("thread", arguments.text["thread"],
                                                                  "The thread (default: the first)");
                                             },
                                             &ReportingUserErrors<&Regs>});

const bool registeredReg = RegisterCommand({"reg", "One register: reg NAME [VALUE] [--thread THREAD]",
                                            [](CLI::App& command, CommandArguments& arguments) {
                                              command.add_option("values", arguments.lists["values"],
                                                                 "The register's name and the value to write");
                                              ThreadOption(command, arguments);
                                            },
                                            &ReportingUserErrors<&Reg>});

const bool registeredMsr = RegisterCommand({"msr", "A model-specific register: msr INDEX [VALUE] [--thread THREAD]",
                                            [](CLI::App& command, CommandArguments& arguments) {
                                              command.add_option("values", arguments.lists["values"],
                                                                 "The MSR's index and the value to write");
                                              ThreadOption(command, arguments);
                                            },
                                            &ReportingUserErrors<&Msr>});

}  // namespace
}  // namespace vxt::cli
