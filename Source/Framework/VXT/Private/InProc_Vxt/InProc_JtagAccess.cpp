#include "InProc_JtagAccess.h"

#include <exception>

#include "BindTable.h"
#include "BitDataHandles.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_JtagAccess instance;

using frame::BitDataText;
using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::TraceArgs;
using Table = JtagAccessComponent;
using State = Enum<&frame::JtagStateName>;

// The access table behind the record; null while there is none, so that
// Call::Core refuses instead of crashing.
const Table* Access(const JtagComponent* jtag) { return jtag != nullptr ? jtag->access : nullptr; }

auto TokenOut(uint64_t* operationToken) { return TraceArgs("operationToken", Out<Hex16>(operationToken)); }

// Stage 1 of a record that may be absent.
void CheckIfPresent(BitDataChecks& checks, const VXT_BitData* record, const char* argument) {
  if (record != nullptr) checks.Holding(record, argument);
}
// Stage 2: the client's vector behind a record, under the plain prefix.
void LookIfPresent(BitDataChecks& checks, const VXT_BitData* record, BitData*& managed) {
  if (record != nullptr) checks.Managed(record, managed, nullptr);
}

// The In line of the IrDrScan family.
auto ScanArgs(uint32_t chain, const VXT_BitData* irValue, const char* countName, uint32_t count,
              const VXT_BitData* drValue) {
  return TraceArgs("jtagChainIdOrDeviceId", Hex8{chain}, "irValue", BitDataText{irValue}, countName, Dec{count},
                   "drValue", BitDataText{drValue});
}

// The body the IrDrScan flavours share; `scan` is the flavour's entry.
using ScanEntry = uint32_t (*Table::*)(uint32_t, const BitData*, uint32_t, const BitData*, uint64_t*);
VXT_Result RunScan(InProc_JtagAccess& service, const frame::OperationSite& site, ScanEntry scan, uint32_t chain,
                   const VXT_BitData* irValue, const char* countName, uint32_t count, const VXT_BitData* drValue,
                   uint64_t* operationToken) {
  return RunOperation(service.logger, site, ScanArgs(chain, irValue, countName, count, drValue),
                      TokenOut(operationToken), [&](Call& call) {
                        BitData* ir = nullptr;
                        BitData* dr = nullptr;
                        BitDataChecks checks(call);
                        checks.Holding(irValue, "irValue");
                        CheckIfPresent(checks, drValue, "drValue");
                        checks.Managed(irValue, ir, nullptr);
                        LookIfPresent(checks, drValue, dr);
                        return call.Core(Access(service.jtag), [&](const Table& t) {
                          return (t.*scan)(chain, ir, count, dr, operationToken);
                        });
                      });
}

}  // namespace

InProc_JtagAccess::InProc_JtagAccess() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetJtag, jtag);
}

InProc_JtagAccess& InProc_JtagAccess::Instance() { return instance; }

VXT_Result InProc_JtagAccess::GoToState(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t numClocks,
                                        VXT_JtagWaitType jtagWaitType, uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(JtagAccess, GoToState).Counted(),
      TraceArgs("jtagChainIdOrDeviceId", Hex8{jtagChainIdOrDeviceId}, "jtagState", State{jtagState}, "jtagWaitType",
                Enum<&frame::JtagWaitTypeName>{jtagWaitType}, "numClocks", Dec{numClocks}),
      TokenOut(operationToken), [&](Call& call) {
        return call.Core(Access(jtag), [&](const Table& t) {
          return t.GoToState(jtagChainIdOrDeviceId, jtagState, numClocks, jtagWaitType, operationToken);
        });
      });
}

VXT_Result InProc_JtagAccess::Shift(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState, uint32_t shiftCount,
                                    const VXT_BitData* tdiValue, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(JtagAccess, Shift).Counted(),
                      TraceArgs("jtagChainIdOrDeviceId", Hex8{jtagChainIdOrDeviceId}, "jtagState", State{jtagState},
                                "shiftCount", Dec{shiftCount}, "tdiValue", BitDataText{tdiValue}),
                      TokenOut(operationToken), [&](Call& call) {
                        BitData* tdi = nullptr;
                        BitDataChecks checks(call);
                        CheckIfPresent(checks, tdiValue, "tdiValue");
                        LookIfPresent(checks, tdiValue, tdi);
                        return call.Core(Access(jtag), [&](const Table& t) {
                          return t.Shift(jtagChainIdOrDeviceId, jtagState, shiftCount, tdi, operationToken);
                        });
                      });
}

