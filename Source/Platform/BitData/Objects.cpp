// Creating, resizing and releasing vectors.
#include <cstring>
#include <memory>
#include <new>

#include "ObjectStorage.h"
#include "WordBlocks.h"

namespace voxtrel::bitdata {

BitData* NewObject(uint64_t bitSize) {
  BitData* object = NewUnfilledObject(bitSize);
  std::memset(object->words, 0, object->wordCapacity * sizeof(uint64_t));
  return object;
}

BitData* NewUnfilledObject(uint64_t bitSize) {
  auto object = std::make_unique<BitData>();
  uint64_t capacity = 0;
  object->words = AllocateWords(WordsFor(bitSize) + 1, capacity);
  object->wordCapacity = capacity;
  object->bitSize = bitSize;
  return object.release();
}

BitData* CopyForReading(const BitData& source) {
  // Small vectors are copied: sharing them would make every write to any
  // vector look the storage up while they live.
  if (source.wordCapacity < kLargeWords) {
    if (BitData* copy = BitData_CreateManagedFromBitData(&source)) return copy;
    throw std::bad_alloc();
  }
  auto object = std::make_unique<BitData>(source);
  ShareWords(source.words);
  return object.release();
}

uint64_t* WritableWords(BitData& object) {
  if (!IsShared(object.words)) [[likely]]
    return object.words;
  uint64_t capacity = 0;
  uint64_t* words = AllocateWords(object.wordCapacity, capacity);
  const uint64_t used = WordsFor(object.bitSize);
  std::memcpy(words, object.words, used * sizeof(uint64_t));
  std::memset(words + used, 0, (capacity - used) * sizeof(uint64_t));
  ReleaseWords(object.words, object.wordCapacity);
  object.words = words;
  object.wordCapacity = capacity;
  return words;
}

}  // namespace voxtrel::bitdata

using namespace voxtrel::bitdata;

BitData* BitData_CreateManaged(uint64_t bitSize) { return NewObject(bitSize); }

BitData* BitData_CreateManagedFromUInt64(uint64_t bitSize, uint64_t value) {
  BitData* object = NewObject(bitSize);
  if (bitSize != 0) StoreBits(object->words, 0, value, std::min(bitSize, kWordBits));
  return object;
}

BitData* BitData_CreateManagedFromBuffer(uint64_t bitSize, const uint8_t* buffer) {
  if (buffer == nullptr && bitSize != 0) return nullptr;
  BitData* object = NewUnfilledObject(bitSize);
  // The words the bytes do not fill whole are zeroed first, so that every
  // bit past the end reads zero.
  const uint64_t bytes = bitSize / 8 + (bitSize % 8 != 0);
  const uint64_t filledWords = bytes / sizeof(uint64_t);
  std::memset(object->words + filledWords, 0, (object->wordCapacity - filledWords) * sizeof(uint64_t));
  if (bitSize != 0) {
    std::memcpy(object->words, buffer, bytes);
    object->words[(bitSize - 1) / kWordBits] &= LowMask((bitSize - 1) % kWordBits + 1);
  }
  return object;
}

BitData* BitData_CreateManagedFromBitData(const BitData* source) {
  if (source == nullptr) return nullptr;
  BitData* object = NewUnfilledObject(source->bitSize);
  const uint64_t words = WordsFor(source->bitSize);
  std::memcpy(object->words, source->words, words * sizeof(uint64_t));
  std::memset(object->words + words, 0, (object->wordCapacity - words) * sizeof(uint64_t));
  return object;
}

void BitData_FreeManaged(BitData* object) {
  if (object == nullptr) return;
  ReleaseWords(object->words, object->wordCapacity);
  delete object;
}

uint32_t BitData_Resize(BitData* object, uint64_t newBitSize) {
  if (object == nullptr) return BITDATA_NULL_ARGUMENT;
  const uint64_t oldBitSize = object->bitSize;
  if (newBitSize < oldBitSize) {
    // Keeps the zero tail: what was cut off must read as zero when it grows back.
    ClearField(WritableWords(*object), newBitSize, oldBitSize - newBitSize);
  } else if (WordsFor(newBitSize) + 1 > object->wordCapacity) {
    // Grows by at least half again, so that growing step by step stays linear.
    const uint64_t needed = WordsFor(newBitSize) + 1;
    uint64_t capacity = 0;
    auto* words = AllocateWords(std::max(needed, object->wordCapacity + object->wordCapacity / 2), capacity);
    const uint64_t kept = WordsFor(oldBitSize);
    std::memcpy(words, object->words, kept * sizeof(uint64_t));
    std::memset(words + kept, 0, (capacity - kept) * sizeof(uint64_t));
    ReleaseWords(object->words, object->wordCapacity);
    object->words = words;
    object->wordCapacity = capacity;
  }
  object->bitSize = newBitSize;
  return 0;
}
