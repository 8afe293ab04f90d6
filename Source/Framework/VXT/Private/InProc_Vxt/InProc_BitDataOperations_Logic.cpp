// Bitwise logic: combining two vectors into a new one or into a field,
// inverting and reversing.
#include <algorithm>

#include "BitDataHandles.h"
#include "InProc_BitDataOperations.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::BitDataText;
using frame::BitwiseOperationName;
using frame::Call;
using frame::Dec;
using frame::Enum;
using frame::Hex8;
using frame::NoArgs;
using frame::TraceArgs;

using Combine = uint32_t (*)(BitData*, uint64_t, const BitData*, uint64_t, const BitData*, uint64_t, uint64_t);

// How the new vector of And, Or and Xor starts: all zeros as long as the
// longer operand, or a copy of the longer operand.
enum class Start { kZeros, kLongerOperand };

// A new vector in `result` as long as the longer operand; the combination
// covers the shorter length, and the bits beyond it stay as they started.
uint32_t CombineIntoNew(Call& call, const VXT_BitData* left, const VXT_BitData* right, VXT_BitData* result, Start start,
                        Combine combine) {
  InProc_BitData& service = InProc_BitData::Instance();
  BitData* destination = nullptr;
  BitData* leftObject = nullptr;
  BitData* rightObject = nullptr;
  return BitDataChecks(call)
      .Holding(left, "left")
      .Holding(right, "right")
      .Empty(result, "result")
      .Then([&] {
        if (start == Start::kZeros)
          return service._Create(result, std::max(left->bitSize, right->bitSize), 0, ReportArgument{call});
        // The right operand when the two are equally long.
        const VXT_BitData* longer = left->bitSize > right->bitSize ? left : right;
        return service._Copy(longer, result, ReportArgument{call});
      })
      .Managed(result, destination, "result")
      .Managed(left, leftObject, "left")
      .Managed(right, rightObject, "right")
      .Core([&] {
        return combine(destination, 0, leftObject, 0, rightObject, 0, std::min(left->bitSize, right->bitSize));
      });
}

Combine CombineFor(BitwiseOperation operation) {
  switch (operation) {
    case VXT_BitwiseOperation_OR:
      return &BitData_BitwiseOr;
    case VXT_BitwiseOperation_AND:
      return &BitData_BitwiseAnd;
    case VXT_BitwiseOperation_XOR:
      return &BitData_BitwiseXor;
  }
  return nullptr;
}

}  // namespace

VXT_Result InProc_BitDataOperations::And(const VXT_BitData* left, const VXT_BitData* right, VXT_BitData* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, And),
                      TraceArgs("left", BitDataText{left}, "right", BitDataText{right}, "result", BitDataText{result}),
                      TraceArgs("result", BitDataText{result}), [&](Call& call) {
                        return CombineIntoNew(call, left, right, result, Start::kZeros, &BitData_BitwiseAnd);
                      });
}

VXT_Result InProc_BitDataOperations::Or(const VXT_BitData* left, const VXT_BitData* right, VXT_BitData* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, Or),
                      TraceArgs("left", BitDataText{left}, "right", BitDataText{right}, "result", BitDataText{result}),
                      TraceArgs("result", BitDataText{result}), [&](Call& call) {
                        return CombineIntoNew(call, left, right, result, Start::kLongerOperand, &BitData_BitwiseOr);
                      });
}

VXT_Result InProc_BitDataOperations::Xor(const VXT_BitData* left, const VXT_BitData* right, VXT_BitData* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, Xor),
                      TraceArgs("left", BitDataText{left}, "right", BitDataText{right}, "result", BitDataText{result}),
                      TraceArgs("result", BitDataText{result}), [&](Call& call) {
                        return CombineIntoNew(call, left, right, result, Start::kLongerOperand, &BitData_BitwiseXor);
                      });
}

