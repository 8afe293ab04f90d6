// Arithmetic and rotation: the operations check their records, then report
// that they have no implementation. No handle is looked up and no vector
// changes or comes into being.
#include "BitDataHandles.h"
#include "InProc_BitDataOperations.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::BitDataText;
using frame::Call;
using frame::Dec;
using frame::Hex16;
using frame::TraceArgs;

// Posted with an empty text, so that the code's own text is the message.
uint32_t NotImplemented(Call& call) {
  Voxtrel_ErrorPostError(code::kNotImplemented, "", call.site().file, call.site().line);
  return code::kNotImplemented;
}

uint32_t IntoResult(Call& call, const VXT_BitData* bitData, const VXT_BitData* result) {
  return BitDataChecks(call).Holding(bitData, "bitData").Empty(result, "result").Core([&] {
    return NotImplemented(call);
  });
}

uint32_t IntoField(Call& call, const VXT_BitData* dest, const VXT_BitData* left, const VXT_BitData* right) {
  return BitDataChecks(call).Holding(dest, "dest").Holding(left, "left").Holding(right, "right").Core([&] {
    return NotImplemented(call);
  });
}

uint32_t Rotate(Call& call, const VXT_BitData* bitData) {
  return BitDataChecks(call).Holding(bitData, "bitData").Core([&] { return NotImplemented(call); });
}

auto ValueArgs(const VXT_BitData* bitData, uint64_t value, const VXT_BitData* result) {
  return TraceArgs("bitData", BitDataText{bitData}, "value", Hex16{value}, "result", BitDataText{result});
}

auto FieldArgs(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize, const VXT_BitData* left,
               uint32_t leftBitOffset, uint32_t leftBitSize, const VXT_BitData* right, uint32_t rightBitOffset,
               uint32_t rightBitSize) {
  return TraceArgs("dest", BitDataText{dest}, "destBitOffset", Dec{destBitOffset}, "destBitSize", Dec{destBitSize},
                   "left", BitDataText{left}, "leftBitOffset", Dec{leftBitOffset}, "leftBitSize", Dec{leftBitSize},
                   "right", BitDataText{right}, "rightBitOffset", Dec{rightBitOffset}, "rightBitSize",
                   Dec{rightBitSize});
}

// The Out line of the field forms names `dest` and shows nothing behind it.
auto FieldOutArgs() { return TraceArgs("dest", ""); }

auto RotateArgs(const VXT_BitData* bitData, int32_t numBits) {
  return TraceArgs("bitData", BitDataText{bitData}, "numBits", Dec{numBits});
}

auto RotateFieldArgs(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, int32_t numBits) {
  return TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize", Dec{bitSize},
                   "numBits", Dec{numBits});
}

}  // namespace

VXT_Result InProc_BitDataOperations::Add(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, Add), ValueArgs(bitData, value, result),
                      TraceArgs("result", BitDataText{result}),
                      [&](Call& call) { return IntoResult(call, bitData, result); });
}

VXT_Result InProc_BitDataOperations::AddBitRange(const VXT_BitData* dest, uint32_t destBitOffset,
                                                 uint32_t destBitSize, const VXT_BitData* left,
                                                 uint32_t leftBitOffset, uint32_t leftBitSize,
                                                 const VXT_BitData* right, uint32_t rightBitOffset,
                                                 uint32_t rightBitSize) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, AddBitRange),
                      FieldArgs(dest, destBitOffset, destBitSize, left, leftBitOffset, leftBitSize, right,
                                rightBitOffset, rightBitSize),
                      FieldOutArgs(), [&](Call& call) { return IntoField(call, dest, left, right); });
}

VXT_Result InProc_BitDataOperations::Subtract(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, Subtract), ValueArgs(bitData, value, result),
                      TraceArgs("result", BitDataText{result}),
                      [&](Call& call) { return IntoResult(call, bitData, result); });
}

