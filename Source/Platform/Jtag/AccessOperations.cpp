// The Jtag component's access table: moves, shifts, the IR/DR scan family,
// compares, locks, bundles and Mark/Repeat programs on the scan model.
// Inputs are copied into the work before the entry returns; every result is
// a finished receipt whose value holds the TDO bits.
#include <string>
#include <vector>

#include "Jtag.h"
#include "Jtag/Bundle.h"
#include "Jtag/Scans.h"
#include "OperationReceipt/ReceiptRegistry.h"
#include "Support/ComponentCall.h"

namespace voxtrel::platform::jtag {
namespace {

using receipts::ReceiptOutcome;
using receipts::ReceiptValue;
using target_manager::HexId;
using target_manager::Request;

std::string BitText(const Bits& bits) {
  std::string text = "0b";
  for (size_t i = bits.size(); i-- > 0;) text += bits[i] ? '1' : '0';
  return text;
}

// Counts beyond kMaxScanBits are refused before any bit is copied.
bool TooLong(Request& request, uint64_t count, const char* what) {
  if (count <= kMaxScanBits) return false;
  request.Refuse(kOutOfRange, std::string(": ") + what + " " + std::to_string(count) + " is more than " +
                                  std::to_string(kMaxScanBits) + " bits");
  return true;
}

std::optional<TapState> CheckedState(Request& request, uint32_t value) {
  const std::optional<TapState> state = TapStateFromValue(value);
  if (!state) request.Refuse(kOutOfRange, ": " + std::to_string(value) + " is no TAP state");
  return state;
}

// Moves to `state` and spends numClocks more clocks there; the TDO bits
// of clocks spent in a shift state.
uint32_t MoveAndStay(ScanChain& chain, Request& request, TapState state, uint32_t numClocks, Bits& tdo) {
  const std::optional<bool> stay = StayingTms(state);
  if (numClocks > 0 && !stay)
    return request.Refuse(kOutOfRange, std::string(": no clock can be spent in ") + TapStateName(state) +
                                           "; only TLR, RTI and the shift and pause states hold");
  if (IsShiftState(state) && TooLong(request, numClocks, "numClocks")) return request.code();
  chain.MoveTo(state);
  // Clocks spent in TLR, RTI or a pause state change nothing.
  if (!IsShiftState(state)) return 0;
  tdo = chain.Shift(Bits(numClocks, false), false);
  return 0;
}

// In a shift state: shifts the bits, the last one into Exit1 unless
// `state` is the shift state, then on to `state`.
uint32_t ShiftTo(ScanChain& chain, Request& request, TapState state, const Bits& tdi, Bits& tdo) {
  if (!IsShiftState(chain.State()))
    return request.Refuse(kNotSupported, std::string(": chain ") + chain.Identifier() + " is in " +
                                             TapStateName(chain.State()) + ", not in ShfDR or ShfIR");
  tdo = chain.Shift(tdi, state != chain.State());
  chain.MoveTo(state);
  return 0;
}

uint32_t GoToState(uint32_t id, VXT_JtagState jtagState, uint32_t numClocks, VXT_JtagWaitType jtagWaitType,
                   uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.GoToState", "id=", HexId(id), ", jtagState=", jtagState, ", numClocks=", numClocks);
  return RunScan("Jtag.GoToState", id, operationToken, [=](ChainTarget& target, Request& request, ReceiptOutcome& out) {
    // The simulated probe has no trigger input: every wait type counts clocks.
    if (jtagWaitType > VXT_JtagWaitType_COUNT_OR_TRIG_TRIGTO)
      return request.Refuse(kOutOfRange, ": " + std::to_string(jtagWaitType) + " is no wait type");
    const std::optional<TapState> state = CheckedState(request, jtagState);
    if (!state) return request.code();
    Bits tdo;
    if (const uint32_t code = MoveAndStay(target.chain, request, *state, numClocks, tdo)) return code;
    out = ReceiptOutcome::Success(ValueOf(tdo));
    return 0u;
  });
}

uint32_t Shift(uint32_t id, VXT_JtagState jtagState, uint32_t shiftCount, const BitData* tdi,
               uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.Shift", "id=", HexId(id), ", jtagState=", jtagState, ", shiftCount=", shiftCount);
  if (Request request("Jtag.Shift"); TooLong(request, shiftCount, "shiftCount")) return request.code();
  return RunScan("Jtag.Shift", id, operationToken,
                 [=, bits = BitsOf(tdi, shiftCount, false)](ChainTarget& target, Request& request, ReceiptOutcome& out) {
                   const std::optional<TapState> state = CheckedState(request, jtagState);
                   if (!state) return request.code();
                   Bits tdo;
                   if (const uint32_t code = ShiftTo(target.chain, request, *state, bits, tdo)) return code;
                   out = ReceiptOutcome::Success(ValueOf(tdo));
                   return 0u;
                 });
}

uint32_t GoToStateOnMultipleChains(uint32_t numJtagChains, const uint32_t* jtagChainIds, VXT_JtagState jtagState,
                                   uint32_t numClocks, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.GoToStateOnMultipleChains", "numJtagChains=", numJtagChains);
  Request request("Jtag.GoToStateOnMultipleChains");
  if (numJtagChains > 0) request.NotNull(jtagChainIds, "jtagChainIds");
  if (request.NotNull(operationToken, "operationToken").failed()) return request.code();
  uint64_t token = 0;
  for (uint32_t i = 0; i < numJtagChains; ++i) {
    const uint32_t code = RunScan(
        "Jtag.GoToStateOnMultipleChains", jtagChainIds[i], &token,
        [=](ChainTarget& target, Request& inner, ReceiptOutcome&) {
          const std::optional<TapState> state = CheckedState(inner, jtagState);
          Bits tdo;
          return state ? MoveAndStay(target.chain, inner, *state, numClocks, tdo) : inner.code();
        },
        false);
    if (code != 0) return code;
    receipts::ReceiptRegistry::Instance().Destroy(token);
  }
  *operationToken = receipts::FinishedReceipt(ReceiptOutcome::Success());
  return 0;
}

uint32_t TapReset(uint32_t jtagChainId, VXT_JtagResetType resetType, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.TapReset", "jtagChainId=", HexId(jtagChainId), ", resetType=", resetType);
  return RunScan("Jtag.TapReset", jtagChainId, operationToken,
                 [=](ChainTarget& target, Request& request, ReceiptOutcome&) {
                   if (resetType > VXT_JtagResetType_TRST_ONLY)
                     return request.Refuse(kOutOfRange, ": " + std::to_string(resetType) + " is no reset type");
                   if (resetType != VXT_JtagResetType_TLR_ONLY) target.chain.AssertTrst();
                   if (resetType != VXT_JtagResetType_TRST_ONLY) target.chain.Walk(std::vector<bool>(5, true));
                   return 0u;
                 });
}

// What the flavours of IrDrScan share: the IR checked against the chain.
enum class Flavour { Plain, Optimized, Verify, Replace, ReadModifyWrite, Auto };

uint32_t CheckIr(ChainTarget& target, Request& request, const Bits& ir) {
  const size_t expected = IrScanLength(target);
  if (ir.size() == expected) return 0;
  return request.Refuse(kOutOfRange, ": irValue holds " + std::to_string(ir.size()) + " bits, and " +
                                         (target.WholeChain() ? "chain " + target.chain.Identifier()
                                                              : "TAP controller " +
                                                                    target.chain.Taps()[target.tap].Identifier()) +
                                         " has " + std::to_string(expected) + " instruction register bits");
}

// Each TAP captures ...01 in its instruction register.
bool CapturedIrPattern(const ChainTarget& target, const Bits& captured) {
  if (!target.WholeChain()) return captured.size() >= 2 && captured[0] && !captured[1];
  size_t offset = 0;
  const auto& taps = target.chain.Taps();
  for (size_t i = taps.size(); i-- > 0;) {
    if (!captured[offset] || captured[offset + 1]) return false;
    offset += taps[i].IrLength();
  }
  return true;
}

uint32_t Scan(const char* operation, Flavour flavour, uint32_t id, const BitData* ir, uint32_t shiftCount,
              const BitData* dr, const BitData* drMask, uint64_t* operationToken) {
  Request request(operation);
  if (request.NotNull(ir, "irValue").failed() || TooLong(request, shiftCount, "shiftCount") ||
      TooLong(request, ir->bitSize, "irValue"))
    return request.code();
  Bits mask = BitsOf(drMask, shiftCount, drMask == nullptr);
  return RunScan(operation, id, operationToken,
                 [=, irBits = BitsOf(ir, ir->bitSize, false), drBits = BitsOf(dr, shiftCount, false)](
                     ChainTarget& target, Request& inner, ReceiptOutcome& out) {
                   if (const uint32_t code = CheckIr(target, inner, irBits)) return code;
                   if (!(flavour == Flavour::Optimized && HoldsInstruction(target, irBits))) {
                     const Bits captured = ScanIr(target, irBits);
                     if (flavour == Flavour::Verify && !CapturedIrPattern(target, captured)) {
                       out = ReceiptOutcome::Failure(
                           kScanMismatch, std::string(operation) + ": the instruction registers captured " +
                                              BitText(captured) + ", not ...01 for each TAP controller");
                       return 0u;
                     }
                   }
                   Bits tdo;
                   if (flavour == Flavour::Auto) {
                     target.chain.MoveTo(TapState::ShfDR);
                     const PathReading path = ReadPath(target.chain, shiftCount);
                     const size_t others = target.WholeChain() ? 0 : target.chain.Taps().size() - 1;
                     if (!path.length || *path.length <= others)
                       return inner.Refuse(kOutOfRange, ": no data register of at most " +
                                                            std::to_string(shiftCount) + " bits answered");
                     target.chain.MoveTo(TapState::RTI);
                     tdo = ScanDr(target, BitsOf(dr, *path.length - others, false));
                   } else if (shiftCount > 0) {
                     tdo = ScanDr(target, drBits);
                     if (flavour == Flavour::Replace) tdo = ScanDr(target, tdo);
                     if (flavour == Flavour::ReadModifyWrite) {
                       const Bits merged = Select(mask, drBits, tdo);
                       ScanDr(target, merged);
                     }
                   }
                   out = ReceiptOutcome::Success(ValueOf(tdo));
                   return 0u;
                 });
}

#define VOXTREL_JTAG_SCAN(Name, F)                                                                           \
  uint32_t Name(uint32_t id, const BitData* ir, uint32_t shiftCount, const BitData* dr, uint64_t* token) {   \
    VOXTREL_COMPONENT_CALL("Jtag." #Name, "id=", HexId(id), ", shiftCount=", shiftCount);                    \
    return Scan("Jtag." #Name, F, id, ir, shiftCount, dr, nullptr, token);                                   \
  }
VOXTREL_JTAG_SCAN(IrDrScan, Flavour::Plain)
VOXTREL_JTAG_SCAN(IrDrScanOptimized, Flavour::Optimized)
VOXTREL_JTAG_SCAN(IrDrScanVerify, Flavour::Verify)
VOXTREL_JTAG_SCAN(IrDrScanReplace, Flavour::Replace)
VOXTREL_JTAG_SCAN(IrDrScanAuto, Flavour::Auto)
#undef VOXTREL_JTAG_SCAN

uint32_t IrDrScanReadModifyWrite(uint32_t id, const BitData* ir, uint32_t shiftCount, const BitData* dr,
                                 const BitData* drMask, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.IrDrScanReadModifyWrite", "id=", HexId(id), ", shiftCount=", shiftCount);
  return Scan("Jtag.IrDrScanReadModifyWrite", Flavour::ReadModifyWrite, id, ir, shiftCount, dr, drMask,
              operationToken);
}

// Locks are the calling client's; RunScan has refused a chain another holds.
uint32_t Lock(uint32_t id, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.Lock", "id=", HexId(id));
  const uint32_t client = CallingClient();
  if (client == 0)
    return Request("Jtag.Lock").Refuse(target_manager::kClientNotRegistered,
                                       ": the calling thread acts for no connected client");
  return RunScan(
      "Jtag.Lock", id, operationToken,
      [client](ChainTarget& target, Request&, ReceiptOutcome&) {
        target.slot.holder = client;
        return 0u;
      },
      false);
}

uint32_t Unlock(uint32_t id, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.Unlock", "id=", HexId(id));
  return RunScan(
      "Jtag.Unlock", id, operationToken,
      [](ChainTarget& target, Request&, ReceiptOutcome&) {
        target.slot.holder = 0;
        return 0u;
      },
      false);
}

uint32_t BundleScan(uint32_t id, const void* bundle, uint32_t bundleSize, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.BundleScan", "id=", HexId(id), ", bundleSize=", bundleSize);
  Request request("Jtag.BundleScan");
  if (bundleSize > 0) request.NotNull(bundle, "bundle");
  if (request.failed()) return request.code();
  std::vector<BundleStep> steps;
  if (const std::optional<std::string> fault = ParseBundle(static_cast<const uint8_t*>(bundle), bundleSize, steps))
    return request.Refuse(kOutOfRange, ": " + *fault);
  return RunScan("Jtag.BundleScan", id, operationToken,
                 [steps = std::move(steps)](ChainTarget& target, Request& inner, ReceiptOutcome& out) {
                   Bits tdo;
                   for (const BundleStep& step : steps) {
                     Bits part;
                     uint32_t code = 0;
                     switch (step.kind) {
                       case BundleStep::Kind::Move:
                         code = MoveAndStay(target.chain, inner, step.state, step.count, part);
                         break;
                       case BundleStep::Kind::Shift:
                         code = ShiftTo(target.chain, inner, step.state, step.tdi, part);
                         break;
                       case BundleStep::Kind::Reset:
                         target.chain.AssertTrst();
                         break;
                     }
                     if (code != 0) return code;
                     tdo.Append(part);
                   }
                   out = ReceiptOutcome::Success(ValueOf(tdo));
                   return 0u;
                 });
}

uint32_t ShiftCompare(uint32_t id, VXT_JtagState jtagState, uint32_t shiftCount, const BitData* tdi,
                      const BitData* compare, const BitData* compareMask, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.ShiftCompare", "id=", HexId(id), ", jtagState=", jtagState,
                         ", shiftCount=", shiftCount);
  Request request("Jtag.ShiftCompare");
  if (request.NotNull(compare, "compare").NotNull(compareMask, "compareMask").failed() ||
      TooLong(request, shiftCount, "shiftCount"))
    return request.code();
  return RunScan("Jtag.ShiftCompare", id, operationToken,
                 [=, bits = BitsOf(tdi, shiftCount, false), expected = BitsOf(compare, shiftCount, false),
                  mask = BitsOf(compareMask, shiftCount, false)](ChainTarget& target, Request& inner,
                                                                 ReceiptOutcome& out) {
                   const std::optional<TapState> state = CheckedState(inner, jtagState);
                   if (!state) return inner.code();
                   Bits tdo;
                   if (const uint32_t code = ShiftTo(target.chain, inner, *state, bits, tdo)) return code;
                   for (size_t i = 0; i < tdo.size(); ++i) {
                     if (mask[i] && tdo[i] != expected[i]) {
                       out = ReceiptOutcome::Failure(kScanMismatch, "Jtag.ShiftCompare: TDO " + BitText(tdo) +
                                                                        " differs from " + BitText(expected) +
                                                                        " under the mask " + BitText(mask));
                       return 0u;
                     }
                   }
                   out = ReceiptOutcome::Success(ValueOf(tdo));
                   return 0u;
                 });
}

// Scans of the calling client on the chain are recorded from here to Repeat.
uint32_t Mark(uint32_t id, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.Mark", "id=", HexId(id));
  return RunScan(
      "Jtag.Mark", id, operationToken,
      [client = CallingClient()](ChainTarget& target, Request&, ReceiptOutcome&) {
        target.slot.marked[client].clear();
        return 0u;
      },
      false);
}

// Runs the scans recorded since Mark again: maxIterations times, or until
// an iteration whose scans all succeed (compares matched). The simulated
// probe has no trigger, so a trigger repeat fails at maxIterations. The
// value is the number of iterations run.
uint32_t Repeat(uint32_t id, uint32_t maxIterations, VXT_JtagRepeatType repeatType, uint64_t* operationToken) {
  VOXTREL_COMPONENT_CALL("Jtag.Repeat", "id=", HexId(id), ", maxIterations=", maxIterations,
                         ", repeatType=", repeatType);
  return RunScan(
      "Jtag.Repeat", id, operationToken,
      [=, client = CallingClient()](ChainTarget& target, Request& request, ReceiptOutcome& out) {
        if (repeatType > VXT_JtagRepeatType_TRIGGER_OR_FAIL_AT_MAX_ITER)
          return request.Refuse(kOutOfRange, ": " + std::to_string(repeatType) + " is no repeat type");
        if (maxIterations > kMaxIterations)
          return request.Refuse(kOutOfRange, ": maxIterations " + std::to_string(maxIterations) + " is more than " +
                                                 std::to_string(kMaxIterations));
        const auto mark = target.slot.marked.find(client);
        if (mark == target.slot.marked.end())
          return request.Refuse(kNotSupported, ": the calling client set no Mark on chain " +
                                                   target.chain.Identifier());
        const std::vector<ScanWork> program = std::move(mark->second);
        target.slot.marked.erase(mark);
        uint32_t iterations = 0;
        bool matched = false;
        while (iterations < maxIterations && !matched) {
          ++iterations;
          bool allSucceeded = true;
          for (const ScanWork& step : program) {
            ReceiptOutcome stepOutcome;
            if (const uint32_t code = step(target, request, stepOutcome)) return code;
            allSucceeded = allSucceeded && stepOutcome.code == 0;
          }
          matched = repeatType == VXT_JtagRepeatType_COMPARE_MATCH_OR_FAIL_AT_MAX_ITER && allSucceeded;
        }
        if (repeatType != VXT_JtagRepeatType_MAX_ITER && !matched) {
          out = ReceiptOutcome::Failure(kScanMismatch, "Jtag.Repeat: no match in " + std::to_string(iterations) +
                                                           " iterations");
        } else {
          out = ReceiptOutcome::Success(ReceiptValue::Number(iterations, 32));
        }
        return 0u;
      },
      false);
}

constexpr JtagAccessComponent kAccess{
    &GoToState,       &Shift,         &GoToStateOnMultipleChains, &TapReset,     &IrDrScan,
    &IrDrScanOptimized, &IrDrScanVerify, &IrDrScanReplace,       &IrDrScanReadModifyWrite,
    &IrDrScanAuto,    &Lock,          &Unlock,                    &BundleScan,   &ShiftCompare,
    &Mark,            &Repeat,
};

}  // namespace

const JtagAccessComponent* AccessTable() { return &kAccess; }

}  // namespace voxtrel::platform::jtag