VXT_Result InProc_BitDataOperations::Invert(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                            uint32_t value) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, Invert),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize", Dec{bitSize},
                                "value", Hex8{value}),
                      NoArgs{}, [&](Call& call) {
                        // `value` stands in the trace only: every bit of the field flips.
                        return ChangeBitRange(call, bitData, bitOffset, bitSize, [&](BitData* object) {
                          return BitData_XorValue(object, bitOffset, bitSize, ~uint64_t{0});
                        });
                      });
}

VXT_Result InProc_BitDataOperations::Reverse(const VXT_BitData* bitData, VXT_BitData* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, Reverse),
                      TraceArgs("bitData", BitDataText{bitData}, "result", BitDataText{result}),
                      TraceArgs("result", BitDataText{result}), [&](Call& call) {
                        InProc_BitData& service = InProc_BitData::Instance();
                        BitData* reversed = nullptr;
                        BitData* source = nullptr;
                        return BitDataChecks(call)
                            .Holding(bitData, "bitData")
                            .Empty(result, "result")
                            .Then([&] { return service._Create(result, bitData->bitSize, 0, ReportArgument{call}); })
                            .Managed(result, reversed, "result")
                            .Managed(bitData, source, "bitData")
                            .Core([&] {
                              if (const uint32_t copied = BitData_Copy(source, 0, reversed, 0, bitData->bitSize);
                                  copied != 0)
                                return copied;
                              return BitData_Reverse(reversed, 0, bitData->bitSize);
                            });
                      });
}

VXT_Result InProc_BitDataOperations::ReverseBitRange(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, ReverseBitRange),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize", Dec{bitSize}),
                      NoArgs{}, [&](Call& call) {
                        return ChangeBitRange(call, bitData, bitOffset, bitSize, [&](BitData* object) {
                          return BitData_Reverse(object, bitOffset, bitSize);
                        });
                      });
}

VXT_Result InProc_BitDataOperations::BitwiseOp(const VXT_BitData* dest, uint32_t destBitOffset, uint32_t destBitSize,
                                               const VXT_BitData* left, uint32_t leftBitOffset, uint32_t leftBitSize,
                                               const VXT_BitData* right, uint32_t rightBitOffset, uint32_t rightBitSize,
                                               BitwiseOperation operation) {
  return RunOperation(
      logger, VXT_OPERATION(BitDataOperations, BitwiseOp),
      TraceArgs("dest", BitDataText{dest}, "destBitOffset", Dec{destBitOffset}, "destBitSize", Dec{destBitSize}, "left",
                BitDataText{left}, "leftBitOffset", Dec{leftBitOffset}, "leftBitSize", Dec{leftBitSize}, "right",
                BitDataText{right}, "rightBitOffset", Dec{rightBitOffset}, "rightBitSize", Dec{rightBitSize},
                "operation", Enum<&BitwiseOperationName>{operation}),
      TraceArgs("dest", ""), [&](Call& call) {
        BitData* destination = nullptr;
        BitData* leftObject = nullptr;
        BitData* rightObject = nullptr;
        // The operands' sizes serve their checks only; destBitSize bits of
        // each take part.
        return BitDataChecks(call)
            .Holding(dest, "dest")
            .Holding(left, "left")
            .Holding(right, "right")
            .BitRange(dest, destBitOffset, destBitSize, "dest bit range")
            .BitRange(left, leftBitOffset, leftBitSize, "left bit range")
            .BitRange(right, rightBitOffset, rightBitSize, "right bit range")
            .Managed(dest, destination, "dest")
            .Managed(left, leftObject, "left")
            .Managed(right, rightObject, "right")
            .Core([&] {
              const Combine combine = CombineFor(operation);
              if (combine == nullptr) return code::kUnknownBitwiseOperation;
              return combine(destination, destBitOffset, leftObject, leftBitOffset, rightObject, rightBitOffset,
                             destBitSize);
            });
      });
}

}  // namespace vxt
