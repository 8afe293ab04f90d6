// vxt jtag: the target's JTAG chains as a probe sees them.
//
//   vxt jtag chain                     TAP controllers, IR lengths, IDCODEs decoded
//   vxt jtag irscan TAP VALUE          loads an instruction (the others in BYPASS)
//   vxt jtag drscan TAP BITS VALUE     scans the data register the TAP has selected,
//                                      the others taken to be in BYPASS; with
//                                      --ir, loads that instruction first
//   vxt jtag reset                     TRST and five TMS clocks on every chain
//   vxt jtag diagnose                  IDCODEs, IR lengths and the TDI-TDO path
//
// The scans go through the JtagAccess service; the chain is held by this
// client's lock while a command runs.
#include <cstdio>
#include <iostream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "JtagSession.h"

namespace vxt::cli {
namespace {

std::string Hex(uint64_t value, int digits) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%0*llx", digits, static_cast<unsigned long long>(value));
  return text;
}

uint64_t Number(const std::string& text) {
  size_t used = 0;
  const uint64_t value = std::stoull(text, &used, 0);
  if (used != text.size()) throw std::invalid_argument("'" + text + "' is not a number");
  return value;
}

// "manufacturer 0x0f5 (bank 1, id 0x75), part 0xb004, version 0x1"
std::string DecodeIdcode(uint32_t idcode) {
  if (idcode == 0) return "no IDCODE (bypass bit)";
  const uint32_t manufacturer = (idcode >> 1) & 0x7ff;
  return "manufacturer " + Hex(manufacturer, 3) + " (bank " + std::to_string((manufacturer >> 7) + 1) + ", id " +
         Hex(manufacturer & 0x7f, 2) + "), part " + Hex((idcode >> 12) & 0xffff, 4) + ", version " +
         Hex(idcode >> 28, 1);
}

std::string TraitsText(VXT_JtagTdiTdoContinuity traits) {
  if (traits == VXT_JtagTdiTdoContinuity_GOOD) return "good";
  std::string text;
  const std::pair<int32_t, const char*> names[] = {
      {VXT_JtagTdiTdoContinuity_OPEN, "open"},
      {VXT_JtagTdiTdoContinuity_SHORT, "short"},
      {VXT_JtagTdiTdoContinuity_INVERTED, "inverted"},
      {VXT_JtagTdiTdoContinuity_CORRUPTION, "corrupted"}};
  for (const auto& [bit, name] : names)
    if ((traits & bit) != 0) text += (text.empty() ? "" : ", ") + std::string(name);
  return text;
}

std::vector<uint32_t> TapsOf(IInternalService_Device& devices, uint32_t chain) {
  uint32_t count = 0;
  Check(devices.GetNumChildrenIds(chain, &count), "GetNumChildrenIds");
  std::vector<uint32_t> taps(count);
  if (count > 0) Check(devices.GetChildrenIds(chain, count, taps.data()), "GetChildrenIds");
  return taps;
}

constexpr int kMaxDevices = 64;

// What the chain answers after a reset, from the TDO end.
struct Idcodes {
  uint32_t codes[kMaxDevices] = {};
  int32_t found = 0;
  VXT_JtagTdiTdoContinuity traits{};
};
Idcodes ReadIdcodes(Session& session, uint32_t chain) {
  Idcodes read;
  Check(session.Get<IInternalService_JtagDiagnostic>(VXT_Service_JtagDiagnostic)
            .TapResetGetIdcodes(chain, kMaxDevices, read.codes, &read.found, &read.traits),
        "TapResetGetIdcodes");
  return read;
}

void ShowChain(Session& session, uint32_t chain, std::ostream& out) {
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& configuration = session.Get<IInternalService_JtagConfiguration>(VXT_Service_JtagConfiguration);
  const Idcodes read = ReadIdcodes(session, chain);
  const int32_t found = read.found;
  const std::vector<uint32_t> taps = TapsOf(devices, chain);
  out << "Chain " << IdentifierOf(devices, chain) << " (" << Hex(chain, 8) << "), TDI to TDO:\n";
  for (size_t i = 0; i < taps.size(); ++i) {
    uint32_t irLength = 0;
    Check(configuration.GetDeviceIrLength(taps[i], &irLength), "GetDeviceIrLength");
    // IDCODEs come from the TDO end.
    const size_t fromTdo = taps.size() - 1 - i;
    const uint32_t idcode = fromTdo < static_cast<size_t>(found) ? read.codes[fromTdo] : 0;
    out << "  " << IdentifierOf(devices, taps[i]) << "  irlen " << irLength << "  idcode " << Hex(idcode, 8) << "  "
        << DecodeIdcode(idcode) << '\n';
  }
  if (found != static_cast<int32_t>(taps.size()) || read.traits != VXT_JtagTdiTdoContinuity_GOOD)
    out << "  The chain answers with " << found << " TAP controllers; TDI-TDO path: " << TraitsText(read.traits)
        << '\n';
}

void Diagnose(Session& session, uint32_t chain, std::ostream& out) {
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& diagnostic = session.Get<IInternalService_JtagDiagnostic>(VXT_Service_JtagDiagnostic);
  auto& bits = session.Get<IInternalService_BitData>(VXT_Service_BitData);
  const Idcodes read = ReadIdcodes(session, chain);
  out << "Chain " << IdentifierOf(devices, chain) << "\n  IDCODEs from TDO:";
  for (int32_t i = 0; i < read.found; ++i) out << ' ' << Hex(read.codes[i], 8);
  out << "\n  TDI-TDO path (data registers): " << TraitsText(read.traits) << '\n';
  VXT_JtagTdiTdoContinuity traits{};

  std::vector<VXT_BitData> records(kMaxDevices, VXT_BitData{VXT_BITDATA_SIZE, 0, 0});
  std::vector<VXT_BitData*> pointers;
  for (VXT_BitData& record : records) pointers.push_back(&record);
  int32_t irCount = 0;
  Check(diagnostic.CaptureIrBypass(chain, 1024, kMaxDevices, pointers.data(), &irCount, &traits), "CaptureIrBypass");
  out << "  IR lengths from TDO:";
  for (int32_t i = 0; i < irCount; ++i) out << ' ' << records[i].bitSize;
  out << "\n  TDI-TDO path (instruction registers): " << TraitsText(traits) << '\n';
  for (VXT_BitData& record : records)
    if (record.dataHandle != 0) bits.Destroy(&record);
}

uint32_t IrLengthOf(Session& session, uint32_t tap) {
  uint32_t irLength = 0;
  Check(session.Get<IInternalService_JtagConfiguration>(VXT_Service_JtagConfiguration).GetDeviceIrLength(tap, &irLength),
        "GetDeviceIrLength");
  return irLength;
}

const std::vector<std::string>& Need(const std::vector<std::string>& values, size_t count, const char* usage) {
  if (values.size() != count) throw std::invalid_argument(std::string("usage: vxt jtag ") + usage);
  return values;
}

int Jtag(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  JtagPort port(session);
  const std::string& action = arguments.text.at("action");
  const std::vector<std::string>& values = arguments.lists.at("values");
  if (action == "chain" || action == "diagnose" || action == "reset") {
    Need(values, 0, action.c_str());
    for (const uint32_t chain : JtagChains(devices)) {
      if (action == "chain") ShowChain(session, chain, out);
      if (action == "diagnose") Diagnose(session, chain, out);
      if (action == "reset") {
        port.TapReset(chain, VXT_JtagResetType_TLR_TRST);
        out << "reset     " << IdentifierOf(devices, chain) << '\n';
      }
    }
    return 0;
  }
  if (action == "irscan") {
    Need(values, 2, "irscan TAP VALUE");
    const uint32_t tap = ResolveDevice(devices, values[0]);
    const uint32_t irLength = IrLengthOf(session, tap);
    if (irLength < 64 && Number(values[1]) >> irLength != 0)
      throw std::invalid_argument(values[1] + " does not fit the " + std::to_string(irLength) +
                                  "-bit instruction register of " + values[0]);
    port.IrDrScan(tap, irLength, Number(values[1]), 0, 0);
    out << "loaded    " << Hex(Number(values[1]), (irLength + 3) / 4) << " into " << IdentifierOf(devices, tap) << '\n';
    return 0;
  }
  if (action == "drscan") {
    Need(values, 3, "drscan TAP BITS VALUE");
    const uint32_t tap = ResolveDevice(devices, values[0]);
    const auto bitCount = static_cast<uint32_t>(Number(values[1]));
    if (bitCount == 0 || bitCount > 64) throw std::invalid_argument("BITS must be 1 to 64");
    if (const std::string& ir = arguments.text.at("ir"); !ir.empty()) {
      const uint64_t tdo = port.IrDrScan(tap, IrLengthOf(session, tap), Number(ir), bitCount, Number(values[2]));
      out << Hex(tdo, (bitCount + 3) / 4) << '\n';
      return 0;
    }
    // A DR scan of the whole path, the other TAPs in BYPASS: the TAP's bits
    // follow one bypass bit for each TAP nearer TDO.
    const uint32_t chain = ResolveChain(devices, "");
    const std::vector<uint32_t> taps = TapsOf(devices, chain);
    size_t nearerTdo = 0;
    for (size_t i = taps.size(); i-- > 0 && taps[i] != tap;) ++nearerTdo;
    const uint32_t total = bitCount + static_cast<uint32_t>(taps.size()) - 1;
    if (total > 64) throw std::invalid_argument("the scan is longer than 64 bits");
    port.GoToState(chain, VXT_JtagState_ShfDR);
    const uint64_t tdo = port.Shift(chain, VXT_JtagState_RTI, total, Number(values[2]) << nearerTdo);
    const uint64_t mask = bitCount == 64 ? ~uint64_t{0} : (uint64_t{1} << bitCount) - 1;
    out << Hex((tdo >> nearerTdo) & mask, (bitCount + 3) / 4) << '\n';
    return 0;
  }
  throw std::invalid_argument("unknown action '" + action + "' (chain, irscan, drscan, reset, diagnose)");
}

const bool registered = RegisterCommand(
    {"jtag", "JTAG chains: chain, irscan TAP VALUE, drscan TAP BITS VALUE, reset, diagnose",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("action", arguments.text["action"], "chain, irscan, drscan, reset or diagnose")->required();
       command.add_option("values", arguments.lists["values"], "The action's TAP, lengths and values");
       arguments.text["ir"];
       command.add_option("--ir", arguments.text["ir"], "drscan: the instruction to load first (the others BYPASS)");
     },
     &ReportingUserErrors<&Jtag>});

}  // namespace
}  // namespace vxt::cli