VXT_Result InProc_JtagAccess::GoToStateOnMultipleChains(uint32_t numJtagChains, const uint32_t* jtagChainIds,
                                                        VXT_JtagState jtagState, uint32_t numClocks,
                                                        uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(JtagAccess, GoToStateOnMultipleChains).Counted(),
                      TraceArgs("numJtagChains", Dec{numJtagChains}, "jtagChainIds",
                                List<Hex8>(jtagChainIds, numJtagChains), "jtagState", State{jtagState}, "numClocks",
                                Dec{numClocks}),
                      TokenOut(operationToken), [&](Call& call) {
                        return call.Core(Access(jtag), [&](const Table& t) {
                          return t.GoToStateOnMultipleChains(numJtagChains, jtagChainIds, jtagState, numClocks,
                                                             operationToken);
                        });
                      });
}

VXT_Result InProc_JtagAccess::TapReset(uint32_t jtagChainId, VXT_JtagResetType resetType, uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(JtagAccess, TapReset).Counted(),
      TraceArgs("jtagChainId", Hex8{jtagChainId}, "resetType", Enum<&frame::JtagResetTypeName>{resetType}),
      TokenOut(operationToken), [&](Call& call) {
        return call.Core(Access(jtag),
                         [&](const Table& t) { return t.TapReset(jtagChainId, resetType, operationToken); });
      });
}

VXT_Result InProc_JtagAccess::IrDrScan(uint32_t chain, const VXT_BitData* irValue, uint32_t shiftCount,
                                       const VXT_BitData* drValue, uint64_t* operationToken) {
  return RunScan(*this, VXT_OPERATION(JtagAccess, IrDrScan).Counted(), &Table::IrDrScan, chain, irValue,
                 "shiftCount", shiftCount, drValue, operationToken);
}

VXT_Result InProc_JtagAccess::IrDrScanOptimized(uint32_t chain, const VXT_BitData* irValue, uint32_t shiftCount,
                                                const VXT_BitData* drValue, uint64_t* operationToken) {
  return RunScan(*this, VXT_OPERATION(JtagAccess, IrDrScanOptimized).Counted(), &Table::IrDrScanOptimized, chain,
                 irValue, "shiftCount", shiftCount, drValue, operationToken);
}

VXT_Result InProc_JtagAccess::IrDrScanVerify(uint32_t chain, const VXT_BitData* irValue, uint32_t shiftCount,
                                             const VXT_BitData* drValue, uint64_t* operationToken) {
  return RunScan(*this, VXT_OPERATION(JtagAccess, IrDrScanVerify).Counted(), &Table::IrDrScanVerify, chain, irValue,
                 "shiftCount", shiftCount, drValue, operationToken);
}

VXT_Result InProc_JtagAccess::IrDrScanReplace(uint32_t chain, const VXT_BitData* irValue, uint32_t shiftCount,
                                              const VXT_BitData* drValue, uint64_t* operationToken) {
  return RunScan(*this, VXT_OPERATION(JtagAccess, IrDrScanReplace).Counted(), &Table::IrDrScanReplace, chain,
                 irValue, "shiftCount", shiftCount, drValue, operationToken);
}

// drValueMask has no stage 1 of its own: its lookup checks the record.
VXT_Result InProc_JtagAccess::IrDrScanReadModifyWrite(uint32_t chain, const VXT_BitData* irValue, uint32_t shiftCount,
                                                      const VXT_BitData* drValue, const VXT_BitData* drValueMask,
                                                      uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(JtagAccess, IrDrScanReadModifyWrite).Counted(),
                      TraceArgs("jtagChainIdOrDeviceId", Hex8{chain}, "irValue", BitDataText{irValue}, "shiftCount",
                                Dec{shiftCount}, "drValue", BitDataText{drValue}, "drValueMask",
                                BitDataText{drValueMask}),
                      TokenOut(operationToken), [&](Call& call) {
                        BitData* ir = nullptr;
                        BitData* dr = nullptr;
                        BitData* drMask = nullptr;
                        BitDataChecks checks(call);
                        checks.Holding(irValue, "irValue");
                        CheckIfPresent(checks, drValue, "drValue");
                        checks.Managed(irValue, ir, nullptr);
                        LookIfPresent(checks, drValue, dr);
                        LookIfPresent(checks, drValueMask, drMask);
                        return call.Core(Access(jtag), [&](const Table& t) {
                          return t.IrDrScanReadModifyWrite(chain, ir, shiftCount, dr, drMask, operationToken);
                        });
                      });
}

VXT_Result InProc_JtagAccess::IrDrScanAuto(uint32_t chain, const VXT_BitData* irValue, uint32_t maxShiftCount,
                                           const VXT_BitData* drValue, uint64_t* operationToken) {
  return RunScan(*this, VXT_OPERATION(JtagAccess, IrDrScanAuto).Counted(), &Table::IrDrScanAuto, chain, irValue,
                 "maxShiftCount", maxShiftCount, drValue, operationToken);
}

