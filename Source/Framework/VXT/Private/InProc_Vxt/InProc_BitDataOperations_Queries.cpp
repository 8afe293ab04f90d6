// Read-only questions about a vector or a field of it: searches, value
// tests, comparison, parity and counts.
#include <algorithm>
#include <optional>

#include "BitDataHandles.h"
#include "InProc_BitDataOperations.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::BitDataText;
using frame::Bool;
using frame::Call;
using frame::Dec;
using frame::Hex8;
using frame::Out;
using frame::TraceArgs;

struct Field {
  uint32_t bitOffset;
  uint32_t bitSize;
};
// No field: the whole vector, by the object's own length.
constexpr std::optional<Field> kWholeVector;

// The order that every query keeps: the record, the out pointer, the range,
// the lookup, then `query(object, bitOffset, bitSize)`.
template <class Query>
uint32_t AskField(Call& call, const VXT_BitData* bitData, std::optional<Field> field, const void* out,
                  const char* outName, Query query) {
  BitData* object = nullptr;
  BitDataChecks checks(call);
  checks.Holding(bitData, "bitData").NotNull(out, outName);
  if (field) checks.BitRange(bitData, field->bitOffset, field->bitSize, "bitData");
  return checks.Managed(bitData, object, "bitData").Core([&] {
    if (field) return query(object, uint64_t{field->bitOffset}, uint64_t{field->bitSize});
    return query(object, uint64_t{0}, object->bitSize);
  });
}

// The position of the first or last set bit; 0xffffffff when none is.
uint32_t Find(Call& call, const VXT_BitData* bitData, std::optional<Field> field, uint32_t* bitFoundIndex,
              uint32_t (*find)(const BitData*, uint64_t, uint64_t, uint64_t*)) {
  return AskField(call, bitData, field, bitFoundIndex, "bitFoundIndex",
                  [&](const BitData* object, uint64_t bitOffset, uint64_t bitSize) {
                    uint64_t index = BITDATA_NOT_FOUND;
                    const uint32_t found = find(object, bitOffset, bitSize, &index);
                    if (found == 0) *bitFoundIndex = static_cast<uint32_t>(index);
                    return found;
                  });
}

uint32_t CountParity(Call& call, const VXT_BitData* bitData, std::optional<Field> field, uint32_t* parity) {
  return AskField(call, bitData, field, parity, "parity",
                  [&](const BitData* object, uint64_t bitOffset, uint64_t bitSize) {
                    uint8_t odd = 0;
                    const uint32_t counted = BitData_Parity(object, bitOffset, bitSize, &odd);
                    if (counted == 0) *parity = odd != 0 ? 1 : 0;
                    return counted;
                  });
}

uint32_t CountSetBits(Call& call, const VXT_BitData* bitData, std::optional<Field> field, uint32_t* count) {
  return AskField(call, bitData, field, count, "count",
                  [&](const BitData* object, uint64_t bitOffset, uint64_t bitSize) {
                    uint64_t setBits = 0;
                    const uint32_t counted = BitData_PopCount(object, bitOffset, bitSize, &setBits);
                    if (counted == 0) *count = static_cast<uint32_t>(setBits);
                    return counted;
                  });
}

}  // namespace

VXT_Result InProc_BitDataOperations::FindFirst(const VXT_BitData* bitData, uint32_t* bitFoundIndex) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, FindFirst).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}), TraceArgs("result", Out<Dec>(bitFoundIndex)),
                      [&](Call& call) { return Find(call, bitData, kWholeVector, bitFoundIndex, &BitData_FindFirst); });
}

VXT_Result InProc_BitDataOperations::FindFirstBitRange(const VXT_BitData* bitData, uint32_t bitOffset,
                                                       uint32_t bitSize, uint32_t* bitFoundIndex) {
  return RunOperation(
      logger, VXT_OPERATION(BitDataOperations, FindFirstBitRange).LargeOut(),
      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize", Dec{bitSize}),
      TraceArgs("result", Out<Dec>(bitFoundIndex)), [&](Call& call) {
        return Find(call, bitData, Field{bitOffset, bitSize}, bitFoundIndex, &BitData_FindFirst);
      });
}

VXT_Result InProc_BitDataOperations::FindLast(const VXT_BitData* bitData, uint32_t* bitFoundIndex) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, FindLast).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}), TraceArgs("result", Out<Dec>(bitFoundIndex)),
                      [&](Call& call) { return Find(call, bitData, kWholeVector, bitFoundIndex, &BitData_FindLast); });
}

VXT_Result InProc_BitDataOperations::FindLastBitRange(const VXT_BitData* bitData, uint32_t bitOffset,
                                                      uint32_t bitSize, uint32_t* bitFoundIndex) {
  return RunOperation(
      logger, VXT_OPERATION(BitDataOperations, FindLastBitRange).LargeOut(),
      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize", Dec{bitSize}),
      TraceArgs("result", Out<Dec>(bitFoundIndex)), [&](Call& call) {
        return Find(call, bitData, Field{bitOffset, bitSize}, bitFoundIndex, &BitData_FindLast);
      });
}

