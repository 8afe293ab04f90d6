// Single bits: set, clear, invert and test one bit of a vector.
#include "BitDataHandles.h"
#include "InProc_BitDataOperations.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::BitDataText;
using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::NoArgs;
using frame::Out;
using frame::TraceArgs;

// SetBitOn and SetBitOff test the offset against the record before they
// look the handle up.
uint32_t SetBit(Call& call, const VXT_BitData* bitData, uint32_t bitOffset, bool value) {
  BitData* object = nullptr;
  return BitDataChecks(call)
      .Holding(bitData, "bitData")
      .Valid([&] { return bitOffset < bitData->bitSize; }, code::kBitOffsetInvalid, "bitOffset", "Invalid")
      .Managed(bitData, object, "bitData")
      .Core([&] { return BitData_SetBit(object, bitOffset, value); });
}

uint32_t TestBit(Call& call, const VXT_BitData* bitData, uint32_t bitOffset, uint32_t* result, bool wanted) {
  BitData* object = nullptr;
  return BitDataChecks(call)
      .Holding(bitData, "bitData")
      .NotNull(result, "result")
      .Valid([&] { return bitOffset < bitData->bitSize; }, code::kBitOffsetInvalid, "bitOffset", "Invalid")
      .Managed(bitData, object, "bitData")
      .Core([&] {
        *result = BitData_GetBit(object, bitOffset) == wanted ? 1 : 0;
        return code::kSuccess;
      });
}

}  // namespace

VXT_Result InProc_BitDataOperations::SetBitOn(const VXT_BitData* bitData, uint32_t bitOffset) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, SetBitOn),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}), NoArgs{},
                      [&](Call& call) { return SetBit(call, bitData, bitOffset, true); });
}

VXT_Result InProc_BitDataOperations::SetBitOff(const VXT_BitData* bitData, uint32_t bitOffset) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, SetBitOff),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}), NoArgs{},
                      [&](Call& call) { return SetBit(call, bitData, bitOffset, false); });
}

VXT_Result InProc_BitDataOperations::InvertBit(const VXT_BitData* bitData, uint32_t bitOffset) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, InvertBit),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}), NoArgs{},
                      [&](Call& call) {
                        BitData* object = nullptr;
                        return BitDataChecks(call)
                            .Holding(bitData, "bitData")
                            .Managed(bitData, object, "bitData")
                            .BitRange(bitData, bitOffset, 1, "bitData")
                            .Core([&] { return BitData_SetBit(object, bitOffset, !BitData_GetBit(object, bitOffset)); });
                      });
}

VXT_Result InProc_BitDataOperations::IsBitOn(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, IsBitOn).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}),
                      TraceArgs("result", Out<Bool>(result)),
                      [&](Call& call) { return TestBit(call, bitData, bitOffset, result, true); });
}

VXT_Result InProc_BitDataOperations::IsBitOff(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, IsBitOff).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}),
                      TraceArgs("result", Out<Bool>(result)),
                      [&](Call& call) { return TestBit(call, bitData, bitOffset, result, false); });
}

}  // namespace vxt
