// The Jtag component's diagnostic table: what a probe learns of a chain
// without trusting its description. IDCODEs after a reset, instruction
// register lengths by the capture pattern with every TAP then in BYPASS,
// data register capture, and the traits of the TDI-TDO path; and the
// chain lock seen from outside.
#include <algorithm>

#include "Jtag.h"
#include "Jtag/JtagModel.h"
#include "OperationReceipt/ReceiptRegistry.h"
#include "Jtag/Scans.h"
#include "Support/ComponentCall.h"
#include "VXT_Client.h"

namespace voxtrel::platform::jtag {
namespace {

using receipts::ReceiptOutcome;
using target_manager::HexId;
using target_manager::Request;

// Runs a diagnostic like a scan, without a token to give.
uint32_t Diagnose(const char* operation, uint32_t id, const ScanWork& work) {
  uint64_t token = 0;
  const uint32_t code = RunScan(operation, id, &token, work, false);
  if (code == 0) receipts::ReceiptRegistry::Instance().Destroy(token);
  return code;
}

void Report(VXT_JtagTdiTdoContinuity* detectedTraits, int32_t traits) {
  if (detectedTraits != nullptr) *detectedTraits = static_cast<VXT_JtagTdiTdoContinuity>(traits);
}

void Reset(ScanChain& chain) {
  chain.AssertTrst();
  chain.Walk(std::vector<bool>(5, true));
}

// An IDCODE has bit 0 set; a TAP without one captures a single 0 bit.
uint32_t TapResetGetIdcodes(uint32_t jtagChainId, int32_t maxDeviceCount, uint32_t flags, uint32_t* idcodes,
                            int32_t* numDevices, VXT_JtagTdiTdoContinuity* detectedTraits) {
  VOXTREL_COMPONENT_CALL("Jtag.TapResetGetIdcodes", "jtagChainId=", HexId(jtagChainId),
                         ", maxDeviceCount=", maxDeviceCount, ", flags=", flags);
  Request request("Jtag.TapResetGetIdcodes");
  if (request.NotNull(idcodes, "idcodes").NotNull(numDevices, "numDevices").failed()) return request.code();
  if (maxDeviceCount <= 0 || flags != 0)
    return request.Refuse(kOutOfRange, ": maxDeviceCount must be positive and flags 0");
  return Diagnose("Jtag.TapResetGetIdcodes", jtagChainId, [=](ChainTarget& target, Request&, ReceiptOutcome&) {
    Reset(target.chain);
    target.chain.MoveTo(TapState::ShfDR);
    const PathReading path = ReadPath(target.chain, 32 * static_cast<size_t>(maxDeviceCount));
    target.chain.MoveTo(TapState::RTI);
    int32_t found = 0;
    for (size_t offset = 0; path.length && offset < *path.length && found < maxDeviceCount; ++found) {
      const bool hasIdcode = path.captured[offset];
      idcodes[found] = hasIdcode ? static_cast<uint32_t>(NumberOf(path.captured, offset)) : 0;
      offset += hasIdcode ? 32 : 1;
    }
    *numDevices = found;
    Report(detectedTraits, path.traits);
    return 0u;
  });
}

uint32_t CaptureDr(uint32_t id, const BitData* ir, int32_t maxDrLength, BitData* dr,
                   VXT_JtagTdiTdoContinuity* detectedTraits) {
  VOXTREL_COMPONENT_CALL("Jtag.CaptureDr", "id=", HexId(id), ", maxDrLength=", maxDrLength);
  Request request("Jtag.CaptureDr");
  if (request.NotNull(ir, "ir").NotNull(dr, "dr").failed()) return request.code();
  if (maxDrLength <= 0) return request.Refuse(kOutOfRange, ": maxDrLength must be positive");
  if (ir->bitSize > kMaxScanBits) return request.Refuse(kOutOfRange, ": ir is longer than any instruction scan");
  return Diagnose("Jtag.CaptureDr", id,
                  [=, irBits = BitsOf(ir, ir->bitSize, false)](ChainTarget& target, Request& inner, ReceiptOutcome&) {
                    if (irBits.size() != IrScanLength(target))
                      return inner.Refuse(kOutOfRange, ": ir holds " + std::to_string(irBits.size()) +
                                                           " bits, and the scan needs " +
                                                           std::to_string(IrScanLength(target)));
                    ScanIr(target, irBits);
                    target.chain.MoveTo(TapState::ShfDR);
                    const PathReading path = ReadPath(target.chain, static_cast<size_t>(maxDrLength));
                    target.chain.MoveTo(TapState::RTI);
                    Store(path.captured, dr);
                    Report(detectedTraits, path.traits);
                    return 0u;
                  });
}

// Every TAP captures 1 then 0s: a 1 starts each instruction register.
uint32_t CaptureIrBypass(uint32_t jtagChainId, int32_t maxTdiTdoIrLength, int32_t maxDeviceCount,
                         uint32_t* irLengths, int32_t* numDevices, BitData* tdo,
                         VXT_JtagTdiTdoContinuity* detectedTraits) {
  VOXTREL_COMPONENT_CALL("Jtag.CaptureIrBypass", "jtagChainId=", HexId(jtagChainId),
                         ", maxTdiTdoIrLength=", maxTdiTdoIrLength, ", maxDeviceCount=", maxDeviceCount);
  Request request("Jtag.CaptureIrBypass");
  if (request.NotNull(irLengths, "irLengths").NotNull(numDevices, "numDevices").NotNull(tdo, "tdo").failed())
    return request.code();
  if (maxDeviceCount <= 0 || maxTdiTdoIrLength <= 0)
    return request.Refuse(kOutOfRange, ": maxDeviceCount and maxTdiTdoIrLength must be positive");
  return Diagnose("Jtag.CaptureIrBypass", jtagChainId, [=](ChainTarget& target, Request&, ReceiptOutcome&) {
    Reset(target.chain);
    target.chain.MoveTo(TapState::ShfIR);
    const PathReading path = ReadPath(target.chain, static_cast<size_t>(maxTdiTdoIrLength));
    // BYPASS everywhere: all ones into every instruction register.
    if (path.length) target.chain.Shift(Bits(*path.length, true), false);
    target.chain.MoveTo(TapState::RTI);
    int32_t found = 0;
    const Bits& bits = path.captured;
    for (size_t start = 0; start < bits.size() && found < maxDeviceCount; ++found) {
      size_t end = start + 1;
      while (end < bits.size() && !bits[end]) ++end;
      irLengths[found] = static_cast<uint32_t>(end - start);
      start = end;
    }
    *numDevices = found;
    Bits held = bits;
    held.resize(std::min<size_t>(bits.size(), tdo->bitSize));
    const uint64_t size = tdo->bitSize;
    Store(held, tdo);
    BitData_Resize(tdo, size);
    Report(detectedTraits, path.traits);
    return 0u;
  });
}

uint32_t BreakLock(uint32_t jtagChainId) {
  VOXTREL_COMPONENT_CALL("Jtag.BreakLock", "jtagChainId=", HexId(jtagChainId));
  Request request("Jtag.BreakLock");
  size_t tap = 0;
  const auto slot = JtagModel::Instance().Find(request, jtagChainId, tap);
  if (!slot) return request.code();
  std::lock_guard lock(slot->mutex);
  slot->holder = 0;
  return 0;
}

uint32_t GetLockingClient(uint32_t jtagChainId, char* clientIdentifier) {
  VOXTREL_COMPONENT_CALL("Jtag.GetLockingClient", "jtagChainId=", HexId(jtagChainId));
  Request request("Jtag.GetLockingClient");
  if (request.NotNull(clientIdentifier, "clientIdentifier").failed()) return request.code();
  size_t tap = 0;
  const auto slot = JtagModel::Instance().Find(request, jtagChainId, tap);
  if (!slot) return request.code();
  std::lock_guard lock(slot->mutex);
  target_manager::CopyText(HolderIdentifier(*slot), clientIdentifier, VXT_CLIENT_TEXT_SIZE);
  return 0;
}

constexpr JtagDiagnosticComponent kDiagnostic{&TapResetGetIdcodes, &CaptureDr, &CaptureIrBypass, &BreakLock,
                                              &GetLockingClient};

}  // namespace

const JtagDiagnosticComponent* DiagnosticTable() { return &kDiagnostic; }

}  // namespace voxtrel::platform::jtag
