// The operations of the BitData service, in the order of its table.
#include "InProc_BitData.h"

#include <algorithm>
#include <string>

#include "BitDataHandles.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::BitDataText;
using frame::Bytes;
using frame::Call;
using frame::Dec;
using frame::Hex16;
using frame::Hex2;
using frame::Hex4;
using frame::Hex8;
using frame::List;
using frame::NoArgs;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;

// Keeps a check's short text for the caller to decide on.
struct KeepText {
  std::string& text;
  void operator()(std::string_view shortText) const { text = shortText; }
};

// The range check of the ToUInt operations, which ask only for what lies
// behind the offset: a field running past the end is reported as a bad
// offset, with the range's text.
uint32_t CheckReadOffset(const VXT_BitData* record, uint32_t bitOffset, uint32_t width,
                         const ArgumentErrorReporter& report) {
  const uint32_t failure = InProc_BitData::_CheckBitRange(record, bitOffset, width, report);
  return failure == code::kBitRangeInvalid ? code::kBitOffsetInvalid : failure;
}

// The width that ToUInt64, ToUInt32 and ToUInt16 ask for: at most 64 bits,
// and no more than the vector holds behind the offset. An offset behind the
// end wraps to a large number and so still fails on the offset.
uint32_t WidthBehind(const VXT_BitData& record, uint32_t bitOffset) {
  return std::min<uint32_t>(64, record.bitSize - bitOffset);
}

}  // namespace

VXT_Result InProc_BitData::Create(VXT_BitData* bitData, uint32_t bitSize, uint64_t initialValue) {
  return RunOperation(logger, VXT_OPERATION(BitData, Create),
                      TraceArgs("bitSize", Dec{bitSize}, "initialValue", Hex16{initialValue}),
                      TraceArgs("bitData", BitDataText{bitData}),
                      [&](Call& call) { return BitDataChecks(call).Create(bitData, bitSize, initialValue).code(); });
}

VXT_Result InProc_BitData::CreateFromRawBits(VXT_BitData* bitData, uint32_t bitSize, const uint8_t* values,
                                             uint32_t numValues) {
  return RunOperation(
      logger, VXT_OPERATION(BitData, CreateFromRawBits),
      TraceArgs("bitSize", Dec{bitSize}, "values", Bytes(values, numValues), "numValues", Dec{numValues}),
      TraceArgs("bitData", BitDataText{bitData}),
      [&](Call& call) { return _CreateFromRawBits(bitData, bitSize, values, numValues, ReportArgument{call}); });
}

VXT_Result InProc_BitData::CreateFromString(VXT_BitData* bitData, const char* value) {
  return RunOperation(logger, VXT_OPERATION(BitData, CreateFromString), TraceArgs("value", Quoted{value}),
                      TraceArgs("bitData", BitDataText{bitData}), [&](Call& call) {
                        return BitDataChecks(call).NotNull(value, "value").Empty(bitData, "bitData").Core([&] {
                          const uint32_t result = EnterFromText(bitData, value);
                          if (result == code::kOutOfRange)
                            call.ArgumentError(result, "value", "Cannot be read as a bit vector");
                          return result;
                        });
                      });
}

VXT_Result InProc_BitData::Copy(const VXT_BitData* src, VXT_BitData* dest) {
  return RunOperation(logger, VXT_OPERATION(BitData, Copy), TraceArgs("src", BitDataText{src}),
                      TraceArgs("dest", BitDataText{dest}),
                      [&](Call& call) { return BitDataChecks(call).Copy(src, dest).code(); });
}

VXT_Result InProc_BitData::Destroy(VXT_BitData* bitData) {
  return RunOperation(logger, VXT_OPERATION(BitData, Destroy), TraceArgs("bitData", BitDataText{bitData}),
                      TraceArgs("bitData", BitDataText{bitData}), [&](Call& call) {
                        // A record that holds no vector has nothing to destroy; a
                        // missing or unsized one is an error.
                        std::string text;
                        const uint32_t held = _CheckRecord(bitData, true, KeepText{text});
                        if (held == code::kBitDataInvalid) return code::kSuccess;
                        if (held != 0) return call.ArgumentError(held, "bitData", text.c_str()).code();
                        return _Destroy(bitData, ReportArgument{call, "bitData"});
                      });
}

