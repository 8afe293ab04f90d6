// Questions about a field: where its set bits are, how many, its parity, and
// how it compares.
#include <cstring>

#include "WordStorage.h"

namespace voxtrel::bitdata {
namespace {

// Scans eight words per step: one test for a run of zero words.
constexpr uint64_t kScanBlock = 8;

// The first word in [word, end) that is not zero, or end.
uint64_t SkipZeroWordsUp(const uint64_t* words, uint64_t word, uint64_t end) {
  for (; word + kScanBlock <= end; word += kScanBlock) {
    uint64_t any = 0;
    for (uint64_t k = 0; k < kScanBlock; ++k) any |= words[word + k];
    if (any != 0) break;
  }
  while (word < end && words[word] == 0) ++word;
  return word;
}

// The last word in (floor, word] that is not zero, or floor.
uint64_t SkipZeroWordsDown(const uint64_t* words, uint64_t word, uint64_t floor) {
  for (; word >= floor + kScanBlock; word -= kScanBlock) {
    uint64_t any = 0;
    for (uint64_t k = 0; k < kScanBlock; ++k) any |= words[word - k];
    if (any != 0) break;
  }
  while (word > floor && words[word] == 0) --word;
  return word;
}

uint64_t FindFirstSet(const uint64_t* words, uint64_t begin, uint64_t end) {
  if (begin >= end) return BITDATA_NOT_FOUND;
  const uint64_t last = (end - 1) / kWordBits;
  uint64_t word = begin / kWordBits;
  uint64_t bits = words[word] & FieldMaskOfWord(word, begin, end);
  while (bits == 0) {
    if (word == last) return BITDATA_NOT_FOUND;
    word = SkipZeroWordsUp(words, word + 1, last);
    bits = words[word] & FieldMaskOfWord(word, begin, end);
  }
  return word * kWordBits + std::countr_zero(bits);
}

uint64_t FindLastSet(const uint64_t* words, uint64_t begin, uint64_t end) {
  if (begin >= end) return BITDATA_NOT_FOUND;
  const uint64_t first = begin / kWordBits;
  uint64_t word = (end - 1) / kWordBits;
  uint64_t bits = words[word] & FieldMaskOfWord(word, begin, end);
  while (bits == 0) {
    if (word == first) return BITDATA_NOT_FOUND;
    word = SkipZeroWordsDown(words, word - 1, first);
    bits = words[word] & FieldMaskOfWord(word, begin, end);
  }
  return word * kWordBits + (kWordBits - 1 - std::countl_zero(bits));
}

constexpr uint64_t kCompareStretch = 64;

int32_t CompareWords(uint64_t left, uint64_t right) { return left == right ? 0 : (left < right ? -1 : 1); }

// Both fields start on a word boundary: compare whole words from the top.
int32_t CompareAligned(const uint64_t* left, const uint64_t* right, uint64_t size) {
  uint64_t word = size / kWordBits;
  if (const uint64_t tail = size % kWordBits) {
    if (int32_t order = CompareWords(left[word] & LowMask(tail), right[word] & LowMask(tail))) return order;
  }
  // Equal words are common: memcmp, the fastest equality test at hand,
  // settles them in one pass. Otherwise memcmp stretches, from the top, lead
  // to the highest word that differs.
  if (std::memcmp(left, right, word * sizeof(uint64_t)) == 0) return 0;
  for (; word >= kCompareStretch; word -= kCompareStretch) {
    const uint64_t start = word - kCompareStretch;
    if (std::memcmp(left + start, right + start, kCompareStretch * sizeof(uint64_t)) != 0) break;
  }
  while (word > 0) {
    --word;
    if (int32_t order = CompareWords(left[word], right[word])) return order;
  }
  return 0;
}

int32_t CompareFields(const uint64_t* left, uint64_t leftOffset, const uint64_t* right, uint64_t rightOffset,
                      uint64_t size) {
  if (leftOffset % kWordBits == 0 && rightOffset % kWordBits == 0)
    return CompareAligned(left + leftOffset / kWordBits, right + rightOffset / kWordBits, size);
  for (uint64_t remaining = size; remaining != 0;) {
    const uint64_t count = std::min(remaining, kWordBits);
    remaining -= count;
    const uint64_t a = LoadBits(left, leftOffset + remaining) & LowMask(count);
    const uint64_t b = LoadBits(right, rightOffset + remaining) & LowMask(count);
    if (int32_t order = CompareWords(a, b)) return order;
  }
  return 0;
}

}  // namespace
}  // namespace voxtrel::bitdata

