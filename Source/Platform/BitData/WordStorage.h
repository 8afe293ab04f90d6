// Word-level building blocks of the BitData library.
//
// Storage is an array of 64-bit words with at least one word beyond the last
// used one, and every bit at or past the vector's length is zero. The spare
// word lets LoadBits read a 64-bit window at any position inside the vector
// without a bounds test, and the zero tail lets whole-word loops ignore the
// length.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "BitData.h"

namespace voxtrel::bitdata {

static_assert(std::endian::native == std::endian::little, "the words double as the vector's bytes");

inline constexpr uint64_t kWordBits = 64;

constexpr uint64_t WordsFor(uint64_t bits) { return bits / kWordBits + (bits % kWordBits != 0); }

// The low `count` bits set; all 64 for a count of 64 or more.
constexpr uint64_t LowMask(uint64_t count) { return count >= kWordBits ? ~uint64_t{0} : (uint64_t{1} << count) - 1; }

// 64 bits starting at `bitPos`. `bitPos` must lie inside the vector, or at
// least inside its used words.
inline uint64_t LoadBits(const uint64_t* words, uint64_t bitPos) {
  const uint64_t index = bitPos / kWordBits;
  const unsigned shift = bitPos % kWordBits;
  // The double shift yields 0 for a shift of 0 without a branch.
  return (words[index] >> shift) | ((words[index + 1] << (63 - shift)) << 1);
}

// Writes the low `count` bits (1 to 64) of `value` at `bitPos`. Touches the
// next word only when the bits reach into it, so that writers of disjoint
// fields never store to a word they do not change.
inline void StoreBits(uint64_t* words, uint64_t bitPos, uint64_t value, uint64_t count) {
  const uint64_t index = bitPos / kWordBits;
  const unsigned shift = bitPos % kWordBits;
  const uint64_t mask = LowMask(count);
  value &= mask;
  words[index] = (words[index] & ~(mask << shift)) | (value << shift);
  if (shift + count > kWordBits) {
    const unsigned spill = kWordBits - shift;
    words[index + 1] = (words[index + 1] & ~(mask >> spill)) | (value >> spill);
  }
}

// The bits of word `word` that lie inside [begin, end), end > begin.
inline uint64_t FieldMaskOfWord(uint64_t word, uint64_t begin, uint64_t end) {
  const uint64_t low = word == begin / kWordBits ? begin % kWordBits : 0;
  const uint64_t high = word == (end - 1) / kWordBits ? (end - 1) % kWordBits + 1 : kWordBits;
  return LowMask(high) & ~LowMask(low);
}

// Rewrites the field [offset, offset + size) one storage word at a time.
// `produce(fieldPos)` gives the new bits for field positions fieldPos to
// fieldPos + 63; bits of it that fall outside the field are ignored. Each
// word's new bits are produced before the word is written, and words are
// visited upwards or, with `descending`, downwards: a producer that reads the
// same storage is safe when the caller picks the direction that reads ahead
// of the writes.
template <class Produce>
void WriteField(uint64_t* words, uint64_t offset, uint64_t size, bool descending, Produce&& produce) {
  if (size == 0) return;
  const uint64_t end = offset + size;
  const uint64_t first = offset / kWordBits;
  const uint64_t last = (end - 1) / kWordBits;
  auto partial = [&](uint64_t word) {
    const uint64_t start = std::max(offset, word * kWordBits);
    const uint64_t mask = FieldMaskOfWord(word, offset, end);
    const uint64_t value = produce(start - offset) << (start % kWordBits);
    words[word] = (words[word] & ~mask) | (value & mask);
  };
  if (first == last) {
    partial(first);
    return;
  }
  if (!descending) {
    partial(first);
    for (uint64_t word = first + 1; word < last; ++word) words[word] = produce(word * kWordBits - offset);
    partial(last);
  } else {
    partial(last);
    for (uint64_t word = last - 1; word > first; --word) words[word] = produce(word * kWordBits - offset);
    partial(first);
  }
}

// Copies the bits [sourceOffset, sourceOffset + size) of `source` to
// [destinationOffset, destinationOffset + size) of `destination`. The two are
// distinct storages or the same pointer; in one storage the ranges may
// overlap. Both ranges must lie inside their vectors.
void CopyBits(uint64_t* destination, uint64_t destinationOffset, const uint64_t* source, uint64_t sourceOffset,
              uint64_t size);

// Owned zero-filled storage for `bits` bits, spare word included.
inline std::vector<uint64_t> NewStorage(uint64_t bits) { return std::vector<uint64_t>(WordsFor(bits) + 1, 0); }

// A field copied to the bottom of storage of its own, or the vector's words
// when the field is the whole vector. Either way bits past the field are zero.
class AlignedField {
 public:
  AlignedField(const BitData& object, uint64_t offset, uint64_t size) : size_(size) {
    if (offset == 0 && size == object.bitSize) {
      words_ = object.words;
      return;
    }
    copy_ = NewStorage(size);
    CopyBits(copy_.data(), 0, object.words, offset, size);
    words_ = copy_.data();
  }
  const uint64_t* words() const { return words_; }
  uint64_t wordCount() const { return WordsFor(size_); }

 private:
  uint64_t size_;
  const uint64_t* words_ = nullptr;
  std::vector<uint64_t> copy_;
};

// 0, BITDATA_BIT_OFFSET_INVALID or BITDATA_BIT_RANGE_INVALID for a field of
// a non-null object.
inline uint32_t CheckField(const BitData& object, uint64_t offset, uint64_t size) {
  if (size == 0) return offset <= object.bitSize ? 0 : BITDATA_BIT_OFFSET_INVALID;
  if (offset >= object.bitSize) return BITDATA_BIT_OFFSET_INVALID;
  if (size > object.bitSize - offset) return BITDATA_BIT_RANGE_INVALID;
  return 0;
}

inline uint32_t CheckField(const BitData* object, uint64_t offset, uint64_t size) {
  return object == nullptr ? BITDATA_NULL_ARGUMENT : CheckField(*object, offset, size);
}

// Sets every bit of the field to zero.
inline void ClearField(uint64_t* words, uint64_t offset, uint64_t size) {
  WriteField(words, offset, size, false, [](uint64_t) { return uint64_t{0}; });
}

// Loops over whole words, using the processor's wider instructions where it
// has them.

// Counts set bits.
uint64_t PopCountWords(const uint64_t* words, uint64_t count);

enum class Logic { And, Or, Xor };

// out[i] = left[i] <logic> right[i], upwards; `out` may be `left` or `right`.
void CombineWords(uint64_t* out, const uint64_t* left, const uint64_t* right, uint64_t count, Logic logic);

// destination[i] gets the 64 bits at bit `shift` (1 to 63) of source[i], so
// source[count] is read too. The storages are distinct.
void MoveWordsBetween(uint64_t* destination, const uint64_t* source, uint64_t count, unsigned shift);

// The same within one storage: words[to + i] from word from + i at bit
// `shift`, in the order that reads each word before it is overwritten.
void MoveWordsWithin(uint64_t* words, uint64_t to, uint64_t from, uint64_t count, unsigned shift);

}  // namespace voxtrel::bitdata
