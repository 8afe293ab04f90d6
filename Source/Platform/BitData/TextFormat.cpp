// Writing fields as text: binary, hexadecimal, decimal and the general form.
#include <array>
#include <charconv>
#include <cstring>
#include <string>

#include "DecimalText.h"
#include "WordStorage.h"

namespace voxtrel::bitdata {
namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

// The two digits of every byte value, the high digit first.
constexpr auto kHexPairs = [] {
  std::array<std::array<char, 2>, 256> pairs{};
  for (unsigned byte = 0; byte < 256; ++byte) pairs[byte] = {kHexDigits[byte >> 4], kHexDigits[byte & 15]};
  return pairs;
}();

// The eight binary digits of every byte value, the high bit first.
constexpr auto kBinaryOctets = [] {
  std::array<std::array<char, 8>, 256> octets{};
  for (unsigned byte = 0; byte < 256; ++byte)
    for (unsigned bit = 0; bit < 8; ++bit) octets[byte][7 - bit] = (byte >> bit) & 1 ? '1' : '0';
  return octets;
}();

uint64_t HexDigitCount(uint64_t bits) { return bits / 4 + (bits % 4 != 0); }

// Writes `digits` hexadecimal digits of the number, the most significant
// first, ending at out + digits.
void WriteHexDigits(const uint64_t* words, uint64_t digits, char* out) {
  char* cursor = out + digits;
  uint64_t word = 0;
  for (; (word + 1) * 16 <= digits; ++word) {
    uint64_t value = words[word];
    for (int byte = 0; byte < 8; ++byte, value >>= 8) {
      cursor -= 2;
      std::memcpy(cursor, kHexPairs[value & 0xff].data(), 2);
    }
  }
  uint64_t value = word * 16 < digits ? words[word] : 0;
  for (; cursor != out; value >>= 4) *--cursor = kHexDigits[value & 15];
}

void WriteBinaryDigits(const uint64_t* words, uint64_t bits, char* out) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(words);
  char* cursor = out + bits;
  uint64_t byte = 0;
  for (; (byte + 1) * 8 <= bits; ++byte) {
    cursor -= 8;
    std::memcpy(cursor, kBinaryOctets[bytes[byte]].data(), 8);
  }
  unsigned value = byte * 8 < bits ? bytes[byte] : 0;
  for (; cursor != out; value >>= 1) *--cursor = value & 1 ? '1' : '0';
}

// Copies as much of `text` as fits, and the terminating zero.
uint32_t Deliver(std::string_view text, char* buffer, uint64_t bufferSize) {
  if (bufferSize == 0) return BITDATA_VALUE_OUT_OF_RANGE;
  const uint64_t length = std::min<uint64_t>(text.size(), bufferSize - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
  return length < text.size() ? BITDATA_VALUE_OUT_OF_RANGE : 0;
}

// Text of a length known in advance goes straight into the caller's buffer
// when it fits, so that large vectors are written once.
template <class Write>
uint32_t Emit(uint64_t length, char* buffer, uint64_t bufferSize, Write write) {
  if (bufferSize > length) {
    write(buffer);
    buffer[length] = '\0';
    return 0;
  }
  std::string text(length, '\0');
  write(text.data());
  return Deliver(text, buffer, bufferSize);
}

enum class Form { General, Decimal, Hex, Binary };

uint32_t WriteText(Form form, const BitData* object, uint64_t bitOffset, uint64_t bitSize, char* buffer,
                   uint64_t bufferSize) {
  if (object == nullptr || buffer == nullptr) return BITDATA_NULL_ARGUMENT;
  if (uint32_t code = CheckField(*object, bitOffset, bitSize)) return code;
  const AlignedField field(*object, bitOffset, bitSize);
  const uint64_t* words = field.words();
  switch (form) {
    case Form::Binary:
      return Emit(2 + bitSize, buffer, bufferSize, [&](char* out) {
        std::memcpy(out, "0b", 2);
        WriteBinaryDigits(words, bitSize, out + 2);
      });
    case Form::Hex: {
      const uint64_t digits = HexDigitCount(bitSize);
      return Emit(2 + digits, buffer, bufferSize, [&](char* out) {
        std::memcpy(out, "0x", 2);
        WriteHexDigits(words, digits, out + 2);
      });
    }
    case Form::General: {
      char length[24];
      const auto lengthEnd = std::to_chars(length, length + sizeof length, bitSize).ptr;
      const uint64_t lengthDigits = lengthEnd - length;
      const uint64_t digits = HexDigitCount(bitSize);
      return Emit(lengthDigits + 2 + digits, buffer, bufferSize, [&](char* out) {
        std::memcpy(out, length, lengthDigits);
        std::memcpy(out + lengthDigits, "'h", 2);
        WriteHexDigits(words, digits, out + lengthDigits + 2);
      });
    }
    case Form::Decimal:
      return Deliver(WordsToDecimal(words, field.wordCount()), buffer, bufferSize);
  }
  return BITDATA_VALUE_OUT_OF_RANGE;
}

}  // namespace
}  // namespace voxtrel::bitdata

using namespace voxtrel::bitdata;

uint32_t BitData_ToString(const BitData* object, uint64_t bitOffset, uint64_t bitSize, char* buffer,
                          uint64_t bufferSize) {
  return WriteText(Form::General, object, bitOffset, bitSize, buffer, bufferSize);
}

uint32_t BitData_ToDecimal(const BitData* object, uint64_t bitOffset, uint64_t bitSize, char* buffer,
                           uint64_t bufferSize) {
  return WriteText(Form::Decimal, object, bitOffset, bitSize, buffer, bufferSize);
}

uint32_t BitData_ToHex(const BitData* object, uint64_t bitOffset, uint64_t bitSize, char* buffer,
                       uint64_t bufferSize) {
  return WriteText(Form::Hex, object, bitOffset, bitSize, buffer, bufferSize);
}

uint32_t BitData_ToBinary(const BitData* object, uint64_t bitOffset, uint64_t bitSize, char* buffer,
                          uint64_t bufferSize) {
  return WriteText(Form::Binary, object, bitOffset, bitSize, buffer, bufferSize);
}
