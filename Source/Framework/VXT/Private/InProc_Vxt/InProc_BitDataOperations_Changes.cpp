// Changes to a vector in place: shifts, random fill, growth and patterns.
#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "BitDataHandles.h"
#include "InProc_BitDataOperations.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::BitDataText;
using frame::Call;
using frame::Dec;
using frame::Hex8;
using frame::NoArgs;
using frame::TraceArgs;

using Shift = uint32_t (*)(BitData*, uint64_t, uint64_t, int64_t);

// The whole vector, by the record's length; a negative numBits goes to the
// library as it is.
uint32_t ShiftVector(Call& call, const VXT_BitData* bitData, int32_t numBits, Shift shift) {
  BitData* object = nullptr;
  return BitDataChecks(call)
      .Holding(bitData, "bitData")
      .Managed(bitData, object, "bitData")
      .Core([&] { return shift(object, 0, bitData->bitSize, numBits); });
}

uint32_t ShiftField(Call& call, const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize, int32_t numBits,
                    Shift shift) {
  return ChangeBitRange(call, bitData, bitOffset, bitSize,
                        [&](BitData* object) { return shift(object, bitOffset, bitSize, numBits); });
}

// The piece length of SetBitRangeToPattern.
constexpr uint64_t kPatternBits = 32;

// Repeats `value` over the field in pieces of 32 bits from bitOffset on, the
// last piece shorter and holding the low bits. The pieces are written from
// the top down: a record may say more than its vector holds, and then the
// first piece tried is the one the library refuses, so that a refused call
// has changed nothing.
uint32_t WritePattern(BitData* object, uint32_t bitOffset, uint32_t bitSize, uint32_t value) {
  if (bitSize == 0) return code::kSuccess;
  const uint64_t end = uint64_t{bitOffset} + bitSize;
  uint64_t position = bitOffset + (uint64_t{bitSize} - 1) / kPatternBits * kPatternBits;
  for (;;) {
    const uint64_t piece = std::min(kPatternBits, end - position);
    if (const uint32_t written = BitData_SetUpToUInt64(object, position, piece, value); written != 0) return written;
    if (position == bitOffset) return code::kSuccess;
    position -= kPatternBits;
  }
}

}  // namespace

VXT_Result InProc_BitDataOperations::ShiftLeft(const VXT_BitData* bitData, int32_t numBits) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, ShiftLeft),
                      TraceArgs("bitData", BitDataText{bitData}, "numBits", Dec{numBits}),
                      TraceArgs("bitData", BitDataText{bitData}),
                      [&](Call& call) { return ShiftVector(call, bitData, numBits, &BitData_ShiftLeft); });
}

VXT_Result InProc_BitDataOperations::ShiftLeftBitRange(const VXT_BitData* bitData, uint32_t bitOffset,
                                                       uint32_t bitSize, int32_t numBits) {
  return RunOperation(
      logger, VXT_OPERATION(BitDataOperations, ShiftLeftBitRange),
      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize", Dec{bitSize}, "numBits",
                Dec{numBits}),
      TraceArgs("bitData", BitDataText{bitData}),
      [&](Call& call) { return ShiftField(call, bitData, bitOffset, bitSize, numBits, &BitData_ShiftLeft); });
}

VXT_Result InProc_BitDataOperations::ShiftRight(const VXT_BitData* bitData, int32_t numBits) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, ShiftRight),
                      TraceArgs("bitData", BitDataText{bitData}, "numBits", Dec{numBits}),
                      TraceArgs("bitData", BitDataText{bitData}),
                      [&](Call& call) { return ShiftVector(call, bitData, numBits, &BitData_ShiftRight); });
}