VXT_Result InProc_BitDataOperations::IsValue(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                             uint32_t pattern, uint32_t* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, IsValue).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize",
                                Dec{bitSize}, "pattern", Hex8{pattern}),
                      TraceArgs("result", Out<Bool>(result)), [&](Call& call) {
                        return AskField(call, bitData, Field{bitOffset, bitSize}, result, "result",
                                        [&](const BitData* object, uint64_t offset, uint64_t size) {
                                          uint8_t matches = 0;
                                          const uint32_t asked =
                                              BitData_IsValue(object, offset, size, pattern, &matches);
                                          if (asked == 0) *result = matches != 0 ? 1 : 0;
                                          return asked;
                                        });
                      });
}

VXT_Result InProc_BitDataOperations::BitData_Compare(const VXT_BitData* left, const VXT_BitData* right,
                                                     int32_t* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, BitData_Compare).LargeOut(),
                      TraceArgs("left", BitDataText{left}, "right", BitDataText{right}),
                      TraceArgs("result", Out<Dec>(result)), [&](Call& call) {
                        BitData* leftObject = nullptr;
                        BitData* rightObject = nullptr;
                        return BitDataChecks(call)
                            .Holding(left, "left")
                            .Holding(right, "right")
                            .NotNull(result, "result")
                            .Managed(left, leftObject, "left")
                            .Managed(right, rightObject, "right")
                            .Core([&] {
                              // Over the shorter of the two records' lengths.
                              const uint32_t bitSize = std::min(left->bitSize, right->bitSize);
                              return ::BitData_Compare(leftObject, 0, rightObject, 0, bitSize, result);
                            });
                      });
}

VXT_Result InProc_BitDataOperations::CompareBitRange(const VXT_BitData* left, uint32_t leftBitOffset,
                                                     uint32_t leftBitSize, const VXT_BitData* right,
                                                     uint32_t rightBitOffset, uint32_t rightBitSize,
                                                     int32_t* result) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, CompareBitRange).LargeOut(),
                      TraceArgs("left", BitDataText{left}, "leftBitOffset", Dec{leftBitOffset}, "leftBitSize",
                                Dec{leftBitSize}, "right", BitDataText{right}, "rightBitOffset", Dec{rightBitOffset},
                                "rightBitSize", Dec{rightBitSize}),
                      TraceArgs("result", Out<Dec>(result)), [&](Call& call) {
                        BitData* leftObject = nullptr;
                        BitData* rightObject = nullptr;
                        return BitDataChecks(call)
                            .Holding(left, "left")
                            .Holding(right, "right")
                            .NotNull(result, "result")
                            .Managed(left, leftObject, "left")
                            .BitRange(left, leftBitOffset, leftBitSize, "left")
                            .Managed(right, rightObject, "right")
                            .BitRange(right, rightBitOffset, rightBitSize, "right")
                            .Core([&] {
                              return ::BitData_Compare(leftObject, leftBitOffset, rightObject, rightBitOffset,
                                                       std::min(leftBitSize, rightBitSize), result);
                            });
                      });
}

VXT_Result InProc_BitDataOperations::Parity(const VXT_BitData* bitData, uint32_t* parity) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, Parity).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}), TraceArgs("result", Out<Dec>(parity)),
                      [&](Call& call) { return CountParity(call, bitData, kWholeVector, parity); });
}

VXT_Result InProc_BitDataOperations::ParityBitRange(const VXT_BitData* bitData, uint32_t bitOffset,
                                                    uint32_t bitSize, uint32_t* parity) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, ParityBitRange).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize",
                                Dec{bitSize}),
                      TraceArgs("result", Out<Dec>(parity)),
                      [&](Call& call) { return CountParity(call, bitData, Field{bitOffset, bitSize}, parity); });
}

VXT_Result InProc_BitDataOperations::PopCount(const VXT_BitData* bitData, uint32_t* count) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, PopCount).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}), TraceArgs("result", Out<Dec>(count)),
                      [&](Call& call) { return CountSetBits(call, bitData, kWholeVector, count); });
}

VXT_Result InProc_BitDataOperations::PopCountBitRange(const VXT_BitData* bitData, uint32_t bitOffset,
                                                      uint32_t bitSize, uint32_t* count) {
  return RunOperation(logger, VXT_OPERATION(BitDataOperations, PopCountBitRange).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize",
                                Dec{bitSize}),
                      TraceArgs("result", Out<Dec>(count)),
                      [&](Call& call) { return CountSetBits(call, bitData, Field{bitOffset, bitSize}, count); });
}

}  // namespace vxt
