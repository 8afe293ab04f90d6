#include "ThreadView.h"

#include <cstdio>
#include <stdexcept>

#include "DeviceNames.h"
#include "Session.h"
#include "TargetCalls.h"

namespace vxt::cli {
namespace {

IInternalService_OperationReceipt& Receipts() {
  return Session::Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
}

// Ends a receipt: nothing when it completed, else its message as the failure.
void Settle(uint64_t token, const std::string& call) {
  auto& receipts = Receipts();
  OperationStatus status = VXT_OperationStatus_Pending;
  Check(receipts.Flush(token), "Flush");
  Check(receipts.GetOperationStatus(token, &status), "GetOperationStatus");
  if (status == VXT_OperationStatus_Completed) return;
  char message[512] = "";
  receipts.GetOperationErrorMessage(token, message, sizeof message, nullptr);
  receipts.Destroy(token);
  throw std::runtime_error(call + ": " + message);
}

// The code width the thread runs in: long mode when EFER.LMA is set,
// protected mode when CR0.PE is, real mode otherwise.
VXT_InstructionType ModeOf(uint32_t thread) {
  if (RegisterValue(thread, "efer") & (1u << 10)) return VXT_InstructionType_64Bit;
  return (RegisterValue(thread, "cr0") & 1u) ? VXT_InstructionType_32Bit : VXT_InstructionType_16Bit;
}

}  // namespace

uint32_t ThreadNamed(IInternalService_Device& devices, const std::string& name) {
  if (!name.empty()) return ResolveDevice(devices, name);
  const std::vector<uint32_t> threads = AllThreads(devices);
  if (threads.empty()) throw std::invalid_argument("the target has no threads");
  return threads.front();
}

std::vector<uint32_t> AllThreads(IInternalService_Device& devices) {
  const uint32_t root = ReadTargetDomains(devices).rootId;
  const VXT_NodeType thread = VXT_NodeType_LogicalThread;
  uint32_t count = 0;
  Check(devices.GetNumDeviceIdsOfTypes(root, 1, &thread, &count), "GetNumDeviceIdsOfTypes");
  std::vector<uint32_t> threads(count);
  if (count != 0) Check(devices.GetDeviceIdsOfTypes(root, 1, &thread, count, threads.data()), "GetDeviceIdsOfTypes");
  return threads;
}

uint64_t RegisterValue(uint32_t thread, const char* name) {
  uint64_t token = 0;
  Check(Session::Get<IInternalService_Register>(VXT_Service_Register).ReadRegister(thread, name, &token),
        std::string("ReadRegister(") + name + ")");
  return ReceiptNumber(token, std::string("ReadRegister(") + name + ")");
}

std::string InstructionAt(uint32_t thread, uint64_t address) {
  // The longest x86 instruction; a shorter read near the end of a region.
  for (int32_t length = 15; length > 0; length -= 7) {
    const VXT_Address where{VXT_ADDRESS_SIZE, 0, 0, address, VXT_AddressType_Linear};
    uint64_t token = 0;
    if (Session::Get<IInternalService_Memory>(VXT_Service_Memory).ReadMemory(thread, &where, length, &token) != 0)
      continue;
    std::vector<uint8_t> bytes;
    try {
      bytes = ReceiptBytes(token, "ReadMemory");
    } catch (const std::runtime_error&) {
      continue;
    }
    char text[VXT_DISASSEMBLY_TEXT_SIZE] = "";
    uint32_t used = 0;
    if (Session::Get<IInternalService_AsmDasm>(VXT_Service_AsmDasm)
            .Disassemble(thread, ModeOf(thread), static_cast<uint32_t>(bytes.size()), bytes.data(), address, text,
                         &used) == 0)
      return text;
  }
  return "(unreadable)";
}

std::string AddressText(uint64_t address) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%016llx", static_cast<unsigned long long>(address));
  return text;
}

std::string StopLine(IInternalService_Device& devices, uint32_t thread) {
  auto& runControl = Session::Get<IInternalService_RunControl>(VXT_Service_RunControl);
  char breakType[VXT_BREAK_TYPE_TEXT_SIZE] = "";
  char breakSubtype[VXT_BREAK_TYPE_TEXT_SIZE] = "";
  Check(runControl.GetBreakType(thread, breakType), "GetBreakType");
  Check(runControl.GetBreakSubtype(thread, breakSubtype), "GetBreakSubtype");
  // The thread may have moved since its last stop (a register write, say):
  // show where it is now, as a linear address.
  const uint64_t rip = RegisterValue(thread, "rip") + RegisterValue(thread, "cs_base");
  std::string line = IdentifierOf(devices, thread) + ' ' + (breakType[0] != '\0' ? breakType : "Halted");
  if (breakSubtype[0] != '\0') line += std::string(" ") + breakSubtype;
  line += " at " + AddressText(rip) + ": " + InstructionAt(thread, rip);
  return line;
}

uint64_t ReceiptNumber(uint64_t token, const std::string& call) {
  Settle(token, call);
  uint64_t value = 0;
  const VXT_Result read = Receipts().GetValueAsUInt64(token, &value);
  Receipts().Destroy(token);
  Check(read, "GetValueAsUInt64");
  return value;
}

std::vector<uint8_t> ReceiptBytes(uint64_t token, const std::string& call) {
  return Outcome(Receipts(), token, call + ": ");
}

void FinishReceipt(uint64_t token, const std::string& call) { Outcome(Receipts(), token, call + ": "); }

}  // namespace vxt::cli