VXT_Result InProc_BitDataOperations::SubtractBitRange(const VXT_BitData* dest, uint32_t destBitOffset,
                                                      uint32_t destBitSize, const VXT_BitData* left,
                                                      uint32_t leftBitOffset, uint32_t leftBitSize,
                                                      const VXT_BitData* right, uint32_t rightBitOffset,
                                                      uint32_t rightBitSize) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, SubtractBitRange),
                      FieldArgs(dest, destBitOffset, destBitSize, left, leftBitOffset, leftBitSize, right,
                                rightBitOffset, rightBitSize),
                      FieldOutArgs(), [&](Call& call) { return IntoField(call, dest, left, right); });
}

VXT_Result InProc_BitDataOperations::Multiply(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, Multiply), ValueArgs(bitData, value, result),
                      TraceArgs("result", BitDataText{result}),
                      [&](Call& call) { return IntoResult(call, bitData, result); });
}

VXT_Result InProc_BitDataOperations::MultiplyBitRange(const VXT_BitData* dest, uint32_t destBitOffset,
                                                      uint32_t destBitSize, const VXT_BitData* left,
                                                      uint32_t leftBitOffset, uint32_t leftBitSize,
                                                      const VXT_BitData* right, uint32_t rightBitOffset,
                                                      uint32_t rightBitSize) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, MultiplyBitRange),
                      FieldArgs(dest, destBitOffset, destBitSize, left, leftBitOffset, leftBitSize, right,
                                rightBitOffset, rightBitSize),
                      FieldOutArgs(), [&](Call& call) { return IntoField(call, dest, left, right); });
}

VXT_Result InProc_BitDataOperations::Divide(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, Divide), ValueArgs(bitData, value, result),
                      TraceArgs("result", BitDataText{result}),
                      [&](Call& call) { return IntoResult(call, bitData, result); });
}

VXT_Result InProc_BitDataOperations::DivideBitRange(const VXT_BitData* dest, uint32_t destBitOffset,
                                                    uint32_t destBitSize, const VXT_BitData* left,
                                                    uint32_t leftBitOffset, uint32_t leftBitSize,
                                                    const VXT_BitData* right, uint32_t rightBitOffset,
                                                    uint32_t rightBitSize) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, DivideBitRange),
                      FieldArgs(dest, destBitOffset, destBitSize, left, leftBitOffset, leftBitSize, right,
                                rightBitOffset, rightBitSize),
                      FieldOutArgs(), [&](Call& call) { return IntoField(call, dest, left, right); });
}

VXT_Result InProc_BitDataOperations::Modulo(const VXT_BitData* bitData, uint64_t value, VXT_BitData* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, Modulo), ValueArgs(bitData, value, result),
                      TraceArgs("result", BitDataText{result}),
                      [&](Call& call) { return IntoResult(call, bitData, result); });
}

VXT_Result InProc_BitDataOperations::RotateLeft(const VXT_BitData* bitData, int32_t numBits) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, RotateLeft), RotateArgs(bitData, numBits),
                      TraceArgs("bitData", BitDataText{bitData}), [&](Call& call) { return Rotate(call, bitData); });
}

VXT_Result InProc_BitDataOperations::RotateLeftBitRange(const VXT_BitData* bitData, uint32_t bitOffset,
                                                        uint32_t bitSize, int32_t numBits) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, RotateLeftBitRange),
                      RotateFieldArgs(bitData, bitOffset, bitSize, numBits), TraceArgs("bitData", BitDataText{bitData}),
                      [&](Call& call) { return Rotate(call, bitData); });
}

VXT_Result InProc_BitDataOperations::RotateRight(const VXT_BitData* bitData, int32_t numBits) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, RotateRight), RotateArgs(bitData, numBits),
                      TraceArgs("bitData", BitDataText{bitData}), [&](Call& call) { return Rotate(call, bitData); });
}

VXT_Result InProc_BitDataOperations::RotateRightBitRange(const VXT_BitData* bitData, uint32_t bitOffset,
                                                         uint32_t bitSize, int32_t numBits) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, RotateRightBitRange),
                      RotateFieldArgs(bitData, bitOffset, bitSize, numBits), TraceArgs("bitData", BitDataText{bitData}),
                      [&](Call& call) { return Rotate(call, bitData); });
}

}  // namespace vxt
