// An internal code is a family in its high half and a condition in its low
// half. The families, as the platform's components use them:
//   0x0001 client records          0x0015 authorization
//   0x0002 arguments and general   0x0016 probe plug-ins
//   0x0003 probes                  0x0018 state ports
//   0x0004 JTAG                    0x0019 operation receipts
//   0x0005 I2C                     0x001a preconditions
//   0x0007 probe capabilities      0x001b device control
//   0x000e devices and topology    0x001c run control
//   0x0011 interface ports         0x001d DMA
//   0x0012 the data store          0x001e registers and breakpoints
//   0x0014 bit vectors             0x001f memory
//   0x0020 assembler               0x0025 platform control
//   0x0026 configurations and logging presets
#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "Error.h"

namespace voxtrel::platform::error {
namespace {

struct CodeText {
  uint32_t code;
  const char* text;
};

// Sorted by code, for a binary search.
constexpr CodeText kMessages[] = {
    {0x0, "Success"},
    {0x10000, "Client not registered"},
    {0x10001, "Client already registered"},
    {0x10002, "Client record invalid"},
    {0x20000, "Invalid argument"},
    {0x20001, "Value out of range"},
    {0x20002, "Not supported"},
    {0x20003, "Not implemented"},
    {0x20004, "Operation failed"},
    {0x20005, "Unknown device"},
    {0x20006, "Device not available"},
    {0x20007, "Out of memory"},
    {0x20008, "Operation canceled"},
    {0x20009, "Unexpected exception"},
    {0x2000a, "Structure size not initialized"},
    {0x2000b, "Buffer too small"},
    {0x2000d, "Wrong device type"},
    {0x2000e, "Invalid handle"},
    {0x20010, "Not initialized"},
    {0x20011, "Already initialized"},
    {0x20012, "Access denied"},
    {0x20013, "Resource busy"},
    {0x20017, "Operation timed out"},
    {0x30002, "Probe not found"},
    {0x30003, "Probe not connected"},
    {0x30004, "Probe busy"},
    {0x30005, "Probe communication failed"},
    {0x30006, "Probe firmware not supported"},
    {0x30007, "Probe plug-in could not be loaded"},
    {0x40000, "JTAG scan failed"},
    {0x40001, "JTAG scan chain not found"},
    {0x40002, "TAP controller not found"},
    {0x40003, "JTAG scan chain locked"},
    {0x40007, "JTAG scan incomplete"},
    {0x40011, "Invalid JTAG state"},
    {0x40012, "JTAG scan length out of range"},
    {0x40014, "JTAG interface not available"},
    {0x40015, "JTAG repeat limit reached"},
    {0x40016, "JTAG compare mismatch"},
    {0x40017, "JTAG trigger timed out"},
    {0x40018, "JTAG continuity check failed"},
    {0x40019, "Invalid instruction register length"},
    {0x4001a, "Invalid instruction register value"},
    {0x50000, "I2C bus not found"},
    {0x50001, "I2C transfer not acknowledged"},
    {0x50002, "I2C bus busy"},
    {0x70002, "Not supported by the probe"},
    {0x70003, "Target not halted"},
    {0xe0002, "Device not found"},
    {0xe0003, "Device disabled"},
    {0xe0004, "Device locked"},
    {0xe0005, "Device lock timed out"},
    {0xe0006, "Device not locked by this client"},
    {0xe0007, "Device configuration not found"},
    {0xe0008, "Device configuration value invalid"},
    {0xe0009, "Device configuration read-only"},
    {0xe000a, "Device action not found"},
    {0xe000b, "Device action failed"},
    {0xe000c, "Topology not available"},
    {0xe000d, "Target initialization failed"},
    {0xe000e, "Target initialization in progress"},
    {0xe000f, "Target initialization canceled"},
    {0xe0010, "Target initialization not started"},
    {0xe0011, "Topology update failed"},
    {0xe0012, "Core group not found"},
    {0xe0013, "Dynamic initialization not supported"},
    {0xe0014, "Dynamic initialization not in progress"},
    {0x110000, "Interface port not found"},
    {0x110001, "Interface port not configured"},
    {0x110002, "Interface port offline"},
    {0x110003, "Interface port window not open"},
    {0x110004, "Interface port configuration invalid"},
    {0x110005, "Interface port transfer failed"},
    {0x110006, "Interface port timed out"},
    {0x120000, "Data store entry not found"},
    {0x120001, "Data store type mismatch"},
    {0x120002, "Data store path invalid"},
    {0x120003, "Data store read failed"},
    {0x120004, "Data store write failed"},
    {0x120007, "Data store locked"},
    {0x120008, "Data store schema invalid"},
    {0x120009, "Data store not available"},
    {0x140000, "Invalid BitData"},
    {0x140001, "Bit size invalid"},
    {0x140002, "Bit range invalid"},
    {0x140003, "Bit offset invalid"},
    {0x140004, "Destination exists"},
    {0x140005, "Invalid bitwise operation"},
    {0x150000, "Not authorized"},
    {0x150001, "Credentials invalid"},
    {0x150002, "Credentials expired"},
    {0x150003, "Authorization service not available"},
    {0x150004, "Authorization request failed"},
    {0x150005, "Authorization challenge failed"},
    {0x150006, "Credentials missing"},
    {0x150007, "Authorization state unknown"},
    {0x150008, "Authorization locked out"},
    {0x160011, "Target power is off"},
    {0x160014, "Probe plug-in scan failed"},
    {0x160026, "Probe plug-in feature not available"},
    {0x180000, "Device is not a state port device"},
    {0x180002, "State port not found"},
    {0x180003, "State port field not found"},
    {0x180004, "State port access failed"},
    {0x190000, "Unknown operation token"},
    {0x190001, "Operation failed in the background"},
    {0x190002, "Operation already ended"},
    {0x1a0002, "Precondition not found"},
    {0x1a0003, "Precondition not met"},
    {0x1a0004, "Precondition check failed"},
    {0x1a0006, "Precondition state unknown"},
    {0x1a0007, "Precondition cannot be changed"},
    {0x1a0009, "Precondition device invalid"},
    {0x1b0000, "Device control not available for the device"},
    {0x1b0003, "Device configuration name unknown"},
    {0x1b0004, "Device action name unknown"},
    {0x1c0002, "Thread is running"},
    {0x1c0003, "Thread is halted"},
    {0x1c0004, "Halt failed"},
    {0x1c0005, "Resume failed"},
    {0x1c0006, "Step failed"},
    {0x1c0014, "Run control operation not supported"},
    {0x1c0017, "Thread not available"},
    {0x1d0000, "DMA not available"},
    {0x1d0001, "DMA transfer failed"},
    {0x1d0002, "DMA address invalid"},
    {0x1d0003, "DMA length invalid"},
    {0x1e0000, "Register not found"},
    {0x1e0001, "Register access failed"},
    {0x1e0004, "Breakpoint not found"},
    {0x1e0005, "Breakpoint already exists"},
    {0x1e0006, "No breakpoint resources left"},
    {0x1e0007, "Breakpoint address invalid"},
    {0x1e0008, "Breakpoint type not supported"},
    {0x1e0009, "Breakpoint data size invalid"},
    {0x1e000a, "Debug register invalid"},
    {0x1e000c, "Breakpoint could not be set"},
    {0x1e000d, "Breakpoint could not be removed"},
    {0x1e000e, "Breakpoint could not be enabled"},
    {0x1e000f, "Breakpoint could not be disabled"},
    {0x1e0011, "Breakpoint is in use"},
    {0x1f0000, "Memory read failed"},
    {0x1f0001, "Memory write failed"},
    {0x1f0002, "Invalid address"},
    {0x1f0003, "Address type not supported"},
    {0x1f0005, "Memory length invalid"},
    {0x1f0006, "Invalid memory access width"},
    {0x1f0007, "Address translation failed"},
    {0x1f0008, "Memory not accessible"},
    {0x1f000a, "Memory access timed out"},
    {0x200000, "Assembly failed"},
    {0x200001, "Disassembly failed"},
    {0x200002, "Instruction type not supported"},
    {0x250001, "Platform control not available"},
    {0x250002, "Survivability preset invalid"},
    {0x250003, "Transport feature not supported"},
    {0x250004, "Preference invalid"},
    {0x250005, "Platform reset failed"},
    {0x250006, "Power state change failed"},
    {0x250007, "Platform control busy"},
    {0x250008, "Platform control timed out"},
    {0x260000, "Configuration not found"},
    {0x260001, "Unknown logging preset"},
    {0x260002, "Invalid target description"},
    {0xffffffff, "Unspecified failure"},
};

static_assert(std::is_sorted(std::begin(kMessages), std::end(kMessages),
                             [](const CodeText& a, const CodeText& b) { return a.code < b.code; }));

// Texts made for codes without a standing one. The strings are never freed,
// so every pointer handed out stays valid for the life of the process.
class UnknownCodeTexts {
 public:
  const char* TextOf(uint32_t code) {
    std::lock_guard lock(mutex_);
    auto [entry, added] = texts_.try_emplace(code);
    if (added) {
      char text[32];
      std::snprintf(text, sizeof text, "Unknown error 0x%08x", code);
      entry->second = text;
    }
    return entry->second.c_str();
  }

 private:
  std::mutex mutex_;
  std::map<uint32_t, std::string> texts_;
};

UnknownCodeTexts& TheUnknownCodeTexts() {
  static UnknownCodeTexts& texts = *new UnknownCodeTexts;
  return texts;
}

std::optional<std::string_view> KnownMessage(uint32_t code) {
  const auto found = std::lower_bound(std::begin(kMessages), std::end(kMessages), code,
                                      [](const CodeText& entry, uint32_t value) { return entry.code < value; });
  if (found == std::end(kMessages) || found->code != code) return std::nullopt;
  return found->text;
}

}  // namespace
}  // namespace voxtrel::platform::error

const char* Voxtrel_ErrorGetDefaultMessage(uint32_t code) {
  using namespace voxtrel::platform::error;
  if (const auto known = KnownMessage(code)) return known->data();
  return TheUnknownCodeTexts().TextOf(code);
}
