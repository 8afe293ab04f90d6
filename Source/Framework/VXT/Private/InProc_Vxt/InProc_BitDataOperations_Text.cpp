// The text forms of a vector, and the sizes a caller asks for before reading
// them.
#include <cstring>
#include <ostream>

#include "BitDataHandles.h"
#include "InProc_BitDataOperations.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::BitDataText;
using frame::Call;
using frame::Dec;
using frame::Out;
using frame::TraceArgs;

using TextWriter = uint32_t (*)(const BitData*, uint64_t, uint64_t, char*, uint64_t);
using SizeEstimate = uint64_t (*)(uint64_t bitSize);

// The caller's buffer as it stands after the call, without quotes, read no
// further than the caller said it reaches.
struct WrittenText {
  const char* buffer;
  uint32_t maxBufferSize;
  friend std::ostream& operator<<(std::ostream& out, const WrittenText& text) {
    if (text.buffer == nullptr) return out << "<NULL>";
    return out.write(text.buffer, static_cast<std::streamsize>(strnlen(text.buffer, text.maxBufferSize)));
  }
};

uint64_t DecimalDigits(uint64_t value) {
  uint64_t digits = 1;
  for (; value >= 10; value /= 10) ++digits;
  return digits;
}

// The estimates, with n the vector's length. The formulas have no value for
// an empty vector, which is estimated as a vector of one bit; that is
// enough for its text.
uint64_t GeneralFormSize(uint64_t n) {
  n = n == 0 ? 1 : n;
  return DecimalDigits(n) + ((n - 1) >> 2) + 1 + 6;
}
uint64_t DecimalFormSize(uint64_t n) {
  n = n == 0 ? 1 : n;
  return (n - 1) / 3 + 1;
}
uint64_t HexadecimalFormSize(uint64_t n) {
  n = n == 0 ? 1 : n;
  return ((n - 1) >> 2) + 1 + 2;
}
uint64_t BinaryFormSize(uint64_t n) {
  n = n == 0 ? 1 : n;
  return n + 2;
}

// Writes the whole vector's text into `buffer`, cut to maxBufferSize, or
// with a null buffer only tells the size to ask for.
uint32_t WriteText(Call& call, const VXT_BitData* bitData, char* buffer, uint32_t maxBufferSize,
                   uint32_t* actualStringSize, TextWriter write, SizeEstimate estimate) {
  BitData* object = nullptr;
  return BitDataChecks(call)
      .Holding(bitData, "bitData")
      .Valid([&] { return buffer != nullptr || actualStringSize != nullptr; }, code::kInvalidArgument,
             "buffer and actualStringSize", "Null pointer")
      .Managed(bitData, object, "bitData")
      .Core([&] {
        if (buffer == nullptr) {
          *actualStringSize = static_cast<uint32_t>(estimate(object->bitSize));
          return code::kSuccess;
        }
        // A text cut to the caller's buffer is what the caller asked for.
        const uint32_t written = write(object, 0, object->bitSize, buffer, maxBufferSize);
        if (written != 0 && written != BITDATA_VALUE_OUT_OF_RANGE) return written;
        if (actualStringSize != nullptr) *actualStringSize = static_cast<uint32_t>(strnlen(buffer, maxBufferSize));
        return code::kSuccess;
      });
}

}  // namespace

VXT_Result InProc_BitDataOperations::ToString(const VXT_BitData* bitData, char* buffer, uint32_t maxBufferSize,
                                              uint32_t* actualStringSize) {
  return RunOperation(
      logger, VXT_OPERATION(BitDataOperations, ToString).LargeOut(),
      TraceArgs("bitData", BitDataText{bitData}, "maxBufferSize", Dec{maxBufferSize}),
      TraceArgs("buffer", WrittenText{buffer, maxBufferSize}, "actualStringSize", Out<Dec>(actualStringSize)),
      [&](Call& call) {
        return WriteText(call, bitData, buffer, maxBufferSize, actualStringSize, &BitData_ToString, &GeneralFormSize);
      });
}

VXT_Result InProc_BitDataOperations::ToStringDecimal(const VXT_BitData* bitData, char* buffer,
                                                     uint32_t maxBufferSize, uint32_t* actualStringSize) {
  return RunOperation(
      logger, VXT_OPERATION(BitDataOperations, ToStringDecimal).LargeOut(),
      TraceArgs("bitData", BitDataText{bitData}, "maxBufferSize", Dec{maxBufferSize}),
      TraceArgs("buffer", WrittenText{buffer, maxBufferSize}, "actualStringSize", Out<Dec>(actualStringSize)),
      [&](Call& call) {
        return WriteText(call, bitData, buffer, maxBufferSize, actualStringSize, &BitData_ToDecimal, &DecimalFormSize);
      });
}

VXT_Result InProc_BitDataOperations::ToStringHexadecimal(const VXT_BitData* bitData, char* buffer,
                                                         uint32_t maxBufferSize, uint32_t* actualStringSize) {
  return RunOperation(
      logger, VXT_OPERATION(BitDataOperations, ToStringHexadecimal).LargeOut(),
      TraceArgs("bitData", BitDataText{bitData}, "maxBufferSize", Dec{maxBufferSize}),
      TraceArgs("buffer", WrittenText{buffer, maxBufferSize}, "actualStringSize", Out<Dec>(actualStringSize)),
      [&](Call& call) {
        return WriteText(call, bitData, buffer, maxBufferSize, actualStringSize, &BitData_ToHex,
                         &HexadecimalFormSize);
      });
}

VXT_Result InProc_BitDataOperations::ToStringBinary(const VXT_BitData* bitData, char* buffer,
                                                    uint32_t maxBufferSize, uint32_t* actualStringSize) {
  return RunOperation(
      logger, VXT_OPERATION(BitDataOperations, ToStringBinary).LargeOut(),
      TraceArgs("bitData", BitDataText{bitData}, "maxBufferSize", Dec{maxBufferSize}),
      TraceArgs("buffer", WrittenText{buffer, maxBufferSize}, "actualStringSize", Out<Dec>(actualStringSize)),
      [&](Call& call) {
        return WriteText(call, bitData, buffer, maxBufferSize, actualStringSize, &BitData_ToBinary, &BinaryFormSize);
      });
}

}  // namespace vxt
