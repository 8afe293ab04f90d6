// What the run control commands show of a thread: its place in the code,
// the instruction there, and why it last stopped.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "InProc_Vxt.h"

namespace vxt::cli {

// The thread a command names, or the domain's first thread when it names
// none; throws std::invalid_argument for an unknown name.
uint32_t ThreadNamed(IInternalService_Device& devices, const std::string& name);

// Every LogicalThread of every target domain, in topology order.
std::vector<uint32_t> AllThreads(IInternalService_Device& devices);

// A register's value through the Register service.
uint64_t RegisterValue(uint32_t thread, const char* name);

// The instruction at a linear address of the thread, disassembled in the
// mode the thread runs in ("(unreadable)" where no instruction can be read).
std::string InstructionAt(uint32_t thread, uint64_t address);

// "0x00000000ffff0123".
std::string AddressText(uint64_t address);

// "Thread0_0 Breakpoint Execution at 0x...: inc qword ptr [...]" for a
// halted thread; its break type, subtype and address as the RunControl
// service gives them.
std::string StopLine(IInternalService_Device& devices, uint32_t thread);

// Waits for the receipt and gives its value; throws std::runtime_error with
// the receipt's own message when the operation failed.
uint64_t ReceiptNumber(uint64_t token, const std::string& call);
std::vector<uint8_t> ReceiptBytes(uint64_t token, const std::string& call);
// Waits for a run-changing operation's receipt to end, and lets it go.
void FinishReceipt(uint64_t token, const std::string& call);

}  // namespace vxt::cli