using namespace voxtrel::bitdata;

uint32_t BitData_FindFirst(const BitData* object, uint64_t bitOffset, uint64_t bitSize, uint64_t* index) {
  if (object == nullptr || index == nullptr) return BITDATA_NULL_ARGUMENT;
  if (uint32_t code = CheckField(*object, bitOffset, bitSize)) return code;
  *index = FindFirstSet(object->words, bitOffset, bitOffset + bitSize);
  return 0;
}

uint32_t BitData_FindLast(const BitData* object, uint64_t bitOffset, uint64_t bitSize, uint64_t* index) {
  if (object == nullptr || index == nullptr) return BITDATA_NULL_ARGUMENT;
  if (uint32_t code = CheckField(*object, bitOffset, bitSize)) return code;
  *index = FindLastSet(object->words, bitOffset, bitOffset + bitSize);
  return 0;
}

uint32_t BitData_IsValue(const BitData* object, uint64_t bitOffset, uint64_t bitSize, uint64_t pattern,
                         uint8_t* matches) {
  if (object == nullptr || matches == nullptr) return BITDATA_NULL_ARGUMENT;
  if (uint32_t code = CheckField(*object, bitOffset, bitSize)) return code;
  if (bitSize == 0) {
    *matches = pattern == 0;
  } else if (bitSize <= kWordBits) {
    *matches = (LoadBits(object->words, bitOffset) & LowMask(bitSize)) == pattern;
  } else {
    *matches = LoadBits(object->words, bitOffset) == pattern &&
               FindFirstSet(object->words, bitOffset + kWordBits, bitOffset + bitSize) == BITDATA_NOT_FOUND;
  }
  return 0;
}

uint32_t BitData_Compare(const BitData* left, uint64_t leftOffset, const BitData* right, uint64_t rightOffset,
                         uint64_t bitSize, int32_t* result) {
  if (left == nullptr || right == nullptr || result == nullptr) return BITDATA_NULL_ARGUMENT;
  if (uint32_t code = CheckField(*left, leftOffset, bitSize)) return code;
  if (uint32_t code = CheckField(*right, rightOffset, bitSize)) return code;
  *result = CompareFields(left->words, leftOffset, right->words, rightOffset, bitSize);
  return 0;
}

uint32_t BitData_PopCount(const BitData* object, uint64_t bitOffset, uint64_t bitSize, uint64_t* count) {
  if (object == nullptr || count == nullptr) return BITDATA_NULL_ARGUMENT;
  if (uint32_t code = CheckField(*object, bitOffset, bitSize)) return code;
  if (bitSize == 0) {
    *count = 0;
    return 0;
  }
  const uint64_t* words = object->words;
  const uint64_t end = bitOffset + bitSize;
  const uint64_t first = bitOffset / kWordBits;
  const uint64_t last = (end - 1) / kWordBits;
  uint64_t total = std::popcount(words[first] & FieldMaskOfWord(first, bitOffset, end));
  if (last != first) {
    total += PopCountWords(words + first + 1, last - first - 1);
    total += std::popcount(words[last] & FieldMaskOfWord(last, bitOffset, end));
  }
  *count = total;
  return 0;
}

uint32_t BitData_Parity(const BitData* object, uint64_t bitOffset, uint64_t bitSize, uint8_t* parity) {
  if (object == nullptr || parity == nullptr) return BITDATA_NULL_ARGUMENT;
  if (uint32_t code = CheckField(*object, bitOffset, bitSize)) return code;
  if (bitSize == 0) {
    *parity = 0;
    return 0;
  }
  // The parity of the words' exclusive or is the parity of all their bits.
  const uint64_t* words = object->words;
  const uint64_t end = bitOffset + bitSize;
  const uint64_t first = bitOffset / kWordBits;
  const uint64_t last = (end - 1) / kWordBits;
  uint64_t folded = words[first] & FieldMaskOfWord(first, bitOffset, end);
  if (last != first) {
    for (uint64_t word = first + 1; word < last; ++word) folded ^= words[word];
    folded ^= words[last] & FieldMaskOfWord(last, bitOffset, end);
  }
  *parity = std::popcount(folded) & 1;
  return 0;
}
