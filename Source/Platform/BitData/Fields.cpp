// Reading and writing fields: copies, byte buffers, values up to 64 bits and
// single bits.
#include <cstring>

#include "ObjectStorage.h"

using namespace voxtrel::bitdata;

uint32_t BitData_CheckField(const BitData* object, uint64_t bitOffset, uint64_t bitSize) {
  return CheckField(object, bitOffset, bitSize);
}

uint32_t BitData_Copy(const BitData* source, uint64_t sourceOffset, BitData* destination,
                      uint64_t destinationOffset, uint64_t bitSize) {
  if (source == nullptr || destination == nullptr) return BITDATA_NULL_ARGUMENT;
  if (uint32_t code = CheckField(*source, sourceOffset, bitSize)) return code;
  if (uint32_t code = CheckField(*destination, destinationOffset, bitSize)) return code;
  // Taken before the source is read: it may be the destination.
  uint64_t* out = WritableWords(*destination);
  CopyBits(out, destinationOffset, source->words, sourceOffset, bitSize);
  return 0;
}

uint32_t BitData_GetBuffer(const BitData* object, uint64_t bitOffset, uint8_t* buffer, uint64_t bufferSize) {
  if (object == nullptr || (buffer == nullptr && bufferSize != 0)) return BITDATA_NULL_ARGUMENT;
  if (bitOffset > object->bitSize) return BITDATA_BIT_OFFSET_INVALID;
  const uint64_t bits = object->bitSize - bitOffset;
  const uint64_t needed = bits / 8 + (bits % 8 != 0);
  const uint64_t written = std::min(needed, bufferSize);
  if (written == 0) {
    // Nothing to copy; the buffer may be null.
  } else if (bitOffset % 8 == 0) {
    std::memcpy(buffer, reinterpret_cast<const uint8_t*>(object->words) + bitOffset / 8, written);
  } else {
    for (uint64_t byte = 0; byte < written; byte += 8) {
      const uint64_t chunk = LoadBits(object->words, bitOffset + byte * 8);
      std::memcpy(buffer + byte, &chunk, std::min<uint64_t>(8, written - byte));
    }
  }
  if (bufferSize > written) std::memset(buffer + written, 0, bufferSize - written);
  return needed > bufferSize ? BITDATA_VALUE_OUT_OF_RANGE : 0;
}

uint64_t BitData_GetUpToUInt64(const BitData* object, uint64_t bitOffset, uint64_t bitSize) {
  if (object == nullptr || bitSize == 0 || bitOffset >= object->bitSize) return 0;
  // Bits past the end are stored as zero, so the window needs no clipping.
  return LoadBits(object->words, bitOffset) & LowMask(bitSize);
}

uint64_t BitData_GetUInt64(const BitData* object, uint64_t bitOffset) {
  return BitData_GetUpToUInt64(object, bitOffset, 64);
}

uint32_t BitData_GetUInt32(const BitData* object, uint64_t bitOffset) {
  return static_cast<uint32_t>(BitData_GetUpToUInt64(object, bitOffset, 32));
}

uint32_t BitData_SetUpToUInt64(BitData* object, uint64_t bitOffset, uint64_t bitSize, uint64_t value) {
  if (object == nullptr) return BITDATA_NULL_ARGUMENT;
  if (bitSize > kWordBits) return BITDATA_VALUE_OUT_OF_RANGE;
  if (uint32_t code = CheckField(*object, bitOffset, bitSize)) return code;
  if (bitSize != 0) StoreBits(WritableWords(*object), bitOffset, value, bitSize);
  return 0;
}

uint32_t BitData_SetBit(BitData* object, uint64_t bitOffset, bool value) {
  if (object == nullptr) return BITDATA_NULL_ARGUMENT;
  if (bitOffset >= object->bitSize) return BITDATA_BIT_OFFSET_INVALID;
  uint64_t& word = WritableWords(*object)[bitOffset / kWordBits];
  const uint64_t bit = uint64_t{1} << (bitOffset % kWordBits);
  word = value ? word | bit : word & ~bit;
  return 0;
}

bool BitData_GetBit(const BitData* object, uint64_t bitOffset) {
  if (object == nullptr || bitOffset >= object->bitSize) return false;
  return (object->words[bitOffset / kWordBits] >> (bitOffset % kWordBits)) & 1;
}