VXT_Result InProc_BitDataOperations::ShiftRightBitRange(const VXT_BitData* bitData, uint32_t bitOffset,
                                                        uint32_t bitSize, int32_t numBits) {
  return RunOperation(
      logger, VXT_OPERATION(BitDataOperations, ShiftRightBitRange),
      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize", Dec{bitSize}, "numBits",
                Dec{numBits}),
      TraceArgs("bitData", BitDataText{bitData}),
      [&](Call& call) { return ShiftField(call, bitData, bitOffset, bitSize, numBits, &BitData_ShiftRight); });
}

VXT_Result InProc_BitDataOperations::SetRandomSeed(const VXT_BitData* bitData, uint32_t seedValue) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, SetRandomSeed),
                      TraceArgs("bitData", BitDataText{bitData}, "seedValue", Dec{seedValue}), NoArgs{},
                      [&](Call& call) {
                        // The seed is the whole process's; the handle is not looked up.
                        return BitDataChecks(call).Holding(bitData, "bitData").Core([&] {
                          std::srand(seedValue);
                          return code::kSuccess;
                        });
                      });
}

VXT_Result InProc_BitDataOperations::Randomize(const VXT_BitData* bitData, VXT_BitData* result) {
  return RunOperation(
      logger, VXT_OPERATION(BitDataOperations, Randomize), TraceArgs("bitData", BitDataText{bitData}),
      TraceArgs("result", BitDataText{result}), [&](Call& call) {
        InProc_BitData& service = InProc_BitData::Instance();
        const auto reportInternal = [&call](std::string_view text) {
          call.message() << call.prefix() << " error (internal result) : " << text;
        };
        BitData* object = nullptr;
        // Only the record's bitSize counts; bitData's handle is not looked up.
        return BitDataChecks(call)
            .Holding(bitData, "bitData")
            .NotNull(result, "result")
            .Empty(result, "result")
            .Then([&] { return service._Create(result, bitData->bitSize, 0, ReportArgument{call}); })
            .Then([&] { return service._GetManaged(result, object, reportInternal); })
            .Core([&] { return BitData_Randomize(object, 0, object->bitSize); });
      });
}

VXT_Result InProc_BitDataOperations::RandomizeBits(const VXT_BitData* bitData, uint32_t bitOffset,
                                                   uint32_t bitSize) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, RandomizeBits),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize",
                                Dec{bitSize}),
                      NoArgs{}, [&](Call& call) {
                        return ChangeBitRange(call, bitData, bitOffset, bitSize, [&](BitData* object) {
                          return BitData_Randomize(object, bitOffset, bitSize);
                        });
                      });
}

VXT_Result InProc_BitDataOperations::GrowSize(VXT_BitData* bitData, uint32_t bitsToAdd) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, GrowSize),
                      TraceArgs("bitData", BitDataText{bitData}, "bitsToAdd", Dec{bitsToAdd}),
                      TraceArgs("bitData", BitDataText{bitData}), [&](Call& call) {
                        BitData* object = nullptr;
                        return BitDataChecks(call)
                            .Holding(bitData, "bitData")
                            .Managed(bitData, object, "bitData")
                            .Core([&] {
                              const uint32_t grown = BitData_Resize(object, object->bitSize + bitsToAdd);
                              // The handle stays; the record follows the new length.
                              if (grown == 0) bitData->bitSize = static_cast<uint32_t>(object->bitSize);
                              return grown;
                            });
                      });
}

VXT_Result InProc_BitDataOperations::SetBitRangeToPattern(const VXT_BitData* bitData, uint32_t bitOffset,
                                                          uint32_t bitSize, uint32_t value) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, SetBitRangeToPattern),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize",
                                Dec{bitSize}, "value", Hex8{value}),
                      NoArgs{}, [&](Call& call) {
                        BitData* object = nullptr;
                        return BitDataChecks(call)
                            .Holding(bitData, "bitData")
                            .Managed(bitData, object, "bitData")
                            .BitRange(bitData, bitOffset, bitSize, "bitData")
                            .Core([&] { return WritePattern(object, bitOffset, bitSize, value); });
                      });
}

}  // namespace vxt