// A reduced frame: no error context and no message, so that a refused lock
// leaves the thread's last error as it stood. An exception from the
// component becomes the frame's code all the same.
VXT_Result InProc_JtagAccess::Lock(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken) {
  static constexpr frame::OperationSite site = VXT_OPERATION(JtagAccess, Lock).Counted();
  const auto in = TraceArgs("jtagChainIdOrDeviceId", Hex8{jtagChainIdOrDeviceId});
  const auto out = TokenOut(operationToken);
  frame::TraceLine(logger, 1, frame::InLine<decltype(in)>{site, in}, frame::kTrailer);
  frame::CountCall(site.method);
  uint32_t code = code::kException;
  try {
    const Table* table = Access(jtag);
    if (table != nullptr) code = table->Lock(jtagChainIdOrDeviceId, operationToken);
  } catch (...) {
  }
  const int32_t publicCode = code == code::kSuccess ? 0 : frame::TranslateErrorCode(code);
  frame::TraceLine(logger, 1, frame::OutLine<decltype(out)>{site, out, publicCode}, frame::kTrailer);
  return publicCode;
}

VXT_Result InProc_JtagAccess::Unlock(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(JtagAccess, Unlock).Counted(),
      TraceArgs("jtagChainIdOrDeviceId", Hex8{jtagChainIdOrDeviceId}), TokenOut(operationToken), [&](Call& call) {
        return call.Core(Access(jtag), [&](const Table& t) { return t.Unlock(jtagChainIdOrDeviceId, operationToken); });
      });
}

// The bundle is the component's to read; the trace shows only the chain.
VXT_Result InProc_JtagAccess::BundleScan(uint32_t jtagChainIdOrDeviceId, const void* bundle, uint32_t bundleSize,
                                         uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(JtagAccess, BundleScan).Counted(),
                      TraceArgs("jtagChainIdOrDeviceId", Hex8{jtagChainIdOrDeviceId}), TokenOut(operationToken),
                      [&](Call& call) {
                        return call.Core(Access(jtag), [&](const Table& t) {
                          return t.BundleScan(jtagChainIdOrDeviceId, bundle, bundleSize, operationToken);
                        });
                      });
}

VXT_Result InProc_JtagAccess::ShiftCompare(uint32_t jtagChainIdOrDeviceId, VXT_JtagState jtagState,
                                           uint32_t shiftCount, const VXT_BitData* tdiValue,
                                           const VXT_BitData* compareValue, const VXT_BitData* compareValueMask,
                                           uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(JtagAccess, ShiftCompare).Counted(),
                      TraceArgs("jtagChainIdOrDeviceId", Hex8{jtagChainIdOrDeviceId}, "jtagState", State{jtagState},
                                "shiftCount", Dec{shiftCount}, "tdiValue", BitDataText{tdiValue}, "compareValue",
                                BitDataText{compareValue}, "compareValueMask", BitDataText{compareValueMask}),
                      TokenOut(operationToken), [&](Call& call) {
                        BitData* tdi = nullptr;
                        BitData* compare = nullptr;
                        BitData* compareMask = nullptr;
                        BitDataChecks checks(call);
                        checks.Holding(compareValue, "compareValue").Holding(compareValueMask, "compareValueMask");
                        CheckIfPresent(checks, tdiValue, "tdiValue");
                        checks.Managed(compareValue, compare, nullptr).Managed(compareValueMask, compareMask, nullptr);
                        LookIfPresent(checks, tdiValue, tdi);
                        return call.Core(Access(jtag), [&](const Table& t) {
                          return t.ShiftCompare(jtagChainIdOrDeviceId, jtagState, shiftCount, tdi, compare,
                                                compareMask, operationToken);
                        });
                      });
}

VXT_Result InProc_JtagAccess::Mark(uint32_t jtagChainIdOrDeviceId, uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(JtagAccess, Mark).Counted(), TraceArgs("jtagChainIdOrDeviceId", Hex8{jtagChainIdOrDeviceId}),
      TokenOut(operationToken), [&](Call& call) {
        return call.Core(Access(jtag), [&](const Table& t) { return t.Mark(jtagChainIdOrDeviceId, operationToken); });
      });
}

VXT_Result InProc_JtagAccess::Repeat(uint32_t jtagChainIdOrDeviceId, uint32_t maxIterations,
                                     VXT_JtagRepeatType repeatType, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(JtagAccess, Repeat).Counted(),
                      TraceArgs("jtagChainIdOrDeviceId", Hex8{jtagChainIdOrDeviceId}, "maxIterations",
                                Dec{maxIterations}, "repeatType", Enum<&frame::JtagRepeatTypeName>{repeatType}),
                      TokenOut(operationToken), [&](Call& call) {
                        return call.Core(Access(jtag), [&](const Table& t) {
                          return t.Repeat(jtagChainIdOrDeviceId, maxIterations, repeatType, operationToken);
                        });
                      });
}

}  // namespace vxt
