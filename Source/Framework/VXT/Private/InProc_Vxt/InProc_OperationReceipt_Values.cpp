// Reading an operation's value: as a vector of the calling client, at a
// fixed width, or as raw bytes.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <memory>
#include <ostream>

#include "BitDataHandles.h"
#include "InProc_OperationReceipt.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::BitDataText;
using frame::Call;
using frame::Dec;
using frame::Hex16;
using frame::Hex2;
using frame::Hex4;
using frame::Hex8;
using frame::Out;
using frame::TraceArgs;

// The bytes of a vector are read in place: its words are stored little-endian.
static_assert(std::endian::native == std::endian::little);

// The Out line shows no more of a raw value than this many bytes.
constexpr uint32_t kMaxBytesShown = 100;

struct FreeValue {
  void operator()(BitData* object) const { BitData_FreeManaged(object); }
};
// The component's copy of a receipt's value, freed on every path.
using OwnedValue = std::unique_ptr<BitData, FreeValue>;

uint32_t FetchValue(const OperationReceiptComponent& receipts, uint64_t operationToken, OwnedValue& value) {
  BitData* object = nullptr;
  const uint32_t failure = receipts.GetValue(operationToken, &object);
  value.reset(object);
  if (failure == code::kSuccess && object == nullptr) return code::kException;
  return failure;
}

// A client's vector record and byte count are 32 bits wide.
bool FitsThirtyTwoBits(const BitData& value) { return value.bitSize <= std::numeric_limits<uint32_t>::max(); }

uint32_t EnterAsClientVector(Call& call, VXT_BitData* record, const BitData& value) {
  const auto bitSize = static_cast<uint32_t>(value.bitSize);
  return InProc_BitData::Instance()._CreateFromRawBits(record, bitSize, reinterpret_cast<const uint8_t*>(value.words),
                                                       (bitSize + 7) / 8, ReportArgument{call});
}

uint32_t CopyRawBytes(const BitData& value, uint8_t* bytes, uint32_t maxByteCount, uint32_t* byteCount) {
  const auto length = static_cast<uint32_t>((value.bitSize + 7) / 8);
  if (bytes == nullptr) {
    *byteCount = length;
    return code::kSuccess;
  }
  const uint32_t count = std::min(length, maxByteCount);
  // A copy cut to the caller's count is what was asked for, so the
  // library's report of a cut is not a failure here.
  BitData_GetBuffer(&value, 0, bytes, count);
  if (byteCount != nullptr) *byteCount = count;
  return code::kSuccess;
}

// The leading bytes of a raw value: as many as `byteCount` says, but no more
// than the Out line shows nor than the caller's buffer holds, so that a
// count the caller left unset is never read past the buffer.
struct LeadingBytes {
  const uint8_t* bytes;
  const uint32_t* byteCount;
  uint32_t maxByteCount;

  friend std::ostream& operator<<(std::ostream& out, const LeadingBytes& shown) {
    const uint32_t count = shown.byteCount == nullptr ? 0 : *shown.byteCount;
    return out << frame::Bytes(shown.bytes, std::min({count, shown.maxByteCount, kMaxBytesShown}));
  }
};

}  // namespace

VXT_Result InProc_OperationReceipt::GetValue(uint64_t operationToken, VXT_BitData* value) {
  return RunOperation(logger, VXT_OPERATION(OperationReceipt, GetValue),
                      TraceArgs("operationToken", Hex16{operationToken}), TraceArgs("value", BitDataText{value}),
                      [&](Call& call) {
                        OwnedValue object;
                        BitDataChecks(call).NotNull(value, "value").Empty(value, "value");
                        call.Core(operationReceipt, [&](const OperationReceiptComponent& receipts) {
                          return FetchValue(receipts, operationToken, object);
                        });
                        call.Require(call.failed() || FitsThirtyTwoBits(*object), code::kOutOfRange);
                        return call.Core([&] { return EnterAsClientVector(call, value, *object); });
                      });
}

VXT_Result InProc_OperationReceipt::GetValueAsUInt64(uint64_t operationToken, uint64_t* value) {
  return RunOperation(logger, VXT_OPERATION(OperationReceipt, GetValueAsUInt64),
                      TraceArgs("operationToken", Hex16{operationToken}), TraceArgs("value", Out<Hex16>(value)),
                      [&](Call& call) {
                        return call.NotNull(value, "value").Core(operationReceipt, [&](const auto& receipts) {
                          return receipts.GetValueAsUInt64(operationToken, value);
                        });
                      });
}

VXT_Result InProc_OperationReceipt::GetValueAsUInt32(uint64_t operationToken, uint32_t* value) {
  return RunOperation(logger, VXT_OPERATION(OperationReceipt, GetValueAsUInt32),
                      TraceArgs("operationToken", Hex16{operationToken}), TraceArgs("value", Out<Hex8>(value)),
                      [&](Call& call) {
                        return call.NotNull(value, "value").Core(operationReceipt, [&](const auto& receipts) {
                          return receipts.GetValueAsUInt32(operationToken, value);
                        });
                      });
}

VXT_Result InProc_OperationReceipt::GetValueAsUInt16(uint64_t operationToken, uint16_t* value) {
  return RunOperation(logger, VXT_OPERATION(OperationReceipt, GetValueAsUInt16),
                      TraceArgs("operationToken", Hex16{operationToken}), TraceArgs("value", Out<Hex4>(value)),
                      [&](Call& call) {
                        return call.NotNull(value, "value").Core(operationReceipt, [&](const auto& receipts) {
                          return receipts.GetValueAsUInt16(operationToken, value);
                        });
                      });
}

VXT_Result InProc_OperationReceipt::GetValueAsUInt8(uint64_t operationToken, uint8_t* value) {
  return RunOperation(logger, VXT_OPERATION(OperationReceipt, GetValueAsUInt8),
                      TraceArgs("operationToken", Hex16{operationToken}), TraceArgs("value", Out<Hex2>(value)),
                      [&](Call& call) {
                        return call.NotNull(value, "value").Core(operationReceipt, [&](const auto& receipts) {
                          return receipts.GetValueAsUInt8(operationToken, value);
                        });
                      });
}

VXT_Result InProc_OperationReceipt::GetValueAsRawBytes(uint64_t operationToken, uint8_t* bytes,
                                                       uint32_t maxByteCount, uint32_t* byteCount) {
  return RunOperation(
      logger, VXT_OPERATION(OperationReceipt, GetValueAsRawBytes),
      TraceArgs("operationToken", Hex16{operationToken}, "maxByteCount", Dec{maxByteCount}),
      TraceArgs("bytes", LeadingBytes{bytes, byteCount, maxByteCount}, "byteCount", Out<Dec>(byteCount)),
      [&](Call& call) {
        OwnedValue object;
        // Either out argument alone serves: a size query or a read.
        call.Require(bytes != nullptr || byteCount != nullptr, code::kInvalidArgument, call.prefix(),
                     " argument error (bytes) : Null pointer", call.prefix(),
                     " argument error (byteCount) : Null pointer");
        call.Core(operationReceipt, [&](const OperationReceiptComponent& receipts) {
          return FetchValue(receipts, operationToken, object);
        });
        call.Require(call.failed() || FitsThirtyTwoBits(*object), code::kOutOfRange);
        return call.Core([&] { return CopyRawBytes(*object, bytes, maxByteCount, byteCount); });
      });
}

}  // namespace vxt
