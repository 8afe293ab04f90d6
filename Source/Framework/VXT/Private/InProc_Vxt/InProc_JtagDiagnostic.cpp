#include "InProc_JtagDiagnostic.h"

#include <memory>
#include <ostream>
#include <vector>

#include "BindTable.h"
#include "BitDataHandles.h"
#include "InProc_BitData.h"
#include "VXT_Client.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_JtagDiagnostic instance;

using frame::BitDataText;
using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex8;
using frame::List;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;
using Table = JtagDiagnosticComponent;
using Traits = Enum<&frame::JtagTdiTdoContinuityName>;

const Table* Diagnostic(const JtagComponent* jtag) { return jtag != nullptr ? jtag->diagnostic : nullptr; }

constexpr const char* kPositive = "Must be a positive non-zero integer";

// The largest traits value the service takes from the component.
constexpr int32_t kMaxTraits = 0xFFFF;

// After a successful capture: a traits value past the enumeration's range
// fails the call, and stays in the caller's variable.
uint32_t CheckContinuity(Call& call, const VXT_JtagTdiTdoContinuity* detectedTraits) {
  if (!call.failed() && detectedTraits != nullptr && static_cast<int32_t>(*detectedTraits) > kMaxTraits)
    call.Fail(code::kException, "Voxtrel_JtagTdiTdoContinuity enum value ", static_cast<int32_t>(*detectedTraits),
              " cannot be converted to an VXT_JtagTdiTdoContinuity enum value");
  return call.code();
}

// "InProc_JtagDiagnostic::CaptureDr() argument error (<argument>) <text>":
// the prefix of the lookups and the creation, without a colon.
struct ReportAfterArgument {
  Call& call;
  const char* argument;
  void operator()(std::string_view text) const {
    call.message() << call.prefix() << " argument error (" << argument << ") " << text;
  }
};

// `capturedIrValue` on the Out line: "<NULL>" for a null array or a null
// first entry, else the records of its `maxDeviceCount` entries.
struct CapturedIrValues {
  VXT_BitData* const* records;
  int32_t count;
  friend std::ostream& operator<<(std::ostream& out, const CapturedIrValues& values) {
    if (values.records == nullptr || (values.count > 0 && values.records[0] == nullptr)) return out << "<NULL>";
    return out << List<BitDataText>(values.records, values.count);
  }
};

}  // namespace

InProc_JtagDiagnostic::InProc_JtagDiagnostic() {
  // The component is there from load on; the result is looked at by the
  // operations, which find a null table when it failed.
  BindTable(&Voxtrel_GetJtag, jtag);
}

InProc_JtagDiagnostic& InProc_JtagDiagnostic::Instance() { return instance; }

VXT_Result InProc_JtagDiagnostic::TapResetGetIdcodes(uint32_t jtagChainId, int32_t maxDeviceCount, uint32_t* idcodes,
                                                     int32_t* numDevices, VXT_JtagTdiTdoContinuity* detectedTraits) {
  return RunOperation(logger, VXT_OPERATION(JtagDiagnostic, TapResetGetIdcodes).Counted(),
                      TraceArgs("jtagChainId", Hex8{jtagChainId}, "maxDeviceCount", Dec{maxDeviceCount}),
                      TraceArgs("idcodes", List<Hex8>(idcodes, maxDeviceCount), "numDevices", Out<Dec>(numDevices),
                                "detectedTraits", Out<Traits>(detectedTraits)),
                      [&](Call& call) {
                        call.Require(maxDeviceCount > 0, code::kOutOfRange, call.prefix(),
                                     " argument error (maxDeviceCount) : ", kPositive)
                            .NotNull(idcodes, "idcodes")
                            .NotNull(numDevices, "numDevices")
                            .Core(Diagnostic(jtag), [&](const Table& t) {
                              return t.TapResetGetIdcodes(jtagChainId, maxDeviceCount, 0, idcodes, numDevices,
                                                          detectedTraits);
                            });
                        return CheckContinuity(call, detectedTraits);
                      });
}

VXT_Result InProc_JtagDiagnostic::CaptureDr(uint32_t jtagChainIdOrDeviceId, const VXT_BitData* irValue,
                                            int32_t maxDrLength, VXT_BitData* drValue,
                                            VXT_JtagTdiTdoContinuity* detectedTraits) {
  return RunOperation(
      logger, VXT_OPERATION(JtagDiagnostic, CaptureDr).Counted(),
      TraceArgs("jtagChainIdOrDeviceId", Hex8{jtagChainIdOrDeviceId}, "irValue", BitDataText{irValue}, "maxDrLength",
                Dec{maxDrLength}),
      TraceArgs("drValue", BitDataText{drValue}, "detectedTraits", Out<Traits>(detectedTraits)), [&](Call& call) {
        call.Require(maxDrLength > 0, code::kOutOfRange, call.prefix(), " argument error (maxDrLength) : ", kPositive);
        BitDataChecks(call).Holding(irValue, "irValue").Empty(drValue, "drValue");
        if (call.failed()) return call.code();

        InProc_BitData& bitData = InProc_BitData::Instance();
        BitData* ir = nullptr;
        BitData* dr = nullptr;
        call.Core([&] { return bitData._GetManaged(irValue, ir, ReportAfterArgument{call, "irValue"}); });
        call.Core([&] {
          return bitData._Create(drValue, static_cast<uint32_t>(maxDrLength), 0,
                                 ReportAfterArgument{call, "drValue"});
        });
        call.Core([&] { return bitData._GetManaged(drValue, dr, ReportAfterArgument{call, "drValue"}); });
        call.Core(Diagnostic(jtag), [&](const Table& t) {
          return t.CaptureDr(jtagChainIdOrDeviceId, ir, maxDrLength, dr, detectedTraits);
        });
        if (CheckContinuity(call, detectedTraits) == code::kSuccess) {
          drValue->bitSize = static_cast<uint32_t>(dr->bitSize);
        } else {
          bitData.Destroy(drValue);
        }
        return call.code();
      });
}