VXT_Result InProc_BitData::DestroyManyBitData(VXT_BitData* items, uint32_t numItems) {
  return RunOperation(logger, VXT_OPERATION(BitData, DestroyManyBitData),
                      TraceArgs("items", List<BitDataText>(items, numItems), "numItems", Dec{numItems}), NoArgs{},
                      [&](Call& call) {
                        call.NotNull(items, "items");
                        for (uint32_t i = 0; i < numItems && !call.failed(); ++i) {
                          VXT_BitData& item = items[i];
                          std::string text;
                          const uint32_t result = _Destroy(&item, KeepText{text});
                          // An empty record, or a handle the client does not own,
                          // is only cleared.
                          if (result == code::kBitDataInvalid) {
                            item.bitSize = 0;
                            item.dataHandle = 0;
                          } else if (result != 0 && text.empty()) {
                            call.Fail(result);
                          } else if (result != 0) {
                            call.Fail(result, call.prefix(), " argument error (items[", i, "]) : ", text);
                          }
                        }
                        return call.code();
                      });
}

VXT_Result InProc_BitData::Extract(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                   uint64_t* value) {
  return RunOperation(
      logger, VXT_OPERATION(BitData, Extract).LargeOut(),
      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize", Dec{bitSize}),
      TraceArgs("value", Out<Hex16>(value)), [&](Call& call) {
        BitData* object = nullptr;
        return BitDataChecks(call)
            .NotNull(value, "value")
            .Holding(bitData, "bitData")
            .Managed(bitData, object, "bitData")
            .Require(bitSize <= 64, code::kBitDataFieldTooWide)
            .BitRange(bitData, bitOffset, bitSize, "bitData")
            .Core([&] {
              *value = BitData_GetUpToUInt64(object, bitOffset, bitSize);
              return code::kSuccess;
            });
      });
}

VXT_Result InProc_BitData::ExtractAsBitData(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                            VXT_BitData* value) {
  return RunOperation(
      logger, VXT_OPERATION(BitData, ExtractAsBitData),
      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize", Dec{bitSize}),
      TraceArgs("value", BitDataText{value}), [&](Call& call) {
        BitData* source = nullptr;
        return BitDataChecks(call)
            .Holding(bitData, "bitData")
            .Managed(bitData, source, "bitData")
            .Empty(value, "value")
            .BitRange(bitData, bitOffset, bitSize, "bitData")
            .Core([&] { return EnterField(value, source, bitOffset, bitSize); });
      });
}

VXT_Result InProc_BitData::ExtractAsRawBits(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                            uint8_t* values, uint32_t maxValues) {
  return RunOperation(logger, VXT_OPERATION(BitData, ExtractAsRawBits),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize", Dec{bitSize},
                                "maxValues", Dec{maxValues}),
                      TraceArgs("values", Bytes(values, maxValues)), [&](Call& call) {
                        return _ExtractAsRawBits(bitData, bitOffset, bitSize, values, maxValues, ReportArgument{call});
                      });
}

namespace {

// ToUInt64 to ToUInt8: the checks they share, then `read` from the vector.
template <class Read>
uint32_t ReadFromOffset(Call& call, const VXT_BitData* bitData, uint32_t bitOffset, const void* value,
                        bool exactlyEightBits, Read read) {
  BitData* object = nullptr;
  return BitDataChecks(call)
      .NotNull(value, "value")
      .Holding(bitData, "bitData")
      .Managed(bitData, object, "bitData")
      .Then([&] {
        const uint32_t width = exactlyEightBits ? 8 : WidthBehind(*bitData, bitOffset);
        return CheckReadOffset(bitData, bitOffset, width, ReportArgument{call, "bitData"});
      })
      .Core([&] {
        read(object);
        return code::kSuccess;
      });
}

}  // namespace