VXT_Result InProc_JtagDiagnostic::CaptureIrBypass(uint32_t jtagChainId, int32_t maxTdiTdoIrLength,
                                                  int32_t maxDeviceCount, VXT_BitData** capturedIrValue,
                                                  int32_t* numDevices, VXT_JtagTdiTdoContinuity* detectedTraits) {
  return RunOperation(
      logger, VXT_OPERATION(JtagDiagnostic, CaptureIrBypass).Counted(),
      TraceArgs("jtagChainId", Hex8{jtagChainId}, "maxTdiTdoIrLength", Dec{maxTdiTdoIrLength}, "maxDeviceCount",
                Dec{maxDeviceCount}),
      TraceArgs("capturedIrValue", CapturedIrValues{capturedIrValue, maxDeviceCount}, "numDevices",
                Out<Dec>(numDevices), "detectedTraits", Out<Traits>(detectedTraits)),
      [&](Call& call) {
        call.Require(maxDeviceCount > 0, code::kOutOfRange, call.prefix(), " argument error (maxDeviceCount) : ",
                     kPositive)
            .Require(maxTdiTdoIrLength > 0, code::kOutOfRange, call.prefix(),
                     " argument error (maxTdiTdoIrLength) : ", kPositive)
            .NotNull(capturedIrValue, "capturedIrValue");
        // Every null entry is named, one after the other in one message.
        if (!call.failed()) {
          bool anyNull = false;
          for (int32_t i = 0; i < maxDeviceCount; ++i) {
            if (capturedIrValue[i] != nullptr) continue;
            anyNull = true;
            call.message() << call.prefix() << " argument error (capturedIrValue[" << i << "]) : Null pointer";
          }
          if (anyNull) call.Settle(code::kInvalidArgument);
        }
        call.NotNull(numDevices, "numDevices");
        if (call.failed()) return call.code();

        const std::unique_ptr<BitData, void (*)(BitData*)> tdo(
            BitData_CreateManaged(static_cast<uint64_t>(maxTdiTdoIrLength)), &BitData_FreeManaged);
        std::vector<uint32_t> irLengths(static_cast<size_t>(maxDeviceCount), 0);
        call.Core(Diagnostic(jtag), [&](const Table& t) {
          return t.CaptureIrBypass(jtagChainId, maxTdiTdoIrLength, maxDeviceCount, irLengths.data(), numDevices,
                                   tdo.get(), detectedTraits);
        });
        if (CheckContinuity(call, detectedTraits) != code::kSuccess) return call.code();
        // A component that reports more devices than there are records is
        // stopped at the records' count.
        uint32_t code = code::kSuccess;
        uint64_t offset = 0;
        for (int32_t i = 0; i < *numDevices && i < maxDeviceCount && code == code::kSuccess; ++i) {
          const uint64_t value = BitData_GetUInt64(tdo.get(), offset);
          code = static_cast<uint32_t>(InProc_BitData::Instance().Create(capturedIrValue[i], irLengths[i], value));
          offset += irLengths[i];
        }
        call.Settle(code);
        return call.code();
      });
}

VXT_Result InProc_JtagDiagnostic::BreakLock(uint32_t jtagChainId) {
  return RunOperation(logger, VXT_OPERATION(JtagDiagnostic, BreakLock).Counted(),
                      TraceArgs("jtagChainId", Hex8{jtagChainId}), TraceArgs(), [&](Call& call) {
                        return call.Core(Diagnostic(jtag), [&](const Table& t) { return t.BreakLock(jtagChainId); });
                      });
}

VXT_Result InProc_JtagDiagnostic::GetLockingClient(uint32_t jtagChainId, char* clientIdentifier) {
  return RunOperation(logger, VXT_OPERATION(JtagDiagnostic, GetLockingClient),
                      TraceArgs("jtagChainId", Hex8{jtagChainId}),
                      TraceArgs("clientIdentifier", Quoted{clientIdentifier, VXT_CLIENT_TEXT_SIZE}), [&](Call& call) {
                        return call.NotNull(clientIdentifier, "clientIdentifier")
                            .Core(Diagnostic(jtag),
                                  [&](const Table& t) { return t.GetLockingClient(jtagChainId, clientIdentifier); });
                      });
}

}  // namespace vxt