VXT_Result InProc_BitData::ToUInt64(const VXT_BitData* bitData, uint32_t bitOffset, uint64_t* value) {
  return RunOperation(logger, VXT_OPERATION(BitData, ToUInt64).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}),
                      TraceArgs("value", Out<Hex16>(value)), [&](Call& call) {
                        return ReadFromOffset(call, bitData, bitOffset, value, false, [&](const BitData* object) {
                          *value = BitData_GetUInt64(object, bitOffset);
                        });
                      });
}

VXT_Result InProc_BitData::ToUInt32(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t* value) {
  return RunOperation(logger, VXT_OPERATION(BitData, ToUInt32).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}),
                      TraceArgs("value", Out<Hex8>(value)), [&](Call& call) {
                        return ReadFromOffset(call, bitData, bitOffset, value, false, [&](const BitData* object) {
                          *value = BitData_GetUInt32(object, bitOffset);
                        });
                      });
}

VXT_Result InProc_BitData::ToUInt16(const VXT_BitData* bitData, uint32_t bitOffset, uint16_t* value) {
  return RunOperation(logger, VXT_OPERATION(BitData, ToUInt16).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}),
                      TraceArgs("value", Out<Hex4>(value)), [&](Call& call) {
                        return ReadFromOffset(call, bitData, bitOffset, value, false, [&](const BitData* object) {
                          *value = static_cast<uint16_t>(BitData_GetUInt32(object, bitOffset));
                        });
                      });
}

VXT_Result InProc_BitData::ToUInt8(const VXT_BitData* bitData, uint32_t bitOffset, uint8_t* value) {
  return RunOperation(logger, VXT_OPERATION(BitData, ToUInt8).LargeOut(),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}),
                      TraceArgs("value", Out<Hex2>(value)), [&](Call& call) {
                        return ReadFromOffset(call, bitData, bitOffset, value, true, [&](const BitData* object) {
                          *value = static_cast<uint8_t>(BitData_GetUInt32(object, bitOffset));
                        });
                      });
}

VXT_Result InProc_BitData::Deposit(const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                                   uint64_t value) {
  return RunOperation(logger, VXT_OPERATION(BitData, Deposit),
                      TraceArgs("bitData", BitDataText{bitData}, "bitOffset", Dec{bitOffset}, "bitSize",
                                Dec{bitSize}, "value", Hex16{value}),
                      NoArgs{}, [&](Call& call) {
                        BitData* object = nullptr;
                        return BitDataChecks(call)
                            .Holding(bitData, "bitData")
                            .Managed(bitData, object, "bitData")
                            .Require(bitSize <= 64, code::kBitDataFieldTooWide)
                            .BitRange(bitData, bitOffset, bitSize, "bitData")
                            .Core([&] { return BitData_SetUpToUInt64(object, bitOffset, bitSize, value); });
                      });
}

VXT_Result InProc_BitData::DepositFromBitData(const VXT_BitData* destBitData, uint32_t destBitOffset,
                                              uint32_t destBitSize, const VXT_BitData* srcBitData,
                                              uint32_t srcBitOffset) {
  return RunOperation(logger, VXT_OPERATION(BitData, DepositFromBitData),
                      TraceArgs("destBitData", BitDataText{destBitData}, "destBitOffset", Dec{destBitOffset},
                                "destBitSize", Dec{destBitSize}, "srcBitData", BitDataText{srcBitData},
                                "srcBitOffset", Dec{srcBitOffset}),
                      NoArgs{}, [&](Call& call) {
                        BitData* destination = nullptr;
                        BitData* source = nullptr;
                        // One size serves both fields.
                        return BitDataChecks(call)
                            .Holding(destBitData, "destBitData")
                            .Holding(srcBitData, "srcBitData")
                            .Managed(destBitData, destination, "destBitData")
                            .BitRange(destBitData, destBitOffset, destBitSize, "destBitData")
                            .Managed(srcBitData, source, "srcBitData")
                            .BitRange(srcBitData, srcBitOffset, destBitSize, "srcBitData")
                            .Core([&] {
                              return BitData_Copy(source, srcBitOffset, destination, destBitOffset, destBitSize);
                            });
                      });
}

}  // namespace vxt
